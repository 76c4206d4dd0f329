#include "jev3d/algo/measurement/distance.h"

#include <algorithm>
#include <cmath>
#include <thread>

#include "jev3d/algo/measurement/internal/surfaceIndex.h"
#include "jev3d/algo/measurement/solidIntersection.h"
#include "jev3d/math/mathBase.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "jev3d/mesh/meshInterface.h"
#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace MEASUREMENT {

using INTERNAL::surfaceIndex;
using MATH::point3;

namespace {

constexpr float MAX_T = MATH::mathBase<float>::MAX_T();
constexpr unsigned int NO_FACE = 0xFFFFFFFFu;

// Reports 1.0, then each whole percentage of the items done once, then 100.
class progress {
 public:
  progress(SYSTEM::callBack* reporter, std::size_t count) : cb(reporter), n(count) {
    if (cb) cb->setValue(1.0f);
  }
  void done(std::size_t i) {
    if (!cb || n == 0) return;
    const int percent = int(i * 100 / n);
    if (percent > last) {
      last = percent;
      cb->setValue(float(percent));
    }
  }
  ~progress() {
    if (cb) cb->setValue(100.0f);
  }
  progress(const progress&) = delete;
  progress& operator=(const progress&) = delete;

 private:
  SYSTEM::callBack* cb;
  std::size_t n;
  int last = 1;
};

// The normal of b's surface at a hit: the corners' vertex normals blended by the hit's
// weights, or the triangle's own normal where they cancel out.
point3<float> surfaceNormal(const surfaceIndex& index, const meshInterface& b,
                            const MATH::closestPointHit& hit) {
  const unsigned int* c = &index.corners[3 * std::size_t(hit.triangle)];
  point3<float> n =
      b.vNor(c[0]) * (1.0f - hit.u - hit.v) + b.vNor(c[1]) * hit.u + b.vNor(c[2]) * hit.v;
  n.normalize();
  if (n.squaredNorm() == 0.0f)
    n = point3<float>::cross(b.vPos(c[1]) - b.vPos(c[0]), b.vPos(c[2]) - b.vPos(c[0]));
  return n;
}

// Where the per-point results go; the optional vectors may be null.
struct outputs {
  std::vector<float>& distances;
  std::vector<point3<float>>* closest;
  std::vector<unsigned int>* faces;

  void size(std::size_t n) const {
    distances.assign(n, MAX_T);
    if (closest) closest->assign(n, point3<float>(MAX_T, MAX_T, MAX_T));
    if (faces) faces->assign(n, NO_FACE);
  }
};

// Runs body(begin, end, reporter) over contiguous runs of [0, count), each on a thread of
// its own when there are enough items, the first on the calling thread: only that one
// reports, its share standing for the whole (the runs are equal). Contiguous runs keep
// neighbouring points together, which the walking search needs.
template <class Body>
void forEachRun(std::size_t count, progress& report, Body body) {
  constexpr std::size_t smallestRun = 16384;
  const std::size_t hardware = std::max(1u, std::thread::hardware_concurrency());
  const std::size_t runs = std::max<std::size_t>(1, std::min(hardware, count / smallestRun));
  const std::size_t length = (count + runs - 1) / runs;
  std::vector<std::thread> workers;
  for (std::size_t r = 1; r < runs; ++r)
    workers.emplace_back([&, r] {
      body(r * length, std::min(count, (r + 1) * length), static_cast<progress*>(nullptr));
    });
  body(0, std::min(count, length), &report);
  for (std::thread& w : workers) w.join();
}

// Measures `count` points, point(i), skipping those for which skip(i) holds, against the
// index of b; signs by b's normals when `signer` is given.
template <class Point, class Skip>
void measure(std::size_t count, Point point, Skip skip, const surfaceIndex& index,
             const meshInterface* signer, float maxDistance, const outputs& out,
             SYSTEM::callBack* cb) {
  progress report(cb, count);
  out.size(count);
  forEachRun(count, report, [&](std::size_t begin, std::size_t end, progress* reporter) {
    INTERNAL::closestWalker walker(index, maxDistance);
    for (std::size_t i = begin; i < end; ++i) {
      if (reporter) reporter->done((i - begin) * count / (end - begin));
      if (skip(i)) continue;
      const point3<float> p = point(i);
      MATH::closestPointHit hit;
      if (!walker.find(p, hit)) continue;
      float d = std::sqrt(hit.squaredDistance);
      if (signer && d > 0.0f && (p - hit.point) * surfaceNormal(index, *signer, hit) < 0.0f) d = -d;
      out.distances[i] = d;
      if (out.closest) (*out.closest)[i] = hit.point;
      if (out.faces) (*out.faces)[i] = hit.face;
    }
  });
}

void measureMesh(const meshInterface& a, const surfaceIndex& index, const meshInterface* signer,
                 float maxDistance, const outputs& out, SYSTEM::callBack* cb) {
  measure(
      a.vn(), [&](std::size_t v) { return a.vPos(unsigned(v)); },
      [&](std::size_t v) { return a.isVertDeleted(unsigned(v)); }, index, signer, maxDistance, out,
      cb);
}

void measurePoints(const std::vector<point3<float>>& points, const surfaceIndex& index,
                   const meshInterface* signer, float maxDistance, const outputs& out,
                   SYSTEM::callBack* cb) {
  measure(
      points.size(), [&](std::size_t i) { return points[i]; }, [](std::size_t) { return false; },
      index, signer, maxDistance, out, cb);
}

// The signer of a signed measure: b with its vertex normals, computed when it holds none.
const meshInterface* prepareSigner(meshInterface* b, bool useNormals) {
  if (!useNormals) return nullptr;
  if (!b->hasVN()) b->computeVertexFaceNormalizedNormals();
  return b;
}

const CORE::color BAND_COLORS[5] = {
    {0, 0, 255}, {0, 255, 255}, {0, 255, 0}, {255, 255, 0}, {255, 0, 0}};
const CORE::color NO_VALUE_COLOR{160, 160, 160};

}  // namespace

