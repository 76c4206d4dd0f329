#pragma once

#include <memory>
#include <vector>

#include "jev3d/editing/manipulator/manipulatorWidget.h"
#include "jev3d/fields/fieldBase.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/renderer/cameraState.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "jev3d/renderer/renderstate/zbufferstate.h"
#include "jev3d/renderer/transformState.h"
#include "jev3d/scene/node.h"
#include "jev3d/system/delegate.h"
#include "jev3d/system/eventDelegate.h"
#include "jev3d/system/sharedPointer.h"

namespace JEV {
namespace SYSTEM {
class winBase;
class winMain;
}  // namespace SYSTEM
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// A scene node the user drags in a 3D view. It owns its handles (manipulator widgets,
// drawn as its children under its own matrix), hears the window's mouse through
// registerCallbacks, remembers the view it was last drawn with so that an event's pixel
// becomes a pick ray, and runs one drag at a time through the virtual mouseDown,
// mouseDrag and mouseUp. It edits no mesh of the client: after each drag step and after
// the drag's end it calls the two delegates with itself, and the client applies the
// result there and stores its undo record.
class manipulator : public SG::node {
 public:
  // Bits of the drag mask by button kind (left, middle, right): a kind drags always, or
  // only while one of the three key fields reads true.
  static constexpr int FIRST_ALWAYS = 0x001, SECOND_ALWAYS = 0x002, THIRD_ALWAYS = 0x004;
  static constexpr int FIRST_WITH_FIRST_KEY = 0x008, SECOND_WITH_FIRST_KEY = 0x010,
                       THIRD_WITH_FIRST_KEY = 0x020;
  static constexpr int FIRST_WITH_THIRD_KEY = 0x040, SECOND_WITH_THIRD_KEY = 0x080,
                       THIRD_WITH_THIRD_KEY = 0x100;
  static constexpr int FIRST_WITH_SECOND_KEY = 0x200, SECOND_WITH_SECOND_KEY = 0x400,
                       THIRD_WITH_SECOND_KEY = 0x800;
  static constexpr int DEFAULT_MASK = THIRD_ALWAYS;

  manipulator();
  ~manipulator() override;

  // Takes ownership of `w` and hangs it under this node; returns it.
  manipulatorWidget* addManipulatorWidget(manipulatorWidget* w);
  const std::vector<manipulatorWidget*>& getManipulatorWidgets() const { return widgets; }

  int getManipWithMask() const { return manipWithMask; }
  // Adds mask bits; clearManipWith empties the mask, so that nothing drags.
  void manipWith(int bits) { manipWithMask |= bits; }
  void clearManipWith() { manipWithMask = 0; }
  // True while a drag of button kind 0, 1 or 2 runs.
  bool isDragging(int kind) const { return kind >= 0 && kind < 3 && dragging[kind]; }
  bool isDragging() const { return dragging[0] || dragging[1] || dragging[2]; }

  // Registers the mouse handlers with the window (a main window; others are refused) and
  // withdraws them again. The destructor withdraws them too.
  bool registerCallbacks(SYSTEM::winBase* window);
  void unRegisterCallbacks();

  // The window's events, also callable directly.
  void onMouseDragEnter(const SYSTEM::inputEvent* e);
  void onMouseDrag(const SYSTEM::inputEvent* e);
  void onMouseDragLeave(const SYSTEM::inputEvent* e);
  void onMouseMove(const SYSTEM::inputEvent* e);
  virtual void onMouseClick(const SYSTEM::inputEvent* e);
  virtual void onMouseDoubleClick(const SYSTEM::inputEvent* e);

  // Remembers the view, then draws the handles under the manipulator's matrix (in front
  // of the scene while onTop reads true).
  void render(RENDERING::renderingContext* rc) override;
  // The view an event is read in, as the last render found it; tests and clients without
  // a render may set it.
  void setViewState(const int viewport[4], const MATH::matrix4<float>& projection,
                    const MATH::matrix4<float>& view, const MATH::matrix4<float>& parent);
  const RENDERING::RENDERSTATE::viewportstate& getCurrentViewportState() const {
    return viewportCopy;
  }
  const RENDERING::cameraState& getCurrentManipCameraState() const { return cameraCopy; }
  // The transform above the manipulator (its parents'), without its own matrix.
  const RENDERING::transformState& getCurrentManipTransformState() const { return transformCopy; }

