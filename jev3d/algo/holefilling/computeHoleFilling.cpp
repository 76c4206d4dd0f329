#include "jev3d/algo/holefilling/computeHoleFilling.h"

#include <algorithm>

#include "jev3d/algo/holefilling/internal/holeFill.h"
#include "jev3d/algo/holefilling/internal/holeLoops.h"
#include "jev3d/algo/internal/workMesh.h"
#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/algo/postprocessing/triSurface.h"
#include "jev3d/mesh/meshInterface.h"
#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace ALGO {

using HOLEFILLING_INTERNAL::holeEdgeSet;
using POSTPROCESSING::triSurface;
using loopList = std::vector<std::vector<unsigned int>>;

namespace {

// The edge set of the surface's faces.
void buildEdgeSet(const triSurface& surface, holeEdgeSet& edges) {
  edges.buildTriangles(unsigned(surface.vertices.size()), surface.faces);
}

// Source id -> surface id (-1 for a deleted vertex), as triSurface::fromMesh numbers them.
std::vector<int> liveVertexMap(const meshInterface& source) {
  std::vector<int> map(source.vn(), -1);
  int next = 0;
  for (unsigned int v = 0; v < source.vn(); ++v)
    if (!source.isVertDeleted(v)) map[v] = next++;
  return map;
}

// The loops of the source in source ids; false when tracing fails.
bool traceSourceLoops(const meshInterface& source, loopList& loops) {
  loops.clear();
  triSurface surface;
  surface.fromMesh(source);
  holeEdgeSet edges;
  buildEdgeSet(surface, edges);
  std::vector<std::vector<int>> traced;
  if (!edges.traceLoops(traced)) return false;
  std::vector<unsigned int> back;
  for (unsigned int v = 0; v < source.vn(); ++v)
    if (!source.isVertDeleted(v)) back.push_back(v);
  for (const auto& t : traced) {
    loops.emplace_back();
    for (int v : t) loops.back().push_back(back[size_t(v)]);
  }
  return true;
}

// Peels up to five rings of faces off the borders of a working copy of the mesh.
void peelBorders(POSTPROCESSING::triMesh& mesh) {
  workMesh w;
  w.fromMesh(mesh);
  for (int round = 0; round < 5; ++round) {
    w.updateTopology();
    for (unsigned int f = 0; f < w.fn(); ++f)
      if (!w.isFaceDeleted(f)) w.fFlag[f] &= uint8_t(~workMesh::SELECTED);
    for (unsigned int f = 0; f < w.fn(); ++f) {
      if (w.isFaceDeleted(f)) continue;
      for (unsigned int i = 0; i < 3; ++i)
        if (w.vFlag[w.V(f, i)] & workMesh::BORDER) w.fFlag[f] |= workMesh::SELECTED;
    }
    unsigned int removed = 0;
    for (unsigned int f = 0; f < w.fn(); ++f)
      if (!w.isFaceDeleted(f) && w.isFaceSelected(f)) w.deleteFace(f);
    for (unsigned int v = 0; v < w.vn(); ++v)
      if (!w.isVertDeleted(v) && (w.vFlag[v] & workMesh::BORDER)) w.deleteVertex(v), ++removed;
    if (removed == 0) break;
    w.compact(true);
  }
  w.toMesh(mesh);
}

}  // namespace

bool computeHoleFillingFindHoleDimension(const meshInterface& source,
                                         std::vector<unsigned int>& sizes, SYSTEM::callBack* cb) {
  if (cb) cb->setValue(0.f);
  sizes.clear();
  loopList loops;
  const bool traced = traceSourceLoops(source, loops);
  for (const auto& l : loops) sizes.push_back(unsigned(l.size()));
  std::sort(sizes.begin(), sizes.end());
  if (cb) cb->setValue(100.f);
  return traced;
}

bool computeHoleFillingFindHole(const meshInterface& source, const std::vector<unsigned char>& mask,
                                loopList& loops,
                                std::vector<std::pair<unsigned int, unsigned int>>& endpoints) {
  endpoints.clear();
  if (!traceSourceLoops(source, loops)) return false;
  std::vector<std::vector<int>> asInt;
  for (const auto& l : loops) asInt.emplace_back(l.begin(), l.end());
  HOLEFILLING_INTERNAL::restrictLoops(asInt, mask, endpoints);
  loops.clear();
  for (const auto& l : asInt) loops.emplace_back(l.begin(), l.end());
  return true;
}

bool computeHoleFilling(const meshInterface& source, unsigned int maxSize, meshInterface& target,
                        bool triangulateOnly, SYSTEM::callBack* cb) {
  return computeHoleFilling(source, maxSize, target, triangulateOnly, {}, {}, cb);
}

bool computeHoleFilling(const meshInterface& source, unsigned int maxSize, meshInterface& target,
                        bool triangulateOnly, const std::vector<unsigned char>& mask,
                        SYSTEM::callBack* cb) {
  return computeHoleFilling(source, maxSize, target, triangulateOnly, mask, {}, cb);
}

bool computeHoleFilling(const meshInterface& source, unsigned int maxSize, meshInterface& target,
                        bool triangulateOnly, const loopList& loops, SYSTEM::callBack* cb) {
  return computeHoleFilling(source, maxSize, target, triangulateOnly, {}, loops, cb);
}

