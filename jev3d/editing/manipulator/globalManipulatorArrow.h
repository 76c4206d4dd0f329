#pragma once

#include <string>

#include "jev3d/editing/manipulator/manipulatorArrow.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// A translation arrow of a global manipulator: an arrow along one of the cage's axes,
// with the caption its label shows at the tip.
class globalManipulatorArrow : public manipulatorArrow {
 public:
  globalManipulatorArrow(int axis, const MATH::point3<float>& start, const MATH::point3<float>& end,
                         float radius)
      : manipulatorArrow(start, end, radius), axis(axis) {}
  int getAxis() const { return axis; }
  void setCaption(const std::wstring& text) { caption = text; }
  const std::wstring& getCaption() const { return caption; }

 private:
  int axis;
  std::wstring caption;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
