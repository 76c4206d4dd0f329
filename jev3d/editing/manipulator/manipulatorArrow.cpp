#include "jev3d/editing/manipulator/manipulatorArrow.h"

#include <cmath>

#include "jev3d/editing/manipulator/internal/shapeMesh.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

using p3 = MATH::point3<float>;

manipulatorArrow::manipulatorArrow(const p3& s, const p3& e, float r) { build(s, e, r); }

void manipulatorArrow::build(const p3& s, const p3& e, float r) {
  start = s;
  end = e;
  radius = r;
  const float length = (e - s).norm();
  const float neck = length * 0.75f;
  beginShape();
  INTERNAL::appendRevolved(getEditMesh(), s, e - s,
                           {{0.f, 0.f}, {r, 0.f}, {r, neck}, {r * 2.5f, neck}, {0.f, length}}, 12);
  endShape();
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
