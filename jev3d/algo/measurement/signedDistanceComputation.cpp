#include "jev3d/algo/measurement/signedDistanceComputation.h"

#include "jev3d/algo/measurement/internal/triangleSoup.h"
#include "jev3d/math/mathBase.h"
#include "jev3d/mesh/meshInterface.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace MEASUREMENT {

using MATH::point3;

namespace {

constexpr float MAX_T = MATH::mathBase<float>::MAX_T();

// The voxel of p, the nearest one when p lies outside the grid; false for outside.
bool voxelOf(const REMESHING::volumeDescriptor& volume, const point3<float>& p, uint64_t& i,
             uint64_t& j, uint64_t& k) {
  const MATH::point3<double> c = volume.cvt(p);
  if (volume.getVoxelIndex(c, i, j, k)) return true;
  volume.clamp(c, i, j, k);
  return false;
}

}  // namespace

bool signedDistanceComputation::compute(const VOXEL::voxelModel& model,
                                        const MATH::matrix4<float>& modelTransform,
                                        const meshInterface& mesh,
                                        const MATH::matrix4<float>& meshTransform,
                                        std::vector<float>& distances,
                                        std::vector<point3<float>>& closest,
                                        std::vector<unsigned int>& faces) {
  distances.assign(mesh.vn(), MAX_T);
  closest.assign(mesh.vn(), point3<float>(MAX_T, MAX_T, MAX_T));
  faces.assign(mesh.vn(), 0xFFFFFFFFu);
  if (model.isEmpty()) return false;
  const INTERNAL::triangleFans fans(model.points.size(), model.triangles);
  // Row vectors: out of the mesh's placement, into the inverse of the model's.
  const MATH::matrix4<float> relative = meshTransform * modelTransform.getInverse();
  for (unsigned int v = 0; v < mesh.vn(); ++v) {
    if (mesh.isVertDeleted(v)) continue;
    const point3<float> p = mesh.vPos(v) * relative;
    uint64_t i, j, k;
    const bool inGrid = voxelOf(model.volume, p, i, j, k);
    const unsigned int start = model.cpt.triangles[model.cpt.index(i, j, k)];
    if (start == VOXEL::closestPointTransform::NO_TRIANGLE) continue;
    point3<float> q;
    float d;
    const unsigned int t =
        INTERNAL::walkToNearest(model.points, model.triangles, fans, start, p, q, d);
    bool inside = false;
    if (inGrid) {
      const unsigned char value = model.volume.at(i, j, k);
      inside = value == REMESHING::VOXEL_INSIDE ||
               (value == REMESHING::VOXEL_ON_SURFACE &&
                (p - q) * INTERNAL::triangleNormal(model.points, model.triangles, t) < 0.0f);
    }
    distances[v] = inside && d > 0.0f ? -d : d;
    closest[v] = q * modelTransform;
    faces[v] = t < model.sourceFace.size() ? model.sourceFace[t] : t;
  }
  return true;
}

bool signedDistanceComputation::compute(const VOXEL::voxelModel& model,
                                        const MATH::matrix4<float>& modelTransform,
                                        const meshInterface& mesh,
                                        const MATH::matrix4<float>& meshTransform,
                                        std::vector<float>& distances) {
  std::vector<point3<float>> closest;
  std::vector<unsigned int> faces;
  return compute(model, modelTransform, mesh, meshTransform, distances, closest, faces);
}

bool signedDistanceComputation::compute(const VOXEL::voxelModel& model, const meshInterface& mesh,
                                        std::vector<float>& distances) {
  return compute(model, MATH::matrix4<float>::IDENTITY(), mesh, MATH::matrix4<float>::IDENTITY(),
                 distances);
}

}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
