#pragma once

#include "jev3d/editing/manipulator/manipulatorWidget.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// A thin rod from `start` to `end`, capped at both ends.
class manipulatorLine : public manipulatorWidget {
 public:
  manipulatorLine(const MATH::point3<float>& start, const MATH::point3<float>& end, float radius);
  void build(const MATH::point3<float>& start, const MATH::point3<float>& end, float radius);
  const MATH::point3<float>& getStart() const { return start; }
  const MATH::point3<float>& getEnd() const { return end; }

 private:
  MATH::point3<float> start, end;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
