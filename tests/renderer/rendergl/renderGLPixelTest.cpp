// Scenes drawn through the state nodes and vertex buffers, read back pixel by pixel.
#include <GL/glew.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

#include "jev3d/gui/font.h"
#include "jev3d/platform/messages.h"
#include "jev3d/renderer/indexBuffer.h"
#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/instancing/textureInstance.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/renderTarget.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/renderstate/alphastate.h"
#include "jev3d/renderer/renderstate/colorMaterialstate.h"
#include "jev3d/renderer/renderstate/lightingstate.h"
#include "jev3d/renderer/renderstate/lightstate.h"
#include "jev3d/renderer/renderstate/materialstate.h"
#include "jev3d/renderer/renderstate/scissorstate.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "jev3d/renderer/renderstate/wireframestate.h"
#include "jev3d/renderer/renderstate/zbufferstate.h"
#include "jev3d/renderer/transformState.h"
#include "jev3d/renderer/vertexBuffer.h"
#include "jev3d/resources/renderTargetStorage.h"
#include "jev3d/resources/texture3D.h"
#include "jev3d/resources/textureStorage.h"
#include "support/glDisplay.h"

using namespace JEV::PLATFORM;
using namespace JEV::RENDERING;
using namespace JEV::RENDERING::RENDERSTATE;
using JEV::RENDERING::INSTANCING::textureInstance;
using point3f = JEV::MATH::point3<float>;
using matrix4f = JEV::MATH::matrix4<float>;
using VC = vertexDeclaration::VERTEX_COMPONENTS;

namespace {

constexpr int size = 128;

// A node that draws through a callback.
class drawNode : public JEV::SG::node {
 public:
  explicit drawNode(std::function<void()> f) : draw(std::move(f)) {}
  void render(renderingContext* rc) override {
    draw();
    JEV::SG::node::render(rc);
  }
  std::function<void()> draw;
};

struct pixel {
  int r, g, b;
};

struct glFixture : testDisplay::glWindowFixture {
  void SetUp() override { ASSERT_NO_FATAL_FAILURE(openWindow(L"pixels", size)); }

  // One frame: begin the window target with its clear, walk `root`, read back.
  void frame(JEV::SG::node& root) {
    ASSERT_NO_FATAL_FAILURE(beginFrame());
    root.render(&rc);
    ASSERT_NO_FATAL_FAILURE(readBack());
  }
  pixel at(int x, int y) const {
    const std::uint8_t* p = pixelAt(x, y);
    return pixel{p[0], p[1], p[2]};
  }
  int brightness(int x, int y) const {
    const pixel p = at(x, y);
    return p.r + p.g + p.b;
  }

  // A quad over [x0, x1] × [y0, y1] at depth z, two triangles, with an optional colour
  // and texture coordinates.
  void makeQuad(vertexBuffer& vb, indexBuffer& ib, float x0, float y0, float x1, float y1, float z,
                JEV::CORE::color colour) {
    const float pos[] = {x0, y0, z, x1, y0, z, x1, y1, z, x0, y1, z};
    const JEV::CORE::color colours[] = {colour, colour, colour, colour};
    const float uv[] = {0, 0, 1, 0, 1, 1, 0, 1};
    const unsigned indices[] = {0, 1, 2, 0, 2, 3};
    if (vb.getDeclaration().isVertexComponent(VC::COLOR)) {
      ASSERT_TRUE(gl.cacheVertexBufferElement(&vb, VC::COLOR, colours, 4));
    }
    if (vb.getDeclaration().isVertexComponent(VC::TC0_2)) {
      ASSERT_TRUE(gl.cacheVertexBufferElement(&vb, VC::TC0_2, uv, 4));
    }
    ASSERT_TRUE(gl.cacheVertexBufferElement(&vb, VC::POS3, pos, 4));
    ASSERT_TRUE(gl.cacheIndexBuffer(&ib, indices, 6));
  }

  // A target instance drawing over the whole of a `side` × `side` target, cleared to `clear`.
  static void coverTarget(JEV::RENDERING::INSTANCING::renderTargetInstance& target, int side,
                          JEV::CORE::color clear) {
    target.scissor.set(0, 0, side, side, false, false);
    target.viewport.set(0, 0, side, side, false, viewportstate::VIEWPORT_FREE);
    target.clearColour = clear;
  }
  // The RGBA texels of a square texture's first level, as the device holds them.
  std::vector<std::uint8_t> texelsOf(const JEV::TEXTURE::texture& picture, int side) {
    gl.makeCurrentContext(false);
    std::vector<std::uint8_t> texels(size_t(side) * side * 4, 0);
    glBindTexture(GL_TEXTURE_2D, picture.getDeviceNames().front());
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    return texels;
  }

