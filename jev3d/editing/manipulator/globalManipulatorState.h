#pragma once

#include <vector>

#include "jev3d/math/matrix4.h"
#include "jev3d/math/point3.h"

namespace JEV {
namespace IO {
namespace XML {
class xmlElement;
class xmlNode;
}  // namespace XML
}  // namespace IO
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// The whole state of a global manipulator as a value: the eight corners of its cage as
// the reference shape (where the drag began) and as the current shape. Undo stores it,
// and XML saves it. Corners are in the order of makeUnitCube; the shape's axes run from
// the -x side to the +x side and so on, so a cage need not stay a box.
class globalManipulatorState {
 public:
  using p3 = MATH::point3<float>;
  using matrix4f = MATH::matrix4<float>;

  // The unit cube in both shapes.
  globalManipulatorState();
  virtual ~globalManipulatorState() = default;
  globalManipulatorState(const globalManipulatorState&) = default;
  globalManipulatorState& operator=(const globalManipulatorState&) = default;

  // (0,0,1), (1,0,1), (1,0,0), (0,0,0), (0,1,1), (1,1,1), (1,1,0), (0,1,0), each less 0.5.
  static void makeUnitCube(std::vector<p3>& corners);
  void reset();
  // The current shape becomes the reference, and back.
  void makeReference() { referenceShape = currentShape; }
  void resetToReference() { currentShape = referenceShape; }
  bool operator==(const globalManipulatorState& o) const;
  bool operator!=(const globalManipulatorState& o) const { return !(*this == o); }
  // Corner by corner, a at t = 0 and b at t = 1.
  static globalManipulatorState lerp(const globalManipulatorState& a,
                                     const globalManipulatorState& b, float t);

  const std::vector<p3>& getReferenceShape() const { return referenceShape; }
  const std::vector<p3>& getShape() const { return currentShape; }
  // False, changing nothing, unless eight corners are given.
  bool setReferenceShape(const std::vector<p3>& corners);
  bool setShape(const std::vector<p3>& corners);

  // The three axes (side centre to side centre) and their unit forms; a null axis stays
  // null.
  void getShapeAxes(p3 axes[3]) const;
  void getReferenceShapeAxes(p3 axes[3]) const;
  void getNormalizedShapeAxes(p3 axes[3]) const;
  void getNormalizedReferenceShapeAxes(p3 axes[3]) const;
  p3 getCenter() const;
  p3 getReferenceCenter() const;
  // The affine map of the unit cube onto the shape: the axes as rows, the centre as the
  // translation.
  matrix4f getCurrentMatrix() const;
  matrix4f getReferenceMatrix() const;
  // World directions into the shape's unit axes (the transpose of the axes as rows).
  matrix4f getWorldToManipShapeRotation() const;
  matrix4f getWorldToReferenceShapeRotation() const;
  // The map of the reference shape onto the current one; the identity while the
  // reference cannot be inverted.
  matrix4f getShapeTransform() const;
  // The shape transform as angles (radians, turning about x, then y, then z), the
  // translation of the centre, and the scale along each axis.
  void getCurrentEulerTransform(p3& angles, p3& translation, p3& scale) const;

  // Changes of the current shape.
  void rigidTranslate(const p3& d);
  void rotateAboutLocalAxis(int axis, float angle);
  void rotateAboutLocalXAxis(float angle) { rotateAboutLocalAxis(0, angle); }
  void rotateAboutLocalYAxis(float angle) { rotateAboutLocalAxis(1, angle); }
  void rotateAboutLocalZAxis(float angle) { rotateAboutLocalAxis(2, angle); }
  void translateWrtLocalAxis(int axis, float amount);
  void translateWrtLocalXAxis(float amount) { translateWrtLocalAxis(0, amount); }
  void translateWrtLocalYAxis(float amount) { translateWrtLocalAxis(1, amount); }
  void translateWrtLocalZAxis(float amount) { translateWrtLocalAxis(2, amount); }
  // About the centre, along one axis.
  void scaleWrtLocalAxis(int axis, float factor);
  void scaleWrtLocalXAxis(float factor) { scaleWrtLocalAxis(0, factor); }
  void scaleWrtLocalYAxis(float factor) { scaleWrtLocalAxis(1, factor); }
  void scaleWrtLocalZAxis(float factor) { scaleWrtLocalAxis(2, factor); }
  // Every corner of the current shape times m (row vectors).
  void transform(const matrix4f& m);

  // Two elements under `parent`: "ReferenceManipShape" and "ManipShape", each with one
  // "POINT3" ("X", "Y", "Z") a corner.
  void saveToXML(IO::XML::xmlNode* parent) const;
  // Reads both elements below `element`. All or nothing: false, with the state as it was,
  // when either is missing or does not hold eight corners of three finite numbers.
  bool openFromXML(IO::XML::xmlElement& element);

 private:
  std::vector<p3> referenceShape;
  std::vector<p3> currentShape;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
