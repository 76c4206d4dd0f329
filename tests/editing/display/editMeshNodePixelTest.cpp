// An editable node drawn by the OpenGL back end, read back pixel by pixel.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "jev3d/editing/editMeshNode.h"
#include "jev3d/platform/messages.h"
#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/renderstate/colorMaterialstate.h"
#include "jev3d/renderer/renderstate/lightstate.h"
#include "support/glDisplay.h"
#include "support/litSphere.h"
#include "support/meshes.h"

using namespace JEV::PLATFORM;
using namespace JEV::RENDERING;
using namespace JEV::RENDERING::RENDERSTATE;
using JEV::CORE::color;
using JEV::MESH::EDITING::editMeshNode;
using point3f = JEV::MATH::point3<float>;
using matrix4f = JEV::MATH::matrix4<float>;

namespace {

constexpr int size = 128;

struct pixelFixture : testDisplay::glWindowFixture, testDisplay::litSphere {
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(openWindow(L"mesh", size));
    setUpLitSphere(gl);
  }
  void TearDown() override {
    tearDownLitSphere();
    glWindowFixture::TearDown();
  }

  void frame() {
    ASSERT_NO_FATAL_FAILURE(beginFrame());
    light.render(&rc);
    ASSERT_NO_FATAL_FAILURE(readBack());
  }
  color at(int x, int y) const {
    const std::uint8_t* p = pixelAt(x, y);
    return color(p[0], p[1], p[2], 255);
  }
  // Pixels of exactly this colour (alpha aside).
  int countOf(color c) const {
    int n = 0;
    for (int y = 0; y < size; ++y)
      for (int x = 0; x < size; ++x) {
        const color p = at(x, y);
        n += p.r == c.r && p.g == c.g && p.b == c.b;
      }
    return n;
  }
};

}  // namespace

TEST_F(pixelFixture, objectModeShowsALitSilhouetteWithoutWire) {
  frame();
  const color centre = at(size / 2, size / 2);
  EXPECT_GT(int(centre.r) + centre.g + centre.b, 150);
  EXPECT_EQ(int(centre.r), int(centre.g));  // white faces under white light
  // Outside the half-size sphere is background.
  EXPECT_EQ(int(at(size / 2 + int(0.3 * size), size / 2).r), 0);
  EXPECT_EQ(int(at(4, 4).g), 0);
  const color wire = node.getEditMesh().edgeColor;
  EXPECT_EQ(countOf(wire), 0);
}

TEST_F(pixelFixture, eachModeDrawsItsWireAndPointsInTheirColours) {
  const JEV::MESH::editMesh& m = node.getEditMesh();
  node.enableEdgeModeDisplay();
  frame();
  EXPECT_GT(countOf(m.edgeColor), 50);
  EXPECT_EQ(countOf(m.vertexColor), 0);
  node.faceModeWireframe = true;
  node.enableFaceModeDisplay();
  frame();
  EXPECT_GT(countOf(m.ghostColor), 50);
  EXPECT_EQ(countOf(m.edgeColor), 0);
  node.enableVertexModeDisplay();
  frame();
  EXPECT_GT(countOf(m.vertexColor), 20);
  node.faceModeWireframe = false;
  node.enableFaceModeDisplay();
  frame();
  EXPECT_EQ(countOf(m.ghostColor), 0);
  EXPECT_EQ(countOf(m.vertexColor), 0);
  // The surface is there in every mode.
  EXPECT_GT(int(at(size / 2, size / 2).g), 50);
}

TEST_F(pixelFixture, selectedFacesTakeTheirColourAtTheNextFrameWithoutRebuildingPositions) {
  node.getEditMesh().chunkVertexLimit = 300;
  frame();
  // A pixel off the pole, where the faces are wide.
  const int px = 80, py = 76;
  const color before = at(px, py);
  EXPECT_EQ(int(before.r), int(before.b));
  // The face under that pixel, picked from the viewer's side (the camera looks along +z).
  const float wx = (float(px) + 0.5f) / float(size) * 2.f - 1.f;
  const float wy = (float(py) + 0.5f) / float(size) * 2.f - 1.f;
  JEV::MATH::rayHit hit;
  point3f p;
  ASSERT_TRUE(node.getRayIntersect(point3f(wx, wy, -5.f), point3f(0.f, 0.f, 1.f), hit, p));
  node.selectFace(hit.face);
  const auto counts = node.getRenderCacheCounts();
  frame();
  const color after = at(px, py);
  // The selection colour leans to red over blue; white did not.
  EXPECT_GT(int(after.r), int(after.b) + 40);
  EXPECT_EQ(node.getRenderCacheCounts().faceChunks, counts.faceChunks);
  EXPECT_EQ(node.getRenderCacheCounts().colorChunks, counts.colorChunks + 1);
  EXPECT_GT(node.getEditMesh().renderChunks.size(), 3u);
}