namespace {

bool fillHoles(const meshInterface& source, unsigned int maxSize, meshInterface& target,
               HOLEFILLING_INTERNAL::patchFinish finish, const std::vector<unsigned char>& mask,
               const loopList& givenLoops, SYSTEM::callBack* cb) {
  if (cb) cb->setValue(0.f);
  triSurface surface;
  surface.fromMesh(source);
  const bool hadNormals = source.hasVN();
  const bool hadColours = source.hasVC();
  // Source ids to surface ids, needed only where source ids come in or colours go out.
  std::vector<int> map;
  if (hadColours || !givenLoops.empty() || !mask.empty()) map = liveVertexMap(source);
  std::vector<CORE::color> colours;
  if (hadColours)
    for (unsigned int v = 0; v < source.vn(); ++v)
      if (map[v] >= 0) colours.push_back(source.vCol(v));
  surface.normals.clear();  // the work uses its own unit normals

  const unsigned int vertexCount = unsigned(surface.vertices.size());
  holeEdgeSet edges;
  std::vector<std::vector<int>> loops;
  if (givenLoops.empty()) {
    buildEdgeSet(surface, edges);
    if (!edges.traceLoops(loops)) return false;
  } else {
    // The caller's loops in surface ids; a loop through a deleted or unknown vertex
    // keeps only its live corners.
    for (const auto& l : givenLoops) {
      loops.emplace_back();
      for (unsigned int v : l)
        if (v < map.size() && map[v] >= 0) loops.back().push_back(map[v]);
    }
  }
  if (!mask.empty()) {
    std::vector<unsigned char> surfaceMask(vertexCount, 0);
    for (unsigned int v = 0; v < source.vn() && v < mask.size(); ++v)
      if (map[v] >= 0) surfaceMask[size_t(map[v])] = mask[v];
    std::vector<std::pair<unsigned int, unsigned int>> ends;
    HOLEFILLING_INTERNAL::restrictLoops(loops, surfaceMask, ends);
  }
  if (cb) cb->setValue(5.f);

  // The patches read the surface's normals, and its edges, only at the corners of their
  // loops: the ear tests and the rim's ring. So only those normals are computed (the
  // same bits as for the whole surface), and with the loops given no tracing needs the
  // whole edge set: the rows of the corners are enough.
  std::vector<unsigned char> onLoop(vertexCount, 0);
  for (const auto& loop : loops)
    for (int v : loop) onLoop[size_t(v)] = 1;
  std::vector<MATH::point3<float>> normals;
  std::vector<triSurface::face> facesOnLoops;
  surface.normalsOf(onLoop, normals, &facesOnLoops);
  // The faces at the corners hold every side a corner's row is made of.
  if (!givenLoops.empty()) edges.buildRowsOf(vertexCount, facesOnLoops, onLoop);
  const float feature = surface.featureSize();
  HOLEFILLING_INTERNAL::holeSurface work(surface.vertices, normals, edges, feature);
  std::vector<int> corners;
  HOLEFILLING_INTERNAL::fillLoops(work, loops, maxSize, finish, corners, cb, 5.f, 95.f);

  surface.vertices.reserve(surface.vertices.size() + work.added.size());
  for (const auto& v : work.added) surface.vertices.push_back(v.pos);
  surface.faces.reserve(surface.faces.size() + corners.size() / 3);
  for (size_t i = 0; i + 2 < corners.size(); i += 3)
    surface.faces.push_back({corners[i], corners[i + 1], corners[i + 2]});
  if (hadNormals) surface.needNormals();
  surface.toMesh(target);
  if (hadColours) {
    target.vertexColorResize(unsigned(surface.vertices.size()));
    for (size_t v = 0; v < colours.size(); ++v) target.vCol(unsigned(v)) = colours[v];
  }
  if (cb) cb->setValue(100.f);
  return true;
}

}  // namespace

bool computeHoleFilling(const meshInterface& source, unsigned int maxSize, meshInterface& target,
                        bool triangulateOnly, const std::vector<unsigned char>& mask,
                        const loopList& givenLoops, SYSTEM::callBack* cb) {
  return fillHoles(source, maxSize, target,
                   triangulateOnly ? HOLEFILLING_INTERNAL::patchFinish::NONE
                                   : HOLEFILLING_INTERNAL::patchFinish::REFINE_AND_FAIR,
                   mask, givenLoops, cb);
}

bool computeHoleFillingFaired(const meshInterface& source, unsigned int maxSize,
                              meshInterface& target, const loopList& loops, SYSTEM::callBack* cb) {
  return fillHoles(source, maxSize, target, HOLEFILLING_INTERNAL::patchFinish::REFINE_AND_FIT, {},
                   loops, cb);
}

bool computeTessellateHole(const meshInterface& source, meshInterface& target) {
  return computeHoleFilling(source, 0, target, true);
}

void computeHoleFillingFilter(meshInterface& mesh, unsigned int minSize, unsigned int maxSize,
                              unsigned int passes, SYSTEM::callBack* cb) {
  if (cb) cb->setValue(1.f);
  for (unsigned int pass = 1;; ++pass) {
    POSTPROCESSING::triMesh clean;
    clean.importFrom(mesh);
    clean.removeDuplicateFaces();
    clean.removeDuplicateVertices();
    clean.removeDegenerateFace();
    clean.removeZeroAreaFace();
    clean.removeNotManifoldVertices();
    clean.removeNotManifoldFlagFaces();
    peelBorders(clean);
    clean.removeNotManifoldFlagFaces();
    clean.removeUnReferenceVertex();
    clean.computeVertexFaceNormalizedNormals(true);
    clean.copyTo(mesh);

    if (pass > passes) break;
    std::vector<unsigned int> sizes;
    computeHoleFillingFindHoleDimension(mesh, sizes);
    if (sizes.empty()) break;
    if (sizes.front() <= minSize) continue;  // peel the small ones wider first
    if (std::none_of(sizes.begin(), sizes.end(),
                     [&](unsigned int s) { return s > minSize && s <= maxSize; }))
      break;
    computeHoleFilling(mesh, maxSize, mesh, false);
  }
  if (cb) cb->setValue(100.f);
}

}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
