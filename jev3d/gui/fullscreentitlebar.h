#pragma once

#include <string>

#include "jev3d/gui/panel.h"

namespace JEV {
namespace GUI {

class button;
class label;

// The bar a full-screen window shows along its top in place of the native title: the
// window's caption at the left and its minimise, restore and close buttons at the right,
// each shown as the window's style allows. Restore leaves full screen, minimise minimises
// the window, close closes it. The controller builds it hidden; the window shows it on
// entering full screen and refreshes it when its caption or style change.
class fullscreentitlebar : public panel {
 public:
  static constexpr float barHeight = 24.0f;
  static constexpr float buttonSide = 18.0f;

  fullscreentitlebar(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~fullscreentitlebar() override;

  // Makes the caption and the three buttons, hidden and spanning its parent's width.
  void config() override;
  // Takes the window's caption and which of its buttons it has.
  void doRefresh() override;

  label* getCaptionPart() const { return captionPart; }
  button* getMinimizePart() const { return minimizePart; }
  button* getRestorePart() const { return restorePart; }
  button* getClosePart() const { return closePart; }

 protected:
  virtual void onMinimize(const SYSTEM::inputEvent* e);
  virtual void onRestore(const SYSTEM::inputEvent* e);
  virtual void onClose(const SYSTEM::inputEvent* e);

 private:
  button* addWindowButton(const wchar_t* suffix, WIDGET_CLASS_COLOR cls, float layerU,
                          int fromRight,
                          void (fullscreentitlebar::*onClick)(const SYSTEM::inputEvent*));

  label* captionPart = nullptr;
  button* minimizePart = nullptr;
  button* restorePart = nullptr;
  button* closePart = nullptr;
};

}  // namespace GUI
}  // namespace JEV
