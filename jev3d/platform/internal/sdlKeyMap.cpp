#include "jev3d/platform/internal/sdlKeyMap.h"

#include <SDL2/SDL.h>

#include "jev3d/platform/messages.h"

namespace JEV {
namespace PLATFORM {
namespace INTERNAL {

unsigned keyIndexFromSdl(int keycode, int scancode) {
  if (keycode >= SDLK_a && keycode <= SDLK_z) return 'A' + (keycode - SDLK_a);
  if (keycode >= SDLK_0 && keycode <= SDLK_9) return '0' + (keycode - SDLK_0);
  if (keycode >= SDLK_F1 && keycode <= SDLK_F12) return VK_F1 + (keycode - SDLK_F1);
  if (keycode >= SDLK_F13 && keycode <= SDLK_F24) return VK_F1 + 12 + (keycode - SDLK_F13);
  if (keycode >= SDLK_KP_1 && keycode <= SDLK_KP_9) return VK_NUMPAD0 + 1 + (keycode - SDLK_KP_1);
  switch (keycode) {
    case SDLK_BACKSPACE:
      return VK_BACK;
    case SDLK_TAB:
      return VK_TAB;
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
      return VK_RETURN;
    case SDLK_LSHIFT:
    case SDLK_RSHIFT:
      return VK_SHIFT;
    case SDLK_LCTRL:
    case SDLK_RCTRL:
      return VK_CONTROL;
    // AltGr arrives as right Alt or as the mode switch, depending on the keymap.
    case SDLK_LALT:
    case SDLK_RALT:
    case SDLK_MODE:
      return VK_MENU;
    case SDLK_PAUSE:
      return VK_PAUSE;
    case SDLK_CAPSLOCK:
      return VK_CAPITAL;
    case SDLK_ESCAPE:
      return VK_ESCAPE;
    case SDLK_SPACE:
      return VK_SPACE;
    case SDLK_PAGEUP:
      return VK_PRIOR;
    case SDLK_PAGEDOWN:
      return VK_NEXT;
    case SDLK_END:
      return VK_END;
    case SDLK_HOME:
      return VK_HOME;
    case SDLK_LEFT:
      return VK_LEFT;
    case SDLK_UP:
      return VK_UP;
    case SDLK_RIGHT:
      return VK_RIGHT;
    case SDLK_DOWN:
      return VK_DOWN;
    case SDLK_INSERT:
      return VK_INSERT;
    case SDLK_DELETE:
      return VK_DELETE;
    case SDLK_KP_0:
      return VK_NUMPAD0;
    case SDLK_KP_MULTIPLY:
      return VK_MULTIPLY;
    case SDLK_KP_PLUS:
      return VK_ADD;
    case SDLK_KP_MINUS:
      return VK_SUBTRACT;
    case SDLK_KP_PERIOD:
      return VK_DECIMAL;
    case SDLK_KP_DIVIDE:
      return VK_DIVIDE;
    case SDLK_NUMLOCKCLEAR:
      return VK_NUMLOCK;
    case SDLK_SCROLLLOCK:
      return VK_SCROLL;
    default:
      break;
  }
  // Scancodes are below 512, so the index stays well under 65,536.
  return VK_SCANCODE_BASE + (static_cast<unsigned>(scancode) & 0x1FF);
}

unsigned nextCodePoint(const char*& text) {
  const auto* s = reinterpret_cast<const unsigned char*>(text);
  if (*s == 0) return 0;
  unsigned c = *s++;
  int extra = 0;
  if (c >= 0xF8) {
    text = reinterpret_cast<const char*>(s);
    return 0xFFFD;
  }
  if (c >= 0xF0) {
    c &= 0x07;
    extra = 3;
  } else if (c >= 0xE0) {
    c &= 0x0F;
    extra = 2;
  } else if (c >= 0xC0) {
    c &= 0x1F;
    extra = 1;
  } else if (c >= 0x80) {
    text = reinterpret_cast<const char*>(s);
    return 0xFFFD;
  }
  for (; extra > 0; --extra) {
    if ((*s & 0xC0) != 0x80) {
      text = reinterpret_cast<const char*>(s);
      return 0xFFFD;
    }
    c = (c << 6) | (*s++ & 0x3F);
  }
  text = reinterpret_cast<const char*>(s);
  return c;
}

}  // namespace INTERNAL
}  // namespace PLATFORM
}  // namespace JEV
