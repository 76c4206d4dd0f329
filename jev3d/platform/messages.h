#pragma once

#include <cstdint>

namespace JEV {
namespace PLATFORM {

// Message numbers of the window procedure. The standard ones keep their Win32 values, so
// that applications written against them read the same; 2024, 2025 and 3025 are our own.
constexpr unsigned WM_CREATE = 1;
constexpr unsigned WM_SIZE = 5;
constexpr unsigned WM_ACTIVATE = 6;
constexpr unsigned WM_ENABLE = 10;
constexpr unsigned WM_PAINT = 15;
constexpr unsigned WM_CLOSE = 16;
constexpr unsigned WM_QUIT = 18;
constexpr unsigned WM_ERASEBKGND = 20;
constexpr unsigned WM_SHOWWINDOW = 24;
constexpr unsigned WM_SETTINGCHANGE = 26;
constexpr unsigned WM_SETCURSOR = 32;
constexpr unsigned WM_PAINTICON = 38;
constexpr unsigned WM_WINDOWPOSCHANGING = 70;
constexpr unsigned WM_WINDOWPOSCHANGED = 71;
constexpr unsigned WM_COPYDATA = 74;
constexpr unsigned WM_DISPLAYCHANGE = 126;
constexpr unsigned WM_KEYDOWN = 256;
constexpr unsigned WM_KEYUP = 257;
constexpr unsigned WM_CHAR = 258;
constexpr unsigned WM_UNICHAR = 265;
constexpr unsigned WM_SYSCOMMAND = 274;
constexpr unsigned WM_TIMER = 275;
constexpr unsigned WM_MOUSEMOVE = 512;
constexpr unsigned WM_LBUTTONDOWN = 513;
constexpr unsigned WM_LBUTTONUP = 514;
constexpr unsigned WM_LBUTTONDBLCLK = 515;
constexpr unsigned WM_RBUTTONDOWN = 516;
constexpr unsigned WM_RBUTTONUP = 517;
constexpr unsigned WM_RBUTTONDBLCLK = 518;
constexpr unsigned WM_MBUTTONDOWN = 519;
constexpr unsigned WM_MBUTTONUP = 520;
constexpr unsigned WM_MBUTTONDBLCLK = 521;
constexpr unsigned WM_MOUSEWHEEL = 522;
constexpr unsigned WM_SIZING = 532;
constexpr unsigned WM_ENTERSIZEMOVE = 561;
constexpr unsigned WM_DROPFILES = 563;
constexpr unsigned WM_MOUSELEAVE = 675;
// Posted by the tick threads only to wake the loop.
constexpr unsigned WM_TICK_UPDATE = 2024;
constexpr unsigned WM_TICK_FRAME = 2025;
// Callback of the notification icon; lParam carries the mouse message.
constexpr unsigned WM_NOTIFY_ICON = 3025;

// What lParam of WM_COPYDATA points to: `size` bytes at `bytes`, tagged with `data`.
struct copyDataRecord {
  std::uint64_t data = 0;
  std::uint32_t size = 0;
  const void* bytes = nullptr;
};

// wParam of WM_SIZE.
constexpr std::uint64_t SIZE_RESTORED = 0;
constexpr std::uint64_t SIZE_MINIMIZED = 1;
constexpr std::uint64_t SIZE_MAXIMIZED = 2;

// wParam of WM_SYSCOMMAND.
constexpr std::uint64_t SC_SCREENSAVE = 0xF140;
constexpr std::uint64_t SC_MONITORPOWER = 0xF170;

// Button bits in wParam of the mouse messages.
constexpr std::uint64_t MK_LBUTTON = 0x1;
constexpr std::uint64_t MK_RBUTTON = 0x2;
constexpr std::uint64_t MK_SHIFT = 0x4;
constexpr std::uint64_t MK_CONTROL = 0x8;
constexpr std::uint64_t MK_MBUTTON = 0x10;

// Commands of platform::showWindow.
constexpr int SW_HIDE = 0;
constexpr int SW_SHOWMINIMIZED = 2;
constexpr int SW_MAXIMIZE = 3;
constexpr int SW_SHOW = 5;

// Key codes: indices into the input context's 65,536 key fields.
constexpr unsigned VK_BACK = 8;
constexpr unsigned VK_TAB = 9;
constexpr unsigned VK_RETURN = 13;
constexpr unsigned VK_SHIFT = 16;
constexpr unsigned VK_CONTROL = 17;
constexpr unsigned VK_MENU = 18;
constexpr unsigned VK_PAUSE = 19;
constexpr unsigned VK_CAPITAL = 20;
constexpr unsigned VK_ESCAPE = 27;
constexpr unsigned VK_SPACE = 32;
constexpr unsigned VK_PRIOR = 33;
constexpr unsigned VK_NEXT = 34;
constexpr unsigned VK_END = 35;
constexpr unsigned VK_HOME = 36;
constexpr unsigned VK_LEFT = 37;
constexpr unsigned VK_UP = 38;
constexpr unsigned VK_RIGHT = 39;
constexpr unsigned VK_DOWN = 40;
constexpr unsigned VK_INSERT = 45;
constexpr unsigned VK_DELETE = 46;
constexpr unsigned VK_NUMPAD0 = 96;
constexpr unsigned VK_MULTIPLY = 106;
constexpr unsigned VK_ADD = 107;
constexpr unsigned VK_SUBTRACT = 109;
constexpr unsigned VK_DECIMAL = 110;
constexpr unsigned VK_DIVIDE = 111;
constexpr unsigned VK_F1 = 112;
constexpr unsigned VK_NUMLOCK = 144;
constexpr unsigned VK_SCROLL = 145;
// Keys with no code of their own get this base plus their scan code.
constexpr unsigned VK_SCANCODE_BASE = 0x400;

// Packs two signed 16-bit coordinates the way mouse messages carry them.
constexpr std::int64_t makeLParam(int low, int high) {
  return static_cast<std::int64_t>((static_cast<std::uint32_t>(high & 0xFFFF) << 16) |
                                   static_cast<std::uint32_t>(low & 0xFFFF));
}
constexpr int lowWordSigned(std::int64_t v) { return static_cast<std::int16_t>(v & 0xFFFF); }
constexpr int highWordSigned(std::int64_t v) {
  return static_cast<std::int16_t>((v >> 16) & 0xFFFF);
}
constexpr unsigned lowWord(std::int64_t v) { return static_cast<unsigned>(v & 0xFFFF); }
constexpr unsigned highWord(std::int64_t v) { return static_cast<unsigned>((v >> 16) & 0xFFFF); }

}  // namespace PLATFORM
}  // namespace JEV
