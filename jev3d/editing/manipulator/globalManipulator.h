#pragma once

#include <memory>
#include <string>
#include <vector>

#include "jev3d/editing/manipulator/globalManipulatorState.h"
#include "jev3d/editing/manipulator/manipulator.h"

namespace JEV {
namespace GUI {
class font;
}
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

class globalManipulatorArrow;

// A cage around a selection: the cage itself (a shape mesh of eight corners and six
// sides, drawn as wire) with cubes on its sides to scale it along an axis, arrows to move
// it, rings to turn it and balls on its corners to scale it evenly. Every element is an
// editable mesh, and all geometry lives in the manipulator's own space (its matrix, the
// identity unless the ...Manip calls change it). getState and setState take the whole
// cage as a value for undo and files.
class globalManipulator : public manipulator {
 public:
  using p3 = MATH::point3<float>;
  using matrix4f = MATH::matrix4<float>;
  // The kind of drag running.
  static constexpr unsigned DRAG_ARROW = 0, DRAG_CIRCLE = 1;

  globalManipulator();
  ~globalManipulator() override;

  // Drag: startPicking runs on the press, the move... calls on each step.
  bool startPicking(const ray3f& ray);
  void globalManipulatorMouseDown(const ray3f& ray);
  void globalManipulatorMouseUp(const ray3f& ray);
  // Highlights the element under the ray while no drag runs.
  void globalManipulatorMouseMove(const ray3f& ray);
  // Scales the cage evenly about its centre by the corner ball picked.
  bool moveControlPoint(const ray3f& ray);
  bool moveTranslationControlArrow(const ray3f& ray);
  bool moveRotationControlCircle(const ray3f& ray);
  bool moveScaleControlArrow(const ray3f& ray);
  // Moves side `index` (-x, +x, -y, +y, -z, +z) of the cage outward by `delta` through
  // the shape mesh's face selection.
  void performScale(int index, float delta);

  // The shape's changes (about its centre where it turns or scales); the elements follow.
  void rotate(int axis, float angle);
  void translate(const p3& d);
  void scale(float factor);
  // Every corner times m; postTransform applies m in the cage's own frame.
  void transform(const matrix4f& m);
  void postTransform(const matrix4f& m);
  // The same on the manipulator's matrix.
  void rotateManip(const p3& axis, float angle);
  void translateManip(const p3& d);
  void scaleManip(float factor);
  void transformManip(const matrix4f& m);
  void postTransformManip(const matrix4f& m);
  // The unit cube again.
  void reset();

  matrix4f getShapeTransform() const { return getState().getShapeTransform(); }
  // The cage's unit axes as the rows of a rotation.
  matrix4f getShapeRotation() const;
  void getShapeAxes(p3 axes[3]) const;
  void getNormalizedShapeAxes(p3 axes[3]) const;
  float getShapeMaxDim() const;
  // The shape saved at the drag's start as the reference, the shape mesh as the current.
  globalManipulatorState getState() const;
  // False, changing nothing, for a state without eight corners in each shape.
  bool setState(const globalManipulatorState& state);
  void saveCurrShapePosition();
  void restoreShapePosition();
  matrix4f getStepTransform() const override { return stepTransform; }
  void placeAt(const p3& point) override;

  // Switches: enable lets an element be picked, display shows it.
  void enableXScaling(bool on) {
    setSwitch(SCALE_LIST, 0, on, false);
    setSwitch(SCALE_LIST, 1, on, false);
  }
  void enableYScaling(bool on) {
    setSwitch(SCALE_LIST, 2, on, false);
    setSwitch(SCALE_LIST, 3, on, false);
  }
  void enableZScaling(bool on) {
    setSwitch(SCALE_LIST, 4, on, false);
    setSwitch(SCALE_LIST, 5, on, false);
  }
  void enableFreeScaling(bool on) { setSwitch(CONTROL_LIST, ALL, on, false); }
  void enableXRotation(bool on) { setSwitch(CIRCLE_LIST, 0, on, false); }
  void enableYRotation(bool on) { setSwitch(CIRCLE_LIST, 1, on, false); }
  void enableZRotation(bool on) { setSwitch(CIRCLE_LIST, 2, on, false); }
  void enableXTranslation(bool on) { setSwitch(ARROW_LIST, 0, on, false); }
  void enableYTranslation(bool on) { setSwitch(ARROW_LIST, 1, on, false); }
  void enableZTranslation(bool on) { setSwitch(ARROW_LIST, 2, on, false); }
  void displayXScaling(bool on) {
    setSwitch(SCALE_LIST, 0, on, true);
    setSwitch(SCALE_LIST, 1, on, true);
  }
  void displayYScaling(bool on) {
    setSwitch(SCALE_LIST, 2, on, true);
    setSwitch(SCALE_LIST, 3, on, true);
  }
  void displayZScaling(bool on) {
    setSwitch(SCALE_LIST, 4, on, true);
    setSwitch(SCALE_LIST, 5, on, true);
  }
  void displayFreeScaling(bool on) { setSwitch(CONTROL_LIST, ALL, on, true); }
  void displayXRotation(bool on) { setSwitch(CIRCLE_LIST, 0, on, true); }
  void displayYRotation(bool on) { setSwitch(CIRCLE_LIST, 1, on, true); }
  void displayZRotation(bool on) { setSwitch(CIRCLE_LIST, 2, on, true); }
  void displayXTranslation(bool on) { setSwitch(ARROW_LIST, 0, on, true); }
  void displayYTranslation(bool on) { setSwitch(ARROW_LIST, 1, on, true); }
  void displayZTranslation(bool on) { setSwitch(ARROW_LIST, 2, on, true); }

