// Widgets drawn through the OpenGL back end with the library's own skins, read back
// pixel by pixel.
#include <gtest/gtest.h>

#include <cstdint>
#include <cwchar>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "jev3d/gui/font.h"
#include "jev3d/gui/label.h"
#include "jev3d/gui/panel.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/instancing/textureInstance.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/renderstate/lightingstate.h"
#include "jev3d/renderer/renderstate/scissorstate.h"
#include "jev3d/renderer/renderstate/zbufferstate.h"
#include "jev3d/resources/textureStorage.h"
#include "support/glDisplay.h"

using namespace JEV;
using namespace JEV::PLATFORM;
using namespace JEV::RENDERING;
using namespace JEV::RENDERING::RENDERSTATE;
using JEV::RENDERING::INSTANCING::textureInstance;
using rgb = std::tuple<int, int, int>;

namespace {

constexpr int side = 256;

const wchar_t* const skins[] = {L"GUI_DEFAULT_SKIN", L"GUI_PLASTIQUE_SKIN", L"GUI_XP_SKIN",
                                L"GUI_FLAT_SKIN",    L"GUI_RAG_SKIN",       L"GUI_IBRID_SKIN"};

// A window with its GL device, the default textures loaded, and the states the GUI draws
// under: pixel camera, no lighting, no depth test, the skin on unit 0.
struct skinFixture : testDisplay::glWindowFixture {
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(openWindow(L"widgets", side));
    ASSERT_TRUE(rc.getTextureStorage()->loadDefaultTexture());
  }

  // One frame of `root` in `skin`, read back.
  void frame(GUI::widget& root, const wchar_t* skin) {
    ASSERT_NO_FATAL_FAILURE(beginFrame());
    RENDERSTATE::renderStateStack& stack = *rc.getRenderStateStack();
    gl.setCameraState(MATH::matrix4<float>::getOrthoLH(0, side, 0, side, -1, 1),
                      MATH::matrix4<float>());
    textureInstance skinTexture(rc.getTextureStorage());
    ASSERT_TRUE(skinTexture.connectToResourceStorage(skin));
    stack.pushState(renderStateEnums::LIGHTING_STATE, &unlit, true);
    stack.pushState(renderStateEnums::ZBUFFER_STATE, &noDepth, true);
    stack.pushState(renderStateEnums::SCISSOR_STATE, &windowClip, true);
    stack.pushState(renderStateEnums::TEXTURE_STATE0, &skinTexture, true);
    root.render(&rc);
    root.postRender(&rc);
    stack.popState(renderStateEnums::TEXTURE_STATE0, true);
    stack.popState(renderStateEnums::SCISSOR_STATE, true);
    stack.popState(renderStateEnums::ZBUFFER_STATE, true);
    stack.popState(renderStateEnums::LIGHTING_STATE, true);
    ASSERT_NO_FATAL_FAILURE(readBack());
  }
  rgb at(int x, int y) const {
    const std::uint8_t* p = pixelAt(x, y);
    return rgb(p[0], p[1], p[2]);
  }
  // Pixels darker than any skin's light centres in [x0, x1) x [y0, y1).
  int darkPixels(int x0, int y0, int x1, int y1) const {
    int n = 0;
    for (int y = y0; y < y1; ++y) {
      for (int x = x0; x < x1; ++x) {
        const auto [r, g, b] = at(x, y);
        n += r + g + b < 300 ? 1 : 0;
      }
    }
    return n;
  }
  // The colours of the skin's texels in column `u`, rows v0 to v1 (inclusive).
  std::set<rgb> texels(const wchar_t* skin, int u, int v0, int v1) {
    const IO::textureImage& image =
        rc.getTextureStorage()->getEntry(skin)->getPayload()->getImage();
    std::set<rgb> out;
    for (int v = v0; v <= v1; ++v) {
      const unsigned char* p = image.pixel(u, v);
      out.insert(rgb(p[0], p[1], p[2]));
    }
    return out;
  }

  lightingstate unlit{false, false};
  zbufferstate noDepth{false, zbufferstate::DEPTH_LEQUAL, false, false};
  scissorstate windowClip{0, 0, side, side, true, false};
};

// A white widget with the normal button tile at (48, 0), own colours.
void makeButton(GUI::panel& button, float x, float y, float w, float h) {
  button.setUseSchemaColor(false);
  button.setColorNormal(CORE::color(255, 255, 255, 255));
  button.setRect2D(x, y, w, h);
  button.adjustUV(48, 0);
}

}  // namespace

