#include "jev3d/editing/manipulator/manipulatorLine.h"

#include <cmath>

#include "jev3d/editing/manipulator/internal/shapeMesh.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

using p3 = MATH::point3<float>;

manipulatorLine::manipulatorLine(const p3& s, const p3& e, float r) { build(s, e, r); }

void manipulatorLine::build(const p3& s, const p3& e, float r) {
  start = s;
  end = e;
  const float length = (e - s).norm();
  beginShape();
  INTERNAL::appendRevolved(getEditMesh(), s, e - s,
                           {{0.f, 0.f}, {r, 0.f}, {r, length}, {0.f, length}}, 8);
  endShape();
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
