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
  const unsigned int nv = mesh.vn(), nf = mesh.fn();
  for (unsigned int v = 0; v < nv; ++v) mesh.vNor(v).setZero();
  // A face's normal is normalised once its corners have taken it, in the same pass.
  for (unsigned int f = 0; f < nf; ++f) {
    MATH::point3<float>& n = mesh.fNor(f);
    if (!mesh.isFaceDeleted(f)) {
      const unsigned int corners = mesh.fVNum(f);
      for (unsigned int i = 0; i < corners; ++i) {
        const unsigned int v = mesh.fV(f, i);
        if (v < nv) mesh.vNor(v) += n;
      }
    }
    n.normalize();
  }
  for (unsigned int v = 0; v < nv; ++v) mesh.vNor(v).normalize();
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
