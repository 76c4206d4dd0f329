#pragma once

#include "jev3d/editing/manipulator/manipulatorWidget.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// A square seen from both sides: centre +- u +- v. Picked to move in its plane.
class manipulatorPlane : public manipulatorWidget {
 public:
  manipulatorPlane(const MATH::point3<float>& centre, const MATH::point3<float>& u,
                   const MATH::point3<float>& v);
  void build(const MATH::point3<float>& centre, const MATH::point3<float>& u,
             const MATH::point3<float>& v);
  const MATH::point3<float>& getCentre() const { return centre; }
  // Unit, u x v.
  MATH::point3<float> getNormal() const { return u.unitCross(v); }

 private:
  MATH::point3<float> centre, u, v;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
