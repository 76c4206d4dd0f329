#include "jev3d/io/image/ioTexture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

#include "support/fileBytes.h"
#include "support/tempDir.h"

using JEV::IO::ioTexture;
using JEV::IO::textureImage;

// The files in images/ were written by makeImages.py with Python's zlib and with cjpeg;
// the formulas below are the ones it wrote them from.
namespace {

std::string imagePath(const std::string& name) {
  return std::string(JEV3D_TEST_IMAGES) + "/" + name;
}

struct rgba {
  int r, g, b, a;
};

using pixelFormula = std::function<rgba(int x, int y)>;

rgba smoothPixel(int x, int y) { return {40 + x * 6, 60 + y * 8, 200 - x * 3 - y * 2, 255}; }

rgba basePixel(int x, int y) {
  return {(x * 17 + 3) & 255, (y * 29 + 5) & 255, (x * y * 7) & 255, 255};
}

// Reads `name` and compares every pixel with `expected(x, y)`, y counted from the file's
// top row, within `tolerance` a channel.
void expectImage(const std::string& name, int width, int height, int components,
                 const pixelFormula& expected, int tolerance) {
  SCOPED_TRACE(name);
  textureImage image;
  ASSERT_TRUE(ioTexture::readTextureFromFile(imagePath(name), image));
  ASSERT_EQ(image.width, width);
  ASSERT_EQ(image.height, height);
  ASSERT_EQ(image.components, components);
  ASSERT_EQ(image.pixels.size(), size_t(width * height * components));
  int worst = 0;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      // Textures keep the bottom row first.
      const unsigned char* p = image.pixel(x, height - 1 - y);
      const rgba e = expected(x, y);
      const int want[4] = {e.r, e.g, e.b, e.a};
      for (int c = 0; c < components; ++c) {
        const int error = std::abs(int(p[c]) - want[c]);
        worst = std::max(worst, error);
        EXPECT_LE(error, tolerance) << "pixel " << x << "," << y << " channel " << c;
      }
    }
  }
  // A decoder that ignores the file cannot pass by luck with a tolerance of zero.
  if (tolerance == 0) {
    EXPECT_EQ(worst, 0);
  }
}

// Runs `read` with the error stream captured; returns what it wrote.
std::string capturedErrors(const std::function<void()>& read) {
  testing::internal::CaptureStderr();
  read();
  return testing::internal::GetCapturedStderr();
}

}  // namespace

TEST(ioTexture, pngOfEveryColourTypeDecodesExactly) {
  expectImage("rgb8.png", 7, 5, 3, basePixel, 0);
  expectImage("rgb8interlaced.png", 7, 5, 3, basePixel, 0);
  expectImage(
      "rgba8.png", 7, 5, 4,
      [](int x, int y) {
        rgba p = basePixel(x, y);
        p.a = ((x + y) * 20) & 255;
        return p;
      },
      0);
  expectImage(
      "gray8.png", 7, 5, 3,
      [](int x, int y) {
        const int v = (x * 30 + y) & 255;
        return rgba{v, v, v, 255};
      },
      0);
  // Palette with transparency: four channels, alpha from the tRNS entries.
  expectImage(
      "palette8.png", 7, 5, 4,
      [](int x, int y) {
        static const rgba palette[4] = {
            {255, 0, 0, 255}, {0, 255, 0, 255}, {0, 0, 255, 128}, {255, 255, 255, 0}};
        return palette[(x + y) % 4];
      },
      0);
}

TEST(ioTexture, sixteenBitPngIsRoundedToEightBits) {
  const auto scaled = [](int v) { return int(std::lround(v / 257.0)); };
  expectImage(
      "rgb16.png", 7, 5, 3,
      [&](int x, int y) {
        return rgba{scaled(x * 9000), scaled(y * 16000), scaled(65535 - x * y * 2000), 255};
      },
      1);
}

// JPEG is lossy, so the expectations are ones any correct decoder meets: a flat colour
// codes as DC terms alone and comes back within the colour conversion's rounding; a
// smooth ramp at quality 100 with full-resolution chroma (all quantisers 1) stays within
// a few levels. The odd 13 x 9 size leaves partial blocks at the right and bottom.
TEST(ioTexture, jpegDecodesWithinTheCodingError) {
  expectImage(
      "flat.jpg", 16, 16, 3,
      [](int, int) {
        return rgba{200, 100, 50, 255};
      },
      2);
  expectImage("smooth.jpg", 13, 9, 3, smoothPixel, 3);
  expectImage("smoothProgressive.jpg", 13, 9, 3, smoothPixel, 3);
  expectImage(
      "smoothGray.jpg", 13, 9, 3,
      [](int x, int y) {
        const rgba c = smoothPixel(x, y);
        const int luma = int(std::lround(0.299 * c.r + 0.587 * c.g + 0.114 * c.b));
        return rgba{luma, luma, luma, 255};
      },
      3);
}