  // Labels: the caption of each axis drawn beside its arrow's tip, in window pixels,
  // through the renderer's own text.
  void setAxisCaption(int axis, const std::wstring& caption);
  void addLabels();
  // Where each shown label goes in the window, from the view last drawn.
  void updateLabels();
  struct labelPlace {
    std::wstring text;
    int x = 0, y = 0;
  };
  const std::vector<labelPlace>& getLabels() const { return labels; }
  bool hasLabels() const { return labelFont != nullptr; }

  // Rebuilds every element on the cage as it stands.
  void updateVisualElementsSize();
  // The rings' planes: each through the centre, across one unit axis.
  void updateCirclePlanes();
  void makeCirclePlanes();

  void render(RENDERING::renderingContext* rc) override;

  manipulatorWidget* getShape() const { return shape; }
  const std::vector<manipulatorWidget*>& getScaleControls() const { return scaleControls; }
  const std::vector<globalManipulatorArrow*>& getTranslationArrows() const { return arrows; }
  const std::vector<manipulatorWidget*>& getRotationCircles() const { return circles; }
  const std::vector<manipulatorWidget*>& getControls() const { return controls; }
  bool isScaling() const { return scaling; }
  bool isMoving() const { return moving; }
  bool isRotating() const { return rotating; }
  bool isFreeScaling() const { return freeScaling; }
  unsigned getDragKind() const { return dragKind; }
  const p3& getPickedPoint() const { return pickedPoint; }

 protected:
  void mouseDown(const ray3f& ray) override { globalManipulatorMouseDown(ray); }
  void mouseDrag(const ray3f& ray) override;
  void mouseUp(const ray3f& ray) override { globalManipulatorMouseUp(ray); }
  void mouseMove(const ray3f& ray) override { globalManipulatorMouseMove(ray); }

 private:
  enum elementList { SCALE_LIST, ARROW_LIST, CIRCLE_LIST, CONTROL_LIST };
  static constexpr size_t ALL = ~size_t(0);
  // Element i of a list (every one for ALL): display shows or hides it, else it may be
  // picked or not.
  void setSwitch(elementList list, size_t i, bool on, bool display);
  // The shape mesh's corners, in state order.
  std::vector<p3> shapeCorners() const;
  void setShapeCorners(const std::vector<p3>& corners);
  // Applies m to the cage's corners and rebuilds the elements; m joins the step.
  void changeShape(const matrix4f& m);
  void clearPicking();

  manipulatorWidget* shape;
  std::vector<manipulatorWidget*> scaleControls;
  std::vector<globalManipulatorArrow*> arrows;
  std::vector<manipulatorWidget*> circles;
  std::vector<manipulatorWidget*> controls;
  // Picking: three kinds and the free scaling of the fourth list after them.
  bool scaling = false, moving = false, rotating = false, freeScaling = false;
  int scaleIndex = -1, arrowIndex = -1, circleIndex = -1, controlIndex = -1;
  p3 pickedPoint;
  float pickedT = 0.f;
  unsigned dragKind = DRAG_ARROW;
  std::vector<p3> savedShape;
  // The rings' planes, as centre and unit normal.
  p3 circleCentre;
  p3 circleNormals[3];
  matrix4f stepTransform;
  std::wstring captions[3] = {L"X", L"Y", L"Z"};
  std::unique_ptr<GUI::font> labelFont;
  bool fontTried = false;
  std::vector<labelPlace> labels;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
