#include "jev3d/platform/sdlPlatform.h"

#include <SDL2/SDL.h>

#include <cstdio>
#include <deque>
#include <map>
#include <mutex>
#include <string>

#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/platform/internal/sdlKeyMap.h"
#include "jev3d/platform/messages.h"

namespace JEV {
namespace PLATFORM {

namespace {

std::string toUtf8(const std::wstring& w) { return IO::XML::wstringToUtf8(w); }

// What every context asks: double-buffered RGBA with 24 depth and 8 stencil bits on the
// compatibility profile, and sample buffers when samples are asked.
void setContextAttributes(int samples) {
  SDL_GL_ResetAttributes();
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_COMPATIBILITY);
  SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
  SDL_GL_SetAttribute(SDL_GL_RED_SIZE, 8);
  SDL_GL_SetAttribute(SDL_GL_GREEN_SIZE, 8);
  SDL_GL_SetAttribute(SDL_GL_BLUE_SIZE, 8);
  SDL_GL_SetAttribute(SDL_GL_ALPHA_SIZE, 8);
  SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 24);
  SDL_GL_SetAttribute(SDL_GL_STENCIL_SIZE, 8);
  SDL_GL_SetAttribute(SDL_GL_MULTISAMPLEBUFFERS, samples > 0 ? 1 : 0);
  SDL_GL_SetAttribute(SDL_GL_MULTISAMPLESAMPLES, samples > 0 ? samples : 0);
}

std::uint64_t buttonBits(Uint32 state) {
  std::uint64_t bits = 0;
  if (state & SDL_BUTTON_LMASK) bits |= MK_LBUTTON;
  if (state & SDL_BUTTON_RMASK) bits |= MK_RBUTTON;
  if (state & SDL_BUTTON_MMASK) bits |= MK_MBUTTON;
  const SDL_Keymod mod = SDL_GetModState();
  if (mod & KMOD_SHIFT) bits |= MK_SHIFT;
  if (mod & KMOD_CTRL) bits |= MK_CONTROL;
  return bits;
}

}  // namespace

struct sdlPlatform::impl {
  struct windowData {
    SDL_Window* sdl = nullptr;
    windowProcedure procedure = nullptr;
    void* userData = nullptr;
    bool updateTickPending = false;
    bool frameTickPending = false;
    int lastMouseX = -1000000;
    int lastMouseY = -1000000;
    std::deque<std::string> dropped;  // paths waiting for takeDroppedFile
  };
  struct timerData {
    windowHandle window;
    unsigned id;
    timerProcedure procedure;
    SDL_TimerID sdlId;
  };

  bool ready = false;
  Uint32 postedEvent = 0;  // messages from postMessage
  Uint32 timerEvent = 0;   // timer expiries
  // Guards `windows` against postMessage from other threads; everything else is
  // touched by the pumping thread only.
  std::mutex windowsLock;
  std::map<windowHandle, windowData> windows;
  std::map<std::uintptr_t, timerData> timers;  // by serial
  std::uintptr_t nextTimerSerial = 1;
  std::deque<message> queue;
  std::map<cursorHandle, SDL_Cursor*> cursors;

  SDL_Window* sdlWindow(windowHandle h) {
    std::lock_guard<std::mutex> lock(windowsLock);
    auto it = windows.find(h);
    return it == windows.end() ? nullptr : it->second.sdl;
  }

  void push(windowHandle w, unsigned msg, std::uint64_t wParam, std::int64_t lParam) {
    queue.push_back(message{w, msg, wParam, lParam});
  }

  // Buttons and wheel use the position of the last move; one is made up when SDL
  // reports a press somewhere the pointer was never seen moving to.
  void syncMouse(windowHandle w, int x, int y, Uint32 state) {
    std::lock_guard<std::mutex> lock(windowsLock);
    auto it = windows.find(w);
    if (it == windows.end()) return;
    if (it->second.lastMouseX == x && it->second.lastMouseY == y) return;
    it->second.lastMouseX = x;
    it->second.lastMouseY = y;
    queue.push_back(message{w, WM_MOUSEMOVE, buttonBits(state), makeLParam(x, y)});
  }

