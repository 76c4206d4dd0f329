#pragma once

#include "jev3d/editing/manipulator/translatingManipulator.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

class manipulatorArrow;

// One arrow that moves along its own line: a drag that picks it follows the mouse along
// the line, and the manipulator travels with it. getLastDisplacement is the last step,
// getDragDisplacement all of the drag, both in the parent's space.
class arrowManipulator : public translatingManipulator {
 public:
  // An arrow from the origin along `direction` (its length is the arrow's), of the given
  // shaft radius, in the manipulator's space.
  explicit arrowManipulator(const MATH::point3<float>& direction = MATH::point3<float>(1, 0, 0),
                            float radius = 0.025f);

  // Whether the ray (parent space) picks the arrow; remembers where along its line.
  bool startPicking(const ray3f& ray) override;
  // Moves along the line to where the ray passes closest; false while nothing is picked.
  bool moveTranslationControlArrow(const ray3f& ray) override;
  manipulatorArrow* getArrow() const { return arrow; }
  // The arrow's line in the parent's space.
  ray3f getLine() const;

 private:
  manipulatorArrow* arrow;
  float pickedT = 0.f;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
