#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "jev3d/io/image/ioTexture.h"
#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/resources/internal/defaultArchive.h"
#include "jev3d/resources/internal/zipReader.h"
#include "jev3d/resources/resourceInstance.h"
#include "jev3d/resources/textureStorage.h"

using namespace JEV;

namespace {

using texturePointer = SYSTEM::sharedPointer<TEXTURE::texture>;
using textureUser =
    CORE::resourceInstance<CORE::textureStorage, CORE::textureClient, texturePointer>;

struct expectedPicture {
  const char* id;
  const char* file;
  int width;
  int height;
};

// Every resource the library promises, with the picture's size.
const std::vector<expectedPicture>& expectedPictures() {
  static const std::vector<expectedPicture> pictures = [] {
    std::vector<expectedPicture> p = {
        {"GUI_DEFAULT_SKIN", "defaultSkin.png", 256, 256},
        {"GUI_PLASTIQUE_SKIN", "plastiqueSkin.png", 256, 256},
        {"GUI_XP_SKIN", "xpSkin.png", 256, 256},
        {"GUI_FLAT_SKIN", "flatskin.png", 256, 256},
        {"GUI_RAG_SKIN", "ragSkin.png", 256, 256},
        {"GUI_IBRID_SKIN", "ibrid.png", 256, 256},
        {"GUI_ARROW_DOWN_ICON", "arrow_down.png", 16, 16},
        {"GUI_ARROW_UP_ICON", "arrow_up.png", 16, 16},
    };
    const std::pair<const char*, const char*> icons[] = {
        {"GUI_NULL_ICON", "null.png"},
        {"GUI_AXIS_ICON", "axis.png"},
        {"GUI_BUNNY_ICON", "bunny.png"},
        {"GUI_CUT_ICON", "edit_cut.png"},
        {"GUI_COPY_ICON", "edit_copy.png"},
        {"GUI_PASTE_ICON", "edit_paste.png"},
        {"GUI_EXIT_ICON", "exit.png"},
        {"GUI_FILE_OPEN_ICON", "file_open.png"},
        {"GUI_FILE_NEW_ICON", "file_new.png"},
        {"GUI_FILE_SAVE_AS_ICON", "file_save_as.png"},
        {"GUI_FILE_SAVE_ICON", "file_save.png"},
        {"GUI_HELP_ICON", "help.png"},
        {"GUI_FULLSCREEN_ICON", "fullscreen.png"},
        {"GUI_LIST_REMOVE_ICON", "list_remove.png"},
        {"GUI_LIST_ADD_ICON", "list_add.png"},
        {"GUI_PRINT_ICON", "print.png"},
        {"GUI_MOUSE_ICON", "mouse.png"},
        {"GUI_UNDO_ICON", "undo.png"},
        {"GUI_REDO_ICON", "redo.png"},
        {"GUI_SEARCH_ICON", "search.png"},
        {"GUI_REFRESH_ICON", "refresh.png"},
        {"GUI_TRACKBALL_ICON", "trackball.png"},
        {"GUI_TOOLS_ICON", "tools.png"},
        {"GUI_ARROW_RIGHT_ICON", "arrow_right.png"},
        {"GUI_ARROW_LEFT_ICON", "arrow_left.png"},
    };
    for (const auto& [id, file] : icons) p.push_back({id, file, 32, 32});
    return p;
  }();
  return pictures;
}

std::vector<unsigned char> embeddedArchive() {
  const unsigned char* data = CORE::INTERNAL::defaultArchiveData();
  return std::vector<unsigned char>(data, data + CORE::INTERNAL::defaultArchiveSize());
}

// The offset of the first byte of `needle` in `bytes`, or npos.
size_t find(const std::vector<unsigned char>& bytes, const std::string& needle) {
  const std::string all(bytes.begin(), bytes.end());
  return all.find(needle);
}

}  // namespace

TEST(defaultTextures, theArchiveHoldsEveryPictureAsAPngOfItsSize) {
  CORE::INTERNAL::zipReader zip(CORE::INTERNAL::defaultArchiveData(),
                                CORE::INTERNAL::defaultArchiveSize());
  ASSERT_TRUE(zip.isOpen()) << zip.error();
  std::vector<std::string> names;
  ASSERT_TRUE(zip.names(names));
  for (const expectedPicture& p : expectedPictures()) {
    std::vector<unsigned char> bytes;
    ASSERT_TRUE(zip.read(p.file, bytes)) << zip.error();
    ASSERT_GE(bytes.size(), 8u);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 8), "\x89PNG\r\n\x1a\n") << p.file;
    IO::textureImage image;
    ASSERT_TRUE(IO::ioTexture::readTextureFromMemory(bytes.data(), bytes.size(), image, p.file));
    EXPECT_EQ(image.width, p.width) << p.file;
    EXPECT_EQ(image.height, p.height) << p.file;
    EXPECT_EQ(image.components, 4) << p.file;
  }
  std::vector<unsigned char> logo;
  EXPECT_TRUE(zip.read("logo.png", logo));
  EXPECT_EQ(names.size(), expectedPictures().size() + 1);
}

