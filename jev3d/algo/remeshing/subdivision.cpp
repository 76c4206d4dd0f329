#include "jev3d/algo/remeshing/subdivision.h"

#include <cmath>
#include <random>

#include "jev3d/algo/internal/workMesh.h"
#include "jev3d/algo/remeshing/internal/triangleCuts.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "jev3d/mesh/meshInterface.h"
#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {

namespace {

using p3 = MATH::point3<float>;
constexpr unsigned int NONE = workMesh::NONE;

bool usable(const meshInterface* source, const meshInterface* target) {
  return source && target && source != target;
}

// The source as working triangles with topology and border flags, and unit vertex
// normals when asked.
void workingCopy(const meshInterface& source, workMesh& w, bool normals) {
  w.fromMesh(source, true);
  w.compact(true);
  w.updateTopology();
  if (!normals) return;
  w.computeFaceNormals();
  w.computeVertexNormals();
}

// Rounds neither delete faces nor leave a vertex unused, so the copy needs no compaction.
void writeOut(const workMesh& w, meshInterface& target) {
  w.toMesh(target);
  target.computeVertexFaceNormalizedNormals();
}

// Each side chosen by `split` gets the vertex pointOf(f, k), shared with every face
// across it: sideMid[3f + k], NONE for a side left whole. Returns whether any side got
// one.
template <class Split, class PointOf>
bool placeSidePoints(workMesh& w, Split split, PointOf pointOf,
                     std::vector<unsigned int>& sideMid) {
  if (!w.isTopologyValid()) w.updateTopology();
  const unsigned int nf = w.fn();
  sideMid.assign(size_t(nf) * 3, NONE);
  bool any = false;
  for (unsigned int f = 0; f < nf; ++f) {
    if (w.isFaceDeleted(f)) continue;
    for (unsigned int k = 0; k < 3; ++k) {
      if (sideMid[3 * f + k] != NONE || !split(f, k)) continue;
      const unsigned int m = w.addVertex(pointOf(f, k));
      sideMid[3 * f + k] = m;
      // Across the side: one face, or the ring of a non-manifold edge.
      unsigned int g = w.ffFace(f, k), e = w.ffEdge(f, k);
      while (g != NONE && g != f && sideMid[3 * g + e] == NONE) {
        sideMid[3 * g + e] = m;
        const unsigned int next = w.ffFace(g, e);
        e = w.ffEdge(g, e);
        g = next;
      }
      any = true;
    }
  }
  return any;
}

// One round: the sides chosen by `split` get their points and the faces are cut there.
// Face selection and source faces carry over; the topology is left stale.
template <class Split, class PointOf>
bool refineRound(workMesh& w, Split split, PointOf pointOf) {
  std::vector<unsigned int> sideMid;
  if (!placeSidePoints(w, split, pointOf, sideMid)) return false;
  const unsigned int nf = w.fn();
  std::vector<unsigned char> dead(nf);
  for (unsigned int f = 0; f < nf; ++f) dead[f] = w.isFaceDeleted(f);
  std::vector<unsigned int> cut;
  INTERNAL::cutTriangles(w.tri, sideMid, w.pos, cut, nullptr, &dead);
  // A face's pieces follow one another, one more than its cut sides.
  std::vector<unsigned char> flags;
  std::vector<unsigned int> source;
  flags.reserve(cut.size() / 3), source.reserve(cut.size() / 3);
  for (unsigned int f = 0; f < nf; ++f) {
    if (dead[f]) continue;
    const unsigned int pieces =
        1 + (sideMid[3 * f] != NONE) + (sideMid[3 * f + 1] != NONE) + (sideMid[3 * f + 2] != NONE);
    flags.insert(flags.end(), pieces, w.fFlag[f] & workMesh::SELECTED);
    source.insert(source.end(), pieces, w.sourceFace[f]);
  }
  w.tri.swap(cut);
  w.fFlag.swap(flags);
  w.sourceFace.swap(source);
  w.fNor.clear();
  w.invalidateTopology();
  return true;
}

// Rounds of refineRound on the working copy of source, written to target.
template <class PointOf>
bool refine(const meshInterface* source, meshInterface* target, float maxLength,
            unsigned int iterations, bool selectedOnly, bool keepBorder, SYSTEM::callBack* cb,
            PointOf pointOf) {
  if (!usable(source, target)) return false;
  if (cb) cb->setValue(1.0f);
  workMesh w;
  workingCopy(*source, w, true);
  const float threshold = maxLength * maxLength;
  auto split = [&](unsigned int f, unsigned int k) {
    if (selectedOnly && !w.isFaceSelected(f)) return false;
    if (keepBorder && w.isBorder(f, k)) return false;
    return (w.P(f, k) - w.P(f, (k + 1) % 3)).squaredNorm() > threshold;
  };
  for (unsigned int round = 0; round < iterations; ++round) {
    if (!refineRound(w, split, [&](unsigned int f, unsigned int k) { return pointOf(w, f, k); }))
      break;
    if (cb) cb->setValue(1.f + 98.f * float(round + 1) / float(iterations));
  }
  writeOut(w, *target);
  if (cb) cb->setValue(100.0f);
  return true;
}

p3 midpoint(const workMesh& w, unsigned int f, unsigned int k) {
  return (w.P(f, k) + w.P(f, (k + 1) % 3)) * 0.5f;
}

// The corner of the face across side k of f that is not on the side, or NONE.
unsigned int farCorner(const workMesh& w, unsigned int f, unsigned int k) {
  if (w.isBorder(f, k)) return NONE;
  const unsigned int g = w.ffFace(f, k), e = w.ffEdge(f, k);
  if (g == NONE || w.ffFace(g, e) != f) return NONE;  // non-manifold ring
  return w.V(g, (e + 2) % 3);
}

// The modified butterfly point of side k of f: ends a, b; far corners c (in f) and d
// (across); the wing corners beyond the other sides of both faces.
p3 butterflyPoint(const workMesh& w, unsigned int f, unsigned int k) {
  const unsigned int a = w.V(f, k), b = w.V(f, (k + 1) % 3), c = w.V(f, (k + 2) % 3);
  const unsigned int g = w.isBorder(f, k) ? NONE : w.ffFace(f, k);
  if (g == NONE || w.ffFace(g, w.ffEdge(f, k)) != f) return midpoint(w, f, k);
  const unsigned int e = w.ffEdge(f, k);
  const unsigned int d = w.V(g, (e + 2) % 3);
  const unsigned int wings[4] = {farCorner(w, f, (k + 1) % 3), farCorner(w, f, (k + 2) % 3),
                                 farCorner(w, g, (e + 1) % 3), farCorner(w, g, (e + 2) % 3)};
  for (unsigned int x : wings)
    if (x == NONE) return midpoint(w, f, k);
  p3 p = (w.pos[a] + w.pos[b]) * 0.5f + (w.pos[c] + w.pos[d]) * 0.125f;
  for (unsigned int x : wings) p -= w.pos[x] * 0.0625f;
  return p;
}

}  // namespace

