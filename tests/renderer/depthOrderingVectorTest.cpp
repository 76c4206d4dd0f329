// Passes of the depth ordering, with meshes that log when they are drawn.
#include "jev3d/renderer/depthOrderingVector.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "jev3d/renderer/cameraState.h"
#include "jev3d/renderer/renderableMesh.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/renderstate/blendstate.h"
#include "jev3d/renderer/renderstate/colorMaterialstate.h"
#include "jev3d/renderer/renderstate/lightingstate.h"
#include "jev3d/renderer/renderstate/materialstate.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "jev3d/renderer/renderstate/wireframestate.h"
#include "jev3d/renderer/transformStack.h"
#include "support/recordingRenderer.h"

using namespace JEV::RENDERING;
using namespace JEV::RENDERING::RENDERSTATE;
using JEV::CORE::color;
using point3f = JEV::MATH::point3<float>;
using strings = std::vector<std::string>;

namespace {

class loggedMesh : public renderableMesh {
 public:
  loggedMesh(strings& log, std::string name, point3f center)
      : log(log), name(std::move(name)), center(center) {}

  void setOverlayMode(bool on) override { overlay = on; }
  void setRenderFlag(unsigned flag) override { flags |= flag; }
  materialstate& getMaterialState() override { return material; }
  colorMaterialstate& getColorMaterialState() override { return colorMaterial; }
  blendstate& getBlendState() override { return blend; }
  lightingstate& getLightingState() override { return lighting; }
  wireframestate& getWireFrameState() override { return wireframe; }
  point3f getBoundingCenter() const override { return center; }
  const viewportstate& getViewportState() const override { return viewport; }
  const cameraState& getCameraState() const override { return camera; }
  void render(renderingContext* rc) override {
    const float tx = rc->getTransformStack()->getCurrentMatrix()[12];
    log.push_back(name + (overlay ? " overlay" : "") + " d" +
                  std::to_string(int(material.frontDiffuse.cV().r)) + " x" +
                  std::to_string(int(tx)));
  }

  strings& log;
  std::string name;
  point3f center;
  bool overlay = false;
  unsigned flags = 0;
  materialstate material;
  colorMaterialstate colorMaterial{colorMaterialstate::COLOR_MATERIAL_OFF,
                                   colorMaterialstate::FACE_FRONT};
  blendstate blend;
  lightingstate lighting;
  wireframestate wireframe{wireframestate::FILL_LINE};
  viewportstate viewport;
  cameraState camera;
};

struct orderingFixture : ::testing::Test {
  recordingRenderer device;
  renderingContext rc{&device, nullptr};
  strings drawn;
  depthOrderingVector ordering;
  transformState identity;
};

}  // namespace

TEST_F(orderingFixture, emptyDrawsNothingAndIsNotBlended) {
  EXPECT_FALSE(device.useBlendDepthOrdering(ordering));
  device.renderDepthOrdering(&rc, ordering, true);
  EXPECT_TRUE(device.calls.empty());
}

TEST_F(orderingFixture, referencePointIsTheRayOriginUnderTheWindowPosition) {
  loggedMesh mesh(drawn, "m", point3f(0, 0, 0));
  // Identity camera over a 320×240 viewport: pixel (160, 120) is the centre, whose near
  // point is z = -1.
  rc.windowX = 160;
  rc.windowY = 120;
  JEV::MATH::matrix4<float> moved;
  moved[12] = 2.0f;
  transformState shifted(moved);
  device.insertToDepthOrdering(&rc, ordering, shifted, &mesh, renderer::DEPTH_ORDERING_SORTED);
  ASSERT_EQ(ordering.size(), 1);
  const point3f& p = ordering[0].item->referencePoint;
  // In the item's own coordinates the transform is undone.
  EXPECT_NEAR(p.x, -2.0f, 1e-5f);
  EXPECT_NEAR(p.y, 0.0f, 1e-5f);
  EXPECT_NEAR(p.z, -1.0f, 1e-5f);
  EXPECT_EQ(ordering[0].index, 0);
  EXPECT_EQ(ordering[0].item->matrix.cV()[12], 2.0f);
}

TEST_F(orderingFixture, passesRunFirstSortedFarthestFirstThenLast) {
  // Reference points are all (-1, -1, -1) with the window position at 0, 0.
  loggedMesh near(drawn, "near", point3f(0, 0, 0));
  loggedMesh far(drawn, "far", point3f(10, 10, 10));
  loggedMesh mid(drawn, "mid", point3f(3, 3, 3));
  loggedMesh first(drawn, "first", point3f(50, 0, 0));
  loggedMesh last(drawn, "last", point3f(-50, 0, 0));
  loggedMesh never(drawn, "never", point3f(0, 0, 0));
  device.insertToDepthOrdering(&rc, ordering, identity, &last, renderer::DEPTH_ORDERING_LAST);
  device.insertToDepthOrdering(&rc, ordering, identity, &near, renderer::DEPTH_ORDERING_SORTED);
  device.insertToDepthOrdering(&rc, ordering, identity, &never, renderer::depthOrderingType(5));
  device.insertToDepthOrdering(&rc, ordering, identity, &far, renderer::DEPTH_ORDERING_SORTED);
  device.insertToDepthOrdering(&rc, ordering, identity, &first, renderer::DEPTH_ORDERING_FIRST);
  device.insertToDepthOrdering(&rc, ordering, identity, &mid, renderer::DEPTH_ORDERING_SORTED);
  for (int i = 0; i < ordering.size(); ++i) EXPECT_EQ(ordering[i].index, i);

  device.renderDepthOrdering(&rc, ordering, true);
  EXPECT_EQ(drawn, (strings{"first d150 x0", "far d150 x0", "mid d150 x0", "near d150 x0",
                            "last d150 x0"}));

  drawn.clear();
  device.renderDepthOrdering(&rc, ordering, false);
  EXPECT_EQ(drawn, (strings{"first d150 x0", "near d150 x0", "far d150 x0", "mid d150 x0",
                            "last d150 x0"}))
      << "without sorting the pass keeps insertion order";
}