  void translateWindowEvent(const SDL_WindowEvent& e) {
    const windowHandle w = e.windowID;
    SDL_Window* sdl = sdlWindow(w);
    if (!sdl) return;
    int width = 0, height = 0;
    SDL_GetWindowSize(sdl, &width, &height);
    const Uint32 flags = SDL_GetWindowFlags(sdl);
    switch (e.event) {
      case SDL_WINDOWEVENT_SHOWN:
        push(w, WM_SHOWWINDOW, 1, 0);
        break;
      case SDL_WINDOWEVENT_HIDDEN:
        push(w, WM_SHOWWINDOW, 0, 0);
        break;
      case SDL_WINDOWEVENT_EXPOSED:
        push(w, WM_PAINT, 0, 0);
        break;
      case SDL_WINDOWEVENT_MOVED:
        push(w, WM_WINDOWPOSCHANGED, 0, 0);
        break;
      case SDL_WINDOWEVENT_SIZE_CHANGED:
        push(w, WM_SIZE, (flags & SDL_WINDOW_MAXIMIZED) ? SIZE_MAXIMIZED : SIZE_RESTORED,
             makeLParam(e.data1, e.data2));
        break;
      case SDL_WINDOWEVENT_MINIMIZED:
        push(w, WM_SIZE, SIZE_MINIMIZED, makeLParam(width, height));
        break;
      case SDL_WINDOWEVENT_MAXIMIZED:
        push(w, WM_SIZE, SIZE_MAXIMIZED, makeLParam(width, height));
        break;
      case SDL_WINDOWEVENT_RESTORED:
        push(w, WM_SIZE, SIZE_RESTORED, makeLParam(width, height));
        break;
      case SDL_WINDOWEVENT_FOCUS_GAINED:
        push(w, WM_ACTIVATE, 1, 0);
        break;
      case SDL_WINDOWEVENT_FOCUS_LOST:
        push(w, WM_ACTIVATE, 0, 0);
        break;
      case SDL_WINDOWEVENT_CLOSE:
        push(w, WM_CLOSE, 0, 0);
        break;
      default:
        break;  // enter and leave: the runtime watches leaving itself
    }
  }

  void translateButton(const SDL_MouseButtonEvent& e) {
    const windowHandle w = e.windowID;
    SDL_Window* sdl = sdlWindow(w);
    if (!sdl) return;
    const Uint32 state = SDL_GetMouseState(nullptr, nullptr);
    syncMouse(w, e.x, e.y, state);
    unsigned base;
    switch (e.button) {
      case SDL_BUTTON_LEFT:
        base = WM_LBUTTONDOWN;
        break;
      case SDL_BUTTON_RIGHT:
        base = WM_RBUTTONDOWN;
        break;
      case SDL_BUTTON_MIDDLE:
        base = WM_MBUTTONDOWN;
        break;
      default:
        return;
    }
    const std::int64_t l = makeLParam(e.x, e.y);
    if (e.type == SDL_MOUSEBUTTONDOWN) {
      // Capture follows keyboard focus, and there may be no window manager to move it.
      SDL_RaiseWindow(sdl);
      SDL_SetWindowInputFocus(sdl);
      SDL_CaptureMouse(SDL_TRUE);
      const bool dbl = e.clicks >= 2 && e.clicks % 2 == 0;
      push(w, dbl ? base + 2 : base, buttonBits(state), l);
    } else {
      if ((state & (SDL_BUTTON_LMASK | SDL_BUTTON_RMASK | SDL_BUTTON_MMASK)) == 0) {
        SDL_CaptureMouse(SDL_FALSE);
      }
      push(w, base + 1, buttonBits(state), l);
    }
  }