  // 2 × 2 pixels, bottom row first: red, green; top row: blue, white.
  static JEV::IO::textureImage checkerImage() {
    JEV::IO::textureImage image;
    image.width = 2;
    image.height = 2;
    image.components = 3;
    image.pixels = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255};
    return image;
  }
  // Stores a texture of `image` as "checker", nearest filtered; the storage holds it.
  JEV::TEXTURE::texture* addChecker(const JEV::IO::textureImage& image) {
    auto* picture = new JEV::TEXTURE::texture(&gl);
    picture->setImage(image);
    picture->setParameters(JEV::TEXTURE::textureDescriptor{0, 1.0f});
    JEV::SYSTEM::sharedPointer<JEV::TEXTURE::texture> held(picture);
    EXPECT_TRUE(rc.getTextureStorage()->addEntry(
        L"checker", JEV::SYSTEM::sharedPointer<JEV::CORE::textureServer>(
                        new JEV::CORE::textureServer(held, 1))));
    return picture;
  }
};

// The identity camera maps [-1, 1] to the window; depth grows with z.
struct cubeFace {
  point3f normal, u, v;
};

}  // namespace

TEST_F(glFixture, aLitCubeIsBrighterOnTheFaceTowardTheLight) {
  // 24 corners, four a face, each with the face's normal.
  const cubeFace faces[6] = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}},
                             {{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}, {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}},
                             {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}, {{0, 0, -1}, {0, 1, 0}, {1, 0, 0}}};
  std::vector<float> positions, normals;
  std::vector<unsigned> indices;
  for (const cubeFace& f : faces) {
    const unsigned base = unsigned(positions.size() / 3);
    for (int corner = 0; corner < 4; ++corner) {
      const float su = corner == 1 || corner == 2 ? 1.0f : -1.0f;
      const float sv = corner >= 2 ? 1.0f : -1.0f;
      const point3f p = f.normal + f.u * su + f.v * sv;
      positions.insert(positions.end(), {p.x, p.y, p.z});
      normals.insert(normals.end(), {f.normal.x, f.normal.y, f.normal.z});
    }
    indices.insert(indices.end(), {base, base + 1, base + 2, base, base + 2, base + 3});
  }
  vertexBuffer vb(VC::NORMAL | VC::POS3);
  indexBuffer ib;
  ASSERT_TRUE(gl.cacheVertexBufferElement(&vb, VC::NORMAL, normals.data(), 24));
  ASSERT_TRUE(gl.cacheVertexBufferElement(&vb, VC::POS3, positions.data(), 24));
  ASSERT_TRUE(gl.cacheIndexBuffer(&ib, indices.data(), unsigned(indices.size())));
  EXPECT_TRUE(gl.isCachedVertexBuffer(&vb));
  EXPECT_TRUE(gl.isCachedIndexBuffer(&ib));
  EXPECT_EQ(gl.getMemoryUsed(), 24u * 12 * 2 + 36 * 4);

  // Turned so that the -z, -x and -y faces look at the viewer (the camera looks along +z).
  matrix4f turn = matrix4f().setRotateRad(0.6f, 0, 1, 0) * matrix4f().setRotateRad(-0.5f, 1, 0, 0);
  transformState placed(matrix4f::getScale(0.4f, 0.4f, 0.4f) * turn);
  // Diffuse light only, on the material's own diffuse colour.
  lightstate light;
  light.enable = true;
  light.ambient = JEV::CORE::color(0, 0, 0, 255);
  colorMaterialstate materialOnly(colorMaterialstate::COLOR_MATERIAL_OFF,
                                  colorMaterialstate::FACE_FRONT_AND_BACK);
  drawNode cube([&] {
    gl.renderIndexedGeometry(renderer::DRAW_TRIANGLES, &vb, &ib, 0, ib.getIndexNumber());
  });
  cube.connect(&placed, false);
  placed.connect(&light, false);
  light.connect(&materialOnly, false);

  // The two faces that look most at the viewer (the most negative z once turned): aim
  // the light at one, then the other, and read both centres.
  point3f visible[2] = {faces[0].normal, faces[1].normal};
  for (const cubeFace& f : faces) {
    const float z = (f.normal * turn).z;
    if (z < (visible[0] * turn).z) {
      visible[1] = visible[0];
      visible[0] = f.normal;
    } else if (z < (visible[1] * turn).z && !(f.normal == visible[0])) {
      visible[1] = f.normal;
    }
  }
  ASSERT_LT((visible[1] * turn).z, -0.2f);
  int windowX[2], windowY[2];
  const int viewport[4] = {0, 0, size, size};
  for (int i = 0; i < 2; ++i) {
    point3f w;
    ASSERT_TRUE(renderer::project(visible[i], placed.matrix.cV(), matrix4f(), viewport, w));
    windowX[i] = int(w.x);
    windowY[i] = int(w.y);
  }
  for (int lit = 0; lit < 2; ++lit) {
    const point3f towardViewer = visible[lit] * turn;
    light.direction = point3f(-towardViewer.x, -towardViewer.y, -towardViewer.z);
    frame(materialOnly);
    const int litFace = brightness(windowX[lit], windowY[lit]);
    const int otherFace = brightness(windowX[1 - lit], windowY[1 - lit]);
    EXPECT_GT(litFace, 150) << "face " << lit;
    EXPECT_GT(litFace, otherFace + 100) << "face " << lit;
  }
  EXPECT_EQ(brightness(2, 2), 0) << "the background stays clear";
}

