#include "jev3d/editing/manipulator/manipulatorCube.h"

#include <cmath>

#include "jev3d/editing/manipulator/internal/shapeMesh.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

using p3 = MATH::point3<float>;

manipulatorCube::manipulatorCube(const p3& c, float h)
    : manipulatorCube(c, p3(h, 0, 0), p3(0, h, 0), p3(0, 0, h)) {}

manipulatorCube::manipulatorCube(const p3& c, const p3& u, const p3& v, const p3& w) {
  build(c, u, v, w);
}

void manipulatorCube::build(const p3& c, const p3& u, const p3& v, const p3& w) {
  centre = c;
  beginShape();
  INTERNAL::appendBox(getEditMesh(), c, u, v, w);
  endShape();
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
