// A polyline drawn on an editable mesh node by the OpenGL back end, read back pixel by
// pixel.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "jev3d/editing/editMeshNode.h"
#include "jev3d/editing/modifier/polylineControlPointPositionModifier.h"
#include "jev3d/renderer/renderstate/colorMaterialstate.h"
#include "jev3d/renderer/renderstate/lightstate.h"
#include "support/glDisplay.h"
#include "support/litSphere.h"
#include "support/meshes.h"

using namespace JEV::RENDERING::RENDERSTATE;
using JEV::CORE::color;
using JEV::MESH::EDITING::editMeshNode;
using JEV::MESH::EDITING::polylineControlPointPositionModifier;
using JEV::MESH::EDITING::polylineDescriptor;
using point3f = JEV::MATH::point3<float>;
using matrix4f = JEV::MATH::matrix4<float>;

namespace {

constexpr int size = 160;

struct polylinePixelFixture : testDisplay::glWindowFixture, testDisplay::litSphere {
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(openWindow(L"polyline", size));
    setUpLitSphere(gl);
    curve.meshes.push_back(&node);
    editor.setTransform(node.getTransformMatrix());
  }
  void TearDown() override {
    editor.getPolylineNode()->disconnect(&light);
    editor.getPolylineNode()->discard();
    tearDownLitSphere();
    glWindowFixture::TearDown();
  }
  // A ring of control points around the axis, pulled onto the sphere.
  void ring(float zSide) {
    curve.clear();
    for (int i = 0; i < 10; ++i) {
      const double t = 2 * 3.14159265358979 * i / 10;
      curve.controlPoints.emplace_back(
          point3f(float(0.6 * std::cos(t)), float(0.6 * std::sin(t)), 0.85f * zSide), 0, 0);
    }
    ASSERT_EQ(curve.updateControlPoint(), 0u);
    editor.set(&curve);
  }
  void frame() {
    ASSERT_NO_FATAL_FAILURE(beginFrame());
    light.render(&rc);
    ASSERT_NO_FATAL_FAILURE(readBack());
  }
  bool isLine(int x, int y) const {
    const std::uint8_t* p = pixelAt(x, y);
    const color c = editor.getPolylineNode()->color.cV();
    return p[0] == c.r && p[1] == c.g && p[2] == c.b;
  }
  // Whether the line's colour is at the window pixel of local point p, or next to it.
  bool lineNear(const point3f& p) const {
    const int px = int((p.x * 0.5f + 1.f) * 0.5f * size),
              py = int((p.y * 0.5f + 1.f) * 0.5f * size);
    for (int dy = -1; dy <= 1; ++dy)
      for (int dx = -1; dx <= 1; ++dx)
        if (isLine(px + dx, py + dy)) return true;
    return false;
  }
  int lineCount() const {
    int n = 0;
    for (int y = 0; y < size; ++y)
      for (int x = 0; x < size; ++x) n += isLine(x, y);
    return n;
  }

  polylineDescriptor curve;
  polylineControlPointPositionModifier editor;
};

}  // namespace

TEST_F(polylinePixelFixture, aPolylineOnTheFrontRendersAlongTheSurfaceInItsOwnColour) {
  ASSERT_NO_FATAL_FAILURE(ring(-1.f));
  frame();
  // Before it is linked in, no pixel has the line's colour: the surface's differ.
  EXPECT_EQ(lineCount(), 0);
  const std::vector<point3f> drawn = editor.getPolylineNode()->getPoints();
  ASSERT_GT(drawn.size(), 30u);
  editor.getPolylineNode()->connect(&light, false);
  frame();
  int onLine = 0;
  for (const point3f& p : drawn) onLine += lineNear(p);
  // Every drawn point shows, none hidden under the faces it lies on.
  EXPECT_EQ(onLine, int(drawn.size()));
  EXPECT_GT(lineCount(), 100);
  // The middle of the sphere, inside the ring, keeps the surface's colour.
  EXPECT_FALSE(isLine(size / 2, size / 2));
  EXPECT_GT(int(pixelAt(size / 2, size / 2)[1]), 50);
}

TEST_F(polylinePixelFixture, aPolylineOnTheBackIsHiddenByTheSurface) {
  ASSERT_NO_FATAL_FAILURE(ring(1.f));
  editor.getPolylineNode()->connect(&light, false);
  frame();
  EXPECT_EQ(lineCount(), 0);
  // With one point the polyline is not drawn at all, wherever it lies.
  ASSERT_NO_FATAL_FAILURE(ring(-1.f));
  frame();
  EXPECT_GT(lineCount(), 100);
  curve.controlPoints.resize(1);
  editor.updatePolyline(true);
  frame();
  EXPECT_EQ(lineCount(), 0);
}
