#pragma once

#include "jev3d/gui/widget.h"

namespace JEV {
namespace GUI {

// A widget that draws only its caption: font "ID_FONT1", caption "label" at first.
class label : public widget {
 public:
  label(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~label() override;

  // The uploads, then the text; no patch.
  void render(RENDERING::renderingContext* rc) override;
};

}  // namespace GUI
}  // namespace JEV
