#pragma once

#include <string>

#include "jev3d/fields/fieldBase.h"
#include "jev3d/fields/mtLinker.h"
#include "jev3d/platform/platform.h"

namespace JEV {
namespace RENDERING {
class renderingContext;
}

namespace SYSTEM {

class application;
class inputContext;
class updateContext;
class windowGui;

enum WINDOW_SHOW_MODE { SHOW_NORMAL = 0, SHOW_MAXIMIZED = 1, SHOW_MINIMIZED = 2, SHOW_HIDDEN = 3 };

// The state a window shares with the widget windows: its contexts, the two needed-fields
// that decide whether the loop serves it, and its native handles.
class winBase {
 public:
  explicit winBase(application* app);
  virtual ~winBase();
  winBase(const winBase&) = delete;
  winBase& operator=(const winBase&) = delete;

  updateContext* getUpdateContext() const { return updateCtx; }
  RENDERING::renderingContext* getRenderingContext() const { return renderCtx; }
  inputContext* getInputContext() const { return inputCtx; }
  windowGui* getGui() const { return gui; }
  application* getApplication() const { return app; }
  PLATFORM::windowHandle getHWnd() const { return hWnd; }
  bool isClosing() const { return closing; }

  // The running program's directory (with a trailing separator), its full file name,
  // and the name split into base and extension (with its dot).
  const std::wstring& getApplicationPath() const { return applicationPath; }
  const std::wstring& getApplicationFileName() const { return applicationFileName; }
  const std::wstring& getApplicationName() const { return applicationName; }
  const std::wstring& getApplicationExtension() const { return applicationExtension; }

  // Read by the tick threads, written by the loop and the application: of the locked kind.
  fieldBase<bool, dummyLinkerType, mtLinker> updateNeeded;
  fieldBase<bool, dummyLinkerType, mtLinker> renderNeeded;

 protected:
  updateContext* updateCtx;
  RENDERING::renderingContext* renderCtx = nullptr;
  inputContext* inputCtx = nullptr;
  windowGui* gui = nullptr;
  bool closing = false;
  std::wstring applicationPath;
  std::wstring applicationFileName;
  std::wstring applicationName;
  std::wstring applicationExtension;
  application* app;
  WINDOW_SHOW_MODE showMode = SHOW_NORMAL;
  bool resizable = true;
  PLATFORM::windowHandle hDC = 0;  // the drawable: the window itself on this platform
  PLATFORM::windowHandle hWnd = 0;
};

}  // namespace SYSTEM
}  // namespace JEV