TEST_F(orderingFixture, eachItemDrawsUnderItsTransformAndRestoresTheOneAbove) {
  loggedMesh mesh(drawn, "m", point3f(0, 0, 0));
  JEV::MATH::matrix4<float> moved;
  moved[12] = 7.0f;
  transformState shifted(moved);
  device.insertToDepthOrdering(&rc, ordering, shifted, &mesh, renderer::DEPTH_ORDERING_FIRST);
  device.clearLog();
  device.renderDepthOrdering(&rc, ordering, true);
  EXPECT_EQ(drawn, (strings{"m d150 x7"}));
  ASSERT_EQ(device.count("setTransformState"), 2);
  EXPECT_EQ(device.only("setTransformState")[1],
            "setTransformState 1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1");
  EXPECT_EQ(rc.getTransformStack()->getDepth(), 0);
}

TEST_F(orderingFixture, materialsAreCopiedOnlyWhereFlaggedAndDecideBlending) {
  loggedMesh a(drawn, "a", point3f(0, 0, 0));
  loggedMesh b(drawn, "b", point3f(0, 0, 0));
  meshMaterialStruct red;
  red.frontDiffuse = color(200, 0, 0, 255);
  device.insertToDepthOrdering(&rc, ordering, identity, &a, true, red,
                               renderer::DEPTH_ORDERING_FIRST);
  device.insertToDepthOrdering(&rc, ordering, identity, &b, false, red,
                               renderer::DEPTH_ORDERING_FIRST);
  EXPECT_FALSE(device.useBlendDepthOrdering(ordering)) << "all alphas are 255";
  device.renderDepthOrdering(&rc, ordering, true);
  EXPECT_EQ(drawn, (strings{"a d200 x0", "b d150 x0"}));

  std::vector<renderableMesh*> both{&a, &b};
  meshMaterialStruct glass;
  glass.frontDiffuse = color(10, 10, 10, 128);
  device.insertToDepthOrdering(&rc, ordering, identity, both, {false, false},
                               {meshMaterialStruct(), glass}, renderer::DEPTH_ORDERING_LAST);
  EXPECT_TRUE(device.useBlendDepthOrdering(ordering))
      << "a transparent material counts even where it is not used";
}

TEST_F(orderingFixture, wireOverlayDrawsEachMeshAgainWithTheOverlayStates) {
  loggedMesh mesh(drawn, "m", point3f(0, 0, 0));
  device.insertToDepthOrdering(&rc, ordering, identity, &mesh, renderer::DEPTH_ORDERING_FIRST);
  ordering[0].item->wireOverlay = true;
  device.renderDepthOrdering(&rc, ordering, true);
  EXPECT_EQ(drawn, (strings{"m d150 x0", "m overlay d255 x0"}));
  EXPECT_EQ(mesh.material.frontDiffuse.cV(), color(255, 255, 255, 254));
  EXPECT_EQ(mesh.material.backSpecular.cV(), color(100, 100, 100, 254));
  EXPECT_EQ(mesh.material.frontEmissive.cV(), color(0, 0, 0, 254));
  EXPECT_EQ(mesh.material.backShininess.cV(), 128.0f);
  EXPECT_EQ(mesh.colorMaterial.mode, colorMaterialstate::COLOR_MATERIAL_AMBIENT_AND_DIFFUSE);
  EXPECT_EQ(mesh.colorMaterial.face, colorMaterialstate::FACE_FRONT_AND_BACK);
  EXPECT_EQ(mesh.flags, renderableMesh::RENDER_EDGES);
  EXPECT_TRUE(mesh.blend.enable);
  EXPECT_EQ(mesh.blend.source, blendstate::SRC_SRC_ALPHA);
  EXPECT_EQ(mesh.blend.destination, blendstate::DST_ONE_MINUS_SRC_ALPHA);
  EXPECT_FALSE(mesh.lighting.enable.cV());
  EXPECT_EQ(mesh.wireframe.mode, wireframestate::FILL_SOLID);

  // The next frame starts the mesh out of overlay mode again.
  drawn.clear();
  ordering[0].item->wireOverlay = false;
  device.renderDepthOrdering(&rc, ordering, true);
  EXPECT_EQ(drawn, (strings{"m d255 x0"}));
}

TEST_F(orderingFixture, copiesShareTheItems) {
  loggedMesh mesh(drawn, "m", point3f(0, 0, 0));
  device.insertToDepthOrdering(&rc, ordering, identity, &mesh, renderer::DEPTH_ORDERING_FIRST);
  depthOrderingVector copy = ordering;
  ASSERT_EQ(copy.size(), 1);
  EXPECT_EQ(copy[0].item.get(), ordering[0].item.get());
  ordering.clear();
  device.renderDepthOrdering(&rc, copy, true);
  EXPECT_EQ(drawn, (strings{"m d150 x0"}));
}
