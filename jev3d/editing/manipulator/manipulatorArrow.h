#pragma once

#include "jev3d/editing/manipulator/manipulatorWidget.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// An arrow from `start` to `end`: a shaft of the given radius and a cone head over the
// last quarter. Its line (start, end - start) is what translation handles follow.
class manipulatorArrow : public manipulatorWidget {
 public:
  manipulatorArrow(const MATH::point3<float>& start, const MATH::point3<float>& end, float radius);
  void build(const MATH::point3<float>& start, const MATH::point3<float>& end, float radius);
  const MATH::point3<float>& getStart() const { return start; }
  const MATH::point3<float>& getEnd() const { return end; }
  float getRadius() const { return radius; }
  // The end points after the handle's mesh moved by `d`.
  void shiftEnds(const MATH::point3<float>& d) {
    start += d;
    end += d;
  }
  ray3f getLine() const { return ray3f(start, end - start); }

 private:
  MATH::point3<float> start, end;
  float radius = 0.f;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