bool distance::computeDistance(const meshInterface* a, const meshInterface* b, float maxDistance,
                               std::vector<float>& distances, SYSTEM::callBack* cb) {
  if (!a || !b) return false;
  surfaceIndex index;
  index.build(*b);
  measureMesh(*a, index, nullptr, maxDistance, {distances, nullptr, nullptr}, cb);
  return true;
}

bool distance::computeClosestPoint(const meshInterface* a, const meshInterface* b,
                                   float maxDistance, std::vector<float>& distances,
                                   std::vector<point3<float>>& closest,
                                   std::vector<unsigned int>& faces, SYSTEM::callBack* cb) {
  if (!a || !b) return false;
  surfaceIndex index;
  index.build(*b);
  measureMesh(*a, index, nullptr, maxDistance, {distances, &closest, &faces}, cb);
  return true;
}

bool distance::computeSignedDistance(const meshInterface* a, meshInterface* b, bool useNormals,
                                     float maxDistance, std::vector<float>& distances,
                                     std::vector<point3<float>>& closest,
                                     std::vector<unsigned int>& faces, SYSTEM::callBack* cb) {
  if (!a || !b) return false;
  surfaceIndex index;
  index.build(*b);
  measureMesh(*a, index, prepareSigner(b, useNormals), maxDistance, {distances, &closest, &faces},
              cb);
  return true;
}

bool distance::computeSignedDistance(const meshInterface* a, meshInterface* b, bool useNormals,
                                     float maxDistance, std::vector<float>& distances,
                                     SYSTEM::callBack* cb) {
  if (!a || !b) return false;
  surfaceIndex index;
  index.build(*b);
  measureMesh(*a, index, prepareSigner(b, useNormals), maxDistance, {distances, nullptr, nullptr},
              cb);
  return true;
}

bool distance::computeSignedDistance(const std::vector<point3<float>>& points, meshInterface* b,
                                     bool useNormals, float maxDistance,
                                     std::vector<float>& distances,
                                     std::vector<point3<float>>& closest,
                                     std::vector<unsigned int>& faces, SYSTEM::callBack* cb) {
  if (!b) return false;
  surfaceIndex index;
  index.build(*b);
  measurePoints(points, index, prepareSigner(b, useNormals), maxDistance,
                {distances, &closest, &faces}, cb);
  return true;
}

bool distance::computeSignedDistance(const std::vector<point3<float>>& points, meshInterface* b,
                                     bool useNormals, float maxDistance,
                                     std::vector<float>& distances, SYSTEM::callBack* cb) {
  if (!b) return false;
  surfaceIndex index;
  index.build(*b);
  measurePoints(points, index, prepareSigner(b, useNormals), maxDistance,
                {distances, nullptr, nullptr}, cb);
  return true;
}

bool distance::computeMaxDistance(const meshInterface* a, const meshInterface* b, float& result,
                                  SYSTEM::callBack* cb) {
  if (!a || !b) return false;
  surfaceIndex index;
  index.build(*b);
  progress report(cb, a->vn());
  INTERNAL::closestWalker walker(index, MAX_T);
  bool any = false;
  float largest = 0.0f;
  for (unsigned int v = 0; v < a->vn(); ++v) {
    report.done(v);
    if (a->isVertDeleted(v)) continue;
    any = true;
    const point3<float>& p = a->vPos(v);
    // A vertex with the surface within the largest distance so far cannot raise it.
    if (walker.within(p, largest)) continue;
    MATH::closestPointHit hit;
    if (!walker.find(p, hit)) {
      largest = MAX_T;
      break;
    }
    largest = std::max(largest, std::sqrt(hit.squaredDistance));
  }
  if (any) result = largest;
  return any;
}

