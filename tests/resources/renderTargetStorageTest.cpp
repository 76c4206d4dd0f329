#include "jev3d/resources/renderTargetStorage.h"

#include <gtest/gtest.h>

#include <string>

#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/resources/texture.h"
#include "support/recordingRenderer.h"

using namespace JEV;
using RENDERING::INSTANCING::renderTargetInstance;

TEST(renderTargetStorage, makesNamedTargetsWithTheirOwnColourTextures) {
  recordingRenderer device;
  CORE::renderTargetStorage s(&device);
  EXPECT_TRUE(s.createRenderTarget("mirror", 64, 32));
  EXPECT_TRUE(s.createRenderTarget(L"shadow", 16, 16, CORE::SRS_KEEP_CACHED));
  EXPECT_EQ(s.getEntryCount(), 2);
  // Names are kept in order; an id is given once, and a target has at least one pixel.
  EXPECT_EQ(s.getName(0), L"mirror");
  EXPECT_EQ(s.getName(1), L"shadow");
  EXPECT_FALSE(s.createRenderTarget("mirror", 8, 8));
  EXPECT_FALSE(s.createRenderTarget("", 8, 8));
  EXPECT_FALSE(s.createRenderTarget("empty", 0, 8));
  EXPECT_FALSE(s.createRenderTarget("flat", 8, -1));
  EXPECT_EQ(s.getEntryCount(), 2);
  EXPECT_FALSE(s.isValid("empty"));

  RENDERING::renderTarget* mirror = s.getEntry(L"mirror")->getPayload();
  ASSERT_NE(mirror, nullptr);
  ASSERT_NE(mirror->getTexture(), nullptr);
  EXPECT_NE(mirror->getTexture(), s.getEntry(L"shadow")->getPayload()->getTexture());
  EXPECT_EQ(mirror->getTexture()->getWidth(), 64);
  EXPECT_EQ(mirror->getTexture()->getHeight(), 32);
  EXPECT_EQ(mirror->getTexture()->getBitsPerPixel(), 32);
  EXPECT_EQ(mirror->getTexture()->getParameters().filter, 0);
  // Making them put nothing on the device; the one without clients under the discarding
  // policy was only told to let its (absent) framebuffer go.
  EXPECT_EQ(device.count("cacheRenderTargetOnTexture"), 0);
  EXPECT_EQ(device.count("discardRenderTargetOnTexture"), 1);
}

TEST(renderTargetStorage, instancesDrawIntoTheTargetTheyNameAndLetItGoWithTheLastOne) {
  recordingRenderer device;
  CORE::renderTargetStorage s(&device);
  ASSERT_TRUE(s.createRenderTarget("mirror", 8, 8));
  const int discardsBefore = device.count("discardRenderTargetOnTexture");
  renderTargetInstance first(&s);
  EXPECT_TRUE(first.isWindowTarget());
  EXPECT_FALSE(first.connectToResourceStorage("missing"));
  EXPECT_TRUE(first.isWindowTarget());
  ASSERT_TRUE(first.connectToResourceStorage("mirror"));
  EXPECT_EQ(first.getResourceId(), L"mirror");
  EXPECT_FALSE(first.isWindowTarget());
  EXPECT_EQ(first.getTarget(), s.getEntry(L"mirror")->getPayload());
  {
    renderTargetInstance second(&s);
    ASSERT_TRUE(second.connectToResourceStorage("mirror"));
    EXPECT_EQ(second.getTarget(), first.getTarget());
    EXPECT_EQ(s.getEntry(L"mirror")->getClientCount(), 2);
    EXPECT_TRUE(first.cacheResource(&device));
    EXPECT_EQ(device.count("cacheRenderTargetOnTexture"), 1);
  }
  EXPECT_EQ(s.getEntry(L"mirror")->getClientCount(), 1);
  EXPECT_EQ(device.count("discardRenderTargetOnTexture"), discardsBefore)
      << "a client still draws there";

  // A target given directly comes before the named one.
  RENDERING::renderTarget direct{SYSTEM::sharedPointer<TEXTURE::texture>()};
  first.setTarget(&direct);
  EXPECT_EQ(first.getTarget(), &direct);
  first.setTarget(nullptr);
  EXPECT_EQ(first.getTarget(), s.getEntry(L"mirror")->getPayload());

  // The last client gone, the framebuffer goes too, and the target stays for the next.
  ASSERT_TRUE(first.disconnectToResourceStorage());
  EXPECT_TRUE(first.isWindowTarget());
  EXPECT_EQ(device.count("discardRenderTargetOnTexture"), discardsBefore + 1);
  EXPECT_TRUE(s.isValid("mirror"));
}

TEST(renderTargetStorage, theContextKeepsOneAndEmptiesItOnDiscard) {
  recordingRenderer device;
  RENDERING::renderingContext rc(&device, nullptr);
  CORE::renderTargetStorage* s = rc.getRenderTargetStorage();
  ASSERT_NE(s, nullptr);
  EXPECT_EQ(s->getRender(), &device);
  RENDERING::renderingContext copy(rc);
  EXPECT_EQ(copy.getRenderTargetStorage(), s) << "a copy shares its storages";
  ASSERT_TRUE(s->createRenderTarget("a", 4, 4));
  ASSERT_TRUE(s->createRenderTarget("b", 4, 4));
  renderTargetInstance user(s);
  ASSERT_TRUE(user.connectToResourceStorage("a"));
  const int discardsBefore = device.count("discardRenderTargetOnTexture");
  rc.discard();
  EXPECT_EQ(s->getEntryCount(), 0);
  EXPECT_EQ(device.count("discardRenderTargetOnTexture"), discardsBefore + 2)
      << "each target is cleared";
  EXPECT_TRUE(user.isWindowTarget());
}