  void translate(const SDL_Event& e) {
    if (e.type == postedEvent) {
      const auto w = static_cast<windowHandle>(e.user.windowID);
      const auto msg = static_cast<unsigned>(e.user.code);
      {
        std::lock_guard<std::mutex> lock(windowsLock);
        auto it = windows.find(w);
        if (it == windows.end()) return;
        if (msg == WM_TICK_UPDATE) it->second.updateTickPending = false;
        if (msg == WM_TICK_FRAME) it->second.frameTickPending = false;
      }
      push(w, msg, reinterpret_cast<std::uintptr_t>(e.user.data1),
           static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(e.user.data2)));
      return;
    }
    if (e.type == timerEvent) {
      auto it = timers.find(reinterpret_cast<std::uintptr_t>(e.user.data1));
      if (it == timers.end()) return;  // killed after the expiry was queued
      push(it->second.window, WM_TIMER, it->second.id,
           static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(it->second.procedure)));
      return;
    }
    switch (e.type) {
      case SDL_WINDOWEVENT:
        translateWindowEvent(e.window);
        break;
      case SDL_KEYDOWN:
      case SDL_KEYUP: {
        const windowHandle w = e.key.windowID;
        if (!sdlWindow(w)) break;
        const unsigned vk = INTERNAL::keyIndexFromSdl(e.key.keysym.sym, e.key.keysym.scancode);
        const std::int64_t l = 1 | (static_cast<std::int64_t>(e.key.keysym.scancode) << 16) |
                               (e.key.repeat ? (std::int64_t(1) << 30) : 0);
        push(w, e.type == SDL_KEYDOWN ? WM_KEYDOWN : WM_KEYUP, vk, l);
        // Text input carries printable characters only; these control characters come
        // as characters too, as editors expect.
        if (e.type == SDL_KEYDOWN &&
            (vk == VK_BACK || vk == VK_TAB || vk == VK_RETURN || vk == VK_ESCAPE)) {
          push(w, WM_CHAR, vk, l);
        }
        break;
      }
      case SDL_TEXTINPUT: {
        const windowHandle w = e.text.windowID;
        if (!sdlWindow(w)) break;
        const char* t = e.text.text;
        for (unsigned c = INTERNAL::nextCodePoint(t); c != 0; c = INTERNAL::nextCodePoint(t)) {
          push(w, WM_CHAR, c, 1);
        }
        break;
      }
      case SDL_MOUSEMOTION: {
        const windowHandle w = e.motion.windowID;
        std::lock_guard<std::mutex> lock(windowsLock);
        auto it = windows.find(w);
        if (it == windows.end()) break;
        it->second.lastMouseX = e.motion.x;
        it->second.lastMouseY = e.motion.y;
        push(w, WM_MOUSEMOVE, buttonBits(e.motion.state), makeLParam(e.motion.x, e.motion.y));
        break;
      }
      case SDL_MOUSEBUTTONDOWN:
      case SDL_MOUSEBUTTONUP:
        translateButton(e.button);
        break;
      case SDL_DROPFILE: {
        // SDL hands over the path's memory; the window takes the path when it wakes.
        const windowHandle w = e.drop.windowID;
        if (e.drop.file) {
          std::lock_guard<std::mutex> lock(windowsLock);
          auto it = windows.find(w);
          if (it != windows.end()) it->second.dropped.emplace_back(e.drop.file);
          if (it != windows.end()) push(w, WM_DROPFILES, 0, 0);
        }
        SDL_free(e.drop.file);
        break;
      }
      case SDL_MOUSEWHEEL: {
        const windowHandle w = e.wheel.windowID;
        if (!sdlWindow(w)) break;
        int y = e.wheel.y;
        if (e.wheel.direction == SDL_MOUSEWHEEL_FLIPPED) y = -y;
        int mx = 0, my = 0;
        const Uint32 state = SDL_GetMouseState(&mx, &my);
        const auto delta = static_cast<std::uint64_t>(static_cast<std::uint16_t>(y * 120));
        push(w, WM_MOUSEWHEEL, (delta << 16) | buttonBits(state), makeLParam(mx, my));
        break;
      }
      default:
        break;  // SDL_QUIT among others: only closing windows ends the loop
    }
  }
};

