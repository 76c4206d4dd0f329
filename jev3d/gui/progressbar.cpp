#include "jev3d/gui/progressbar.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "jev3d/gui/internal/controlParts.h"
#include "jev3d/gui/label.h"
#include "jev3d/gui/picturebox.h"

namespace JEV {
namespace GUI {

namespace {

// How long a loop step waits for the GUI lock before it looks whether it was stopped, so
// that stopping from a thread that holds the lock never deadlocks.
constexpr unsigned long lockWait = 20;

}  // namespace

progressbar::progressbar(const std::wstring& widgetId, guiController* owner, SYSTEM::winBase* win)
    : panel(widgetId, owner, win) {
  setClassIds(WC_PROGRESSBAR, WCC_INPUT_AREA);
  setMargin(2, 2, 2, 2);
  adjustUV(32, 160);
}

progressbar::~progressbar() { stopLoop(); }

void progressbar::config() {
  setSize(120, 20);
  bar = INTERNAL::addPart<picturebox>(this, WC_PICTUREBOX, L"_BAR");
  if (bar) {
    bar->setTile(144, 0);
    bar->setUseSchemaColor(false);
  }
  captionPart = INTERNAL::addPart<label>(this, WC_LABEL, L"_CAPTION");
  if (captionPart) captionPart->setTextHorizontalAlign(TEXT_HCENTER);
  setBarColor(barColor);
  updateValue();
}

void progressbar::onValueChange() {
  panel::onValueChange();
  updateValue();
}
void progressbar::onValueMaxChange() { updateValue(); }
void progressbar::onValueMinChange() { updateValue(); }

void progressbar::sizePositionChanged() {
  panel::sizePositionChanged();
  updateValue();
}

void progressbar::updateValue() {
  percent = std::clamp(INTERNAL::percentOf(value.cV(), valueMin.cV(), valueMax.cV()), 0.0f, 100.0f);
  const float innerWidth = std::max(0.0f, size.x - margin[0] - margin[1]);
  const float innerHeight = std::max(0.0f, size.y - margin[2] - margin[3]);
  INTERNAL::place(bar, margin[0], margin[3], innerWidth * percent / 100.0f, innerHeight);
  INTERNAL::place(captionPart, margin[0], margin[3], innerWidth, innerHeight);
  if (captionPart) {
    const int shown = static_cast<int>(std::lround(percent));
    captionPart->setCaption(prefixCaption + std::to_wstring(shown) + suffixCaption, false);
  }
}

void progressbar::setBarColor(const CORE::color& c) {
  barColor = c;
  if (!bar) return;
  bar->setColorNormal(c);
  bar->setColorHighlighted(c);
  bar->setColorDown(c);
  bar->setjustColor(WCC_OWN);
}

void progressbar::setPrefixCaption(const std::wstring& text) {
  prefixCaption = text;
  updateValue();
}

void progressbar::setSuffixCaption(const std::wstring& text) {
  suffixCaption = text;
  updateValue();
}

void progressbar::startLoopValue(unsigned long period) {
  stopLoop();
  loopStop = false;
  loop = std::thread(&progressbar::runLoop, this, std::max(1ul, period));
}

void progressbar::stopLoopValue(float final) {
  stopLoop();
  value = final;
}

void progressbar::stopLoop() {
  if (!loop.joinable()) return;
  {
    std::lock_guard<std::mutex> hold(loopMutex);
    loopStop = true;
  }
  loopWake.notify_all();
  loop.join();
}

void progressbar::runLoop(unsigned long period) {
  std::unique_lock<std::mutex> hold(loopMutex);
  for (;;) {
    if (loopWake.wait_for(hold, std::chrono::milliseconds(period), [this] { return loopStop; }))
      return;
    if (controller && !controller->waitGuiMutex(lockWait)) continue;
    const float range = valueMax.cV() - valueMin.cV();
    float next = value.cV() + range / 100.0f;
    if (next > valueMax.cV()) next = valueMin.cV();
    value = next;
    if (controller) controller->releaseGuiMutex();
  }
}

}  // namespace GUI
}  // namespace JEV