  // The manipulator's placement in its parent's space.
  const MATH::matrix4<float>& getManipMatrix() const { return manipMatrix; }
  virtual void setManipMatrix(const MATH::matrix4<float>& m) { manipMatrix = m; }

  // What the last drag step did, as a transform of the parent's space (the identity
  // here); clients apply it in the step delegate.
  virtual MATH::matrix4<float> getStepTransform() const { return MATH::matrix4<float>(); }
  // Puts the manipulator's centre at `point` of the parent's space.
  virtual void placeAt(const MATH::point3<float>& point);

  // Window point (x, y, depth) of a point in the parent's space, and back.
  bool projectPoint(const MATH::point3<float>& point, MATH::point3<float>& window) const;
  bool unProjectPoint(const MATH::point3<float>& window, MATH::point3<float>& point) const;
  // The ray through window pixel (x, y) in the parent's space, and in the manipulator's
  // own space (through the inverse of its matrix).
  bool getParentSpaceRay(float x, float y, ray3f& ray) const;
  bool getManipSpaceRay(float x, float y, ray3f& ray) const;
  // Window pixels per unit of the parent's space at `point`, across the view; 0 when the
  // view is unknown.
  float pixelsPerUnit(const MATH::point3<float>& point) const;

  // Both must read true for a drag to start or go on.
  SYSTEM::fieldBase<bool> enabled{true};
  SYSTEM::fieldBase<bool> visible{true};
  // The three key conditions of the mask, set by the client from its keyboard: by
  // convention shift, control and alt.
  SYSTEM::fieldBase<bool> firstKey{false};
  SYSTEM::fieldBase<bool> secondKey{false};
  SYSTEM::fieldBase<bool> thirdKey{false};
  SYSTEM::fieldBase<bool> onTop{true};
  // Called with (manipulator*) after every drag step and once after the drag's end.
  SYSTEM::sharedPointer<SYSTEM::delegate> afterDragStepDelegate;
  SYSTEM::sharedPointer<SYSTEM::delegate> afterDragEndDelegate;

 protected:
  // The drag, with the pick ray in the parent's space.
  virtual void mouseDown(const ray3f& ray);
  virtual void mouseDrag(const ray3f& ray);
  virtual void mouseUp(const ray3f& ray);
  virtual void mouseMove(const ray3f& ray);
  // Called at each render with the view just stored, before the handles draw.
  virtual void onViewChange() {}
  // A ray of the parent's space in the manipulator's own, and a transform of the own
  // space seen in the parent's.
  ray3f toManipSpace(const ray3f& ray) const;
  MATH::matrix4<float> toParentSpace(const MATH::matrix4<float>& m) const;
  // Moves the manipulator by d in the parent's space.
  void moveManipulator(const MATH::point3<float>& d);
  // All handles' hits on `ray` (parent space), nearest first.
  void intersectWidgets(const ray3f& ray, std::vector<hitPoint>& hits);

 private:
  bool makeRay(const SYSTEM::inputEvent* e, ray3f& ray) const;

  int manipWithMask = DEFAULT_MASK;
  bool dragging[3] = {false, false, false};
  std::vector<manipulatorWidget*> widgets;
  std::vector<std::unique_ptr<manipulatorWidget>> owned;
  MATH::matrix4<float> manipMatrix;
  bool viewKnown = false;
  RENDERING::RENDERSTATE::viewportstate viewportCopy;
  RENDERING::cameraState cameraCopy;
  RENDERING::transformState transformCopy;
  RENDERING::RENDERSTATE::zbufferstate frontDepth;
  SYSTEM::winMain* window = nullptr;
  SYSTEM::inputEventDelegate dragEnterHandler, dragHandler, dragLeaveHandler, moveHandler,
      clickHandler, doubleClickHandler;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
