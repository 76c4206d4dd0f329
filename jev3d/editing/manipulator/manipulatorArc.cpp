#include "jev3d/editing/manipulator/manipulatorArc.h"

#include <cmath>

#include "jev3d/editing/manipulator/internal/shapeMesh.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

using p3 = MATH::point3<float>;

manipulatorArc::manipulatorArc(const p3& c, const p3& n, float r, float tube, float sweep) {
  build(c, n, r, tube, sweep);
}

void manipulatorArc::build(const p3& c, const p3& n, float r, float tube, float sweep) {
  centre = c;
  normal = n.getNormalized();
  radius = r;
  beginShape();
  INTERNAL::appendTorus(getEditMesh(), c, normal, r, tube, sweep, 48, 6);
  endShape();
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
