#include "jev3d/algo/smoothing/laplacianSmooth.h"

#include "jev3d/algo/smoothing/internal/laplacianPass.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "jev3d/mesh/meshInterface.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace SMOOTHING {

namespace {

// A meshInterface as the passes read it.
struct interfaceAccess {
  meshInterface& m;
  unsigned int vn() const { return m.vn(); }
  unsigned int fn() const { return m.fn(); }
  bool faceDeleted(unsigned int f) const { return m.isFaceDeleted(f); }
  unsigned int corners(unsigned int f) const { return m.f2vNum(f); }
  unsigned int corner(unsigned int f, unsigned int i) const { return m.fV(f, i); }
  MATH::point3<float>& pos(unsigned int v) const { return m.vPos(v); }
};

// The editable mesh's closing steps after its positions moved.
void refreshEditMesh(editMesh& mesh) {
  mesh.computeNormalizedNormals();
  mesh.invalidateRenderData();
}

}  // namespace

void computeLaplacianSmooth(meshInterface& mesh, laplacianDescriptor& descriptor,
                            SYSTEM::callBack* cb) {
  if (cb) cb->setValue(0.f);
  if (!mesh.hasFaceFlags()) mesh.computeFaceFlags();
  descriptor.clear();
  descriptor.resize(mesh.vn());
  const INTERNAL::packedMesh packed(interfaceAccess{mesh});
  std::vector<INTERNAL::packedMesh::lanes> sum(mesh.vn(), INTERNAL::packedMesh::lanes{});
  packed.accumulate(sum, descriptor.count.data(), cb);
  for (unsigned int v = 0; v < mesh.vn(); ++v)
    descriptor.sum[v] = INTERNAL::packedMesh::point(sum[v]);
  if (cb) cb->setValue(100.f);
}

void computeLaplacianSmooth(editMesh& mesh, laplacianDescriptor& descriptor, SYSTEM::callBack* cb) {
  editMeshInterface view(mesh);
  computeLaplacianSmooth(view, descriptor, cb);
}

void computeLaplacianSmooth(meshInterface& mesh, unsigned int iterations, bool smoothBorder,
                            SYSTEM::callBack* cb) {
  if (cb) cb->setValue(0.f);
  if (!mesh.hasFaceFlags()) mesh.computeFaceFlags();
  std::vector<unsigned char> pinned;
  if (!smoothBorder) mesh.markBorderVertex(pinned);
  if (iterations > 0) {
    INTERNAL::packedMesh packed(interfaceAccess{mesh});
    packed.iterate(iterations, pinned, cb);
    for (unsigned int v = 0; v < mesh.vn(); ++v) mesh.vPos(v) = packed.pos(v);
  }
  mesh.clearAxisAlignedBoundingBoxRef();
  mesh.clearAxisAlignedBoundingBoxVert();
  mesh.clearFaceNormal();
  mesh.clearVertexNormal();
  mesh.clearSpatialIndexing();
  if (cb) cb->setValue(100.f);
}

void computeLaplacianSmooth(editMesh& mesh, unsigned int iterations, bool smoothBorder,
                            SYSTEM::callBack* cb) {
  editMeshInterface view(mesh);
  computeLaplacianSmooth(view, iterations, smoothBorder, cb);
  refreshEditMesh(mesh);
}

}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