TEST_F(skinFixture, aButtonShowsItsTilesBorderAndCentreInEverySkin) {
  std::set<rgb> centres;
  for (const wchar_t* skin : skins) {
    SCOPED_TRACE(std::string(skin, skin + wcslen(skin)));
    GUI::panel button(L"button", nullptr, nullptr);
    makeButton(button, 40, 60, 96, 28);
    frame(button, skin);
    // Corners are the tile's corners, pixel for pixel.
    EXPECT_EQ(texels(skin, 48, 0, 0).count(at(40, 60)), 1u);
    EXPECT_EQ(texels(skin, 49, 1, 1).count(at(41, 61)), 1u);
    EXPECT_EQ(texels(skin, 62, 14, 14).count(at(40 + 94, 60 + 26)), 1u);
    // The left border's middle band and the centre.
    EXPECT_EQ(texels(skin, 50, 4, 11).count(at(42, 74)), 1u);
    const std::set<rgb> centre = texels(skin, 56, 4, 11);
    ASSERT_EQ(centre.size(), 1u);
    EXPECT_EQ(centre.count(at(88, 74)), 1u);
    centres.insert(at(88, 74));
    // Outside the widget the clear colour stays.
    EXPECT_EQ(at(39, 74), rgb(0, 0, 0));
    EXPECT_EQ(at(136, 74), rgb(0, 0, 0));
  }
  EXPECT_EQ(centres.size(), 6u) << "every skin looks different";
}

TEST_F(skinFixture, bordersStayFourPixelsWideAtAnySize) {
  const wchar_t* skin = L"GUI_XP_SKIN";
  const std::set<rgb> centre = texels(skin, 56, 4, 11);
  for (float w : {20.0f, 64.0f, 200.0f}) {
    for (float h : {18.0f, 40.0f, 150.0f}) {
      SCOPED_TRACE(std::to_string(int(w)) + " x " + std::to_string(int(h)));
      GUI::panel button(L"button", nullptr, nullptr);
      makeButton(button, 30, 50, w, h);
      frame(button, skin);
      const int midY = 50 + int(h) / 2, midX = 30 + int(w) / 2;
      for (int i = 0; i < 4; ++i) {
        // Left, right, bottom and top rings, each the tile's column or row i.
        EXPECT_EQ(texels(skin, 48 + i, 4, 11).count(at(30 + i, midY)), 1u) << "left " << i;
        EXPECT_EQ(texels(skin, 63 - i, 4, 11).count(at(30 + int(w) - 1 - i, midY)), 1u)
            << "right " << i;
        EXPECT_EQ(centre.count(at(30 + i, midY)), 0u) << "left " << i;
        EXPECT_EQ(centre.count(at(midX, 50 + i)), 0u) << "bottom " << i;
        EXPECT_EQ(centre.count(at(midX, 50 + int(h) - 1 - i)), 0u) << "top " << i;
      }
      // The fifth pixel in is the centre on every side.
      EXPECT_EQ(centre.count(at(34, midY)), 1u);
      EXPECT_EQ(centre.count(at(30 + int(w) - 5, midY)), 1u);
      EXPECT_EQ(centre.count(at(midX, 54)), 1u);
      EXPECT_EQ(centre.count(at(midX, 50 + int(h) - 5)), 1u);
    }
  }
}

TEST_F(skinFixture, aChildOutsideItsParentGetsNoPixels) {
  GUI::panel parent(L"parent", nullptr, nullptr);
  makeButton(parent, 20, 20, 100, 100);
  parent.adjustUV(80, 0);
  GUI::panel child(L"child", nullptr, nullptr);
  child.connect(&parent, false);
  makeButton(child, 60, 30, 100, 40);  // sticks out on the right
  frame(parent, L"GUI_DEFAULT_SKIN");
  const std::set<rgb> childCentre = texels(L"GUI_DEFAULT_SKIN", 56, 4, 11);
  EXPECT_EQ(childCentre.count(at(100, 70)), 1u) << "inside the parent's area";
  // Past the parent's right margin (x >= 115) nothing of the child, nor of the parent
  // beyond its own edge.
  EXPECT_EQ(at(118, 50), at(118, 100)) << "parent's own border, not the child";
  EXPECT_EQ(at(130, 50), rgb(0, 0, 0));
  EXPECT_EQ(at(170, 50), rgb(0, 0, 0));
}

TEST_F(skinFixture, aCaptionsTextAppearsInsideItsBoxAndNowhereElse) {
  GUI::font sans(L"DejaVuSans", 16);
  ASSERT_TRUE(gl.cacheFont(&sans));
  GUI::panel background(L"background", nullptr, nullptr);
  makeButton(background, 10, 10, 236, 236);
  GUI::label caption(L"caption", nullptr, nullptr);
  caption.connect(&background, false);
  caption.setRect2D(40, 100, 150, 40);
  caption.getFontInstance().font = &sans;
  caption.setCaption(std::wstring(L"Mesh 42"), false);
  frame(background, L"GUI_DEFAULT_SKIN");
  // The label's box in window pixels: (50, 110) to (200, 150); the panel's inside (20,
  // 20) to (236, 236).
  const int inBox = darkPixels(50, 110, 200, 150);
  EXPECT_GT(inBox, 40) << "the glyphs are drawn";
  EXPECT_EQ(darkPixels(20, 20, 236, 236), inBox) << "no ink outside the box";
  // Centred: ink on both sides of the box's middle.
  EXPECT_GT(darkPixels(50, 110, 125, 150), 10);
  EXPECT_GT(darkPixels(125, 110, 200, 150), 10);
  // No font, no text.
  caption.getFontInstance().font = nullptr;
  frame(background, L"GUI_DEFAULT_SKIN");
  EXPECT_NE(at(60, 120), rgb(0, 0, 0));
  EXPECT_EQ(darkPixels(20, 20, 236, 236), 0);
  gl.discardFont(&sans);
}
