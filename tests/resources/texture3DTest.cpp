#include "jev3d/resources/texture3D.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/recordingRenderer.h"

using JEV::TEXTURE::texture3D;

TEST(texture3D, takesOnlyAVolumeWhoseSamplesFillItsSides) {
  texture3D volume(nullptr);
  EXPECT_TRUE(volume.empty());
  EXPECT_TRUE(volume.setVolume(2, 3, 4, std::vector<unsigned char>(24, 7)));
  EXPECT_EQ(volume.getWidth(), 2);
  EXPECT_EQ(volume.getHeight(), 3);
  EXPECT_EQ(volume.getDepth(), 4);
  EXPECT_EQ(volume.getSamples().size(), 24u);
  // A short, long or sideless volume is refused and the old one kept.
  EXPECT_FALSE(volume.setVolume(2, 3, 4, std::vector<unsigned char>(23)));
  EXPECT_FALSE(volume.setVolume(2, 3, 4, std::vector<unsigned char>(25)));
  EXPECT_FALSE(volume.setVolume(0, 3, 4, {}));
  EXPECT_FALSE(volume.setVolume(2, -3, -4, std::vector<unsigned char>(24)));
  EXPECT_EQ(volume.getDepth(), 4);
  EXPECT_EQ(volume.getSamples()[0], 7);
  // Without a renderer nothing reaches a device.
  EXPECT_FALSE(volume.cache());
  EXPECT_FALSE(volume.isCached());
  volume.clear();
  EXPECT_TRUE(volume.empty());
  EXPECT_EQ(volume.getWidth(), 0);
}

TEST(texture3D, goesToTheDeviceThroughTheVolumeCallsAndBackThroughTheirDiscardList) {
  recordingRenderer device;
  {
    texture3D volume(&device);
    ASSERT_TRUE(volume.setVolume(2, 2, 2, std::vector<unsigned char>(8, 1)));
    volume.cache();
    EXPECT_EQ(device.count("cacheTexture3D"), 1);
    EXPECT_EQ(std::count(device.calls.begin(), device.calls.end(), "cacheTexture"), 0)
        << "not the flat texture's upload";
    // A volume with names on the device hands them to the volume discard list, from any
    // thread, when it goes.
    volume.setDeviceNames({5});
    EXPECT_TRUE(volume.cache()) << "already there";
    EXPECT_EQ(device.count("cacheTexture3D"), 1);
  }
  EXPECT_EQ(device.count("addTextureToDiscardList3D"), 1);
  EXPECT_EQ(device.count("addTextureToDiscardList "), 0);
}