namespace {

Uint32 timerCallback(Uint32 interval, void* param) {
  // Runs on SDL's timer thread: only the queue may be touched here.
  SDL_Event e{};
  e.type = static_cast<Uint32>(reinterpret_cast<std::uintptr_t>(param) >> 32);
  e.user.data1 = reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(param) & 0xFFFFFFFFu);
  SDL_PushEvent(&e);
  return interval;
}

}  // namespace

sdlPlatform::sdlPlatform() : d(new impl) {
  // Ctrl+C must stay the process's, not become a quit event nobody reads.
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_TIMER | SDL_INIT_EVENTS) != 0) {
    std::fprintf(stderr, "jev3d: cannot start SDL video: %s\n", SDL_GetError());
    return;
  }
  d->postedEvent = SDL_RegisterEvents(2);
  if (d->postedEvent == static_cast<Uint32>(-1)) {
    SDL_Quit();
    return;
  }
  d->timerEvent = d->postedEvent + 1;
  d->ready = true;
}

sdlPlatform::~sdlPlatform() {
  if (!d->ready) return;
  for (auto& t : d->timers) SDL_RemoveTimer(t.second.sdlId);
  for (auto& c : d->cursors) SDL_FreeCursor(c.second);
  for (auto& w : d->windows) SDL_DestroyWindow(w.second.sdl);
  SDL_Quit();
}

bool sdlPlatform::isReady() const { return d->ready; }

void sdlPlatform::getScreenSize(int& width, int& height) {
  SDL_DisplayMode mode{};
  if (!d->ready || SDL_GetDesktopDisplayMode(0, &mode) != 0) {
    width = height = 0;
    return;
  }
  width = mode.w;
  height = mode.h;
}

windowHandle sdlPlatform::createWindow(const windowDescriptor& desc, windowProcedure procedure) {
  if (!d->ready) return 0;
  // The drawable's format is chosen here on most of SDL's drivers.
  setContextAttributes(desc.samples);
  Uint32 flags = SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN;
  if (desc.style.resizable) flags |= SDL_WINDOW_RESIZABLE;
  if (desc.style.popup) flags |= SDL_WINDOW_BORDERLESS;
  if (desc.style.toolWindow) flags |= SDL_WINDOW_UTILITY;
  SDL_Window* sdl = SDL_CreateWindow(toUtf8(desc.caption).c_str(), desc.area.x, desc.area.y,
                                     desc.area.width > 0 ? desc.area.width : 1,
                                     desc.area.height > 0 ? desc.area.height : 1, flags);
  if (!sdl) {
    std::fprintf(stderr, "jev3d: cannot create a window: %s\n", SDL_GetError());
    return 0;
  }
  const windowHandle h = SDL_GetWindowID(sdl);
  std::lock_guard<std::mutex> lock(d->windowsLock);
  auto& data = d->windows[h];
  data.sdl = sdl;
  data.procedure = procedure;
  return h;
}

bool sdlPlatform::destroyWindow(windowHandle window) {
  SDL_Window* sdl = nullptr;
  {
    std::lock_guard<std::mutex> lock(d->windowsLock);
    auto it = d->windows.find(window);
    if (it == d->windows.end()) return false;
    sdl = it->second.sdl;
    d->windows.erase(it);
  }
  for (auto it = d->timers.begin(); it != d->timers.end();) {
    if (it->second.window == window) {
      SDL_RemoveTimer(it->second.sdlId);
      it = d->timers.erase(it);
    } else {
      ++it;
    }
  }
  SDL_DestroyWindow(sdl);
  return true;
}

