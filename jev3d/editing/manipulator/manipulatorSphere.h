#pragma once

#include "jev3d/editing/manipulator/manipulatorWidget.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// A ball around a centre; picked to move or scale freely.
class manipulatorSphere : public manipulatorWidget {
 public:
  manipulatorSphere(const MATH::point3<float>& centre, float radius);
  void build(const MATH::point3<float>& centre, float radius);
  const MATH::point3<float>& getCentre() const { return centre; }
  float getRadius() const { return radius; }

 private:
  MATH::point3<float> centre;
  float radius = 0.f;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