TEST_F(glFixture, aTexturedQuadShowsItsTexturesColours) {
  JEV::IO::textureImage image = checkerImage();
  JEV::TEXTURE::texture* picture = nullptr;
  ASSERT_NO_FATAL_FAILURE(picture = addChecker(image));
  textureInstance texture(rc.getTextureStorage());
  ASSERT_TRUE(texture.connectToResourceStorage(L"checker"));
  EXPECT_FALSE(picture->isCached());

  vertexBuffer vb(VC::TC0_2 | VC::POS3);
  indexBuffer ib;
  makeQuad(vb, ib, -1, -1, 1, 1, 0, JEV::CORE::color());
  lightingstate unlit(false, false);
  drawNode quad([&] {
    gl.renderIndexedGeometry(renderer::DRAW_TRIANGLES, &vb, &ib, 0, ib.getIndexNumber());
  });
  quad.connect(&texture, false);
  texture.connect(&unlit, false);
  frame(unlit);
  EXPECT_TRUE(picture->isCached()) << "uploaded at its first use";
  EXPECT_EQ(gl.getTextureMemoryUsed(), 12u);
  const pixel red = at(32, 32), green = at(96, 32), blue = at(32, 96), white = at(96, 96);
  EXPECT_EQ(red.r, 255);
  EXPECT_EQ(red.g + red.b, 0);
  EXPECT_EQ(green.g, 255);
  EXPECT_EQ(green.r + green.b, 0);
  EXPECT_EQ(blue.b, 255);
  EXPECT_EQ(blue.r + blue.g, 0);
  EXPECT_EQ(white.r + white.g + white.b, 765);

  // A new picture hands the old device copy to the discard list: the next frame deletes
  // it and takes its bytes off, and the picture is uploaded again at its next use.
  picture->setImage(image);
  EXPECT_FALSE(picture->isCached());
  frame(unlit);
  EXPECT_TRUE(picture->isCached());
  EXPECT_EQ(gl.getTextureMemoryUsed(), 12u);
}