bool sdlPlatform::isWindow(windowHandle window) { return d->sdlWindow(window) != nullptr; }

void sdlPlatform::setUserData(windowHandle window, void* data) {
  std::lock_guard<std::mutex> lock(d->windowsLock);
  auto it = d->windows.find(window);
  if (it != d->windows.end()) it->second.userData = data;
}

void* sdlPlatform::getUserData(windowHandle window) {
  std::lock_guard<std::mutex> lock(d->windowsLock);
  auto it = d->windows.find(window);
  return it == d->windows.end() ? nullptr : it->second.userData;
}

void sdlPlatform::showWindow(windowHandle window, int command) {
  SDL_Window* sdl = d->sdlWindow(window);
  if (!sdl) return;
  switch (command) {
    case SW_HIDE:
      SDL_HideWindow(sdl);
      break;
    case SW_MAXIMIZE:
      SDL_ShowWindow(sdl);
      SDL_MaximizeWindow(sdl);
      break;
    case SW_SHOWMINIMIZED:
      SDL_ShowWindow(sdl);
      SDL_MinimizeWindow(sdl);
      break;
    default:
      SDL_ShowWindow(sdl);
      break;
  }
}

void sdlPlatform::setCaption(windowHandle window, const std::wstring& caption) {
  if (SDL_Window* sdl = d->sdlWindow(window)) SDL_SetWindowTitle(sdl, toUtf8(caption).c_str());
}

void sdlPlatform::setStyle(windowHandle window, const windowStyle& style) {
  // SDL has no per-button control: only the frame and the resizing follow the style.
  SDL_Window* sdl = d->sdlWindow(window);
  if (!sdl) return;
  SDL_SetWindowResizable(sdl, style.resizable ? SDL_TRUE : SDL_FALSE);
  SDL_SetWindowBordered(sdl, style.popup ? SDL_FALSE : SDL_TRUE);
}

bool sdlPlatform::getWindowRect(windowHandle window, rect& area) {
  SDL_Window* sdl = d->sdlWindow(window);
  if (!sdl) return false;
  SDL_GetWindowPosition(sdl, &area.x, &area.y);
  SDL_GetWindowSize(sdl, &area.width, &area.height);
  return true;
}

bool sdlPlatform::setWindowRect(windowHandle window, const rect& area) {
  SDL_Window* sdl = d->sdlWindow(window);
  if (!sdl) return false;
  SDL_SetWindowPosition(sdl, area.x, area.y);
  SDL_SetWindowSize(sdl, area.width > 0 ? area.width : 1, area.height > 0 ? area.height : 1);
  return true;
}

bool sdlPlatform::setFullScreen(windowHandle window, bool on) {
  SDL_Window* sdl = d->sdlWindow(window);
  if (!sdl) return false;
  return SDL_SetWindowFullscreen(sdl, on ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0) == 0;
}

void sdlPlatform::setForeground(windowHandle window) {
  if (SDL_Window* sdl = d->sdlWindow(window)) {
    SDL_RaiseWindow(sdl);
    SDL_SetWindowInputFocus(sdl);
  }
}

void sdlPlatform::setCursor(windowHandle, cursorHandle cursor) {
  if (!d->ready) return;
  auto it = d->cursors.find(cursor);
  if (it == d->cursors.end()) {
    SDL_SystemCursor id;
    switch (cursor) {
      case CURSOR_IBEAM:
        id = SDL_SYSTEM_CURSOR_IBEAM;
        break;
      case CURSOR_WAIT:
        id = SDL_SYSTEM_CURSOR_WAIT;
        break;
      case CURSOR_CROSS:
        id = SDL_SYSTEM_CURSOR_CROSSHAIR;
        break;
      case CURSOR_SIZEALL:
        id = SDL_SYSTEM_CURSOR_SIZEALL;
        break;
      case CURSOR_HAND:
        id = SDL_SYSTEM_CURSOR_HAND;
        break;
      default:
        id = SDL_SYSTEM_CURSOR_ARROW;
        break;
    }
    it = d->cursors.emplace(cursor, SDL_CreateSystemCursor(id)).first;
  }
  if (it->second) SDL_SetCursor(it->second);
}

