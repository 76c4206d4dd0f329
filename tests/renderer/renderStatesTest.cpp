// Defaults, setters, clones and presets of the state classes.
#include <gtest/gtest.h>

#include "jev3d/renderer/renderstate/alphastate.h"
#include "jev3d/renderer/renderstate/blendstate.h"
#include "jev3d/renderer/renderstate/clipPlanestate.h"
#include "jev3d/renderer/renderstate/colorMaterialstate.h"
#include "jev3d/renderer/renderstate/colorbufferstate.h"
#include "jev3d/renderer/renderstate/cullstate.h"
#include "jev3d/renderer/renderstate/fogState.h"
#include "jev3d/renderer/renderstate/lightingstate.h"
#include "jev3d/renderer/renderstate/lightstate.h"
#include "jev3d/renderer/renderstate/materialstate.h"
#include "jev3d/renderer/renderstate/pointSizestate.h"
#include "jev3d/renderer/renderstate/scissorstate.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "jev3d/renderer/renderstate/wireframestate.h"
#include "jev3d/renderer/renderstate/zbufferstate.h"

using namespace JEV::RENDERING::RENDERSTATE;
using JEV::CORE::color;

TEST(renderStates, defaultsAreTheDocumentedOnes) {
  alphastate a;
  EXPECT_FALSE(a.enable);
  EXPECT_EQ(a.function, 7);
  EXPECT_EQ(a.reference, 0.0f);
  blendstate b;
  EXPECT_FALSE(b.enable);
  EXPECT_EQ(b.source, 4);
  EXPECT_EQ(b.destination, 5);
  cullstate c;
  EXPECT_FALSE(c.enable.cV());
  EXPECT_EQ(c.frontFace, 0);
  lightingstate l;
  EXPECT_TRUE(l.enable.cV());
  EXPECT_FALSE(l.twoSide.cV());
  colorMaterialstate cm;
  EXPECT_EQ(cm.mode, 4);
  EXPECT_EQ(cm.face, 2);
  EXPECT_TRUE(colorbufferstate().writeMask.cV());
  EXPECT_EQ(pointSizestate().size.cV(), 1.0f);
  EXPECT_EQ(wireframestate().mode, 0);
  zbufferstate z;
  EXPECT_TRUE(z.enable.cV());
  EXPECT_EQ(z.function, 2);
  EXPECT_EQ(z.function, zbufferstate::DEPTH_LEQUAL);
  EXPECT_TRUE(z.writeEnable.cV());
  EXPECT_FALSE(z.clearFirst.cV());
  EXPECT_EQ(z.rangeNear.cV(), 0.0f);
  EXPECT_EQ(z.rangeFar.cV(), 1.0f);
  clipPlanestate cp;
  EXPECT_FALSE(cp.enable.cV());
  EXPECT_EQ(cp.plane, 0);
  EXPECT_EQ(cp.a.cV() + cp.b.cV() + cp.c.cV() + cp.d.cV(), 0.0f);
  fogState f;
  EXPECT_FALSE(f.enable.cV());
  EXPECT_EQ(f.mode, 0);
  EXPECT_EQ(f.type, 0);
  EXPECT_EQ(f.color, color(100, 100, 100, 255));
  EXPECT_EQ(f.end.cV(), 1.0f);
  EXPECT_FLOAT_EQ(f.density.cV(), 0.35f);
  viewportstate v;
  EXPECT_EQ(v.width.cV(), 320);
  EXPECT_EQ(v.height.cV(), 240);
  EXPECT_EQ(v.computedWidth.cV(), 320);
  EXPECT_EQ(v.computedHeight.cV(), 240);
  EXPECT_FALSE(v.intersectParent.cV());
  EXPECT_EQ(v.type, 0);
  scissorstate s;
  EXPECT_EQ(s.width.cV(), 320);
  EXPECT_EQ(s.computedHeight.cV(), 240);
  EXPECT_FALSE(s.enable.cV());
  lightstate li;
  EXPECT_EQ(li.light, 0u);
  EXPECT_FALSE(li.enable);
  EXPECT_EQ(li.ambient.cV(), color(150, 150, 150, 255));
  EXPECT_EQ(li.diffuse.cV(), color(200, 200, 200, 255));
  EXPECT_EQ(li.specular.cV(), color(0, 0, 0, 255));
  EXPECT_EQ(li.direction.z, 1.0f);
  EXPECT_EQ(li.position.y, 1.0f);
  EXPECT_EQ(li.spotCutoff, 180.0f);
  EXPECT_EQ(li.constantAttenuation, 1.0f);
  EXPECT_EQ(li.positionMatrix.cV()[0], 1.0f);
  materialstate m;
  EXPECT_EQ(m.frontDiffuse.cV(), color(150, 150, 150, 255));
  EXPECT_EQ(m.backSpecular.cV(), color(50, 50, 50, 255));
  EXPECT_EQ(m.frontEmissive.cV(), color(0, 0, 0, 255));
  EXPECT_EQ(m.backShininess.cV(), 128.0f);
}

