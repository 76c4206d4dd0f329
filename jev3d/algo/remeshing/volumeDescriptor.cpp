#include "jev3d/algo/remeshing/volumeDescriptor.h"

#include <cmath>
#include <cstring>
#include <new>

#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {

namespace {
// A grid beyond this many voxels (16 GiB) is refused rather than attempted.
constexpr uint64_t MAX_VOXELS = uint64_t(1) << 34;
}  // namespace

volumeDescriptor::volumeDescriptor(const volumeDescriptor& o) { *this = o; }

volumeDescriptor& volumeDescriptor::operator=(const volumeDescriptor& o) {
  if (this == &o) return *this;
  clear();
  minimum = o.minimum;
  scale = o.scale;
  if (o.isEmpty()) return *this;
  voxels = new unsigned char[o.voxelCount()];
  std::memcpy(voxels, o.voxels, o.voxelCount());
  dimX = o.dimX, dimY = o.dimY, dimZ = o.dimZ;
  return *this;
}

bool volumeDescriptor::allocate(uint64_t x, uint64_t y, uint64_t z,
                                const MATH::point3<double>& corner, double s) {
  clear();
  if (x == 0 || y == 0 || z == 0 || !(s > 0.0) || !std::isfinite(s)) return false;
  // Checked one factor at a time so the product cannot wrap.
  if (x > MAX_VOXELS || y > MAX_VOXELS / x || z > MAX_VOXELS / (x * y)) return false;
  voxels = new (std::nothrow) unsigned char[x * y * z];
  if (!voxels) return false;
  std::memset(voxels, 0, x * y * z);
  dimX = x, dimY = y, dimZ = z;
  minimum = corner;
  scale = s;
  return true;
}

void volumeDescriptor::clear() {
  delete[] voxels;
  voxels = nullptr;
  dimX = dimY = dimZ = 0;
}

MATH::point3<double> volumeDescriptor::cvt(const MATH::point3<double>& p) const {
  return MATH::point3<double>((p.x - minimum.x) / scale, (p.y - minimum.y) / scale,
                              (p.z - minimum.z) / scale);
}

MATH::point3<double> volumeDescriptor::cvt(const MATH::point3<float>& p) const {
  return cvt(MATH::point3<double>(p.x, p.y, p.z));
}

namespace {
// c + 0.5 truncated, clamped to [0, dim - 1]; NaN goes to 0. The float to integer
// conversion is only done on values known to fit.
uint64_t clampedRound(double c, uint64_t dim) {
  const double r = c + 0.5;
  if (!(r >= 1.0)) return 0;
  if (r >= double(dim)) return dim - 1;
  return uint64_t(r);
}

bool roundInto(double c, uint64_t dim, uint64_t& out) {
  const double r = c + 0.5;
  if (!(r >= 0.0) || r >= double(dim)) return false;
  out = uint64_t(r);
  return out < dim;
}
}  // namespace

void volumeDescriptor::clamp(const MATH::point3<double>& c, uint64_t& i, uint64_t& j,
                             uint64_t& k) const {
  i = dimX ? clampedRound(c.x, dimX) : 0;
  j = dimY ? clampedRound(c.y, dimY) : 0;
  k = dimZ ? clampedRound(c.z, dimZ) : 0;
}

bool volumeDescriptor::getVoxelIndex(const MATH::point3<double>& c, uint64_t& i, uint64_t& j,
                                     uint64_t& k) const {
  return roundInto(c.x, dimX, i) && roundInto(c.y, dimY, j) && roundInto(c.z, dimZ, k);
}

bool volumeDescriptor::getVoxelIndex(const MATH::point3<double>& c, uint64_t& index) const {
  uint64_t i, j, k;
  if (!getVoxelIndex(c, i, j, k)) return false;
  index = (dimY * k + j) * dimX + i;
  return true;
}

MATH::point3<double> volumeDescriptor::getVoxelCenter(uint64_t i, uint64_t j, uint64_t k) const {
  return MATH::point3<double>(minimum.x + double(i) * scale, minimum.y + double(j) * scale,
                              minimum.z + double(k) * scale);
}

unsigned char volumeDescriptor::vertexToVoxel(const MATH::point3<float>& p) const {
  uint64_t index;
  if (isEmpty() || !getVoxelIndex(cvt(p), index)) return VOXEL_OUTSIDE;
  return voxels[index];
}

void volumeDescriptor::isPointInside(const std::vector<MATH::point3<float>>& points,
                                     std::vector<unsigned char>& inside) const {
  inside.assign(points.size(), 0);
  for (size_t n = 0; n < points.size(); ++n) {
    const unsigned char v = vertexToVoxel(points[n]);
    inside[n] = v == VOXEL_INSIDE || v == VOXEL_ON_SURFACE;
  }
}

void volumeDescriptor::isPointInside(const editMesh& mesh,
                                     std::vector<unsigned char>& inside) const {
  inside.assign(mesh.vn(), 0);
  for (unsigned int v = 0; v < mesh.vn(); ++v) {
    if (mesh.isVertDeleted(v)) continue;
    const unsigned char c = vertexToVoxel(mesh.vPos(v));
    inside[v] = c == VOXEL_INSIDE || c == VOXEL_ON_SURFACE;
  }
}

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