bool sdlPlatform::getCursorPos(int& x, int& y) {
  if (!d->ready) return false;
  SDL_GetGlobalMouseState(&x, &y);
  return true;
}

bool sdlPlatform::isKeyToggled(unsigned virtualKey) {
  if (!d->ready) return false;
  const SDL_Keymod mods = SDL_GetModState();
  if (virtualKey == VK_CAPITAL) return (mods & KMOD_CAPS) != 0;
  if (virtualKey == VK_NUMLOCK) return (mods & KMOD_NUM) != 0;
  return false;
}

void sdlPlatform::setCursorPos(int x, int y) {
  if (d->ready) SDL_WarpMouseGlobal(x, y);
}

windowHandle sdlPlatform::windowFromPoint(int x, int y) {
  std::lock_guard<std::mutex> lock(d->windowsLock);
  SDL_Window* focus = SDL_GetMouseFocus();
  windowHandle found = 0;
  for (auto& w : d->windows) {
    if (!(SDL_GetWindowFlags(w.second.sdl) & SDL_WINDOW_SHOWN)) continue;
    int wx, wy, ww, wh;
    SDL_GetWindowPosition(w.second.sdl, &wx, &wy);
    SDL_GetWindowSize(w.second.sdl, &ww, &wh);
    if (x < wx || y < wy || x >= wx + ww || y >= wy + wh) continue;
    if (w.second.sdl == focus) return w.first;  // the topmost one SDL knows of
    if (!found) found = w.first;
  }
  return found;
}

bool sdlPlatform::setTimer(windowHandle window, unsigned id, unsigned milliseconds,
                           timerProcedure procedure) {
  if (!isWindow(window)) return false;
  killTimer(window, id);
  const std::uintptr_t serial = d->nextTimerSerial++;
  // The callback gets event type and serial packed in one word, so it never reads
  // state that killTimer may be freeing.
  const std::uintptr_t packed = (static_cast<std::uintptr_t>(d->timerEvent) << 32) | serial;
  const SDL_TimerID sdlId =
      SDL_AddTimer(milliseconds ? milliseconds : 1, timerCallback, reinterpret_cast<void*>(packed));
  if (!sdlId) return false;
  d->timers[serial] = impl::timerData{window, id, procedure, sdlId};
  return true;
}

bool sdlPlatform::killTimer(windowHandle window, unsigned id) {
  for (auto it = d->timers.begin(); it != d->timers.end(); ++it) {
    if (it->second.window == window && it->second.id == id) {
      SDL_RemoveTimer(it->second.sdlId);
      d->timers.erase(it);
      return true;
    }
  }
  return false;
}

bool sdlPlatform::postMessage(windowHandle window, unsigned msg, std::uint64_t wParam,
                              std::int64_t lParam) {
  if (!d->ready) return false;
  {
    std::lock_guard<std::mutex> lock(d->windowsLock);
    auto it = d->windows.find(window);
    if (it == d->windows.end()) return false;
    if (msg == WM_TICK_UPDATE) {
      if (it->second.updateTickPending) return true;
      it->second.updateTickPending = true;
    } else if (msg == WM_TICK_FRAME) {
      if (it->second.frameTickPending) return true;
      it->second.frameTickPending = true;
    }
  }
  SDL_Event e{};
  e.type = d->postedEvent;
  e.user.windowID = static_cast<Uint32>(window);
  e.user.code = static_cast<Sint32>(msg);
  e.user.data1 = reinterpret_cast<void*>(static_cast<std::uintptr_t>(wParam));
  e.user.data2 = reinterpret_cast<void*>(static_cast<std::intptr_t>(lParam));
  if (SDL_PushEvent(&e) == 1) return true;
  std::lock_guard<std::mutex> lock(d->windowsLock);
  auto it = d->windows.find(window);
  if (it != d->windows.end()) {
    if (msg == WM_TICK_UPDATE) it->second.updateTickPending = false;
    if (msg == WM_TICK_FRAME) it->second.frameTickPending = false;
  }
  return false;
}

