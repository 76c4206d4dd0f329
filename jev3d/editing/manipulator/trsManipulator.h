#pragma once

#include "jev3d/editing/manipulator/manipulator.h"
#include "jev3d/math/quaternion.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// What a drag of a translate-rotate-scale manipulator does. The rotations run Y, Z, X:
// the values are fixed and must not be renumbered.
enum MANIP_TYPE {
  NULL_OPERATION = 0,
  TRANSL_X = 1,
  TRANSL_Y = 2,
  TRANSL_Z = 3,
  TRANSL_XY = 4,
  TRANSL_XZ = 5,
  TRANSL_YZ = 6,
  SCALE_X = 7,
  SCALE_Y = 8,
  SCALE_Z = 9,
  ROT_Y = 10,
  ROT_Z = 11,
  ROT_X = 12,
  SCALE_GLOBAL = 13,
  TRANSLATE_GLOBAL = 14,
  ROTATE_GLOBAL = 15,
  EXTRUDE = 16,
  SELECT = 17,
  TRANSL_N = 18,
  SCALE_N = 19,
  ACTIVATE_SUBSURF = 20
};

// The translate-rotate-scale handle set: arrows along the three axes, squares for the
// three planes, cubes beyond the arrows for scaling along an axis, rings for rotation
// about an axis, a ball at the centre to move in the view's plane, and, when enabled, an
// arrow along a normal direction. A drag builds a transform in the parent's space:
// getDeltaTransform is the last step, getDragTransform all of the drag so far. The
// manipulator follows its own translations and rotations; scaling leaves it as it is.
class trsManipulator : public manipulator {
 public:
  using quat = MATH::quaternion<float>;
  using matrix4f = MATH::matrix4<float>;
  using p3 = MATH::point3<float>;

  trsManipulator();

  // The name of an operation value ("TRANSL_X"), "UNDEFINED_TYPE" outside the table.
  static const char* getManipType(int type);
  int getCurrentManipType() const { return currentType; }

  // Builds the handles at unit size in the manipulator's space (done by the constructor).
  void init();
  void enableRotation(bool on);
  void enableTranslation(bool on);
  void enableScale(bool on);
  // The arrow along the normal direction, for TRANSL_N.
  void enableMoveAlongNormal(bool on);
  // The normal direction in the manipulator's space.
  void setNormalDirection(const p3& n);
  const p3& getNormalDirection() const { return normalDirection; }

  // Placement in the parent's space: a centre, a rotation (row-vector matrix) and a size.
  void setPosition(const p3& p);
  const p3& getPosition() const { return position; }
  void setRotation(const matrix4f& r);
  const matrix4f& getRotation() const { return rotation; }
  void setSize(float s);
  float getSize() const { return size; }
  // The size at which the handles span `screenSize` pixels from the centre, under the
  // view last drawn; the present size when that view is unknown.
  float computeOptimalManipSize() const;
  // Pixels the unit handles span on screen; 0 keeps the size that is set.
  float screenSize = 96.f;
  // A rotation snaps to multiples of this angle (radians) when it is above 0.
  float rotationStep = 0.f;

  const matrix4f& getDeltaTransform() const { return deltaTransform; }
  matrix4f getStepTransform() const override { return deltaTransform; }
  void placeAt(const p3& point) override { setPosition(point); }
  const matrix4f& getDragTransform() const { return dragTransform; }

  // The point of `ray` on the constraint of the running operation (the axis line, the
  // plane of the squares and rings, the view plane at the centre) and, for the axes, its
  // parameter in units along the axis from the centre. False when the ray runs parallel.
  bool calcHitPoint(const ray3f& ray, p3& point, float& t) const;
  // The rotation about `axis` through the centre that takes `from` towards `to`.
  quat calcRotation(const p3& axis, const p3& from, const p3& to) const;
  // The angle snapped to rotationStep.
  float constrainRotation(float angle) const;

  static quat axisAngleToQuat(const p3& axis, float angle);
  // The shortest rotation that turns direction a into direction b.
  static quat calcQuat(const p3& a, const p3& b);
  // The rotation as a row-vector matrix: p * m = q p q*.
  static matrix4f quatToMatrix(const quat& q);
  // First q1, then q2.
  static quat addQuats(const quat& q1, const quat& q2);
  static quat normalizeQuat(const quat& q);

 protected:
  void mouseDown(const ray3f& ray) override;
  void mouseDrag(const ray3f& ray) override;
  void mouseUp(const ray3f& ray) override;
  void mouseMove(const ray3f& ray) override;
  void onViewChange() override;

 private:
  // The unit axis of the running operation in the parent's space.
  p3 operationAxis(int type) const;
  void placeManipulator();
  void highlight(manipulatorWidget* w);
  void showGroup(int first, int last, bool on);

  p3 position;
  matrix4f rotation;
  float size = 1.f;
  p3 normalDirection{0, 0, 1};
  bool moveAlongNormal = false;

  int currentType = NULL_OPERATION;
  // The drag's start: frame, picked point and parameter.
  p3 startPosition;
  matrix4f startRotation;
  p3 startPoint;
  float startT = 0.f;
  p3 viewNormal;
  matrix4f deltaTransform;
  matrix4f dragTransform;
  manipulatorWidget* handles[ACTIVATE_SUBSURF + 1] = {};
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
