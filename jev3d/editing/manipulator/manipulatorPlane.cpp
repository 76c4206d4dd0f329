#include "jev3d/editing/manipulator/manipulatorPlane.h"

#include <cmath>

#include "jev3d/editing/manipulator/internal/shapeMesh.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

using p3 = MATH::point3<float>;

manipulatorPlane::manipulatorPlane(const p3& c, const p3& du, const p3& dv) { build(c, du, dv); }

void manipulatorPlane::build(const p3& c, const p3& du, const p3& dv) {
  centre = c;
  u = du;
  v = dv;
  beginShape();
  INTERNAL::appendQuad(getEditMesh(), c - u - v, c + u - v, c + u + v, c - u + v, true);
  endShape();
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
