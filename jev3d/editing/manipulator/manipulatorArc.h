#pragma once

#include "jev3d/editing/manipulator/manipulatorWidget.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// A thin tube bent along a circle (or part of one) around `normal`: the rotation handle.
class manipulatorArc : public manipulatorWidget {
 public:
  manipulatorArc(const MATH::point3<float>& centre, const MATH::point3<float>& normal, float radius,
                 float tube, float sweep = 6.2831853f);
  void build(const MATH::point3<float>& centre, const MATH::point3<float>& normal, float radius,
             float tube, float sweep = 6.2831853f);
  const MATH::point3<float>& getCentre() const { return centre; }
  // Unit.
  const MATH::point3<float>& getNormal() const { return normal; }
  float getRadius() const { return radius; }

 private:
  MATH::point3<float> centre, normal;
  float radius = 0.f;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
