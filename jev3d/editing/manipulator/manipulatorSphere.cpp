#include "jev3d/editing/manipulator/manipulatorSphere.h"

#include <cmath>

#include "jev3d/editing/manipulator/internal/shapeMesh.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

using p3 = MATH::point3<float>;

manipulatorSphere::manipulatorSphere(const p3& c, float r) { build(c, r); }

void manipulatorSphere::build(const p3& c, float r) {
  centre = c;
  radius = r;
  // Eight bands from pole to pole.
  std::vector<MATH::point2<float>> profile;
  const int bands = 8;
  for (int i = 0; i <= bands; ++i) {
    const float a = float(M_PI) * float(i) / float(bands);
    const float ring = i == 0 || i == bands ? 0.f : r * std::sin(a);
    profile.emplace_back(ring, r - r * std::cos(a));
  }
  beginShape();
  INTERNAL::appendRevolved(getEditMesh(), c - p3(0, 0, r), p3(0, 0, 1), profile, 16);
  endShape();
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
