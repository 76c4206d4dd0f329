#pragma once

#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/meshInterface.h"

namespace JEV {
namespace MESH {

// An editMesh seen through meshInterface. It holds a reference: the mesh must outlive
// the adapter. Normals and colours always exist on an editMesh; hasVN is true once it has
// a vertex, hasVC follows editMesh::hasVC. Faces added through the adapter leave edges
// and VE stale: the caller rebuilds them (computeEVEF, computeVE) when done. The element
// accessors are final, so that code holding this type reads the mesh without a call
// through the table.
class editMeshInterface : public meshInterface {
 public:
  explicit editMeshInterface(editMesh& m) : mesh(m) {}

  editMesh& getMesh() { return mesh; }
  const editMesh& getMesh() const { return mesh; }

  unsigned int vn() const final { return mesh.vn(); }
  unsigned int fn() const final { return mesh.fn(); }
  unsigned int f2vNum(unsigned int f) const final { return mesh.fVNum(f); }
  unsigned int fV(unsigned int f, unsigned int i) const final { return mesh.fV(f, i); }
  MATH::point3<float>& vPos(unsigned int v) final { return mesh.vPos(v); }
  const MATH::point3<float>& vPos(unsigned int v) const final { return mesh.vPos(v); }
  MATH::point3<float>& vNor(unsigned int v) final { return mesh.vNor(v); }
  const MATH::point3<float>& vNor(unsigned int v) const final { return mesh.vNor(v); }
  CORE::color& vCol(unsigned int v) final { return mesh.vCol(v); }
  const CORE::color& vCol(unsigned int v) const final { return mesh.vCol(v); }
  MATH::point3<float>& fNor(unsigned int f) override { return mesh.fNor(f); }
  const MATH::point3<float>& fNor(unsigned int f) const override { return mesh.fNor(f); }

  bool hasVN() const final { return mesh.vn() > 0; }
  bool hasVC() const final { return mesh.hasVC(); }
  bool hasFN() const override { return mesh.fn() > 0; }
  bool hasFaceFlags() const final { return mesh.faceFlags().size() == mesh.fn(); }
  void computeFaceFlags() override { mesh.computeFaceFlags(); }
  bool isFaceDeleted(unsigned int f) const final { return mesh.isFaceDeleted(f); }
  bool isFaceSelected(unsigned int f) const final { return mesh.isFaceSelected(f); }
  bool isVertDeleted(unsigned int v) const final { return mesh.isVertDeleted(v); }
  bool isFaceIndexValid() const override { return mesh.getFABBTree() != nullptr; }
  void computeFaceIndex(unsigned int leafSize) override { mesh.computeFABBTree(leafSize); }
  const MATH::triangleTree* getFaceIndex() const override;

  void clearAxisAlignedBoundingBoxRef() override { mesh.updateBBox(); }
  void clearAxisAlignedBoundingBoxVert() override { mesh.updateBBox(); }
  // Normals live in the records; clearing them means zeroing.
  void clearVertexNormal() override;
  void clearFaceNormal() override;
  // The indexes of an editMesh go stale by themselves once positions are reported moved.
  void clearSpatialIndexing() override { mesh.updateBBox(); }
  void clear() override { mesh.clear(false); }
  // The mesh shows its vertex colours from now on, and only its colour streams are
  // rewritten at the next frame.
  void invalidateVertexColor() override;

  void vertexReserve(unsigned int n) override { mesh.expandVertexArray(n); }
  void faceReserve(unsigned int n) override { mesh.expandFaceArray(n); }
  void vertexNormalResize(unsigned int n) override;
  void vertexColorResize(unsigned int n) override;
  unsigned int addVertex(const MATH::point3<float>& p) override { return mesh.addVertex(p); }
  unsigned int addFace(const unsigned int* ids, unsigned int n) override {
    return mesh.addFace(ids, n);
  }
  void computeVertexFaceNormalizedNormals() override;
  // The interface's smoothing, then unit normals again and the render data stale.
  void taubinSmoothing(unsigned int iterations, float lambda = 0.5f, float mu = -0.53f,
                       bool smoothBorder = false, SYSTEM::callBack* cb = nullptr) override;

 private:
  editMesh& mesh;
};

}  // namespace MESH
}  // namespace JEV
