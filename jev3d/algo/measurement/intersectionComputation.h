#pragma once

#include <vector>

#include "jev3d/algo/measurement/closestPointTransform.h"
#include "jev3d/algo/measurement/intersectionDescriptor.h"
#include "jev3d/algo/remeshing/volumeDescriptor.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/math/point3.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
class meshInterface;
namespace ALGO {
namespace MEASUREMENT {
namespace VOXEL {

// One model made ready for voxel tests, in its own frame: its surface as a triangle soup,
// the voxel volume, the closest-point transform over the volume's grid and the signed
// distance field (negative inside). Computed once, it serves every placement.
struct voxelModel {
  std::vector<MATH::point3<float>> points;
  std::vector<unsigned int> sourceVertex;  // the mesh's vertex id of each point
  std::vector<int> triangles;
  std::vector<unsigned int> sourceFace;  // the mesh's face id of each triangle
  REMESHING::volumeDescriptor volume;
  closestPointTransform cpt;
  std::vector<float> sdf;

  bool isEmpty() const { return cpt.isEmpty(); }
  void clear();
};

// The voxel workers of the measurement: a model to volume, closest-point transform and
// signed field, and two placed models tested against each other.
class intersectionComputation {
 public:
  // The live faces of a mesh as triangles (polygons as fans from corner 0) over the
  // vertices they use, renumbered in order. Faces on deleted or missing vertices are left
  // out. sourceVertex and sourceFace, when given, receive the mesh's vertex id of each
  // point and face id of each triangle.
  static void editMeshToPointTri(const meshInterface& mesh,
                                 std::vector<MATH::point3<float>>& points,
                                 std::vector<int>& triangles,
                                 std::vector<unsigned int>* sourceVertex = nullptr,
                                 std::vector<unsigned int>* sourceFace = nullptr);
  // Voxelises the soup with `resolution` voxels along its longest side.
  static bool convertToVolume(const std::vector<MATH::point3<float>>& points,
                              const std::vector<int>& triangles, unsigned int resolution,
                              REMESHING::volumeDescriptor& volume, SYSTEM::callBack* cb = nullptr);

  // Fills the closest-point transform over the grid of `frame`. Voxels within `band`
  // voxel edges of the surface get their exact closest point from the triangles around
  // them; the rest receive it from their neighbours, nearest first, each voxel trying the
  // triangles its neighbours found. False, with cpt emptied, for an empty frame or soup.
  static bool computeClosestPointTransform(const std::vector<MATH::point3<float>>& points,
                                           const std::vector<int>& triangles,
                                           const REMESHING::volumeDescriptor& frame,
                                           closestPointTransform& cpt, float band = 2.0f,
                                           SYSTEM::callBack* cb = nullptr);
  static bool convertToCPT(const std::vector<MATH::point3<float>>& points,
                           const std::vector<int>& triangles,
                           const REMESHING::volumeDescriptor& volume, closestPointTransform& cpt,
                           SYSTEM::callBack* cb = nullptr);
  static bool convertToCPT(voxelModel& model, SYSTEM::callBack* cb = nullptr);
  // The signed distance field of a volume from its transform: negative in inside voxels,
  // and in surface voxels whose centre lies behind the closest triangle.
  static bool convertToSDF(const std::vector<MATH::point3<float>>& points,
                           const std::vector<int>& triangles,
                           const REMESHING::volumeDescriptor& volume,
                           const closestPointTransform& cpt, std::vector<float>& sdf);
  static bool convertToSDF(voxelModel& model);

  // The whole preparation of one mesh: flatten, voxelise, transform, signed field. False,
  // with the model cleared, for a mesh without faces.
  static bool prepare(const meshInterface& mesh, unsigned int resolution, voxelModel& model,
                      SYSTEM::callBack* cb = nullptr);

  // Signed distance of p (in the model's frame) to the model's surface: exact to the
  // triangles the transform names around p's voxel, negative inside. MAX_T outside the
  // grid.
  static float signedDistance(const voxelModel& model, const MATH::point3<float>& p);

  // Places a by ma and b by mb (row vectors, p·m) and measures the vertices of each
  // against the other into the descriptor. False when either model is empty.
  static bool compute(const voxelModel& a, const MATH::matrix4<float>& ma, const voxelModel& b,
                      const MATH::matrix4<float>& mb, intersectionDescriptor& result,
                      SYSTEM::callBack* cb = nullptr);
};

}  // namespace VOXEL
}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
