#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "jev3d/mesh/aabbtreeEditMeshFaceWrap.h"
#include "jev3d/mesh/aabbtreeEditMeshVertWrap.h"
#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {

void editMesh::faceTreeDeleter::operator()(aabbtreeEditMeshFaceWrap<float>* t) const { delete t; }
void editMesh::vertTreeDeleter::operator()(aabbtreeEditMeshVertWrap<float>* t) const { delete t; }

namespace {

// What an index depends on: any edit that adds, deletes, rewires or compacts elements
// changes one of the counts, and updateBBox raises the revision when positions move.
std::array<unsigned int, 7> meshState(const editMesh& m, unsigned int geometryRevision) {
  return {m.vn(), m.fn(), m.fvn(), m.getDelVn(), m.getDelFn(), m.getDelFvn(), geometryRevision};
}

template <class Tree>
const Tree* unlessStale(const Tree* t, const std::array<unsigned int, 7>& state) {
  return t && t->builtForMeshState() == state ? t : nullptr;
}

}  // namespace

void editMesh::computeFABBTree(unsigned int leafSize) {
  trees.faceTree.reset();
  std::vector<MATH::point3<float>> positions(vn());
  for (unsigned int v = 0; v < vn(); ++v) positions[v] = vStore[v].pos;
  std::vector<unsigned int> indices, faceIds;
  std::vector<unsigned int> firstTriangle(fn(), 0);
  for (unsigned int f = 0; f < fn(); ++f) {
    firstTriangle[f] = unsigned(faceIds.size());
    if (f < fFlag.size() && isFaceDeleted(f)) continue;
    for (unsigned int t = 0; t < getTriangleNumFace(f); ++t) {
      unsigned int a, b, c;
      getTriangle(f, t, a, b, c);
      indices.insert(indices.end(), {a, b, c});
      faceIds.push_back(f);
    }
  }
  std::unique_ptr<aabbtreeEditMeshFaceWrap<float>, faceTreeDeleter> tree(
      new aabbtreeEditMeshFaceWrap<float>());
  tree->tree.build(positions.data(), positions.size(), indices.data(), faceIds.size(), leafSize,
                   faceIds.data());
  tree->firstTriangle.swap(firstTriangle);
  tree->meshState = meshState(*this, geometryRevision);
  trees.faceTree = std::move(tree);
}

void editMesh::computeVABBTree(unsigned int leafSize) {
  trees.vertexTree.reset();
  std::vector<MATH::point3<float>> positions;
  std::vector<unsigned int> ids;
  positions.reserve(vn() - std::min(vn(), delVn));
  ids.reserve(positions.capacity());
  for (unsigned int v = 0; v < vn(); ++v) {
    if (v < vFlag.size() && isVertDeleted(v)) continue;
    positions.push_back(vStore[v].pos);
    ids.push_back(v);
  }
  std::unique_ptr<aabbtreeEditMeshVertWrap<float>, vertTreeDeleter> tree(
      new aabbtreeEditMeshVertWrap<float>());
  tree->tree.build(positions.data(), positions.size(), leafSize, ids.data());
  tree->meshState = meshState(*this, geometryRevision);
  trees.vertexTree = std::move(tree);
}

const aabbtreeEditMeshFaceWrap<float>* editMesh::getFABBTree() const {
  return unlessStale(trees.faceTree.get(), meshState(*this, geometryRevision));
}

const aabbtreeEditMeshVertWrap<float>* editMesh::getVABBTree() const {
  return unlessStale(trees.vertexTree.get(), meshState(*this, geometryRevision));
}

bool editMesh::isSpatialIndexingValid() const {
  return spatialIndexKind == 1 && getFABBTree() != nullptr && getVABBTree() != nullptr;
}

}  // namespace MESH
}  // namespace JEV
