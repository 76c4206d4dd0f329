#include "jev3d/editing/modifier/dataExchange.h"

#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {
namespace dataExchange {

int mesh::vertStore::allocate(unsigned int n) {
  points->reserve(n);
  return 0;
}

int mesh::vertStore::addVertex(const float& x, const float& y, const float& z) {
  points->push_back({x, y, z});
  return int(points->size() - 1);
}

editMesh::editMesh() : mesh(&myFaceFunctor), myFaceFunctor(&corners, &faces) {}

int editMesh::faceStore::allocateFaces(unsigned int n) {
  records->reserve(n);
  return 0;
}

int editMesh::faceStore::allocateCorners(unsigned int n) {
  cornerIds->reserve(n);
  return 0;
}

int editMesh::faceStore::addFace(unsigned int* ids, unsigned int n, bool reserve) {
  if (reserve) cornerIds->reserve(cornerIds->size() + n);
  records->push_back({uint32_t(cornerIds->size()), n});
  cornerIds->insert(cornerIds->end(), ids, ids + n);
  return int(records->size() - 1);
}

triMesh::triMesh() : mesh(&myFaceFunctor), myFaceFunctor(&corners) {}

int triMesh::triStore::allocateFaces(unsigned int n) {
  cornerIds->reserve(3 * size_t(n));
  return 0;
}

int triMesh::triStore::allocateCorners(unsigned int n) {
  cornerIds->reserve(n);
  return 0;
}

int triMesh::triStore::addFace(unsigned int* ids, unsigned int n, bool) {
  if (n != 3) return -1;
  cornerIds->insert(cornerIds->end(), ids, ids + 3);
  return int(cornerIds->size() / 3 - 1);
}

void fromEditMesh(const MESH::editMesh& source, editMesh& target) {
  target.positions.clear();
  target.corners.clear();
  target.faces.clear();
  std::vector<unsigned int> newId(source.vn(), ~0u);
  std::vector<unsigned int> ids;
  for (unsigned int f = 0; f < source.fn(); ++f) {
    if (source.isFaceDeleted(f) || source.fVNum(f) < 3) continue;
    ids.clear();
    for (unsigned int i = 0; i < source.fVNum(f); ++i) {
      const unsigned int v = source.fV(f, i);
      if (newId[v] == ~0u) {
        const auto& p = source.vPos(v);
        newId[v] = unsigned(target.vFunc()->addVertex(p.x, p.y, p.z));
      }
      ids.push_back(newId[v]);
    }
    target.fFunc()->addFace(ids.data(), unsigned(ids.size()), false);
  }
}

bool toEditMesh(const editMesh& source, MESH::editMesh& target) {
  target.clear(false);
  const unsigned int vn = unsigned(source.positions.size());
  for (uint32_t c : source.corners)
    if (c >= vn) return false;
  target.allocateVertexArray(vn);
  for (const auto& p : source.positions) target.addVertex(p.x, p.y, p.z);
  target.allocateFaceArray(unsigned(source.faces.size()));
  target.allocateFVArray(unsigned(source.corners.size()));
  for (const auto& f : source.faces) {
    if (size_t(f.first) + f.count > source.corners.size()) {
      target.clear(false);
      return false;
    }
    target.addFace(source.corners.data() + f.first, f.count);
  }
  target.checkMeshState();
  target.computeEdges(true);
  target.computeVE();
  target.computeNormalizedFaceNormals();
  target.computeNormalizedVertexNormals();
  target.computeBBox();
  return true;
}

}  // namespace dataExchange
}  // namespace MESH
}  // namespace JEV
