#include "jev3d/platform/scriptedPlatform.h"

#include "jev3d/platform/messages.h"

namespace JEV {
namespace PLATFORM {

namespace {

std::string narrow(const std::wstring& w) {
  std::string s;
  for (wchar_t c : w) s += (c >= 32 && c < 127) ? static_cast<char>(c) : '?';
  return s;
}

}  // namespace

scriptedPlatform::scriptedPlatform() = default;
scriptedPlatform::~scriptedPlatform() = default;

void scriptedPlatform::log(const std::string& entry) { journal.push_back(entry); }

std::vector<std::string> scriptedPlatform::operations() const {
  std::lock_guard<std::mutex> g(lock);
  return journal;
}

int scriptedPlatform::countOperations(const std::string& prefix) const {
  std::lock_guard<std::mutex> g(lock);
  int n = 0;
  for (const auto& e : journal) n += e.compare(0, prefix.size(), prefix) == 0 ? 1 : 0;
  return n;
}

void scriptedPlatform::clearOperations() {
  std::lock_guard<std::mutex> g(lock);
  journal.clear();
}

int scriptedPlatform::postCount(unsigned msg) const {
  std::lock_guard<std::mutex> g(lock);
  auto it = posts.find(msg);
  return it == posts.end() ? 0 : it->second;
}

std::vector<message> scriptedPlatform::pending() const {
  std::lock_guard<std::mutex> g(lock);
  return std::vector<message>(queue.begin(), queue.end());
}

int scriptedPlatform::waitCount() const {
  std::lock_guard<std::mutex> g(lock);
  return waits;
}

void scriptedPlatform::setIdleHook(std::function<void(scriptedPlatform&)> hook) {
  std::lock_guard<std::mutex> g(lock);
  idleHook = std::move(hook);
}

std::int64_t scriptedPlatform::send(windowHandle window, unsigned msg, std::uint64_t wParam,
                                    std::int64_t lParam) {
  return dispatchMessage(message{window, msg, wParam, lParam});
}

bool scriptedPlatform::fireTimer(windowHandle window, unsigned id) {
  std::lock_guard<std::mutex> g(lock);
  auto it = timers.find({window, id});
  if (it == timers.end()) return false;
  queue.push_back(
      message{window, WM_TIMER, id,
              static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(it->second.procedure))});
  posted.notify_all();
  return true;
}

bool scriptedPlatform::hasTimer(windowHandle window, unsigned id) const {
  std::lock_guard<std::mutex> g(lock);
  return timers.count({window, id}) != 0;
}

void scriptedPlatform::setNextHandle(windowHandle h) {
  std::lock_guard<std::mutex> g(lock);
  nextHandle = h;
}

void scriptedPlatform::failCreateWindow(int count) {
  std::lock_guard<std::mutex> g(lock);
  createWindowFailures = count;
}

void scriptedPlatform::failCreateGLContext(int count) {
  std::lock_guard<std::mutex> g(lock);
  createContextFailures = count;
}

bool scriptedPlatform::window(windowHandle h, windowRecord& out) const {
  std::lock_guard<std::mutex> g(lock);
  auto it = records.find(h);
  if (it == records.end()) return false;
  out = it->second;
  return true;
}

std::vector<windowHandle> scriptedPlatform::windows() const {
  std::lock_guard<std::mutex> g(lock);
  return order;
}

int scriptedPlatform::swapCount(windowHandle window) const {
  std::lock_guard<std::mutex> g(lock);
  auto it = swaps.find(window);
  return it == swaps.end() ? 0 : it->second;
}

void scriptedPlatform::setScreenSize(int width, int height) {
  std::lock_guard<std::mutex> g(lock);
  screenWidth = width;
  screenHeight = height;
}

void scriptedPlatform::getScreenSize(int& width, int& height) {
  std::lock_guard<std::mutex> g(lock);
  width = screenWidth;
  height = screenHeight;
}

windowHandle scriptedPlatform::createWindow(const windowDescriptor& descriptor,
                                            windowProcedure procedure) {
  std::lock_guard<std::mutex> g(lock);
  if (createWindowFailures > 0) {
    --createWindowFailures;
    log("createWindow failed");
    return 0;
  }
  const windowHandle h = nextHandle++;
  windowRecord& r = records[h];
  r.area = descriptor.area;
  r.caption = descriptor.caption;
  r.style = descriptor.style;
  r.procedure = procedure;
  order.push_back(h);
  log("createWindow " + std::to_string(h));
  return h;
}

bool scriptedPlatform::destroyWindow(windowHandle window) {
  std::lock_guard<std::mutex> g(lock);
  if (!records.erase(window)) return false;
  for (auto it = order.begin(); it != order.end(); ++it) {
    if (*it == window) {
      order.erase(it);
      break;
    }
  }
  for (auto it = timers.begin(); it != timers.end();) {
    it = it->first.first == window ? timers.erase(it) : std::next(it);
  }
  log("destroyWindow " + std::to_string(window));
  return true;
}

bool scriptedPlatform::isWindow(windowHandle window) {
  std::lock_guard<std::mutex> g(lock);
  return records.count(window) != 0;
}

void scriptedPlatform::setUserData(windowHandle window, void* data) {
  std::lock_guard<std::mutex> g(lock);
  auto it = records.find(window);
  if (it != records.end()) it->second.userData = data;
}

void* scriptedPlatform::getUserData(windowHandle window) {
  std::lock_guard<std::mutex> g(lock);
  auto it = records.find(window);
  return it == records.end() ? nullptr : it->second.userData;
}

void scriptedPlatform::showWindow(windowHandle window, int command) {
  std::lock_guard<std::mutex> g(lock);
  auto it = records.find(window);
  if (it == records.end()) return;
  it->second.showCommand = command;
  log("showWindow " + std::to_string(window) + " " + std::to_string(command));
}

void scriptedPlatform::setCaption(windowHandle window, const std::wstring& caption) {
  std::lock_guard<std::mutex> g(lock);
  auto it = records.find(window);
  if (it == records.end()) return;
  it->second.caption = caption;
  log("setCaption " + std::to_string(window) + " " + narrow(caption));
}

void scriptedPlatform::setStyle(windowHandle window, const windowStyle& style) {
  std::lock_guard<std::mutex> g(lock);
  auto it = records.find(window);
  if (it == records.end()) return;
  it->second.style = style;
  log("setStyle " + std::to_string(window));
}

bool scriptedPlatform::getWindowRect(windowHandle window, rect& area) {
  std::lock_guard<std::mutex> g(lock);
  auto it = records.find(window);
  if (it == records.end()) return false;
  area = it->second.area;
  return true;
}

bool scriptedPlatform::setWindowRect(windowHandle window, const rect& area) {
  std::lock_guard<std::mutex> g(lock);
  auto it = records.find(window);
  if (it == records.end()) return false;
  it->second.area = area;
  log("setWindowRect " + std::to_string(window) + " " + std::to_string(area.x) + " " +
      std::to_string(area.y) + " " + std::to_string(area.width) + " " +
      std::to_string(area.height));
  return true;
}

bool scriptedPlatform::setFullScreen(windowHandle window, bool on) {
  std::lock_guard<std::mutex> g(lock);
  auto it = records.find(window);
  if (it == records.end()) return false;
  it->second.fullScreen = on;
  if (on) it->second.area = rect{0, 0, screenWidth, screenHeight};
  log("setFullScreen " + std::to_string(window) + " " + (on ? "1" : "0"));
  return true;
}

void scriptedPlatform::setForeground(windowHandle window) {
  std::lock_guard<std::mutex> g(lock);
  if (records.count(window)) log("setForeground " + std::to_string(window));
}

void scriptedPlatform::setCursor(windowHandle window, cursorHandle cursor) {
  std::lock_guard<std::mutex> g(lock);
  auto it = records.find(window);
  if (it != records.end()) it->second.cursor = cursor;
  log("setCursor " + std::to_string(window) + " " + std::to_string(cursor));
}

bool scriptedPlatform::getCursorPos(int& x, int& y) {
  std::lock_guard<std::mutex> g(lock);
  x = cursorX;
  y = cursorY;
  return true;
}

bool scriptedPlatform::isKeyToggled(unsigned virtualKey) {
  std::lock_guard<std::mutex> g(lock);
  return toggledKeys.count(virtualKey) != 0;
}

void scriptedPlatform::setKeyToggled(unsigned virtualKey, bool on) {
  std::lock_guard<std::mutex> g(lock);
  if (on)
    toggledKeys.insert(virtualKey);
  else
    toggledKeys.erase(virtualKey);
}

void scriptedPlatform::setCursorPos(int x, int y) {
  std::lock_guard<std::mutex> g(lock);
  cursorX = x;
  cursorY = y;
  log("setCursorPos " + std::to_string(x) + " " + std::to_string(y));
}

windowHandle scriptedPlatform::windowFromPoint(int x, int y) {
  std::lock_guard<std::mutex> g(lock);
  // The last window made is on top.
  for (auto it = order.rbegin(); it != order.rend(); ++it) {
    const windowRecord& r = records[*it];
    if (r.showCommand == SW_HIDE) continue;
    if (x >= r.area.x && y >= r.area.y && x < r.area.x + r.area.width &&
        y < r.area.y + r.area.height) {
      return *it;
    }
  }
  return 0;
}

bool scriptedPlatform::setTimer(windowHandle window, unsigned id, unsigned milliseconds,
                                timerProcedure procedure) {
  std::lock_guard<std::mutex> g(lock);
  if (!records.count(window)) return false;
  timers[{window, id}] = timerRecord{milliseconds, procedure};
  log("setTimer " + std::to_string(window) + " " + std::to_string(id) + " " +
      std::to_string(milliseconds));
  return true;
}

bool scriptedPlatform::killTimer(windowHandle window, unsigned id) {
  std::lock_guard<std::mutex> g(lock);
  if (!timers.erase({window, id})) return false;
  log("killTimer " + std::to_string(window) + " " + std::to_string(id));
  return true;
}

bool scriptedPlatform::postMessage(windowHandle window, unsigned msg, std::uint64_t wParam,
                                   std::int64_t lParam) {
  std::lock_guard<std::mutex> g(lock);
  ++posts[msg];
  if (!records.count(window)) return false;
  if (msg == WM_TICK_UPDATE || msg == WM_TICK_FRAME) {
    for (const message& m : queue) {
      if (m.window == window && m.msg == msg) return true;
    }
  }
  queue.push_back(message{window, msg, wParam, lParam});
  posted.notify_all();
  return true;
}

bool scriptedPlatform::popQueued(message& out) {
  if (queue.empty()) return false;
  out = queue.front();
  queue.pop_front();
  return true;
}

bool scriptedPlatform::peekMessage(message& out) {
  std::lock_guard<std::mutex> g(lock);
  return popQueued(out);
}

bool scriptedPlatform::getMessage(message& out) {
  std::unique_lock<std::mutex> g(lock);
  if (popQueued(out)) return true;
  if (idleHook) {
    auto hook = idleHook;
    g.unlock();
    hook(*this);
    g.lock();
    if (popQueued(out)) return true;
  }
  ++waits;
  posted.wait(g, [this] { return !queue.empty(); });
  return popQueued(out);
}

std::int64_t scriptedPlatform::dispatchMessage(const message& m) {
  if (m.msg == WM_TIMER && m.lParam != 0) {
    {
      std::lock_guard<std::mutex> g(lock);
      if (!timers.count({m.window, static_cast<unsigned>(m.wParam)})) return 0;
    }
    reinterpret_cast<timerProcedure>(static_cast<std::intptr_t>(m.lParam))(
        m.window, static_cast<unsigned>(m.wParam));
    return 0;
  }
  windowProcedure procedure = nullptr;
  {
    std::lock_guard<std::mutex> g(lock);
    auto it = records.find(m.window);
    if (it == records.end()) return 0;
    procedure = it->second.procedure;
  }
  return procedure ? procedure(m.window, m.msg, m.wParam, m.lParam) : 0;
}

std::int64_t scriptedPlatform::defaultProcedure(windowHandle, unsigned, std::uint64_t,
                                                std::int64_t) {
  return 0;
}

glContextHandle scriptedPlatform::createGLContext(windowHandle window, int samples) {
  std::lock_guard<std::mutex> g(lock);
  if (!records.count(window)) return nullptr;
  if (createContextFailures > 0) {
    --createContextFailures;
    log("createGLContext failed");
    return nullptr;
  }
  log("createGLContext " + std::to_string(window) +
      (samples > 0 ? " samples " + std::to_string(samples) : std::string()));
  return reinterpret_cast<glContextHandle>(nextContext++);
}

bool scriptedPlatform::makeCurrent(windowHandle window, glContextHandle context) {
  std::lock_guard<std::mutex> g(lock);
  if (window != 0 && !records.count(window)) return false;
  log("makeCurrent " + std::to_string(window) + " " +
      std::to_string(reinterpret_cast<std::uintptr_t>(context)));
  return true;
}

void scriptedPlatform::deleteGLContext(glContextHandle context) {
  std::lock_guard<std::mutex> g(lock);
  log("deleteGLContext " + std::to_string(reinterpret_cast<std::uintptr_t>(context)));
}

bool scriptedPlatform::swapBuffers(windowHandle window) {
  std::lock_guard<std::mutex> g(lock);
  if (!records.count(window)) return false;
  ++swaps[window];
  log("swapBuffers " + std::to_string(window));
  return true;
}

void scriptedPlatform::messageBox(const std::wstring& text, const std::wstring& title) {
  std::lock_guard<std::mutex> g(lock);
  log("messageBox " + narrow(title) + ": " + narrow(text));
}

}  // namespace PLATFORM
}  // namespace JEV
