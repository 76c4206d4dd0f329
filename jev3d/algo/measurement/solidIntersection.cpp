#include "jev3d/algo/measurement/solidIntersection.h"

#include <algorithm>

#include "jev3d/algo/measurement/internal/surfaceIndex.h"
#include "jev3d/algo/measurement/intersectionComputation.h"
#include "jev3d/algo/smoothing/laplacianSmooth.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace MEASUREMENT {

namespace {

struct box {
  MATH::point3<float> lo, hi;
  bool empty = true;
};

box boxOf(const editMesh& m) {
  box b;
  // The adapter wants a mutable mesh; it is only read here.
  b.empty = !INTERNAL::liveBox(editMeshInterface(const_cast<editMesh&>(m)), b.lo, b.hi);
  return b;
}

bool overlap(const box& a, const box& b) {
  return !a.empty && !b.empty && a.lo.x <= b.hi.x && b.lo.x <= a.hi.x && a.lo.y <= b.hi.y &&
         b.lo.y <= a.hi.y && a.lo.z <= b.hi.z && b.lo.z <= a.hi.z;
}

}  // namespace

unsigned int solidIntersection::addModelToTest(const editMesh& mesh,
                                               const MATH::matrix4<float>& matrix, bool smooth) {
  models.emplace_back();
  modelRecord& record = models.back();
  record.mesh = mesh;
  record.mesh.transform(matrix);
  if (smooth) {
    const unsigned int rounds = 5;
    const bool smoothBorder = false;
    computeLaplacianSmooth(record.mesh, rounds, smoothBorder, nullptr);
  }
  return unsigned(models.size() - 1);
}

std::vector<std::pair<unsigned int, unsigned int>> solidIntersection::findPairToTest() const {
  std::vector<box> boxes;
  for (const modelRecord& m : models) boxes.push_back(boxOf(m.mesh));
  std::vector<std::pair<unsigned int, unsigned int>> pairs;
  for (unsigned int a = 0; a < boxes.size(); ++a)
    for (unsigned int b = a + 1; b < boxes.size(); ++b)
      if (overlap(boxes[a], boxes[b])) pairs.emplace_back(a, b);
  return pairs;
}

bool solidIntersection::test(SYSTEM::callBack* cb, unsigned int resolution) {
  if (cb) cb->setValue(1.0f);
  for (modelRecord& m : models) {
    m.intersects = false;
    m.intersectsWith.clear();
    m.depth.assign(m.mesh.vn(), 0.0f);
  }
  if (models.size() < 2) {
    if (cb) cb->setValue(100.0f);
    return false;
  }
  resolution = std::clamp(resolution, 8u, 1024u);
  const auto pairs = findPairToTest();
  // The working list: each model in a pair voxelised once, on first need.
  std::vector<VOXEL::voxelModel> work(models.size());
  std::vector<unsigned char> prepared(models.size(), 0);
  const auto ready = [&](unsigned int m) {
    if (!prepared[m]) {
      VOXEL::intersectionComputation::prepare(editMeshInterface(models[m].mesh), resolution,
                                              work[m]);
      prepared[m] = 1;
    }
    return !work[m].isEmpty();
  };
  // A model's points are its mesh's vertices renumbered: carry the depths back.
  const auto keepDepth = [&](unsigned int m, const std::vector<float>& distances) {
    for (std::size_t p = 0; p < distances.size(); ++p) {
      float& d = models[m].depth[work[m].sourceVertex[p]];
      d = std::min(d, distances[p]);
    }
  };
  for (std::size_t k = 0; k < pairs.size(); ++k) {
    const unsigned int a = pairs[k].first, b = pairs[k].second;
    intersectionDescriptor result;
    if (ready(a) && ready(b) &&
        VOXEL::intersectionComputation::compute(work[a], MATH::matrix4<float>::IDENTITY(), work[b],
                                                MATH::matrix4<float>::IDENTITY(), result) &&
        result.intersects) {
      models[a].intersects = models[b].intersects = true;
      models[a].intersectsWith.push_back(b);
      models[b].intersectsWith.push_back(a);
      keepDepth(a, result.firstDistances);
      keepDepth(b, result.secondDistances);
    }
    if (cb) cb->setValue(1.0f + 94.0f * float(k) / float(pairs.size()));
  }
  if (cb) cb->setValue(95.0f);
  for (modelRecord& m : models) std::sort(m.intersectsWith.begin(), m.intersectsWith.end());
  if (cb) cb->setValue(99.0f);
  if (cb) cb->setValue(100.0f);
  return true;
}

}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
