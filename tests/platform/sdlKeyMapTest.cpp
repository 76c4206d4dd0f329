#include "jev3d/platform/internal/sdlKeyMap.h"

#include <SDL2/SDL.h>
#include <gtest/gtest.h>

#include "jev3d/platform/messages.h"

using namespace JEV::PLATFORM;
using INTERNAL::keyIndexFromSdl;
using INTERNAL::nextCodePoint;

TEST(sdlKeyMap, controlAndAltKeepTheirIndicesOnBothSides) {
  EXPECT_EQ(keyIndexFromSdl(SDLK_LCTRL, SDL_SCANCODE_LCTRL), VK_CONTROL);
  EXPECT_EQ(keyIndexFromSdl(SDLK_RCTRL, SDL_SCANCODE_RCTRL), VK_CONTROL);
  EXPECT_EQ(keyIndexFromSdl(SDLK_LALT, SDL_SCANCODE_LALT), VK_MENU);
  EXPECT_EQ(keyIndexFromSdl(SDLK_RALT, SDL_SCANCODE_RALT), VK_MENU);
  EXPECT_EQ(keyIndexFromSdl(SDLK_MODE, SDL_SCANCODE_MODE), VK_MENU);
}

TEST(sdlKeyMap, lettersDigitsAndFunctionKeysTakeVirtualKeyNumbers) {
  EXPECT_EQ(keyIndexFromSdl(SDLK_a, SDL_SCANCODE_A), unsigned('A'));
  EXPECT_EQ(keyIndexFromSdl(SDLK_z, SDL_SCANCODE_Z), unsigned('Z'));
  EXPECT_EQ(keyIndexFromSdl(SDLK_0, SDL_SCANCODE_0), unsigned('0'));
  EXPECT_EQ(keyIndexFromSdl(SDLK_F1, SDL_SCANCODE_F1), VK_F1);
  EXPECT_EQ(keyIndexFromSdl(SDLK_F12, SDL_SCANCODE_F12), VK_F1 + 11);
  EXPECT_EQ(keyIndexFromSdl(SDLK_ESCAPE, SDL_SCANCODE_ESCAPE), VK_ESCAPE);
  EXPECT_EQ(keyIndexFromSdl(SDLK_LEFT, SDL_SCANCODE_LEFT), VK_LEFT);
  EXPECT_EQ(keyIndexFromSdl(SDLK_KP_5, SDL_SCANCODE_KP_5), VK_NUMPAD0 + 5);
}

TEST(sdlKeyMap, everyKeyMapsBelowTheKeyTableSize) {
  for (int sc = 0; sc < SDL_NUM_SCANCODES; ++sc) {
    const SDL_Keycode key = SDL_SCANCODE_TO_KEYCODE(sc);
    EXPECT_LT(keyIndexFromSdl(key, sc), 65536u) << sc;
  }
  // Unknown keys keep distinct indices through their scancodes.
  EXPECT_NE(keyIndexFromSdl(SDLK_AUDIOPLAY, SDL_SCANCODE_AUDIOPLAY),
            keyIndexFromSdl(SDLK_AUDIOSTOP, SDL_SCANCODE_AUDIOSTOP));
}

TEST(sdlKeyMap, textDecodesToCodePointsAndSurvivesBadBytes) {
  const char* t = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
  EXPECT_EQ(nextCodePoint(t), 0x61u);
  EXPECT_EQ(nextCodePoint(t), 0xE9u);
  EXPECT_EQ(nextCodePoint(t), 0x20ACu);
  EXPECT_EQ(nextCodePoint(t), 0x1F600u);
  EXPECT_EQ(nextCodePoint(t), 0u);
  const char* bad = "\x80\xC3(\xFF";
  EXPECT_EQ(nextCodePoint(bad), 0xFFFDu);
  EXPECT_EQ(nextCodePoint(bad), 0xFFFDu);
  EXPECT_EQ(nextCodePoint(bad), unsigned('('));
  EXPECT_EQ(nextCodePoint(bad), 0xFFFDu);
  EXPECT_EQ(nextCodePoint(bad), 0u);
}
