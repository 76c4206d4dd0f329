#pragma once

#include <string>

#include "jev3d/gui/panel.h"

namespace JEV {
namespace GUI {

// A thin line that parts groups of widgets: horizontal it keeps its height, vertical its
// width, at the skin's separator thickness, whatever size it is given (setRect2D goes
// through setSize).
class separator : public panel {
 public:
  static constexpr float thickness = 2.0f;

  separator(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~separator() override;

  void setOrientation(WIDGET_ORIENTATION value) override;
  void setSize(float width, float height) override;
  void setWidth(float width) override;
  void setHeight(float height) override;
};

}  // namespace GUI
}  // namespace JEV