TEST_F(glFixture, theTextureEnvironmentCombinesTheTextureWithTheColourComingIn) {
  JEV::IO::textureImage image = checkerImage();
  ASSERT_NO_FATAL_FAILURE(addChecker(image));
  textureInstance texture(rc.getTextureStorage());
  ASSERT_TRUE(texture.connectToResourceStorage(L"checker"));
  vertexBuffer vb(VC::COLOR | VC::TC0_2 | VC::POS3);
  indexBuffer ib;
  makeQuad(vb, ib, -1, -1, 1, 1, 0, JEV::CORE::color(100, 100, 100, 255));
  lightingstate unlit(false, false);
  drawNode quad([&] {
    gl.renderIndexedGeometry(renderer::DRAW_TRIANGLES, &vb, &ib, 0, ib.getIndexNumber());
  });
  quad.connect(&texture, false);
  texture.connect(&unlit, false);
  auto near = [](pixel p, int r, int g, int b) {
    return std::abs(p.r - r) <= 2 && std::abs(p.g - g) <= 2 && std::abs(p.b - b) <= 2;
  };
  using T = textureInstance;

  frame(unlit);  // modulate by default
  EXPECT_TRUE(near(at(32, 32), 100, 0, 0));
  texture.environment.mode = T::TEXTURE_REPLACE;
  frame(unlit);
  EXPECT_TRUE(near(at(32, 32), 255, 0, 0));
  texture.environment.mode = T::TEXTURE_ADD;
  frame(unlit);
  EXPECT_TRUE(near(at(32, 32), 255, 100, 100));
  // Combine: the vertex colour minus the texture, then scaled.
  texture.environment.mode = T::TEXTURE_COMBINE;
  texture.environment.combiner.functionRGB = T::COMBINE_SUBTRACT;
  texture.environment.combiner.sourceRGB[0] = T::SOURCE_PRIMARY_COLOR;
  texture.environment.combiner.sourceRGB[1] = T::SOURCE_TEXTURE;
  texture.environment.combiner.operandRGB[1] = T::OPERAND_SRC_COLOR;
  frame(unlit);
  EXPECT_TRUE(near(at(32, 32), 0, 100, 100));
  EXPECT_TRUE(near(at(96, 96), 0, 0, 0));
  texture.environment.combiner.scaleRGB = 2.0f;
  frame(unlit);
  EXPECT_TRUE(near(at(32, 32), 0, 200, 200));

  // The texture matrix moves the coordinates; wraps decide what lies past the edge.
  texture.environment.mode = T::TEXTURE_REPLACE;
  texture.environment.matrix[12] = 0.5f;
  frame(unlit);
  EXPECT_TRUE(near(at(32, 32), 0, 255, 0));
  EXPECT_TRUE(near(at(96, 32), 255, 0, 0)) << "repeated";
  texture.environment.wrapS = T::WRAP_CLAMP_TO_EDGE;
  frame(unlit);
  EXPECT_TRUE(near(at(96, 32), 0, 255, 0)) << "clamped";

  // Off, the unit draws untextured.
  texture.environment.enable = false;
  frame(unlit);
  EXPECT_TRUE(near(at(32, 32), 100, 100, 100));
}

TEST_F(glFixture, scissorClipsAndAWireframeDrawsOverItsSurface) {
  vertexBuffer vb(VC::COLOR | VC::POS3);
  indexBuffer ib;
  makeQuad(vb, ib, -1, -1, 1, 1, 0.5f, JEV::CORE::color(200, 0, 0, 255));
  vertexBuffer lines(VC::COLOR | VC::POS3);
  indexBuffer lineIndices;
  makeQuad(lines, lineIndices, -1, -1, 1, 1, 0.5f, JEV::CORE::color(0, 255, 0, 255));
  lightingstate unlit(false, false);
  scissorstate leftHalf(0, 0, size / 2, size, true, false);
  drawNode surface([&] {
    gl.renderIndexedGeometry(renderer::DRAW_TRIANGLES, &vb, &ib, 0, ib.getIndexNumber());
  });
  wireframestate wire(wireframestate::FILL_LINE);
  drawNode overlay([&] {
    gl.renderIndexedGeometry(renderer::DRAW_TRIANGLES, &lines, &lineIndices, 0,
                             lineIndices.getIndexNumber());
  });
  leftHalf.connect(&unlit, false);
  surface.connect(&leftHalf, false);
  wire.connect(&leftHalf, false);
  overlay.connect(&wire, false);
  frame(unlit);

  EXPECT_EQ(at(10, 40).r, 200) << "inside the scissor";
  EXPECT_EQ(brightness(100, 40), 0) << "outside the scissor";
  // The shared diagonal of the two triangles passes through (x, x); the lines, at the
  // same depth, win through their depth range.
  int greenOnDiagonal = 0;
  for (int x = 8; x < 56; ++x) {
    for (int d = -1; d <= 1; ++d) greenOnDiagonal += at(x, x + d).g == 255 ? 1 : 0;
  }
  EXPECT_GT(greenOnDiagonal, 40);
  EXPECT_EQ(at(40, 10).g, 0) << "off the lines the surface shows";
}

TEST_F(glFixture, replacingOnlyThePositionsDrawsTheNewShape) {
  vertexBuffer vb(VC::COLOR | VC::POS3);
  indexBuffer ib;
  makeQuad(vb, ib, -1, -1, 0, 1, 0, JEV::CORE::color(0, 0, 255, 255));
  lightingstate unlit(false, false);
  drawNode quad([&] {
    gl.renderIndexedGeometry(renderer::DRAW_TRIANGLES, &vb, &ib, 0, ib.getIndexNumber());
  });
  quad.connect(&unlit, false);
  frame(unlit);
  EXPECT_EQ(at(20, 64).b, 255);
  EXPECT_EQ(at(108, 64).b, 0);

  const unsigned colourName = vb.getName(0);
  const float right[] = {0, -1, 0, 1, -1, 0, 1, 1, 0, 0, 1, 0};
  ASSERT_TRUE(gl.cacheVertexBufferElement(&vb, VC::POS3, right, 4));
  EXPECT_EQ(vb.getName(0), colourName) << "the colours stay where they were";
  frame(unlit);
  EXPECT_EQ(at(20, 64).b, 0);
  EXPECT_EQ(at(108, 64).b, 255);

  // A count past the index list draws nothing.
  EXPECT_FALSE(
      gl.renderIndexedGeometry(renderer::DRAW_TRIANGLES, &vb, &ib, 0, vb.getNum(VC::TC0_2)));
}