TEST(defaultTextures, skinsAreDistinctAndTheirButtonTilesHaveBordersAndCentres) {
  CORE::INTERNAL::zipReader zip(CORE::INTERNAL::defaultArchiveData(),
                                CORE::INTERNAL::defaultArchiveSize());
  std::vector<std::vector<unsigned char>> centres;
  for (const expectedPicture& p : expectedPictures()) {
    if (p.width != 256) continue;
    std::vector<unsigned char> bytes;
    IO::textureImage image;
    ASSERT_TRUE(zip.read(p.file, bytes));
    ASSERT_TRUE(IO::ioTexture::readTextureFromMemory(bytes.data(), bytes.size(), image, p.file));
    // The normal button tile at (48, 0), counted from the bottom left: opaque, its centre
    // one flat colour, its border another.
    const unsigned char* centre = image.pixel(48 + 8, 8);
    const unsigned char* border = image.pixel(48 + 2, 8);
    for (int y = 4; y < 12; ++y) {
      for (int x = 4; x < 12; ++x) {
        const unsigned char* c = image.pixel(48 + x, y);
        EXPECT_EQ(std::vector<unsigned char>(c, c + 4),
                  std::vector<unsigned char>(centre, centre + 4))
            << p.file << " " << x << "," << y;
      }
    }
    EXPECT_EQ(centre[3], 255);
    EXPECT_EQ(border[3], 255);
    EXPECT_NE(std::vector<unsigned char>(centre, centre + 3),
              std::vector<unsigned char>(border, border + 3))
        << p.file;
    centres.emplace_back(centre, centre + 3);
    centres.back().insert(centres.back().end(), border, border + 3);
  }
  ASSERT_EQ(centres.size(), 6u);
  for (size_t i = 0; i < centres.size(); ++i) {
    for (size_t j = i + 1; j < centres.size(); ++j) EXPECT_NE(centres[i], centres[j]);
  }
}

TEST(defaultTextures, loadDefaultTextureStoresEveryIdKeptCachedAndSkinsSampledNearest) {
  CORE::textureStorage s(nullptr);
  ASSERT_TRUE(s.loadDefaultTexture());
  for (const expectedPicture& p : expectedPictures()) {
    textureUser user(&s);
    ASSERT_TRUE(user.connectToResourceStorage(p.id)) << p.id;
    const TEXTURE::texture& t = *user.getSharedResource();
    EXPECT_EQ(t.getWidth(), p.width) << p.id;
    EXPECT_EQ(t.getHeight(), p.height) << p.id;
    if (p.width == 256) {
      EXPECT_EQ(t.getParameters().filter, 0) << p.id;
    }
  }
  EXPECT_TRUE(s.isValid(L"JEV3D_SDK_LOGO"));
  EXPECT_EQ(s.getEntryCount(), int(expectedPictures().size()) + 1);
  // A second load keeps the stored pictures.
  EXPECT_TRUE(s.loadDefaultTexture());
  EXPECT_EQ(s.getEntryCount(), int(expectedPictures().size()) + 1);
}

TEST(defaultTextures, aDamagedArchiveFailsAndAddsNothing) {
  const std::vector<unsigned char> whole = embeddedArchive();
  std::vector<std::vector<unsigned char>> damaged;
  // Cut short: the central directory at the end is gone.
  damaged.emplace_back(whole.begin(), whole.begin() + whole.size() / 2);
  // Not an archive at all, and nothing.
  damaged.emplace_back(200, 0x5A);
  damaged.emplace_back();
  // A byte of one picture's compressed data flipped: the entry's CRC fails.
  {
    std::vector<unsigned char> flipped = whole;
    const size_t at = find(flipped, "xpSkin.png");
    EXPECT_NE(at, std::string::npos);
    flipped[at + 60] ^= 0xFF;
    damaged.push_back(flipped);
  }
  // One name renamed, so the picture is missing.
  {
    std::vector<unsigned char> renamed = whole;
    std::string all(renamed.begin(), renamed.end());
    for (size_t at = all.find("bunny.png"); at != std::string::npos;
         at = all.find("bunny.png", at + 1)) {
      renamed[at] = 'B';
    }
    damaged.push_back(renamed);
  }
  for (size_t i = 0; i < damaged.size(); ++i) {
    CORE::textureStorage s(nullptr);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(s.loadDefaultTexture(damaged[i].data(), damaged[i].size())) << i;
    const std::string message = testing::internal::GetCapturedStderr();
    EXPECT_FALSE(message.empty()) << i;
    EXPECT_EQ(s.getEntryCount(), 0) << i;
  }
  CORE::textureStorage s(nullptr);
  testing::internal::CaptureStderr();
  EXPECT_FALSE(s.loadDefaultTexture(nullptr, 100));
  EXPECT_FALSE(testing::internal::GetCapturedStderr().empty());
}

TEST(defaultTextures, anyDamagedByteEitherFailsCleanlyOrLoadsEveryPicture) {
  const std::vector<unsigned char> whole = embeddedArchive();
  // Every 61st byte, and the last 100 (the central directory's end), each in turn.
  std::vector<size_t> positions;
  for (size_t at = 0; at < whole.size(); at += 61) positions.push_back(at);
  for (size_t at = whole.size() > 100 ? whole.size() - 100 : 0; at < whole.size(); ++at) {
    positions.push_back(at);
  }
  int failed = 0;
  for (size_t at : positions) {
    std::vector<unsigned char> damaged = whole;
    damaged[at] ^= 0xA5;
    CORE::textureStorage s(nullptr);
    testing::internal::CaptureStderr();
    const bool loaded = s.loadDefaultTexture(damaged.data(), damaged.size());
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(s.getEntryCount(), loaded ? int(expectedPictures().size()) + 1 : 0) << at;
    failed += loaded ? 0 : 1;
  }
  // Most bytes are compressed picture data guarded by a CRC.
  EXPECT_GT(failed, int(positions.size()) / 2);
}