bool computeSubdiv(const meshInterface* source, meshInterface* target, float maxArea,
                   bool selectedOnly, std::vector<unsigned int>& faceMap) {
  if (!usable(source, target)) return false;
  faceMap.clear();
  target->clear();
  target->vertexReserve(source->vn() + source->fn());
  target->faceReserve(3 * source->fn());
  for (unsigned int v = 0; v < source->vn(); ++v) target->addVertex(source->vPos(v));
  const unsigned int nv = source->vn();
  std::vector<unsigned int> ids;
  for (unsigned int f = 0; f < source->fn(); ++f) {
    if (source->isFaceDeleted(f)) continue;
    const unsigned int n = source->f2vNum(f);
    bool inRange = n >= 3;
    for (unsigned int i = 0; i < n && inRange; ++i) inRange = source->fV(f, i) < nv;
    if (!inRange) continue;
    const bool candidate = !selectedOnly || source->isFaceSelected(f);
    for (unsigned int t = 0; t + 2 < n; ++t) {
      const unsigned int c[3] = {source->fV(f, 0), source->fV(f, t + 1), source->fV(f, t + 2)};
      const p3 &a = source->vPos(c[0]), &b = source->vPos(c[1]), &d = source->vPos(c[2]);
      const float area = 0.5f * p3::cross(b - a, d - a).norm();
      if (!candidate || !(area > maxArea)) {
        target->addFace(c, 3);
        faceMap.push_back(f);
        continue;
      }
      const unsigned int m = target->addVertex((a + b + d) * 0.33333334f);
      for (unsigned int i = 0; i < 3; ++i) {
        const unsigned int piece[3] = {c[i], c[(i + 1) % 3], m};
        target->addFace(piece, 3);
        faceMap.push_back(f);
      }
    }
  }
  target->computeVertexFaceNormalizedNormals();
  return true;
}