namespace {

// Counts the calls that reach GL's glActiveTexture, by standing in for GLEW's entry point
// while it lives.
class activeTextureCounter {
 public:
  activeTextureCounter() : saved(__glewActiveTexture) {
    real = saved;
    calls = 0;
    __glewActiveTexture = &count;
  }
  ~activeTextureCounter() { __glewActiveTexture = saved; }
  activeTextureCounter(const activeTextureCounter&) = delete;
  activeTextureCounter& operator=(const activeTextureCounter&) = delete;
  static int calls;

 private:
  static void GLAPIENTRY count(GLenum unit) {
    ++calls;
    real(unit);
  }
  static PFNGLACTIVETEXTUREPROC real;
  PFNGLACTIVETEXTUREPROC saved;
};
int activeTextureCounter::calls = 0;
PFNGLACTIVETEXTUREPROC activeTextureCounter::real = nullptr;

}  // namespace

TEST_F(glFixture, aStateSetTwiceReachesGLTwiceUnlessUnchangedStatesAreSkipped) {
  EXPECT_FALSE(gl.getSkipUnchangedStates());
  textureInstance unit1{textureInstance::TEXTURE1};
  alphastate a(true, alphastate::ALPHA_GREATER, 0.5f);
  {
    // Every setter sends: a unit selected for the state and back, each time.
    activeTextureCounter counter;
    ASSERT_TRUE(gl.setTextureState(unit1));
    const int once = activeTextureCounter::calls;
    EXPECT_GT(once, 0);
    ASSERT_TRUE(gl.setTextureState(unit1));
    EXPECT_EQ(activeTextureCounter::calls, 2 * once);
  }
  // So GL holds what the last setter said, even after a change behind the renderer's back.
  ASSERT_TRUE(gl.setAlphaState(a));
  glDisable(GL_ALPHA_TEST);
  ASSERT_TRUE(gl.setAlphaState(a));
  EXPECT_TRUE(glIsEnabled(GL_ALPHA_TEST));

  gl.setSkipUnchangedStates(true);
  {
    activeTextureCounter counter;
    ASSERT_TRUE(gl.setTextureState(unit1));
    EXPECT_EQ(activeTextureCounter::calls, 0) << "equal to the copy";
    textureInstance other{textureInstance::TEXTURE1};
    ASSERT_TRUE(gl.setTextureState(other));
    const int once = activeTextureCounter::calls;
    EXPECT_GT(once, 0);
    ASSERT_TRUE(gl.setTextureState(other));
    EXPECT_EQ(activeTextureCounter::calls, once);
    other.environment.mode = textureInstance::TEXTURE_REPLACE;
    ASSERT_TRUE(gl.setTextureState(other));
    EXPECT_EQ(activeTextureCounter::calls, 2 * once) << "a changed environment is sent";
    EXPECT_EQ(gl.getCurrentTextureState(textureInstance::TEXTURE1), &other);
    // The unit's copy goes before the instance does.
    ASSERT_TRUE(gl.setTextureState(unit1));
  }
  // The same state again is not sent, a new one is.
  glDisable(GL_ALPHA_TEST);
  ASSERT_TRUE(gl.setAlphaState(a));
  EXPECT_FALSE(glIsEnabled(GL_ALPHA_TEST));
  alphastate b(true, alphastate::ALPHA_LESS, 0.5f);
  ASSERT_TRUE(gl.setAlphaState(b));
  EXPECT_TRUE(glIsEnabled(GL_ALPHA_TEST));
  GLint function = 0;
  glGetIntegerv(GL_ALPHA_TEST_FUNC, &function);
  EXPECT_EQ(function, GL_LESS);
}

