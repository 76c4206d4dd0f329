#include "jev3d/algo/holefilling/holeFilling.h"

#include <algorithm>
#include <unordered_set>

#include "jev3d/algo/holefilling/internal/holeLoops.h"
#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace HOLEFILLING {

using p3 = MATH::point3<float>;

namespace {

// The mean position of the loop's vertices.
p3 getVertLoopBary(const editMesh& mesh, const std::vector<unsigned int>& loop) {
  p3 sum;
  for (unsigned int v : loop) sum += mesh.vPos(v);
  return loop.empty() ? sum : sum * (1.f / float(loop.size()));
}

// Umbrella smoothing of the vertices whose faces are all selected, rounds times, in
// place in id order. A vertex on an unselected face stays, and so does the old mesh.
void smoothSelectedVert(editMesh& mesh, unsigned int rounds) {
  std::vector<unsigned char> moves(mesh.vn(), 0);
  for (unsigned int f = 0; f < mesh.fn(); ++f)
    if (!mesh.isFaceDeleted(f) && mesh.isFaceSelected(f))
      for (unsigned int i = 0; i < mesh.fVNum(f); ++i) moves[mesh.fV(f, i)] = 1;
  for (unsigned int f = 0; f < mesh.fn(); ++f)
    if (!mesh.isFaceDeleted(f) && !mesh.isFaceSelected(f))
      for (unsigned int i = 0; i < mesh.fVNum(f); ++i) moves[mesh.fV(f, i)] = 0;
  std::vector<unsigned int> moving;
  for (unsigned int v = 0; v < mesh.vn(); ++v)
    if (moves[v] && !mesh.isVertDeleted(v) && mesh.vENum(v) > 0) moving.push_back(v);
  for (unsigned int r = 0; r < rounds && !moving.empty(); ++r)
    for (unsigned int v : moving) {
      p3 sum;
      for (unsigned int k = 0; k < mesh.vENum(v); ++k) {
        const unsigned int e = mesh.vE(v, k);
        sum += mesh.vPos(mesh.eV(e, 0) == v ? mesh.eV(e, 1) : mesh.eV(e, 0));
      }
      mesh.vPos(v) = sum * (1.f / float(mesh.vENum(v)));
    }
}

bool throughAny(const std::vector<unsigned int>& loop,
                const std::unordered_set<unsigned int>& set) {
  for (unsigned int v : loop)
    if (set.count(v)) return true;
  return false;
}

// Empties the loops for which through-any equals wanted; returns how many.
unsigned int discardBy(loopList& loops, const std::vector<unsigned int>& vertices, bool wanted) {
  const std::unordered_set<unsigned int> set(vertices.begin(), vertices.end());
  unsigned int count = 0;
  for (auto& loop : loops)
    if (!loop.empty() && throughAny(loop, set) == wanted) loop.clear(), ++count;
  return count;
}

void closingRebuild(editMesh& mesh) {
  mesh.checkMeshState();
  mesh.computeEdges(true);
  mesh.computeVE();
  mesh.computeNormalizedFaceNormals();
  mesh.computeNormalizedVertexNormals();
}

template <class Test>
unsigned int addPolyFacesWhere(editMesh& mesh, const loopList& loops, Test test) {
  unsigned int added = 0;
  for (const auto& loop : loops)
    if (loop.size() >= 3 && test(loop)) mesh.addPolyFace(loop, true), ++added;
  if (added) closingRebuild(mesh);
  return added;
}

}  // namespace

HOLE_FILLING_ERROR computeTriangulateHole(editMesh& mesh, computeHoleFillingParams& params) {
  loopList loops;
  trivialHoleFilling(mesh, loops);
  if (params.loopChoice == 1) discardLoopsNotContaining(loops, params.fillVertices);
  if (params.loopChoice == 2) discardLoopsContaining(loops, params.skipVertices);
  const unsigned int firstVertex = mesh.vn(), firstFace = mesh.fn();

  std::vector<MATH::point3<int>> faces;
  faces.reserve(2048);
  std::vector<std::vector<p3>> rims;
  unsigned int next = firstVertex;
  for (const auto& loop : loops) {
    if (loop.empty()) continue;
    rims.emplace_back();
    for (unsigned int v : loop) rims.back().push_back(mesh.vPos(v));
    const unsigned int from = next;
    triangulateFan(loop, next, faces);
    const p3 centre = getVertLoopBary(mesh, loop);
    const CORE::color colour = mesh.vCol(loop[0]);
    for (unsigned int v = from; v < next; ++v) mesh.vCol(mesh.addVertex(centre)) = colour;
  }
  mesh.expandFaceArray(unsigned(faces.size()));
  mesh.expandFVArray(unsigned(3 * faces.size()));
  for (const auto& f : faces) mesh.addTriFace(unsigned(f.x), unsigned(f.y), unsigned(f.z));

  mesh.checkMeshState();
  mesh.computeEdges(true);
  mesh.computeVE();
  mesh.deselectAllFaces();
  for (unsigned int f = firstFace; f < mesh.fn(); ++f) mesh.selectFace(f);
  // The ring next to the old mesh leaves the selection, so the rim does not move.
  mesh.invertFaceSelection();
  mesh.selectRegionOneRing();
  mesh.invertFaceSelection();
  mesh.computeNormalizedFaceNormals();
  mesh.computeNormalizedVertexNormals();
  smoothSelectedVert(mesh, params.smoothRounds);

  size_t k = 0;
  for (const auto& loop : loops) {
    if (loop.empty()) continue;
    for (size_t i = 0; i < loop.size(); ++i) mesh.vPos(loop[i]) = rims[k][i];
    ++k;
  }
  mesh.computeNormalizedFaceNormals();
  mesh.computeNormalizedVertexNormals();
  mesh.updateSelVertPosNorSum();
  mesh.updateBBox();
  return HOLE_FILLING_DONE;
}

