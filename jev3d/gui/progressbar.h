#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "jev3d/gui/panel.h"

namespace JEV {
namespace GUI {

class label;
class picturebox;

// A progress bar: a bar part ("_BAR") whose width follows the value's percent of its
// range, and a caption part ("_CAPTION") reading prefix, percent, suffix ("42%" by
// default). startLoopValue shows work of unknown length: a job steps the value round the
// range, one percent a period, until stopLoopValue puts the final value.
class progressbar : public panel {
 public:
  progressbar(const std::wstring& id, guiController* controller, SYSTEM::winBase* window);
  ~progressbar() override;

  void config() override;
  void onValueChange() override;
  void onValueMaxChange() override;
  void onValueMinChange() override;
  void sizePositionChanged() override;
  // The loop runs on a thread of its own, which takes the GUI lock for each step. A loop
  // already running is stopped first.
  void startLoopValue(unsigned long period);
  // Stops the loop and waits for its thread; then sets the value to `final`.
  void stopLoopValue(float final);
  bool isLooping() const { return loop.joinable(); }
  void setBarColor(const CORE::color& c);
  const CORE::color& getBarColor() const { return barColor; }
  void setPrefixCaption(const std::wstring& text);
  void setSuffixCaption(const std::wstring& text);
  const std::wstring& getPrefixCaption() const { return prefixCaption; }
  const std::wstring& getSuffixCaption() const { return suffixCaption; }
  float getPercent() const { return percent; }
  picturebox* getBar() const { return bar; }
  label* getCaptionPart() const { return captionPart; }

 protected:
  // Percent, bar width and caption from the value.
  void updateValue();
  void stopLoop();
  void runLoop(unsigned long period);

  std::wstring prefixCaption;
  std::wstring suffixCaption{L"%"};
  CORE::color barColor{255, 255, 255, 255};
  float percent = 0.0f;
  picturebox* bar = nullptr;
  label* captionPart = nullptr;

 private:
  std::thread loop;
  std::mutex loopMutex;
  std::condition_variable loopWake;
  bool loopStop = false;
};

}  // namespace GUI
}  // namespace JEV