CORE::color distance::getColor(float minimum, float maximum, float value) {
  if (!(value < MAX_T)) return NO_VALUE_COLOR;
  const float width = (maximum - minimum) / 5.0f;
  int band = 0;
  for (int k = 1; k <= 4; ++k)
    if (value >= minimum + float(k) * width) band = k;
  return BAND_COLORS[band];
}

const CORE::color* distance::getBandColors() { return BAND_COLORS; }

CORE::color distance::getNoValueColor() { return NO_VALUE_COLOR; }

struct distance::model {
  meshInterface* mesh;
  std::unique_ptr<surfaceIndex> index;  // built at the first measure against this model
  std::vector<float> distances;

  void restart() {
    index.reset();
    distances.assign(mesh->vn(), MAX_T);
  }
};

distance::distance() : maxDistance(MAX_T), minValue(MAX_T), maxValue(-MAX_T) {}

distance::~distance() = default;

unsigned int distance::addModel(meshInterface* mesh) {
  models.push_back(std::make_unique<model>());
  models.back()->mesh = mesh;
  models.back()->restart();
  return unsigned(models.size() - 1);
}

void distance::clear() {
  models.clear();
  minValue = MAX_T;
  maxValue = -MAX_T;
}

void distance::resetDistance() {
  for (auto& m : models) std::fill(m->distances.begin(), m->distances.end(), MAX_T);
  minValue = MAX_T;
  maxValue = -MAX_T;
}

void distance::updateModel(unsigned int m) {
  models[m]->restart();
  getMinMaxValue(minValue, maxValue);
}

bool distance::updateDistance(unsigned int ia, unsigned int ib, SYSTEM::callBack* cb) {
  model& a = *models[ia];
  model& b = *models[ib];
  point3<float> loA, hiA, loB, hiB;
  bool measured = false;
  if (INTERNAL::liveBox(*a.mesh, loA, hiA) && INTERNAL::liveBox(*b.mesh, loB, hiB)) {
    const float gap = ((loA + hiA) * 0.5f - (loB + hiB) * 0.5f).norm() - (hiA - loA).norm() * 0.5f -
                      (hiB - loB).norm() * 0.5f;
    measured = std::max(gap, 0.0f) <= maxDistance;
  }
  if (!measured) {
    progress skipped(cb, 0);
    return false;
  }
  if (!b.index) {
    b.index = std::make_unique<surfaceIndex>();
    b.index->build(*b.mesh);
  }
  std::vector<float> found;
  measureMesh(*a.mesh, *b.index, prepareSigner(b.mesh, useNormals), maxDistance,
              {found, nullptr, nullptr}, cb);
  a.distances.resize(found.size(), MAX_T);
  for (std::size_t v = 0; v < found.size(); ++v)
    if (std::fabs(found[v]) < std::fabs(a.distances[v])) a.distances[v] = found[v];
  getMinMaxValue(minValue, maxValue);
  return true;
}

bool distance::computeSolidIntersection(SYSTEM::callBack* cb, unsigned int resolution) {
  solidIntersection test;
  std::vector<std::vector<unsigned int>> copyOf(models.size());
  for (std::size_t m = 0; m < models.size(); ++m) {
    editMesh copy;
    editMeshInterface view(copy);
    models[m]->mesh->copyTo(view, copyOf[m]);
    test.addModelToTest(copy, MATH::matrix4<float>::IDENTITY(), false);
  }
  test.test(cb, resolution);
  bool any = false;
  for (std::size_t m = 0; m < models.size(); ++m) {
    const solidIntersection::modelRecord& record = test.getModel(unsigned(m));
    any = any || record.intersects;
    std::vector<float>& d = models[m]->distances;
    d.assign(models[m]->mesh->vn(), MAX_T);
    for (std::size_t v = 0; v < d.size() && v < copyOf[m].size(); ++v)
      if (copyOf[m][v] < record.depth.size()) d[v] = record.depth[copyOf[m][v]];
  }
  getMinMaxValue(minValue, maxValue);
  return any;
}

void distance::updateColor() {
  for (unsigned int m = 0; m < models.size(); ++m) updateColorTo(m);
}

void distance::updateColorTo(unsigned int m) {
  meshInterface& mesh = *models[m]->mesh;
  const std::vector<float>& d = models[m]->distances;
  if (!mesh.hasVC()) mesh.vertexColorResize(mesh.vn());
  for (unsigned int v = 0; v < mesh.vn() && v < d.size(); ++v)
    if (!mesh.isVertDeleted(v)) mesh.vCol(v) = getColor(minValue, maxValue, d[v]);
  mesh.invalidateVertexColor();
}

const std::vector<float>& distance::getModelDistPerVert(unsigned int m) const {
  return models[m]->distances;
}

void distance::getMinMaxValue(float& minimum, float& maximum) const {
  minimum = MAX_T;
  maximum = -MAX_T;
  for (const auto& m : models)
    for (float d : m->distances)
      if (d < MAX_T) {
        minimum = std::min(minimum, d);
        maximum = std::max(maximum, d);
      }
}

}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
