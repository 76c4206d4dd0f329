#pragma once

#include <vector>

#include "jev3d/math/point3.h"
#include "jev3d/math/triangleTree.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {

// The neutral mesh through which algorithms and render-side code read and write any
// mesh: an editable mesh (through editMeshInterface) or a scan mesh (triMesh). Faces are
// polygons of f2vNum corners; a mesh without deletion reports nothing deleted. Ids are
// trusted: accessors do not check them.
class meshInterface {
 public:
  virtual ~meshInterface();

  // Counts: array sizes, deleted elements included.
  virtual unsigned int vn() const = 0;
  virtual unsigned int fn() const = 0;
  virtual unsigned int f2vNum(unsigned int f) const = 0;
  virtual unsigned int fV(unsigned int f, unsigned int i) const = 0;

  virtual MATH::point3<float>& vPos(unsigned int v) = 0;
  virtual const MATH::point3<float>& vPos(unsigned int v) const = 0;
  virtual MATH::point3<float>& vNor(unsigned int v) = 0;
  virtual const MATH::point3<float>& vNor(unsigned int v) const = 0;
  virtual CORE::color& vCol(unsigned int v) = 0;
  virtual const CORE::color& vCol(unsigned int v) const = 0;
  virtual MATH::point3<float>& fNor(unsigned int f) = 0;
  virtual const MATH::point3<float>& fNor(unsigned int f) const = 0;

  // Whether vertex normals, vertex colours, face normals and face flags are held.
  virtual bool hasVN() const = 0;
  virtual bool hasVC() const = 0;
  virtual bool hasFN() const = 0;
  virtual bool hasFaceFlags() const = 0;
  // Sizes the face flags to the faces (new bytes clear).
  virtual void computeFaceFlags() = 0;
  virtual bool isFaceDeleted(unsigned int f) const = 0;
  virtual bool isFaceSelected(unsigned int f) const = 0;
  virtual bool isVertDeleted(unsigned int v) const = 0;

  // The face index for closest-point searches: whether one is built and current, building
  // one (leaves of at most leafSize triangles), and the index itself, whose hits name the
  // mesh's face ids. A mesh that keeps no index answers false and null.
  virtual bool isFaceIndexValid() const { return false; }
  virtual void computeFaceIndex(unsigned int /*leafSize*/) {}
  virtual const MATH::triangleTree* getFaceIndex() const { return nullptr; }

  // Stale derived data dropped after the caller moved or rebuilt the mesh.
  virtual void clearAxisAlignedBoundingBoxRef() = 0;
  virtual void clearAxisAlignedBoundingBoxVert() = 0;
  virtual void clearVertexNormal() = 0;
  virtual void clearFaceNormal() = 0;
  virtual void clearSpatialIndexing() = 0;
  // Empties the mesh: no vertex, no face, no derived data.
  virtual void clear() = 0;

  // Tells a mesh that draws itself that its vertex colours were rewritten, so that it
  // shows them without rebuilding its geometry. Nothing by default.
  virtual void invalidateVertexColor() {}

  // Building. vertexNormalResize and vertexColorResize size the per-vertex arrays (new
  // entries zero), making hasVN / hasVC true.
  virtual void vertexReserve(unsigned int n) = 0;
  virtual void faceReserve(unsigned int n) = 0;
  virtual void vertexNormalResize(unsigned int n) = 0;
  virtual void vertexColorResize(unsigned int n) = 0;
  virtual unsigned int addVertex(const MATH::point3<float>& p) = 0;
  // A face on n corners; a mesh of triangles takes polygons as fans from corner 0 and
  // returns the first triangle. Returns the new face's id.
  virtual unsigned int addFace(const unsigned int* ids, unsigned int n) = 0;
  // Unit face and vertex normals of the live faces (area-weighted at the vertices).
  virtual void computeVertexFaceNormalizedNormals() = 0;

  // Sets mask[v] to 1 for the ends of border edges (used by exactly one live face) and
  // 0 elsewhere; the mask is sized to vn.
  void markBorderVertex(std::vector<unsigned char>& mask) const;
  // Fills target with the live vertices (normals and colours where this mesh has them)
  // and the live faces on them, vertices renumbered in order; map receives old -> new,
  // 0xFFFFFFFF for deleted vertices. Faces naming a vertex that is out of range or
  // deleted are left out.
  void copyTo(meshInterface& target, std::vector<unsigned int>& map) const;
  void copyTo(meshInterface& target) const;

  // Taubin's smoothing: iterations pairs of simultaneous umbrella steps, p += lambda·(a - p)
  // and then p += mu·(a - p), where a is the mean of the neighbours met along the sides of
  // the live faces (an interior edge counts from both of its faces). The inflating step,
  // a little stronger than the shrinking one (mu < -lambda < 0), gives back the size a
  // plain Laplacian step takes, so noise goes and the shape stays. Unless smoothBorder,
  // the vertices of border edges stay put. Afterwards the boxes, normals and spatial
  // indexes are dropped, as after the Laplacian; meshes that store their normals
  // recompute them. cb (may be null) gets 0 first, the share of steps done, and 100 last.
  virtual void taubinSmoothing(unsigned int iterations, float lambda = 0.5f, float mu = -0.53f,
                               bool smoothBorder = false, SYSTEM::callBack* cb = nullptr);
};

}  // namespace MESH
}  // namespace JEV
