#include "jev3d/algo/remeshing/voxelizationFunctor.h"

#include <algorithm>
#include <cmath>

#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {

namespace {

using p3d = MATH::point3<double>;
constexpr unsigned int MAX_RESOLUTION = 2048;

bool finite(const MATH::point3<float>& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

// Whether the triangle (a, b, c) meets the box centred on the origin with half size h,
// by separating axes: the box's three, the triangle's normal, and the nine cross
// products of box axes and triangle sides.
bool triangleMeetsBox(const p3d& a, const p3d& b, const p3d& c, double h) {
  const p3d v[3] = {a, b, c};
  for (int axis = 0; axis < 3; ++axis) {
    const double lo = std::min({a[axis], b[axis], c[axis]});
    const double hi = std::max({a[axis], b[axis], c[axis]});
    if (lo > h || hi < -h) return false;
  }
  const p3d side[3] = {b - a, c - b, a - c};
  const p3d normal = p3d::cross(side[0], side[1]);
  const double reach = h * (std::fabs(normal.x) + std::fabs(normal.y) + std::fabs(normal.z));
  if (std::fabs(normal * a) > reach) return false;
  for (int axis = 0; axis < 3; ++axis)
    for (const p3d& s : side) {
      p3d e;
      e[axis] = 1.0;
      const p3d l = p3d::cross(e, s);
      const double p0 = l * v[0], p1 = l * v[1], p2 = l * v[2];
      const double r = h * (std::fabs(l.x) + std::fabs(l.y) + std::fabs(l.z));
      if (std::min({p0, p1, p2}) > r || std::max({p0, p1, p2}) < -r) return false;
    }
  return true;
}

// Marks the surface voxels, then floods the outside from the border of the grid.
bool fill(const std::vector<MATH::point3<float>>& positions, const std::vector<int>& triangles,
          volumeDescriptor& vol, SYSTEM::callBack* cb) {
  const size_t n = positions.size();
  bool any = false;
  const size_t count = triangles.size() / 3;
  for (size_t t = 0; t < count; ++t) {
    const int ia = triangles[3 * t], ib = triangles[3 * t + 1], ic = triangles[3 * t + 2];
    if (ia < 0 || ib < 0 || ic < 0 || size_t(ia) >= n || size_t(ib) >= n || size_t(ic) >= n)
      continue;
    const MATH::point3<float>&pa = positions[size_t(ia)], &pb = positions[size_t(ib)],
          &pc = positions[size_t(ic)];
    if (!finite(pa) || !finite(pb) || !finite(pc)) continue;
    // In voxel coordinates, where voxel (i, j, k) is the unit cube around (i, j, k).
    const p3d a = vol.cvt(pa), b = vol.cvt(pb), c = vol.cvt(pc);
    uint64_t lo[3], hi[3];
    vol.clamp(p3d(std::min({a.x, b.x, c.x}), std::min({a.y, b.y, c.y}), std::min({a.z, b.z, c.z})),
              lo[0], lo[1], lo[2]);
    vol.clamp(p3d(std::max({a.x, b.x, c.x}), std::max({a.y, b.y, c.y}), std::max({a.z, b.z, c.z})),
              hi[0], hi[1], hi[2]);
    for (uint64_t k = lo[2]; k <= hi[2]; ++k)
      for (uint64_t j = lo[1]; j <= hi[1]; ++j)
        for (uint64_t i = lo[0]; i <= hi[0]; ++i) {
          const p3d centre{double(i), double(j), double(k)};
          // A hair over half a voxel, so that a triangle on a voxel face marks both sides.
          if (triangleMeetsBox(a - centre, b - centre, c - centre, 0.5 + 1e-9)) {
            vol.at(i, j, k) = VOXEL_ON_SURFACE;
            any = true;
          }
        }
    if (cb && (t & 0xFFFF) == 0) cb->setValue(1.f + 60.f * float(t) / float(count));
  }
  if (!any) return false;
  // Flood from every border voxel that is not surface.
  std::vector<uint64_t> stack;
  const uint64_t dx = vol.dimX, dy = vol.dimY, dz = vol.dimZ;
  auto push = [&](uint64_t i, uint64_t j, uint64_t k) {
    unsigned char& v = vol.at(i, j, k);
    if (v != 0) return;
    v = VOXEL_OUTSIDE;
    stack.push_back((dy * k + j) * dx + i);
  };
  for (uint64_t k = 0; k < dz; ++k)
    for (uint64_t j = 0; j < dy; ++j)
      for (uint64_t i = 0; i < dx; ++i)
        if (i == 0 || j == 0 || k == 0 || i == dx - 1 || j == dy - 1 || k == dz - 1) push(i, j, k);
  while (!stack.empty()) {
    const uint64_t index = stack.back();
    stack.pop_back();
    const uint64_t i = index % dx, j = (index / dx) % dy, k = index / (dx * dy);
    if (i > 0) push(i - 1, j, k);
    if (i + 1 < dx) push(i + 1, j, k);
    if (j > 0) push(i, j - 1, k);
    if (j + 1 < dy) push(i, j + 1, k);
    if (k > 0) push(i, j, k - 1);
    if (k + 1 < dz) push(i, j, k + 1);
  }
  for (uint64_t x = 0; x < vol.voxelCount(); ++x)
    if (vol.voxels[x] == 0) vol.voxels[x] = VOXEL_INSIDE;
  return true;
}

bool voxelize(const std::vector<MATH::point3<float>>& positions, const std::vector<int>& triangles,
              const volumeDescriptor& frame, volumeDescriptor& vol, SYSTEM::callBack* cb) {
  if (cb) cb->setValue(1.f);
  const uint64_t x = frame.dimX, y = frame.dimY, z = frame.dimZ;
  const p3d corner = frame.minimum;
  const double scale = frame.scale;
  const bool ok = vol.allocate(x, y, z, corner, scale) && fill(positions, triangles, vol, cb);
  if (!ok) vol.clear();
  if (cb) cb->setValue(100.f);
  return ok;
}

bool voxelize(const std::vector<MATH::point3<float>>& positions, const std::vector<int>& triangles,
              unsigned int resolution, volumeDescriptor& vol, SYSTEM::callBack* cb) {
  vol.clear();
  if (resolution == 0 || resolution > MAX_RESOLUTION) return false;
  p3d lo(1e300, 1e300, 1e300), hi(-1e300, -1e300, -1e300);
  const size_t n = positions.size();
  for (size_t t = 0; t + 2 < triangles.size(); t += 3) {
    bool usable = true;
    for (size_t c = 0; c < 3; ++c)
      usable = usable && triangles[t + c] >= 0 && size_t(triangles[t + c]) < n &&
               finite(positions[size_t(triangles[t + c])]);
    if (!usable) continue;
    for (size_t c = 0; c < 3; ++c) {
      const MATH::point3<float>& p = positions[size_t(triangles[t + c])];
      for (int a = 0; a < 3; ++a)
        lo[a] = std::min(lo[a], double(p[a])), hi[a] = std::max(hi[a], double(p[a]));
    }
  }
  if (!(lo.x <= hi.x)) return false;
  const double longest = std::max({hi.x - lo.x, hi.y - lo.y, hi.z - lo.z});
  const double scale = longest > 0.0 ? longest / double(resolution) : 1.0;
  if (!(scale > 0.0) || !std::isfinite(scale)) return false;
  volumeDescriptor frame;
  return frame.frameBox(lo, hi, scale) && voxelize(positions, triangles, frame, vol, cb);
}

std::vector<MATH::point3<float>> unflatten(const std::vector<float>& flat) {
  std::vector<MATH::point3<float>> out(flat.size() / 3);
  for (size_t i = 0; i < out.size(); ++i) out[i] = MATH::point3<float>(&flat[3 * i]);
  return out;
}

// Calls take(box, inside) for each inside and surface voxel.
template <class F>
void eachFilledVoxel(const volumeDescriptor& vol, F take) {
  const double h = 0.5 * vol.scale;
  for (uint64_t k = 0; k < vol.dimZ; ++k)
    for (uint64_t j = 0; j < vol.dimY; ++j)
      for (uint64_t i = 0; i < vol.dimX; ++i) {
        const unsigned char v = vol.at(i, j, k);
        if (v != VOXEL_INSIDE && v != VOXEL_ON_SURFACE) continue;
        const p3d c = vol.getVoxelCenter(i, j, k);
        const MATH::axisAlignedBox3<float> box(
            MATH::point3<float>(float(c.x - h), float(c.y - h), float(c.z - h)),
            MATH::point3<float>(float(c.x + h), float(c.y + h), float(c.z + h)));
        take(box, v == VOXEL_INSIDE);
      }
}

}  // namespace

bool voxelizationFunctor::operator()(const std::vector<MATH::point3<float>>& positions,
                                     const std::vector<int>& triangles,
                                     const volumeDescriptor& frame, volumeDescriptor& volume,
                                     SYSTEM::callBack* cb) const {
  if (&frame == &volume) {  // the frame is read after the volume is reset
    const volumeDescriptor copy(frame);
    return voxelize(positions, triangles, copy, volume, cb);
  }
  return voxelize(positions, triangles, frame, volume, cb);
}

bool voxelizationFunctor::operator()(const std::vector<MATH::point3<float>>& positions,
                                     const std::vector<int>& triangles, unsigned int resolution,
                                     volumeDescriptor& volume, SYSTEM::callBack* cb) const {
  return voxelize(positions, triangles, resolution, volume, cb);
}

bool voxelizationFunctor::operator()(const std::vector<float>& positions,
                                     const std::vector<int>& triangles,
                                     const volumeDescriptor& frame, volumeDescriptor& volume,
                                     SYSTEM::callBack* cb) const {
  return (*this)(unflatten(positions), triangles, frame, volume, cb);
}

bool voxelizationFunctor::operator()(const std::vector<float>& positions,
                                     const std::vector<int>& triangles, unsigned int resolution,
                                     volumeDescriptor& volume, SYSTEM::callBack* cb) const {
  return voxelize(unflatten(positions), triangles, resolution, volume, cb);
}

bool voxelizationFunctor::operator()(const std::vector<MATH::point3<float>>& positions,
                                     const std::vector<int>& triangles, unsigned int resolution,
                                     std::vector<MATH::axisAlignedBox3<float>>& insideBoxes,
                                     std::vector<MATH::axisAlignedBox3<float>>& surfaceBoxes,
                                     volumeDescriptor& volume, SYSTEM::callBack* cb) const {
  insideBoxes.clear();
  surfaceBoxes.clear();
  if (!voxelize(positions, triangles, resolution, volume, cb)) return false;
  eachFilledVoxel(volume, [&](const MATH::axisAlignedBox3<float>& box, bool inside) {
    (inside ? insideBoxes : surfaceBoxes).push_back(box);
  });
  return true;
}

bool voxelizationFunctor::operator()(const std::vector<MATH::point3<float>>& positions,
                                     const std::vector<int>& triangles, unsigned int resolution,
                                     std::vector<MATH::sphere3<float>>& insideSpheres,
                                     std::vector<MATH::sphere3<float>>& surfaceSpheres,
                                     volumeDescriptor& volume, SYSTEM::callBack* cb) const {
  insideSpheres.clear();
  surfaceSpheres.clear();
  if (!voxelize(positions, triangles, resolution, volume, cb)) return false;
  eachFilledVoxel(volume, [&](const MATH::axisAlignedBox3<float>& box, bool inside) {
    const MATH::sphere3<float> s(box.center(), 0.5f * box.diagonal());
    (inside ? insideSpheres : surfaceSpheres).push_back(s);
  });
  return true;
}

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
