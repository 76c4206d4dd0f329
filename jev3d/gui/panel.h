#pragma once

#include "jev3d/gui/widget.h"

namespace JEV {
namespace GUI {

// A widget that draws its skin patch as background and holds child widgets in its area
// less its margins.
class panel : public widget {
 public:
  panel(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~panel() override;

  // The uploads, then the patch unless the shadow is WS_NO_BACKGROUND.
  void render(RENDERING::renderingContext* rc) override;

 protected:
  // Runs before the base render; empty here.
  virtual void beforeRender(RENDERING::renderingContext* rc);
};

}  // namespace GUI
}  // namespace JEV
