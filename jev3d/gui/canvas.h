#pragma once

#include <vector>

#include "jev3d/fields/fieldBase.h"
#include "jev3d/gui/widget.h"
#include "jev3d/renderer/cameraState.h"
#include "jev3d/renderer/renderstate/lightingstate.h"
#include "jev3d/renderer/renderstate/scissorstate.h"
#include "jev3d/renderer/renderstate/zbufferstate.h"
#include "jev3d/system/eventDelegate.h"

namespace JEV {
namespace GUI {

// A drawing surface for widgets: the controller's desktop (kind 0) follows the window's
// client rectangle; a canvas of kind 1 shows its widgets through a view and turns mouse
// positions into its own space with `transformMouseEvent` before a hit test. A canvas
// keeps the widgets marked top-most in a set of its own, searched before its children.
class canvas : public widget {
 public:
  canvas(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~canvas() override;

  // Draws nothing of its own: a canvas is the ground its widgets stand on. It sets up
  // what its widgets draw under, whatever the 3D scene left: a camera in pixels over its
  // view, no lighting, no depth test, its rectangle as the clip.
  void render(RENDERING::renderingContext* rc) override;
  // Draws the widgets, then takes the canvas's states off again.
  void postRender(RENDERING::renderingContext* rc) override;
  // Takes the rectangle fields over before the widgets update.
  bool preUpdate(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc) override;

  // The widget below (x, y) in this canvas, or null; see guiController::getWidgetBelowMouse.
  widget* getWidgetBelowMouse(float x, float y) const;
  // Turns a window position into this canvas's space: through the view delegate when one
  // is set, else unchanged.
  void transformMouse(float& x, float& y) const;

  void addTopMost(widget* w);
  void removeTopMost(widget* w);
  const std::vector<widget*>& getTopMost() const { return topMost; }
  // The size from the rectangle fields. The origin stays: widget positions are relative
  // to the window's client area, as the mouse is.
  void followRect();

  // 0 the desktop, 1 a view with its own mouse transform.
  int canvasKind = 0;
  SYSTEM::fieldBase<float> viewX{0.0f};
  SYSTEM::fieldBase<float> viewY{0.0f};
  SYSTEM::fieldBase<float> zoomX{1.0f};
  SYSTEM::fieldBase<float> zoomY{1.0f};
  // The canvas rectangle, linked by the desktop to the window's client rectangle.
  SYSTEM::fieldBase<int> rectX{0};
  SYSTEM::fieldBase<int> rectY{0};
  SYSTEM::fieldBase<int> rectWidth{0};
  SYSTEM::fieldBase<int> rectHeight{0};
  SYSTEM::transformMouseEventDelegate transformMouseEvent;

 private:
  RENDERING::cameraState viewCamera;
  RENDERING::RENDERSTATE::lightingstate unlit{false, false};
  RENDERING::RENDERSTATE::zbufferstate noDepth{
      false, RENDERING::RENDERSTATE::renderStateEnums::DEPTH_LEQUAL, false, false};
  RENDERING::RENDERSTATE::scissorstate clip;
  bool statesPushed = false;
  // Top-most widgets in the order they were marked; the last is searched first.
  std::vector<widget*> topMost;
};

// A widget passes a hit test at (x, y) when visible, enabled or marked to pass disabled,
// and inside its rectangle cut by its parent's.
bool isInFocus(const widget* w, float x, float y);
// The front-most pickable widget below (x, y) among the descendants of `w`, or null.
widget* getChildBelowMouse(const widget* w, float x, float y);

}  // namespace GUI
}  // namespace JEV
