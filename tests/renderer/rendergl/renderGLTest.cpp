#include "jev3d/renderer/rendergl/renderGL.h"

#include <GL/glew.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <thread>
#include <vector>

#include "glWindow.h"
#include "jev3d/platform/messages.h"

using namespace JEV::PLATFORM;
using JEV::RENDERING::renderer;
using JEV::RENDERING::renderGL;

namespace {

// Counts the pixels of an RGBA block that differ from the colour by more than one step.
int pixelsOff(const std::vector<std::uint8_t>& px, std::uint8_t r, std::uint8_t g, std::uint8_t b) {
  int off = 0;
  for (size_t i = 0; i + 3 < px.size(); i += 4) {
    if (std::abs(px[i] - r) > 1 || std::abs(px[i + 1] - g) > 1 || std::abs(px[i + 2] - b) > 1) {
      ++off;
    }
  }
  return off;
}

// Clears a frame, reads it back before showing it, shows it.
std::vector<std::uint8_t> clearReadAndShow(renderGL& gl, int w, int h, float r, float g, float b) {
  glViewport(0, 0, w, h);
  glClearColor(r, g, b, 1.0f);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  std::vector<std::uint8_t> px(size_t(w) * h * 4, 0);
  EXPECT_TRUE(
      gl.readPixels(0, 0, w, h, renderer::PIXELDATA_RGBA, renderer::DATA_UNSIGNED_BYTE, px.data()));
  EXPECT_TRUE(gl.swapBuffers());
  return px;
}

}  // namespace

TEST(renderGL, contextIsMadeOnceAndTheClearColourReadsBack) {
  platform& p = current();
  const windowHandle w =
      p.createWindow(windowDescriptor{L"gl", rect{20, 20, 160, 120}, {}}, ignoreMessages);
  ASSERT_NE(w, 0u);
  renderGL gl;
  EXPECT_EQ(gl.getRendererName(), L"RenderGL");
  EXPECT_EQ(gl.getRendererKind(), 0);
  bool recreate = true;
  EXPECT_FALSE(gl.createContext(0, recreate));
  std::uint8_t one[4];
  EXPECT_FALSE(gl.readPixels(0, 0, 1, 1, renderer::PIXELDATA_RGBA, renderer::DATA_UNSIGNED_BYTE,
                             one));  // no context yet
  ASSERT_TRUE(gl.createContext(w, recreate));
  EXPECT_FALSE(recreate);
  EXPECT_TRUE(gl.createContext(w, recreate));  // no second context
  EXPECT_EQ(gl.getDC(), w);
  ASSERT_TRUE(gl.init());
  p.showWindow(w, SW_SHOW);
  ASSERT_TRUE(waitExposed(p));

  // What the fixed-function pipeline needs is there.
  GLint doubleBuffered = 0, depthBits = 0;
  glGetIntegerv(GL_DOUBLEBUFFER, &doubleBuffered);
  glGetIntegerv(GL_DEPTH_BITS, &depthBits);
  EXPECT_TRUE(doubleBuffered);
  EXPECT_GE(depthBits, 24);
  EXPECT_GE(gl.getMaxLight(), 8);
  EXPECT_GE(gl.getMaxTextureUnits(), 2);
  EXPECT_GE(gl.getMaxTextureSize(), 1024);
  EXPECT_EQ(gl.getVertexProcessingType(), renderer::VERTEXPROCESSING_DEVICE);
  EXPECT_LE(gl.getPointSizeMin(), 1.0f);
  EXPECT_GE(gl.getPointSizeMax(), 1.0f);

  std::vector<std::uint8_t> px = clearReadAndShow(gl, 160, 120, 0.2f, 0.4f, 0.8f);
  EXPECT_EQ(gl.getFrameCounter(), 0u);
  EXPECT_EQ(pixelsOff(px, 51, 102, 204), 0);

  // After a resize the whole new area takes the next clear.
  ASSERT_TRUE(p.setWindowRect(w, rect{20, 20, 200, 150}));
  message m;
  while (p.peekMessage(m)) p.dispatchMessage(m);
  px = clearReadAndShow(gl, 200, 150, 1.0f, 0.0f, 0.0f);
  EXPECT_EQ(pixelsOff(px, 255, 0, 0), 0);

  EXPECT_TRUE(gl.deleteContext());
  EXPECT_EQ(gl.getDC(), 0u);
  EXPECT_FALSE(gl.makeCurrentContext(false));
  EXPECT_TRUE(p.destroyWindow(w));
}

TEST(renderGL, namesGivenUpFromAnotherThreadAreDeletedAtTheNextFrame) {
  platform& p = current();
  const windowHandle w =
      p.createWindow(windowDescriptor{L"gl", rect{0, 0, 64, 64}, {}}, ignoreMessages);
  ASSERT_NE(w, 0u);
  renderGL gl;
  bool recreate = false;
  ASSERT_TRUE(gl.createContext(w, recreate));
  std::vector<unsigned> textures(3), buffers(2);
  glGenTextures(3, textures.data());
  for (unsigned t : textures) glBindTexture(GL_TEXTURE_2D, t);
  glBindTexture(GL_TEXTURE_2D, 0);
  glGenBuffers(2, buffers.data());
  for (unsigned b : buffers) glBindBuffer(GL_ARRAY_BUFFER, b);
  glBindBuffer(GL_ARRAY_BUFFER, 0);
  const std::vector<unsigned> t0 = textures, b0 = buffers;

  std::thread worker([&] {
    gl.addTextureToDiscardList(textures);
    gl.addVertexBufferToDiscardList(buffers);
  });
  worker.join();
  EXPECT_TRUE(textures.empty());
  EXPECT_TRUE(buffers.empty());
  for (unsigned t : t0) EXPECT_TRUE(glIsTexture(t));
  ASSERT_TRUE(gl.emptyDiscardList());
  for (unsigned t : t0) EXPECT_FALSE(glIsTexture(t));
  for (unsigned b : b0) EXPECT_FALSE(glIsBuffer(b));
  gl.deleteContext();
  p.destroyWindow(w);
}