TEST(renderStates, enumerationsKeepTheirSavedNumbers) {
  EXPECT_EQ(zbufferstate::DEPTH_LEQUAL, 2);
  EXPECT_EQ(zbufferstate::DEPTH_EQUAL, 3);
  EXPECT_EQ(alphastate::ALPHA_EQUAL, 2);
  EXPECT_EQ(alphastate::ALPHA_LEQUAL, 3);
  EXPECT_EQ(blendstate::SRC_SRC_ALPHA_SATURATE, 8);
  EXPECT_EQ(blendstate::DST_ONE_MINUS_DST_ALPHA, 7);
  EXPECT_EQ(colorMaterialstate::COLOR_MATERIAL_OFF, 5);
  EXPECT_EQ(alphastate::CLIP_PLANE_STATE0 + 5, 185);
  EXPECT_EQ(alphastate::TEXTURE_STATE0 + 32, 72);
  EXPECT_EQ(alphastate::LIGHT_STATE0 + 23, 33);
}

TEST(renderStates, setAndCloneCarryEveryValue) {
  fogState f(true, fogState::FOG_EXP2, fogState::FOG_NICEST, color(1, 2, 3, 4), 2.0f, 9.0f, 0.5f);
  fogState g;
  f.clone(&g);
  EXPECT_TRUE(g.enable.cV());
  EXPECT_EQ(g.type, fogState::FOG_EXP2);
  EXPECT_EQ(g.mode, fogState::FOG_NICEST);
  EXPECT_EQ(g.color, color(1, 2, 3, 4));
  EXPECT_EQ(g.start.cV(), 2.0f);
  EXPECT_EQ(g.end.cV(), 9.0f);
  EXPECT_EQ(g.density.cV(), 0.5f);

  zbufferstate z(false, zbufferstate::DEPTH_ALWAYS, false, true);
  z.rangeNear = 0.25f;
  zbufferstate z2;
  z.clone(&z2);
  EXPECT_FALSE(z2.enable.cV());
  EXPECT_EQ(z2.function, zbufferstate::DEPTH_ALWAYS);
  EXPECT_FALSE(z2.writeEnable.cV());
  EXPECT_TRUE(z2.clearFirst.cV());
  EXPECT_EQ(z2.rangeNear.cV(), 0.25f);

  // The scissor's set writes both rectangles; the viewport's only the requested one.
  scissorstate s(1, 2, 3, 4, true, true);
  EXPECT_EQ(s.computedX.cV(), 1);
  EXPECT_EQ(s.computedHeight.cV(), 4);
  viewportstate v(1, 2, 3, 4, true, viewportstate::VIEWPORT_FREE);
  EXPECT_EQ(v.computedX.cV(), 0);
  EXPECT_EQ(v.computedHeight.cV(), 240);

  lightstate l;
  l.light = 5;
  l.enable = true;
  l.viewFlag = true;
  l.spotCutoff = 30.0f;
  lightstate l2;
  l.clone(&l2);
  EXPECT_EQ(l2.light, 5u);
  EXPECT_TRUE(l2.enable);
  EXPECT_TRUE(l2.viewFlag.cV());
  EXPECT_EQ(l2.spotCutoff, 30.0f);
}

TEST(renderStates, materialPresetsScaleAndTruncate) {
  materialstate m;
  m.setFrontMaterialType(materialstate::MATERIAL_PEARL);
  EXPECT_EQ(m.frontEmissive.cV(), color(0, 0, 0, 0));
  // .25 .20725 .20725 times 255 is 63.75 52.85 52.85, truncated.
  EXPECT_EQ(m.frontAmbient.cV(), color(63, 52, 52, 255));
  EXPECT_EQ(m.frontDiffuse.cV(), color(255, 211, 211, 255));
  EXPECT_EQ(m.frontSpecular.cV(), color(75, 75, 75, 255));
  EXPECT_FLOAT_EQ(m.frontShininess.cV(), 11.264f);
  EXPECT_EQ(m.backDiffuse.cV(), color(150, 150, 150, 255)) << "the back is untouched";

  m.setBackMaterialType(materialstate::MATERIAL_YELLOW_RUBBER);
  EXPECT_EQ(m.backAmbient.cV(), color(12, 12, 0, 255));
  EXPECT_EQ(m.backDiffuse.cV(), color(127, 127, 102, 255));
  EXPECT_EQ(m.backSpecular.cV(), color(178, 178, 10, 255));
  EXPECT_EQ(m.backShininess.cV(), 10.0f);

  m.setFrontAndBackMaterialType(materialstate::MATERIAL_EMERALD);
  EXPECT_EQ(m.frontDiffuse.cV(), m.backDiffuse.cV());
  EXPECT_EQ(m.frontDiffuse.cV(), color(19, 156, 19, 255));
  EXPECT_FLOAT_EQ(m.backShininess.cV(), 76.8f);

  m.frontDiffuse = color(1, 2, 3, 4);
  m.frontShininess = 7.0f;
  m.copyFrontToBack();
  EXPECT_EQ(m.backDiffuse.cV(), color(1, 2, 3, 4));
  EXPECT_EQ(m.backShininess.cV(), 7.0f);
  EXPECT_EQ(m.backEmissive.cV(), color(0, 0, 0, 0));
}