TEST_F(glFixture, skippingUnchangedStatesKeepsClearsTrackedMaterialsAndMovedLights) {
  gl.setSkipUnchangedStates(true);
  // A z-buffer state that clears first clears every time.
  zbufferstate clearing(true, zbufferstate::DEPTH_LESS, true, true);
  ASSERT_TRUE(gl.setZbufferState(clearing));
  glClearDepth(0.25);
  glClear(GL_DEPTH_BUFFER_BIT);
  ASSERT_TRUE(gl.setZbufferState(clearing));
  float depth = 0.0f;
  ASSERT_TRUE(gl.readPixels(5, 5, 1, 1, renderer::PIXELDATA_DEPTH, renderer::DATA_FLOAT, &depth));
  EXPECT_FLOAT_EQ(depth, 1.0f);

  // While colour material tracks, GL's material is not the copy: the same material is
  // sent again.
  colorMaterialstate tracking;
  ASSERT_TRUE(gl.setColorMaterialState(tracking));
  materialstate m;
  ASSERT_TRUE(gl.setMaterialState(m));
  glColor4f(1.0f, 0.0f, 0.0f, 1.0f);  // written into the diffuse while tracking
  colorMaterialstate off;
  off.mode = colorMaterialstate::COLOR_MATERIAL_OFF;
  ASSERT_TRUE(gl.setColorMaterialState(off));
  ASSERT_TRUE(gl.setMaterialState(m));
  GLfloat diffuse[4] = {};
  glGetMaterialfv(GL_FRONT, GL_DIFFUSE, diffuse);
  EXPECT_NEAR(diffuse[0], 150.0f / 255.0f, 1e-3f);
  EXPECT_NEAR(diffuse[1], 150.0f / 255.0f, 1e-3f);

  // A directional light placed under one view is placed again under another.
  lightstate light;
  light.enable = true;
  light.direction = point3f(0, 0, 1);
  ASSERT_TRUE(gl.setLightState(light));
  const point3f before = gl.getCurrentLightState(lightstate::LIGHT0).getCameraSpaceDirection();
  matrix4f turned;  // a quarter turn about y
  turned[0] = 0.0f;
  turned[2] = -1.0f;
  turned[8] = 1.0f;
  turned[10] = 0.0f;
  ASSERT_TRUE(gl.setCameraState(matrix4f(), turned));
  ASSERT_TRUE(gl.setLightState(light));
  const point3f after = gl.getCurrentLightState(lightstate::LIGHT0).getCameraSpaceDirection();
  EXPECT_GT((after - before).norm(), 0.5f);
}

TEST_F(glFixture, frustumPlanesBoundWhatTheCameraSees) {
  // 90 degrees, square, near 1, far 100, looking along +z from the origin.
  const float n = 1.0f, f = 100.0f;
  const matrix4f projection(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, (f + n) / (f - n), 1, 0, 0,
                            -2 * f * n / (f - n), 0);
  ASSERT_TRUE(gl.setCameraState(projection, matrix4f()));
  ASSERT_TRUE(gl.updateFrustum());
  auto inside = [&](point3f p) {
    for (int i = 0; i < 6; ++i) {
      const JEV::MATH::point4<float> plane = gl.getFrustumPlane(i);
      if (plane.x * p.x + plane.y * p.y + plane.z * p.z + plane.w < 0.0f) return false;
    }
    return true;
  };
  EXPECT_TRUE(inside(point3f(0, 0, 10)));
  EXPECT_TRUE(inside(point3f(4.9f, -4.9f, 5)));
  EXPECT_FALSE(inside(point3f(5.1f, 0, 5))) << "outside the 90 degree cone";
  EXPECT_FALSE(inside(point3f(0, 0, 0.5f))) << "before the near plane";
  EXPECT_FALSE(inside(point3f(0, 0, 101))) << "past the far plane";
  EXPECT_FALSE(inside(point3f(0, 0, -10))) << "behind the camera";
  const JEV::MATH::point4<float> left = gl.getFrustumPlane(0);
  EXPECT_NEAR(left.x * left.x + left.y * left.y + left.z * left.z, 1.0f, 1e-5f);
}

