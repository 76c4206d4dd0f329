#include <png.h>

#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <vector>

#include "jev3d/io/image/internal/imageDecoders.h"

namespace JEV {
namespace IO {
namespace INTERNAL {
namespace {

// libpng reports errors by a call that must not return; ours jumps back to the stage that
// is running. So the stages below keep only plain values in their frames, and everything
// with a destructor lives in the caller.
struct pngJob {
  png_structp png = nullptr;
  png_infop info = nullptr;
  const unsigned char* data = nullptr;
  size_t size = 0;
  size_t at = 0;
  std::jmp_buf jump;
  char message[256] = {};
  int width = 0;
  int height = 0;
  int components = 0;
};

void onError(png_structp png, png_const_charp text) {
  auto* job = static_cast<pngJob*>(png_get_error_ptr(png));
  std::snprintf(job->message, sizeof job->message, "%s", text);
  std::longjmp(job->jump, 1);
}

// Warnings are about ancillary chunks, which are skipped; the picture is not at stake.
void onWarning(png_structp, png_const_charp) {}

void readFromMemory(png_structp png, png_bytep out, png_size_t count) {
  auto* job = static_cast<pngJob*>(png_get_io_ptr(png));
  if (count > job->size - job->at) png_error(png, "the file ends early");
  std::memcpy(out, job->data + job->at, count);
  job->at += count;
}

// Reads the header and sets the conversions to 8-bit RGB or RGBA.
bool readHeader(pngJob& job, const imageLimits& limits, std::string& sizeMessage) {
  if (setjmp(job.jump)) return false;
  png_set_read_fn(job.png, &job, readFromMemory);
  png_read_info(job.png, job.info);
  png_uint_32 width = 0;
  png_uint_32 height = 0;
  int depth = 0;
  int colourType = 0;
  png_get_IHDR(job.png, job.info, &width, &height, &depth, &colourType, nullptr, nullptr, nullptr);
  if (!imageSizeAllowed(width, height, limits, sizeMessage)) return false;
  if (depth == 16) png_set_scale_16(job.png);
  if (colourType == PNG_COLOR_TYPE_PALETTE) png_set_palette_to_rgb(job.png);
  if (colourType == PNG_COLOR_TYPE_GRAY && depth < 8) png_set_expand_gray_1_2_4_to_8(job.png);
  if (png_get_valid(job.png, job.info, PNG_INFO_tRNS)) png_set_tRNS_to_alpha(job.png);
  if (!(colourType & PNG_COLOR_MASK_COLOR)) png_set_gray_to_rgb(job.png);
  png_set_interlace_handling(job.png);
  png_read_update_info(job.png, job.info);
  job.width = int(width);
  job.height = int(height);
  job.components = png_get_channels(job.png, job.info);
  if ((job.components != 3 && job.components != 4) ||
      png_get_rowbytes(job.png, job.info) != size_t(width) * size_t(job.components)) {
    std::snprintf(job.message, sizeof job.message, "unexpected pixel layout");
    return false;
  }
  return true;
}

// Reads every row, then the chunks after the data up to the end marker, so that a file
// cut anywhere fails.
bool readRows(pngJob& job, png_bytepp rows) {
  if (setjmp(job.jump)) return false;
  png_read_image(job.png, rows);
  png_read_end(job.png, nullptr);
  return true;
}

}  // namespace

bool decodePng(const unsigned char* data, size_t size, const imageLimits& limits,
               textureImage& image, std::string& message) {
  pngJob job;
  job.data = data;
  job.size = size;
  job.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &job, onError, onWarning);
  if (!job.png) {
    message = "out of memory";
    return false;
  }
  job.info = png_create_info_struct(job.png);
  std::string sizeMessage;
  bool ok = job.info && readHeader(job, limits, sizeMessage);
  std::vector<unsigned char> pixels;
  if (ok) {
    const size_t stride = size_t(job.width) * size_t(job.components);
    pixels.resize(stride * size_t(job.height));
    // The file's top row goes last: textures keep the bottom row first.
    std::vector<png_bytep> rows(size_t(job.height));
    for (int y = 0; y < job.height; ++y) {
      rows[size_t(y)] = pixels.data() + size_t(job.height - 1 - y) * stride;
    }
    ok = readRows(job, rows.data());
  }
  png_destroy_read_struct(&job.png, job.info ? &job.info : nullptr, nullptr);
  if (!ok) {
    message = !sizeMessage.empty() ? sizeMessage : job.message[0] ? job.message : "not a PNG file";
    return false;
  }
  image.width = job.width;
  image.height = job.height;
  image.components = job.components;
  image.pixels = std::move(pixels);
  return true;
}

}  // namespace INTERNAL
}  // namespace IO
}  // namespace JEV