bool sdlPlatform::peekMessage(message& out) {
  if (!d->ready) return false;
  SDL_Event e;
  while (d->queue.empty() && SDL_PollEvent(&e)) d->translate(e);
  if (d->queue.empty()) return false;
  out = d->queue.front();
  d->queue.pop_front();
  return true;
}

bool sdlPlatform::getMessage(message& out) {
  if (!d->ready) return false;
  SDL_Event e;
  while (d->queue.empty()) {
    if (!SDL_WaitEvent(&e)) return false;
    d->translate(e);
  }
  out = d->queue.front();
  d->queue.pop_front();
  return true;
}

std::int64_t sdlPlatform::dispatchMessage(const message& m) {
  if (m.msg == WM_TIMER && m.lParam != 0) {
    reinterpret_cast<timerProcedure>(static_cast<std::intptr_t>(m.lParam))(
        m.window, static_cast<unsigned>(m.wParam));
    return 0;
  }
  windowProcedure procedure = nullptr;
  {
    std::lock_guard<std::mutex> lock(d->windowsLock);
    auto it = d->windows.find(m.window);
    if (it == d->windows.end()) return 0;
    procedure = it->second.procedure;
  }
  return procedure ? procedure(m.window, m.msg, m.wParam, m.lParam) : 0;
}

std::int64_t sdlPlatform::defaultProcedure(windowHandle, unsigned, std::uint64_t, std::int64_t) {
  return 0;
}

glContextHandle sdlPlatform::createGLContext(windowHandle window, int samples) {
  SDL_Window* sdl = d->sdlWindow(window);
  if (!sdl) return nullptr;
  setContextAttributes(samples);
  SDL_GLContext context = SDL_GL_CreateContext(sdl);
  if (!context) {
    std::fprintf(stderr, "jev3d: cannot create a GL context: %s\n", SDL_GetError());
    return nullptr;
  }
  // One thread serves every window: a swap must never wait for a display refresh.
  SDL_GL_SetSwapInterval(0);
  return context;
}

bool sdlPlatform::makeCurrent(windowHandle window, glContextHandle context) {
  SDL_Window* sdl = d->sdlWindow(window);
  if (!sdl && window != 0) return false;
  return SDL_GL_MakeCurrent(sdl, context) == 0;
}

void sdlPlatform::deleteGLContext(glContextHandle context) {
  if (context) SDL_GL_DeleteContext(context);
}

bool sdlPlatform::swapBuffers(windowHandle window) {
  SDL_Window* sdl = d->sdlWindow(window);
  if (!sdl) return false;
  SDL_GL_SwapWindow(sdl);
  return true;
}

bool sdlPlatform::takeDroppedFile(windowHandle window, std::string& path) {
  std::lock_guard<std::mutex> lock(d->windowsLock);
  auto it = d->windows.find(window);
  if (it == d->windows.end() || it->second.dropped.empty()) return false;
  path = std::move(it->second.dropped.front());
  it->second.dropped.pop_front();
  return true;
}

void sdlPlatform::messageBox(const std::wstring& text, const std::wstring& title) {
  const std::string t = toUtf8(text), c = toUtf8(title);
  std::fprintf(stderr, "%s: %s\n", c.c_str(), t.c_str());
  SDL_ShowSimpleMessageBox(SDL_MESSAGEBOX_WARNING, c.c_str(), t.c_str(), nullptr);
}

}  // namespace PLATFORM
}  // namespace JEV
