#include "jev3d/algo/remeshing/volumeDescriptor.h"

#include <cmath>
#include <cstring>
#include <new>
#include <unordered_map>

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

bool volumeDescriptor::frameBox(const MATH::point3<double>& lo, const MATH::point3<double>& hi,
                                double s) {
  clear();
  if (!(s > 0.0) || !std::isfinite(s)) return false;
  double cells[3];
  for (int a = 0; a < 3; ++a) {
    if (!(lo[a] <= hi[a]) || !std::isfinite(lo[a]) || !std::isfinite(hi[a])) return false;
    cells[a] = std::ceil((hi[a] - lo[a]) / s) + 3.0;
    if (!(cells[a] <= double(MAX_VOXELS))) return false;
  }
  const uint64_t x = uint64_t(cells[0]), y = uint64_t(cells[1]), z = uint64_t(cells[2]);
  if (y > MAX_VOXELS / x || z > MAX_VOXELS / (x * y)) return false;
  minimum = lo - MATH::point3<double>(s, s, s);
  scale = s;
  dimX = x, dimY = y, dimZ = z;
  return true;
}

void volumeDescriptor::toMesh(editMesh& mesh, bool withSurface) const {
  mesh.clear(false);
  if (isEmpty()) return;
  auto filled = [&](int64_t i, int64_t j, int64_t k) {
    if (i < 0 || j < 0 || k < 0 || uint64_t(i) >= dimX || uint64_t(j) >= dimY ||
        uint64_t(k) >= dimZ)
      return false;
    const unsigned char v = at(uint64_t(i), uint64_t(j), uint64_t(k));
    return v == VOXEL_INSIDE || (withSurface && v == VOXEL_ON_SURFACE);
  };
  // Voxel corners are shared: corner (i, j, k) lies half a voxel below centre (i, j, k).
  std::unordered_map<uint64_t, unsigned int> corners;
  const uint64_t cx = dimX + 1, cy = dimY + 1;
  auto corner = [&](uint64_t i, uint64_t j, uint64_t k) {
    const uint64_t key = (k * cy + j) * cx + i;
    auto it = corners.find(key);
    if (it != corners.end()) return it->second;
    const MATH::point3<double> p =
        getVoxelCenter(i, j, k) - MATH::point3<double>(0.5, 0.5, 0.5) * scale;
    const unsigned int id = mesh.addVertex(float(p.x), float(p.y), float(p.z));
    corners.emplace(key, id);
    return id;
  };
  // For each axis, the face on the low and on the high side, corners wound outward.
  static const int quad[6][4][3] = {
      {{0, 0, 0}, {0, 0, 1}, {0, 1, 1}, {0, 1, 0}}, {{1, 0, 0}, {1, 1, 0}, {1, 1, 1}, {1, 0, 1}},
      {{0, 0, 0}, {1, 0, 0}, {1, 0, 1}, {0, 0, 1}}, {{0, 1, 0}, {0, 1, 1}, {1, 1, 1}, {1, 1, 0}},
      {{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}}, {{0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}}};
  static const int step[6][3] = {{-1, 0, 0}, {1, 0, 0},  {0, -1, 0},
                                 {0, 1, 0},  {0, 0, -1}, {0, 0, 1}};
  for (uint64_t k = 0; k < dimZ; ++k)
    for (uint64_t j = 0; j < dimY; ++j)
      for (uint64_t i = 0; i < dimX; ++i) {
        if (!filled(int64_t(i), int64_t(j), int64_t(k))) continue;
        for (int f = 0; f < 6; ++f) {
          if (filled(int64_t(i) + step[f][0], int64_t(j) + step[f][1], int64_t(k) + step[f][2]))
            continue;
          unsigned int q[4];
          for (int c = 0; c < 4; ++c)
            q[c] = corner(i + uint64_t(quad[f][c][0]), j + uint64_t(quad[f][c][1]),
                          k + uint64_t(quad[f][c][2]));
          mesh.addQuadFace(q[0], q[1], q[2], q[3]);
        }
      }
  mesh.checkMeshState();
  mesh.computeEdges(true);
  mesh.computeVE();
  mesh.computeNormalizedFaceNormals();
  mesh.computeNormalizedVertexNormals();
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
