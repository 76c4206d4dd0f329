#pragma once

#include <string>

#include "jev3d/gui/checkbox.h"

namespace JEV {
namespace GUI {

// A radio button. The radio buttons with the same parent form one group: checking one,
// by a click or by its field, unchecks the others. A click on a checked one does nothing,
// so a group never ends up with none checked through the mouse.
class radiobutton : public checkbox {
 public:
  radiobutton(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~radiobutton() override;

  void onCheckedChange() override;

 protected:
  void onClick(const SYSTEM::inputEvent* e) override;
};

}  // namespace GUI
}  // namespace JEV