TEST_F(glFixture, aRenderTargetsContentsReadBack) {
  ASSERT_TRUE(gl.isSupportRenderTargetOnTexture());
  JEV::IO::textureImage blank;
  blank.width = 32;
  blank.height = 32;
  blank.components = 4;
  blank.pixels.assign(32 * 32 * 4, 0);
  auto* picture = new JEV::TEXTURE::texture(&gl);
  picture->setImage(blank);
  picture->setParameters(JEV::TEXTURE::textureDescriptor{0, 1.0f});
  renderTarget offScreen{JEV::SYSTEM::sharedPointer<JEV::TEXTURE::texture>(picture)};
  JEV::RENDERING::INSTANCING::renderTargetInstance target;
  target.setTarget(&offScreen);
  coverTarget(target, 32, JEV::CORE::color(0, 0, 255, 255));

  vertexBuffer vb(VC::COLOR | VC::POS3);
  indexBuffer ib;
  makeQuad(vb, ib, -1, -1, 0, 1, 0, JEV::CORE::color(255, 0, 0, 255));
  lightingstate unlit(false, false);
  std::vector<std::uint8_t> inside(32 * 32 * 4, 0);
  drawNode quad([&] {
    gl.renderIndexedGeometry(renderer::DRAW_TRIANGLES, &vb, &ib, 0, ib.getIndexNumber());
    gl.readPixels(0, 0, 32, 32, renderer::PIXELDATA_RGBA, renderer::DATA_UNSIGNED_BYTE,
                  inside.data());
  });
  quad.connect(&target, false);
  target.connect(&unlit, false);
  frame(unlit);
  EXPECT_TRUE(gl.isCachedRenderTargetOnTexture(&offScreen));

  // The left half took the quad, the right half the target's clear colour.
  const std::uint8_t* left = &inside[(16 * 32 + 4) * 4];
  const std::uint8_t* right = &inside[(16 * 32 + 28) * 4];
  EXPECT_EQ(left[0], 255);
  EXPECT_EQ(left[2], 0);
  EXPECT_EQ(right[0], 0);
  EXPECT_EQ(right[2], 255);
  // The window saw none of it; its viewport and scissor are back.
  EXPECT_EQ(brightness(10, 64), 0);
  EXPECT_EQ(gl.getCurrentViewportState().computedWidth.cV(), size);

  // What was drawn is the texture's picture now.
  const std::vector<std::uint8_t> texels = texelsOf(*picture, 32);
  EXPECT_EQ(texels[(16 * 32 + 4) * 4], 255);
  EXPECT_EQ(texels[(16 * 32 + 28) * 4 + 2], 255);
  EXPECT_TRUE(gl.discardRenderTargetOnTexture(&offScreen));
  EXPECT_FALSE(gl.isCachedRenderTargetOnTexture(&offScreen));
}

TEST_F(glFixture, aStoredTargetNamedByAStateNodeIsDrawnIntoAndReadBack) {
  ASSERT_TRUE(gl.isSupportRenderTargetOnTexture());
  JEV::CORE::renderTargetStorage& targets = *rc.getRenderTargetStorage();
  ASSERT_TRUE(targets.createRenderTarget("mirror", 16, 16));
  JEV::RENDERING::INSTANCING::renderTargetInstance target(&targets);
  ASSERT_TRUE(target.connectToResourceStorage("mirror"));
  renderTarget* stored = target.getTarget();
  ASSERT_NE(stored, nullptr);
  coverTarget(target, 16, JEV::CORE::color(0, 255, 0, 255));

  vertexBuffer vb(VC::COLOR | VC::POS3);
  indexBuffer ib;
  // The lower half of the target.
  makeQuad(vb, ib, -1, -1, 1, 0, 0, JEV::CORE::color(255, 0, 255, 255));
  lightingstate unlit(false, false);
  drawNode quad([&] {
    gl.renderIndexedGeometry(renderer::DRAW_TRIANGLES, &vb, &ib, 0, ib.getIndexNumber());
  });
  quad.connect(&target, false);
  target.connect(&unlit, false);
  frame(unlit);
  EXPECT_TRUE(stored->isCached());
  EXPECT_EQ(brightness(64, 64), 0) << "the window saw none of it";

  const std::vector<std::uint8_t> texels = texelsOf(*stored->getTexture(), 16);
  const std::uint8_t* low = &texels[(4 * 16 + 8) * 4];
  const std::uint8_t* high = &texels[(12 * 16 + 8) * 4];
  EXPECT_EQ(low[0], 255);
  EXPECT_EQ(low[1], 0);
  EXPECT_EQ(low[2], 255);
  EXPECT_EQ(high[0], 0);
  EXPECT_EQ(high[1], 255);
  EXPECT_EQ(high[2], 0);

  // Its last user gone, the target lets its framebuffer go and stays in the storage.
  ASSERT_TRUE(target.disconnectToResourceStorage());
  EXPECT_FALSE(stored->isCached());
  EXPECT_TRUE(targets.isValid("mirror"));
}