TEST(ioTexture, everyCutOfAFileFailsWithAMessageAndLeavesTheImage) {
  tempDir dir;
  for (const char* name :
       {"rgb8.png", "rgb8interlaced.png", "palette8.png", "flat.jpg", "smoothProgressive.jpg"}) {
    SCOPED_TRACE(name);
    const std::string whole = readBytes(imagePath(name));
    ASSERT_FALSE(whole.empty());
    const std::string path = dir.file("cut");
    for (size_t length = 0; length < whole.size(); ++length) {
      writeBytes(path, whole.substr(0, length));
      textureImage image;
      image.width = 1;
      image.height = 1;
      image.components = 3;
      image.pixels = {1, 2, 3};
      bool ok = true;
      const std::string errors =
          capturedErrors([&] { ok = ioTexture::readTextureFromFile(path, image); });
      EXPECT_FALSE(ok) << "cut at " << length;
      EXPECT_NE(errors.find("ioTexture: " + path + ": "), std::string::npos) << "cut at " << length;
      EXPECT_EQ(image.width, 1);
      EXPECT_EQ(image.pixels, (std::vector<unsigned char>{1, 2, 3}));
    }
  }
}

TEST(ioTexture, damagedFilesNeverCrashAndFailWithAMessage) {
  tempDir dir;
  for (const char* name : {"rgba8.png", "rgb16.png", "smooth.jpg", "smoothGray.jpg"}) {
    SCOPED_TRACE(name);
    forEachDamagedCopy(
        readBytes(imagePath(name)), dir.file("damaged"), 7, 40, 300, [](const std::string& path) {
          textureImage image;
          bool ok = false;
          const std::string errors =
              capturedErrors([&] { ok = ioTexture::readTextureFromFile(path, image); });
          if (ok) {
            // Damage in JPEG coefficients can still decode: a whole picture.
            EXPECT_EQ(image.pixels.size(),
                      size_t(image.width) * size_t(image.height) * size_t(image.components));
            EXPECT_TRUE(errors.empty());
          } else {
            EXPECT_FALSE(errors.empty());
          }
        });
  }
}

TEST(ioTexture, chosenDamageFails) {
  tempDir dir;
  const std::string path = dir.file("bad");
  const auto failsWith = [&](const std::string& bytes, const std::string& reason) {
    writeBytes(path, bytes);
    textureImage image;
    bool ok = true;
    const std::string errors =
        capturedErrors([&] { ok = ioTexture::readTextureFromFile(path, image); });
    EXPECT_FALSE(ok) << reason;
    EXPECT_NE(errors.find(reason), std::string::npos) << errors;
    EXPECT_TRUE(image.empty());
  };
  // A flipped bit in the compressed pixels breaks the data chunk's checksum.
  std::string png = readBytes(imagePath("rgb8.png"));
  const size_t data = png.find("IDAT");
  ASSERT_NE(data, std::string::npos);
  png[data + 10] = char(png[data + 10] ^ 0x10);
  failsWith(png, "ioTexture: ");
  // A header claiming 100000 x 100000 pixels is refused before anything is allocated.
  failsWith(readBytes(imagePath("huge.png")), "too large");
  // A JPEG frame header claiming 12-bit samples, which this decoder does not take.
  std::string jpeg = readBytes(imagePath("flat.jpg"));
  const size_t frame = jpeg.find("\xFF\xC0");
  ASSERT_NE(frame, std::string::npos);
  jpeg[frame + 4] = 12;
  failsWith(jpeg, "ioTexture: ");
  failsWith("GIF89a and more", "neither a PNG nor a JPEG file");
  failsWith("", "neither a PNG nor a JPEG file");
  textureImage image;
  EXPECT_NE(capturedErrors([&] {
              ioTexture::readTextureFromFile(dir.file("missing.png"), image);
            }).find("cannot open"),
            std::string::npos);
}

TEST(ioTexture, wideNamesAndMemoryReadTheSame) {
  textureImage fromFile;
  const std::string narrow = imagePath("rgba8.png");
  ASSERT_TRUE(ioTexture::readTextureFromFile(std::wstring(narrow.begin(), narrow.end()), fromFile));
  const std::string bytes = readBytes(imagePath("rgba8.png"));
  textureImage fromMemory;
  ASSERT_TRUE(ioTexture::readTextureFromMemory(reinterpret_cast<const unsigned char*>(bytes.data()),
                                               bytes.size(), fromMemory, "memory"));
  EXPECT_EQ(fromFile.pixels, fromMemory.pixels);
  EXPECT_EQ(fromMemory.bitsPerPixel(), 32);
}
