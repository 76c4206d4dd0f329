#include "jev3d/scene/pickRayNode.h"

#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "jev3d/system/inputEvent.h"
#include "jev3d/system/winMain.h"

namespace JEV {
namespace SG {
namespace {

const SYSTEM::EVENT_TYPE MOVE_EVENTS[] = {SYSTEM::MOUSE_MOVE, SYSTEM::MOUSE_LEFT_DRAG,
                                          SYSTEM::MOUSE_MIDDLE_DRAG, SYSTEM::MOUSE_RIGHT_DRAG};

}  // namespace

pickRayNode::pickRayNode(SYSTEM::winBase* w)
    : enabled(true),
      rayOrigin(MATH::point3<float>(0, 0, 0)),
      rayDirection(MATH::point3<float>(0, 0, 0)),
      mouseX(0.0f),
      mouseY(0.0f),
      window(w),
      moveHandler(this, &pickRayNode::onMouseMove) {}

pickRayNode::~pickRayNode() {
  // Registered once and never withdrawn while the node lives; withdrawn here, or the
  // window would call a dead node at the next mouse move.
  auto* main = dynamic_cast<SYSTEM::winMain*>(window);
  if (!registered || !main) return;
  for (SYSTEM::EVENT_TYPE type : MOVE_EVENTS) {
    main->unRegisterAbsoluteInputEventCallBack(type, moveHandler);
  }
}

void pickRayNode::update(RENDERING::renderingContext*, SYSTEM::updateContext*) {}

void pickRayNode::render(RENDERING::renderingContext* rc) {
  if (enabled.cV()) {
    if (!registered) {
      if (auto* main = dynamic_cast<SYSTEM::winMain*>(window)) {
        for (SYSTEM::EVENT_TYPE type : MOVE_EVENTS) {
          main->registerAbsoluteInputEventCallBack(type, moveHandler);
        }
      }
      registered = true;
    }
    if (RENDERING::renderer* device = rc ? rc->getRenderer() : nullptr) {
      int viewport[4];
      device->getCurrentViewportState().getComputed(viewport);
      device->pickRay(int(mouseX.cV()) - viewport[0], int(mouseY.cV()) - viewport[1], rayOrigin.V(),
                      rayDirection.V());
    }
  }
  node::render(rc);
}

void pickRayNode::onMouseMove(const SYSTEM::inputEvent* e) {
  if (!e) return;
  mouseX = e->x;
  mouseY = e->y;
}

}  // namespace SG
}  // namespace JEV
