#pragma once

#include "jev3d/editing/manipulator/manipulatorWidget.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// A box centre +- u +- v +- w: the scale handle.
class manipulatorCube : public manipulatorWidget {
 public:
  manipulatorCube(const MATH::point3<float>& centre, float halfSize);
  manipulatorCube(const MATH::point3<float>& centre, const MATH::point3<float>& u,
                  const MATH::point3<float>& v, const MATH::point3<float>& w);
  void build(const MATH::point3<float>& centre, const MATH::point3<float>& u,
             const MATH::point3<float>& v, const MATH::point3<float>& w);
  const MATH::point3<float>& getCentre() const { return centre; }

 private:
  MATH::point3<float> centre;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
