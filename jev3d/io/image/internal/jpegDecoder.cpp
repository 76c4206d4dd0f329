#include <cstdio>  // jpeglib.h needs FILE declared first

#include <jpeglib.h>

#include <csetjmp>
#include <vector>

#include "jev3d/io/image/internal/imageDecoders.h"

namespace JEV {
namespace IO {
namespace INTERNAL {
namespace {

// libjpeg reports errors by a call that must not return; ours jumps back to the stage
// that is running. So the stages below keep only plain values in their frames, and
// everything with a destructor lives in the caller. The error manager comes first, so
// that the library's pointer to it is a pointer to the whole.
struct jpegErrors {
  jpeg_error_mgr manager;
  std::jmp_buf jump;
  char message[JMSG_LENGTH_MAX];
};

void onError(j_common_ptr info) {
  auto* errors = reinterpret_cast<jpegErrors*>(info->err);
  (*info->err->format_message)(info, errors->message);
  std::longjmp(errors->jump, 1);
}

// Level -1 is a warning about the data: corrupt entropy codes, a file that ends before
// its last scan (the library would fill the rest with grey). A texture with either is
// damaged, so a warning fails the read as an error does; trace levels are ignored.
void onMessage(j_common_ptr info, int level) {
  if (level < 0) onError(info);
}

bool readHeader(jpeg_decompress_struct& info, jpegErrors& errors, const unsigned char* data,
                size_t size, const imageLimits& limits, std::string& sizeMessage) {
  if (setjmp(errors.jump)) return false;
  jpeg_mem_src(&info, data, static_cast<unsigned long>(size));
  jpeg_read_header(&info, TRUE);
  if (!imageSizeAllowed(info.image_width, info.image_height, limits, sizeMessage)) return false;
  info.out_color_space = JCS_RGB;
  jpeg_start_decompress(&info);
  return info.output_components == 3;
}

bool readRows(jpeg_decompress_struct& info, jpegErrors& errors, unsigned char* pixels) {
  if (setjmp(errors.jump)) return false;
  const size_t stride = size_t(info.output_width) * 3;
  while (info.output_scanline < info.output_height) {
    // The file's top row goes last: textures keep the bottom row first.
    JSAMPROW row = pixels + size_t(info.output_height - 1 - info.output_scanline) * stride;
    if (jpeg_read_scanlines(&info, &row, 1) != 1) return false;
  }
  // Reads on to the end marker, so that a file cut after its last row fails too.
  jpeg_finish_decompress(&info);
  return true;
}

}  // namespace

bool decodeJpeg(const unsigned char* data, size_t size, const imageLimits& limits,
                textureImage& image, std::string& message) {
  jpeg_decompress_struct info;
  jpegErrors errors;
  errors.message[0] = 0;
  info.err = jpeg_std_error(&errors.manager);
  errors.manager.error_exit = onError;
  errors.manager.emit_message = onMessage;
  jpeg_create_decompress(&info);
  std::string sizeMessage;
  bool ok = readHeader(info, errors, data, size, limits, sizeMessage);
  std::vector<unsigned char> pixels;
  if (ok) {
    pixels.resize(size_t(info.output_width) * size_t(info.output_height) * 3);
    ok = readRows(info, errors, pixels.data());
  }
  jpeg_destroy_decompress(&info);
  if (!ok) {
    message = !sizeMessage.empty() ? sizeMessage
              : errors.message[0]  ? errors.message
                                   : "unexpected pixel layout";
    return false;
  }
  image.width = int(info.output_width);
  image.height = int(info.output_height);
  image.components = 3;
  image.pixels = std::move(pixels);
  return true;
}

}  // namespace INTERNAL
}  // namespace IO
}  // namespace JEV