bool computeSubdivLoop(const meshInterface* source, meshInterface* target) {
  if (!usable(source, target)) return false;
  workMesh w;
  workingCopy(*source, w, false);
  w.nor.clear();  // the target's normals are computed afresh, so the source's stay behind
  const unsigned int nv = w.vn();
  // New positions of the old vertices, from their neighbours around the face lists.
  std::vector<p3> moved(w.pos);
  std::vector<unsigned int> ring;
  std::vector<unsigned int> inRingOf(nv, NONE);  // the vertex whose ring took each last
  std::vector<unsigned char> nonManifold(nv, 0);
  for (unsigned int f = 0; f < w.fn(); ++f)
    for (unsigned int k = 0; k < 3; ++k)
      if (!w.isBorder(f, k) && w.ffFace(w.ffFace(f, k), w.ffEdge(f, k)) != f)
        nonManifold[w.V(f, k)] = nonManifold[w.V(f, (k + 1) % 3)] = 1;
  for (unsigned int v = 0; v < nv; ++v) {
    if (nonManifold[v] || w.vfNum(v) == 0) continue;
    ring.clear();
    p3 borderSum;
    unsigned int borderCount = 0;
    for (unsigned int i = 0; i < w.vfNum(v); ++i) {
      const unsigned int f = w.vfFace(v, i), c = w.vfCorner(v, i);
      const unsigned int next = w.V(f, (c + 1) % 3), prev = w.V(f, (c + 2) % 3);
      for (unsigned int x : {next, prev})
        if (inRingOf[x] != v) inRingOf[x] = v, ring.push_back(x);
      if (w.isBorder(f, c)) borderSum += w.pos[next], ++borderCount;
      if (w.isBorder(f, (c + 2) % 3)) borderSum += w.pos[prev], ++borderCount;
    }
    if (borderCount) {
      if (borderCount == 2) moved[v] = w.pos[v] * 0.75f + borderSum * 0.125f;
      continue;  // a pinched border vertex stays
    }
    const double n = double(ring.size());
    const double x = 0.375 + 0.25 * std::cos(2.0 * 3.14159265358979323846 / n);
    const float beta = float((0.625 - x * x) / n);
    p3 sum;
    for (unsigned int u : ring) sum += w.pos[u];
    moved[v] = w.pos[v] * (1.f - beta * float(n)) + sum * beta;
  }
  // Every side splits at its Loop edge point (the midpoint on a border): a new vertex
  // for each edge, as many as a closed mesh has one and a half per face.
  w.reserveVertices(nv + w.fn() + w.fn() / 2 + 64);
  auto edgePoint = [&](unsigned int f, unsigned int k) {
    const unsigned int c = w.V(f, (k + 2) % 3), d = farCorner(w, f, k);
    if (d == NONE) return midpoint(w, f, k);
    return (w.P(f, k) + w.P(f, (k + 1) % 3)) * 0.375f + (w.pos[c] + w.pos[d]) * 0.125f;
  };
  std::vector<unsigned int> sideMid;
  placeSidePoints(
      w, [](unsigned int, unsigned int) { return true; }, edgePoint, sideMid);
  for (unsigned int v = 0; v < nv; ++v) w.pos[v] = moved[v];
  // Every side has its point, so every face is quartered: the pieces go straight to the
  // target, without a cut copy of the working mesh.
  w.toMeshWith(*target, size_t(4) * w.fn(), [&](auto emit) {
    for (unsigned int f = 0; f < w.fn(); ++f) {
      const unsigned int v[3] = {w.V(f, 0), w.V(f, 1), w.V(f, 2)};
      INTERNAL::quarterTriangle(v, &sideMid[3 * f], emit);
    }
  });
  target->computeVertexFaceNormalizedNormals();
  return true;
}

