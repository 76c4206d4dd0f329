#include "jev3d/mesh/editMeshInterface.h"

#include "jev3d/mesh/aabbtreeEditMeshFaceWrap.h"

namespace JEV {
namespace MESH {

const MATH::triangleTree* editMeshInterface::getFaceIndex() const {
  const aabbtreeEditMeshFaceWrap<float>* wrap = mesh.getFABBTree();
  return wrap ? &wrap->getTree() : nullptr;
}

void editMeshInterface::clearVertexNormal() {
  for (unsigned int v = 0; v < mesh.vn(); ++v) mesh.vNor(v).setZero();
}

void editMeshInterface::clearFaceNormal() {
  for (unsigned int f = 0; f < mesh.fn(); ++f) mesh.fNor(f).setZero();
}

void editMeshInterface::vertexNormalResize(unsigned int n) {
  // Normals are part of the vertex records; only growth has anything to do.
  if (n > mesh.vn()) mesh.resizeVertexData(n);
  mesh.checkMeshState();
}

void editMeshInterface::vertexColorResize(unsigned int n) {
  if (n > mesh.vn()) mesh.resizeVertexData(n);
  mesh.checkMeshState();
  mesh.setHasVC(true);
}

void editMeshInterface::computeVertexFaceNormalizedNormals() {
  mesh.checkMeshState();
  // Unnormalised face normals weigh each face by its area at the vertices; the corners
  // are read directly, so stale edges do not matter.
  mesh.computeFaceNormals();
  for (unsigned int v = 0; v < mesh.vn(); ++v) mesh.vNor(v).setZero();
  for (unsigned int f = 0; f < mesh.fn(); ++f) {
    if (mesh.isFaceDeleted(f)) continue;
    for (unsigned int i = 0; i < mesh.fVNum(f); ++i) {
      const unsigned int v = mesh.fV(f, i);
      if (v < mesh.vn()) mesh.vNor(v) += mesh.fNor(f);
    }
  }
  for (unsigned int v = 0; v < mesh.vn(); ++v) mesh.vNor(v).normalize();
  for (unsigned int f = 0; f < mesh.fn(); ++f) mesh.fNor(f).normalize();
}

void editMeshInterface::invalidateVertexColor() {
  mesh.setHasVC(true);
  mesh.colorDisplayState = MESH_COLOR_VERTEX;
  mesh.selectionRenderStateValid = false;
}

void editMeshInterface::taubinSmoothing(unsigned int iterations, float lambda, float mu,
                                        bool smoothBorder, SYSTEM::callBack* cb) {
  meshInterface::taubinSmoothing(iterations, lambda, mu, smoothBorder, cb);
  mesh.computeNormalizedNormals();
  mesh.invalidateRenderData();
}

}  // namespace MESH
}  // namespace JEV