TEST_F(glFixture, aLuminanceVolumeUploadsBooksItsBytesAndIsDiscarded) {
  // 4 × 4 × 4 samples counting up, x fastest.
  std::vector<unsigned char> samples(64);
  for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<unsigned char>(i * 4);
  JEV::TEXTURE::texture3D volume(&gl);
  ASSERT_TRUE(volume.setVolume(4, 4, 4, samples));
  const uint32_t before = gl.getTextureMemoryUsed();
  ASSERT_TRUE(volume.cache());
  ASSERT_EQ(volume.getDeviceNames().size(), 1u);
  const unsigned name = volume.getDeviceNames().front();
  EXPECT_TRUE(glIsTexture(name));
  // 64 bytes and the mip chain's share.
  EXPECT_EQ(gl.getTextureMemoryUsed(), before + 64 + 64 / 7);

  glBindTexture(GL_TEXTURE_3D, name);
  GLint depth = 0, format = 0, wrapR = 0, minFilter = 0, levels = 0;
  glGetTexLevelParameteriv(GL_TEXTURE_3D, 0, GL_TEXTURE_DEPTH, &depth);
  glGetTexLevelParameteriv(GL_TEXTURE_3D, 0, GL_TEXTURE_INTERNAL_FORMAT, &format);
  glGetTexParameteriv(GL_TEXTURE_3D, GL_TEXTURE_WRAP_R, &wrapR);
  glGetTexParameteriv(GL_TEXTURE_3D, GL_TEXTURE_MIN_FILTER, &minFilter);
  glGetTexLevelParameteriv(GL_TEXTURE_3D, 2, GL_TEXTURE_WIDTH, &levels);
  std::vector<unsigned char> back(64, 0);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glGetTexImage(GL_TEXTURE_3D, 0, GL_LUMINANCE, GL_UNSIGNED_BYTE, back.data());
  glBindTexture(GL_TEXTURE_3D, 0);
  EXPECT_EQ(depth, 4);
  EXPECT_EQ(format, GL_LUMINANCE8);
  EXPECT_EQ(wrapR, GL_CLAMP_TO_BORDER);
  EXPECT_EQ(minFilter, GL_LINEAR_MIPMAP_LINEAR);
  EXPECT_EQ(levels, 1) << "the chain reaches one sample";
  EXPECT_EQ(back, samples);

  ASSERT_TRUE(gl.discardTexture3D(&volume));
  EXPECT_FALSE(glIsTexture(name));
  EXPECT_FALSE(volume.isCached());
  EXPECT_EQ(gl.getTextureMemoryUsed(), before);

  // Given up from any thread, the names go at the next frame.
  ASSERT_TRUE(volume.cache());
  const unsigned again = volume.getDeviceNames().front();
  volume.discard();
  EXPECT_TRUE(glIsTexture(again)) << "still there until the drawing thread empties the list";
  ASSERT_TRUE(gl.emptyDiscardList());
  EXPECT_FALSE(glIsTexture(again));
  EXPECT_EQ(gl.getTextureMemoryUsed(), before);
}

TEST_F(glFixture, textIsDrawnWithFreeTypeGlyphs) {
  JEV::GUI::font missing(L"NoSuchFace", 16);
  EXPECT_TRUE(gl.createFont(&missing));
  EXPECT_FALSE(gl.cacheFont(&missing));
  JEV::GUI::font path(L"../DejaVuSans", 16);
  EXPECT_FALSE(gl.cacheFont(&path)) << "a face is a name, not a path";
  JEV::GUI::font unsized(L"DejaVuSans", 0);
  EXPECT_FALSE(gl.createFont(&unsized));

  JEV::GUI::font sans(L"DejaVuSans", 20);
  ASSERT_TRUE(gl.cacheFont(&sans));
  EXPECT_TRUE(gl.isCachedFont(&sans));
  int shortWidth = 0, longWidth = 0, height = 0;
  ASSERT_TRUE(gl.getFontBox(&sans, L"Hi", shortWidth, height));
  ASSERT_TRUE(gl.getFontBox(&sans, L"Hi there", longWidth, height));
  EXPECT_GT(shortWidth, 10);
  EXPECT_GT(longWidth, shortWidth);
  EXPECT_GE(height, 20);
  EXPECT_EQ(gl.getFontMaxHeight(&sans), height);

  drawNode text([&] { gl.renderText(&sans, L"Hi", 20, 40, JEV::CORE::color(255, 255, 255, 255)); });
  frame(text);
  // Ink lies inside the box of the text above its baseline, and nowhere else.
  int inside = 0, outside = 0;
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      const bool lit = brightness(x, y) > 300;
      const bool inBox = x >= 20 && x < 20 + shortWidth && y >= 40 && y < 40 + height;
      (inBox ? inside : outside) += lit ? 1 : 0;
    }
  }
  EXPECT_GT(inside, 30);
  EXPECT_EQ(outside, 0);

  EXPECT_TRUE(gl.discardFont(&sans));
  EXPECT_FALSE(gl.isCachedFont(&sans));
  EXPECT_FALSE(gl.getFontBox(&sans, L"Hi", shortWidth, height));
}