bool computeMidpoint(const meshInterface* source, meshInterface* target, float maxLength,
                     unsigned int iterations, bool selectedOnly, bool keepBorder,
                     SYSTEM::callBack* cb) {
  return refine(source, target, maxLength, iterations, selectedOnly, keepBorder, cb, midpoint);
}

bool computeButterfly(const meshInterface* source, meshInterface* target, float maxLength,
                      unsigned int iterations, bool selectedOnly, SYSTEM::callBack* cb) {
  return refine(source, target, maxLength, iterations, selectedOnly, false, cb, butterflyPoint);
}

bool computeMonteCarlo(const meshInterface* source, meshInterface* target, unsigned int samples,
                       SYSTEM::callBack* cb) {
  if (!usable(source, target)) return false;
  if (cb) cb->setValue(1.0f);
  workMesh w;
  w.fromMesh(*source);
  std::vector<double> cumulative;
  std::vector<unsigned int> faces;
  double total = 0.0;
  for (unsigned int f = 0; f < w.fn(); ++f) {
    const double area =
        0.5 * double(p3::cross(w.P(f, 1) - w.P(f, 0), w.P(f, 2) - w.P(f, 0)).norm());
    if (!(area > 0.0) || !std::isfinite(area)) continue;
    total += area;
    cumulative.push_back(total);
    faces.push_back(f);
  }
  target->clear();
  if (!faces.empty() && samples > 0) {
    std::mt19937 rng(20061);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    target->vertexReserve(samples);
    target->vertexNormalResize(0);
    std::vector<p3> normals;
    normals.reserve(samples);
    for (unsigned int s = 0; s < samples; ++s) {
      const double pick = unit(rng) * total;
      const size_t i =
          size_t(std::lower_bound(cumulative.begin(), cumulative.end(), pick) - cumulative.begin());
      const unsigned int f = faces[std::min(i, faces.size() - 1)];
      double u = unit(rng), v = unit(rng);
      if (u + v > 1.0) u = 1.0 - u, v = 1.0 - v;  // fold into the triangle
      const p3 &a = w.P(f, 0), &b = w.P(f, 1), &c = w.P(f, 2);
      target->addVertex(a + (b - a) * float(u) + (c - a) * float(v));
      normals.push_back(p3::cross(b - a, c - a).getNormalized());
      if (cb && (s & 0xFFFF) == 0) cb->setValue(1.f + 98.f * float(s) / float(samples));
    }
    target->vertexNormalResize(samples);
    for (unsigned int s = 0; s < samples; ++s) target->vNor(s) = normals[s];
  }
  if (cb) cb->setValue(100.0f);
  return true;
}

bool midpointTriangulate(editMesh& source, float maxLength, editMesh& target, bool selectedOnly) {
  if (&source == &target) return false;
  editMeshInterface from(source), to(target);
  if (!computeMidpoint(&from, &to, maxLength, 1, selectedOnly, false)) return false;
  target.checkMeshState();
  target.computeEdges(true);
  target.computeVE();
  target.computeNormalizedFaceNormals();
  target.computeNormalizedVertexNormals();
  return true;
}

float computeAreaFace(const editMesh& mesh, unsigned int f) {
  p3 sum;
  for (unsigned int t = 0; t < mesh.getTriangleNumFace(f); ++t) {
    unsigned int a, b, c;
    mesh.getTriangle(f, t, a, b, c);
    sum += p3::cross(mesh.vPos(b) - mesh.vPos(a), mesh.vPos(c) - mesh.vPos(a));
  }
  return 0.5f * sum.norm();
}

void elenSqr(editMesh& mesh, unsigned int e, float& squaredLength) {
  squaredLength = (mesh.vPos(mesh.eV(e, 0)) - mesh.vPos(mesh.eV(e, 1))).squaredNorm();
}

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
