#pragma once

#include <cstdint>
#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
class editMesh;
namespace EDITING {
class editMeshNode;
}
namespace ALGO {
namespace REMESHING {

// What the voxeliser wrote in a voxel; a fresh voxel holds 0, none of these.
enum VOXEL_VALUE : unsigned char {
  VOXEL_OUTSIDE = 1,
  VOXEL_INSIDE = 2,
  VOXEL_ON_SURFACE = 3,
};

// A regular grid of voxel values: dimX·dimY·dimZ bytes, x fastest, voxel (i, j, k) at
// ((dimY·k) + j)·dimX + i. Voxel (i, j, k) is the cube of edge `scale` centred on
// minimum + (i, j, k)·scale. A value type: copies duplicate the array.
class volumeDescriptor {
 public:
  uint64_t dimX = 0, dimY = 0, dimZ = 0;
  unsigned char* voxels = nullptr;
  MATH::point3<double> minimum;
  double scale = 1.0;

  volumeDescriptor() = default;
  volumeDescriptor(const volumeDescriptor& o);
  volumeDescriptor& operator=(const volumeDescriptor& o);
  ~volumeDescriptor() { clear(); }

  // Frees the array and zeroes the dimensions. Then allocates a grid of fresh voxels;
  // false, leaving the descriptor empty, for a zero or too large dimension or a scale
  // that is not positive and finite.
  bool allocate(uint64_t x, uint64_t y, uint64_t z, const MATH::point3<double>& corner, double s);
  // Frees the array and sets the frame of a grid of voxel edge s whose centres run from
  // one voxel before lo to one voxel after hi, so a surface inside [lo, hi] has outside
  // voxels all round. The voxels are not allocated. False for a box that is empty or not
  // finite, or a scale that is not positive and finite, or a grid past 2^34 voxels.
  bool frameBox(const MATH::point3<double>& lo, const MATH::point3<double>& hi, double s);
  // The boundary of the voxels holding VOXEL_INSIDE (and VOXEL_ON_SURFACE with
  // withSurface) as quads, four a face of a filled voxel that does not touch another,
  // wound outward; mesh is replaced and finished (edges, VE, normals).
  void toMesh(editMesh& mesh, bool withSurface) const;
  // No grid held.
  bool isEmpty() const { return voxels == nullptr || dimX == 0 || dimY == 0 || dimZ == 0; }
  // A grid with a usable scale.
  bool isValid() const { return !isEmpty() && scale > 0.0 && scale < 1e300; }
  void clear();
  uint64_t voxelCount() const { return dimX * dimY * dimZ; }

  // World point to voxel coordinates: voxel centres fall on whole numbers.
  MATH::point3<double> cvt(const MATH::point3<double>& p) const;
  MATH::point3<double> cvt(const MATH::point3<float>& p) const;
  // Voxel coordinates rounded (+0.5, truncated) into the grid; outside parts clamp to the
  // first or last voxel.
  void clamp(const MATH::point3<double>& c, uint64_t& i, uint64_t& j, uint64_t& k) const;
  // Voxel coordinates rounded as clamp does; false when a coordinate falls outside the
  // grid (rounded to the dimension or more, or below -0.5, which would wrap).
  bool getVoxelIndex(const MATH::point3<double>& c, uint64_t& i, uint64_t& j, uint64_t& k) const;
  // The same giving the array index.
  bool getVoxelIndex(const MATH::point3<double>& c, uint64_t& index) const;
  // Centre of voxel (i, j, k) in world space.
  MATH::point3<double> getVoxelCenter(uint64_t i, uint64_t j, uint64_t k) const;
  unsigned char& at(uint64_t i, uint64_t j, uint64_t k) {
    return voxels[(dimY * k + j) * dimX + i];
  }
  unsigned char at(uint64_t i, uint64_t j, uint64_t k) const {
    return voxels[(dimY * k + j) * dimX + i];
  }

  // The value of the voxel holding the world point, VOXEL_OUTSIDE outside the grid.
  unsigned char vertexToVoxel(const MATH::point3<float>& p) const;
  // VOXEL_INSIDE; false outside the grid.
  bool isVertInside(const MATH::point3<float>& p) const { return vertexToVoxel(p) == VOXEL_INSIDE; }
  // VOXEL_ON_SURFACE; false outside the grid.
  bool isVertOnSurface(const MATH::point3<float>& p) const {
    return vertexToVoxel(p) == VOXEL_ON_SURFACE;
  }
  // VOXEL_OUTSIDE; true outside the grid.
  bool isVertOutside(const MATH::point3<float>& p) const {
    return vertexToVoxel(p) == VOXEL_OUTSIDE;
  }
  // One byte per point (or per vertex of the mesh, deleted ones 0): 1 where its voxel is
  // inside or on the surface.
  void isPointInside(const std::vector<MATH::point3<float>>& points,
                     std::vector<unsigned char>& inside) const;
  void isPointInside(const editMesh& mesh, std::vector<unsigned char>& inside) const;
  // The same for an editable node's mesh (in the jev3d library, beside the node).
  void isPointInside(const EDITING::editMeshNode& node, std::vector<unsigned char>& inside) const;
};

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