bool trivialHoleFilling(editMesh& mesh, loopList& loops) {
  loops.clear();
  mesh.checkMeshState();
  mesh.computeEdges(true);
  mesh.computeVE();
  std::vector<int> corners;
  std::vector<unsigned int> start(1, 0);
  for (unsigned int f = 0; f < mesh.fn(); ++f) {
    if (mesh.isFaceDeleted(f)) continue;
    for (unsigned int i = 0; i < mesh.fVNum(f); ++i) corners.push_back(int(mesh.fV(f, i)));
    start.push_back(unsigned(corners.size()));
  }
  HOLEFILLING_INTERNAL::holeEdgeSet edges;
  edges.build(mesh.vn(), corners, start);
  std::vector<std::vector<int>> traced;
  if (!edges.traceLoops(traced)) return false;
  // Traced loops follow the border faces; a closing face runs the other way.
  for (const auto& t : traced) loops.emplace_back(t.rbegin(), t.rend());
  return true;
}

HOLE_FILLING_ERROR checkStartingLoopOrientation(editMesh& mesh, std::vector<unsigned int>& loop) {
  if (loop.size() < 2) return HOLE_FILLING_BAD_LOOP;
  const unsigned int e = mesh.findSharedEdgeFromVertices(loop[0], loop[1]);
  if (e == mesh.getMaxValue()) return HOLE_FILLING_BAD_LOOP;
  if (mesh.eFNum(e) > 0) {
    const unsigned int f = mesh.eF(e, 0);
    const unsigned int c = mesh.findCornerInFace(f, loop[0]);
    if (c != mesh.getMaxValue() && mesh.fV(f, (c + 1) % mesh.fVNum(f)) == loop[1])
      std::reverse(loop.begin(), loop.end());
  }
  return HOLE_FILLING_DONE;
}

void triangulateFan(const std::vector<unsigned int>& loop, unsigned int& next,
                    std::vector<MATH::point3<int>>& faces) {
  const size_t n = loop.size();
  if (n < 3) return;
  if (n == 3) {
    faces.emplace_back(int(loop[0]), int(loop[1]), int(loop[2]));
    return;
  }
  const int centre = int(next++);
  for (size_t i = 0; i < n; ++i) faces.emplace_back(int(loop[i]), int(loop[(i + 1) % n]), centre);
}

unsigned int addPolyFaces(editMesh& mesh, const loopList& loops) {
  return addPolyFacesWhere(mesh, loops, [](const std::vector<unsigned int>&) { return true; });
}

unsigned int addPolyFacesContaining(editMesh& mesh, const loopList& loops,
                                    const std::vector<unsigned int>& vertices) {
  const std::unordered_set<unsigned int> set(vertices.begin(), vertices.end());
  return addPolyFacesWhere(mesh, loops,
                           [&](const std::vector<unsigned int>& l) { return throughAny(l, set); });
}

unsigned int addPolyFacesNotContaining(editMesh& mesh, const loopList& loops,
                                       const std::vector<unsigned int>& vertices) {
  const std::unordered_set<unsigned int> set(vertices.begin(), vertices.end());
  return addPolyFacesWhere(mesh, loops,
                           [&](const std::vector<unsigned int>& l) { return !throughAny(l, set); });
}

unsigned int discardPolyFacesGreaterThan(loopList& loops, unsigned int limit) {
  unsigned int count = 0;
  for (auto& loop : loops)
    if (loop.size() > limit) loop.clear(), ++count;
  return count;
}

unsigned int discardLoopsContaining(loopList& loops, const std::vector<unsigned int>& vertices) {
  return discardBy(loops, vertices, true);
}

unsigned int discardLoopsNotContaining(loopList& loops, const std::vector<unsigned int>& vertices) {
  return discardBy(loops, vertices, false);
}

std::vector<unsigned int> getGreatestLoop(const loopList& loops) {
  const std::vector<unsigned int>* best = nullptr;
  for (const auto& loop : loops)
    if (!best || loop.size() > best->size()) best = &loop;
  return best ? *best : std::vector<unsigned int>();
}

}  // namespace HOLEFILLING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
