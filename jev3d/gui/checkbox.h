#pragma once

#include <string>

#include "jev3d/gui/widget.h"

namespace JEV {
namespace GUI {

class picturebox;

// A check box: a mark part ("_MARK", a 16-pixel skin tile at the left) and its caption
// after it. A click toggles `checked`; the mark follows `checked`. Unchecked, the mark is
// an empty framed box (the item tile at (176, 0)); checked, the tick at (0, 16).
class checkbox : public widget {
 public:
  static constexpr float markSize = 16.0f;

  checkbox(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~checkbox() override;

  // Makes the mark and registers the click.
  void config() override;
  // The button attributes of the project file: checkable, with the mark as its icon size.
  void saveAttrib(IO::XML::xmlElement& element) const override;
  // Chooses the mark's tile from `checked`.
  void doRefresh() override;
  void onCheckedChange() override;
  void sizePositionChanged() override;
  // The caption after the mark; a check box draws no background.
  void render(RENDERING::renderingContext* rc) override;

  picturebox* getMark() const { return mark; }
  // The mark tiles (u, v), unchecked and checked.
  float tileUnchecked[2] = {176, 0};
  float tileChecked[2] = {0, 16};

 protected:
  virtual void onClick(const SYSTEM::inputEvent* e);
  void updateMark();

  picturebox* mark = nullptr;
};

}  // namespace GUI
}  // namespace JEV
