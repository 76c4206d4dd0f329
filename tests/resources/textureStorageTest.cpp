#include "jev3d/resources/textureStorage.h"

#include <gtest/gtest.h>

#include <string>

#include "jev3d/renderer/renderingContext.h"
#include "jev3d/resources/resourceInstance.h"
#include "support/fileBytes.h"
#include "support/tempDir.h"

using namespace JEV;

namespace {

using texturePointer = SYSTEM::sharedPointer<TEXTURE::texture>;
using textureUser =
    CORE::resourceInstance<CORE::textureStorage, CORE::textureClient, texturePointer>;

std::string imagePath(const std::string& name) {
  return std::string(JEV3D_TEST_IMAGES) + "/" + name;
}

// The file's top-left pixel of rgb8.png and rgba8.png, as makeImages.py wrote it.
void expectTopLeft(const TEXTURE::texture& t, int r, int g, int b) {
  const unsigned char* p = t.getImage().pixel(0, t.getHeight() - 1);
  EXPECT_EQ(p[0], r);
  EXPECT_EQ(p[1], g);
  EXPECT_EQ(p[2], b);
}

}  // namespace

TEST(textureStorage, loadsAPictureThatClientsReadThroughTheirServer) {
  CORE::textureStorage s(nullptr);
  TEXTURE::textureDescriptor nearest;
  nearest.filter = 0;
  ASSERT_TRUE(s.loadTextureFromFile(imagePath("rgb8.png"), "wall", nearest));
  textureUser user(&s);
  ASSERT_TRUE(user.connectToResourceStorage("wall"));
  const TEXTURE::texture& t = *user.getSharedResource();
  EXPECT_EQ(t.getWidth(), 7);
  EXPECT_EQ(t.getHeight(), 5);
  EXPECT_EQ(t.getBitsPerPixel(), 24);
  EXPECT_EQ(t.getParameters().filter, 0);
  expectTopLeft(t, 3, 5, 0);
  // Nothing has reached a device: without a back end the texture stays in memory.
  EXPECT_FALSE(s.isCached(L"wall"));
  EXPECT_FALSE(s.cache(L"wall"));
  EXPECT_FALSE(user.getSharedResource()->isCached());
}

TEST(textureStorage, badFilesLeaveNoEntryAndReloadsKeepOrReplaceThePicture) {
  tempDir dir;
  const std::string cut = dir.file("cut.png");
  const std::string whole = readBytes(imagePath("rgba8.png"));
  writeBytes(cut, whole.substr(0, whole.size() / 2));
  CORE::textureStorage s(nullptr);
  testing::internal::CaptureStderr();
  EXPECT_FALSE(s.loadTextureFromFile(cut, "cut"));
  EXPECT_FALSE(s.loadTextureFromFile(dir.file("missing.jpg"), "missing"));
  const std::string errors = testing::internal::GetCapturedStderr();
  EXPECT_NE(errors.find(cut), std::string::npos) << errors;
  EXPECT_NE(errors.find("missing.jpg"), std::string::npos) << errors;
  EXPECT_EQ(s.getEntryCount(), 0);

  ASSERT_TRUE(s.loadTextureFromFile(imagePath("rgb8.png"), "wall"));
  textureUser user(&s);
  ASSERT_TRUE(user.connectToResourceStorage(L"wall"));
  const TEXTURE::texture* t = user.getSharedResource().get();
  // Taken id without a forced reload: refused, old picture kept.
  EXPECT_FALSE(s.loadTextureFromFile(imagePath("rgba8.png"), "wall"));
  EXPECT_EQ(t->getBitsPerPixel(), 24);
  // A forced reload of a bad file keeps the old picture too.
  testing::internal::CaptureStderr();
  EXPECT_FALSE(s.loadTextureFromFile(cut, "wall", {}, 0, true));
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(t->getBitsPerPixel(), 24);
  // A good one refills the same texture, which the linked client sees.
  ASSERT_TRUE(s.loadTextureFromFile(imagePath("rgba8.png"), "wall", {}, 0, true));
  EXPECT_EQ(user.getSharedResource().get(), t);
  EXPECT_EQ(t->getBitsPerPixel(), 32);
  expectTopLeft(*t, 3, 5, 0);
  EXPECT_EQ(t->getImage().pixel(0, 4)[3], 0);
  EXPECT_EQ(t->getImage().pixel(6, 0)[3], 200);  // bottom right: (6 + 4) * 20
}

TEST(textureStorage, clearingDropsThePictureAndTheDeviceNames) {
  TEXTURE::texture t(nullptr);
  ASSERT_TRUE(t.readFromFile(imagePath("flat.jpg")));
  EXPECT_EQ(t.getWidth(), 16);
  // The back end records its names; discarding hands them back and keeps the picture.
  t.setDeviceNames({5});
  EXPECT_TRUE(t.isCached());
  EXPECT_TRUE(t.discard());
  EXPECT_FALSE(t.isCached());
  EXPECT_EQ(t.getWidth(), 16);
  // New data makes the device copy stale.
  t.setDeviceNames({6});
  ASSERT_TRUE(t.readFromFile(imagePath("gray8.png")));
  EXPECT_FALSE(t.isCached());
  EXPECT_TRUE(t.clear());
  EXPECT_TRUE(t.getImage().empty());
  EXPECT_EQ(t.getBitsPerPixel(), 0);
}

TEST(textureStorage, theRenderingContextHoldsItsStorages) {
  RENDERING::renderingContext context(nullptr, nullptr);
  ASSERT_NE(context.getTextureStorage(), nullptr);
  ASSERT_NE(context.getMeshStorage(), nullptr);
  ASSERT_TRUE(context.getTextureStorage()->loadTextureFromFile(imagePath("rgb8.png"), "wall"));
  {
    RENDERING::renderingContext copy(context);
    EXPECT_EQ(copy.getTextureStorage(), context.getTextureStorage());
    EXPECT_EQ(copy.getMeshStorage(), context.getMeshStorage());
  }
  // The copy is gone; the storages stay with the context.
  EXPECT_TRUE(context.getTextureStorage()->isValid("wall"));
  textureUser user(context.getTextureStorage());
  ASSERT_TRUE(user.connectToResourceStorage("wall"));
  context.discard();
  EXPECT_EQ(context.getTextureStorage()->getEntryCount(), 0);
  EXPECT_TRUE(user.isNull());
}
