#pragma once

#include <string>

namespace JEV {
namespace GUI {
class widget;
}

namespace SYSTEM {

// A file or folder dropped on a widget. Handlers can be registered for it, but nothing
// in the runtime raises one yet.
class dropFileEvent {
 public:
  dropFileEvent() = default;
  virtual ~dropFileEvent() = default;

  GUI::widget* target = nullptr;
  GUI::widget* previous = nullptr;
  float x = 0, y = 0;
  std::string name;
  std::string extension;
  bool isFolder = false;
  void* handle = nullptr;
};

}  // namespace SYSTEM
}  // namespace JEV
