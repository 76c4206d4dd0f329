#pragma once

#include <string>
#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
class editMesh;
namespace ALGO {
namespace REMESHING {

// Inserts a closed polyline into a mesh and cuts the mesh in two along it: the engine of
// trimming a mesh along a curve drawn on it.
//
// Each control point is placed at its closest point on the surface; consecutive points are
// joined across the faces between them by the section of the surface with the plane
// through both points that holds the mean of their face normals. The faces the curve
// crosses are cut along it and triangulated; faces it does not touch keep their polygons.
// The vertices of the curve are then doubled, so the faces on the two sides form separate
// pieces whose borders lie on the same positions. The faces on the curve's left (seen from
// outside, along the face normals) are selected.
//
// exec fails, leaving the mesh as it was, with fewer than 3 distinct points, a point
// farther from the surface than maxDistance, a curve that leaves the surface over a border
// edge, crosses itself, lies inside one face or does not separate the mesh. getError then
// says why.
class splitMeshModifier {
 public:
  // Stage marks and the time taken, on standard output.
  bool verbose = false;
  // A folder for the meshes before and after the final split, as OBJ and PLY; empty for
  // none.
  std::string debugPath;
  // The farthest a control point may lie from the surface; negative means 1% of the
  // diagonal of the mesh's bounding box.
  float maxDistance = -1.f;

  // Needs live faces of at least three corners with their edges shared by at most two.
  // Edges, VE and normals are rebuilt; deleted elements are squeezed out, face ids change,
  // vertices keep their records (colours) and the selection becomes the left side.
  bool exec(editMesh& mesh, const std::vector<MATH::point3<float>>& polyline,
            SYSTEM::callBack* cb = nullptr);

  // Why the last exec failed; empty after a success.
  const std::string& getError() const { return error; }
  // After a success, the curve as vertices of the selected side and of the other, in the
  // curve's order, first vertex not repeated; entry i of both lies at the same position.
  const std::vector<unsigned int>& getCutLoop(unsigned int side) const {
    return side == 0 ? leftLoop : rightLoop;
  }

 private:
  std::string error;
  std::vector<unsigned int> leftLoop, rightLoop;
};

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
