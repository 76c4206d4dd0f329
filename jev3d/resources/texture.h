#pragma once

#include <string>

#include "jev3d/io/image/textureImage.h"
#include "jev3d/resources/deviceResource.h"

namespace JEV {
namespace TEXTURE {

// How a texture is sampled once on the device.
struct textureDescriptor {
  // 0 nearest, no mipmaps; 1 linear within the nearest mipmap; 2 linear between mipmaps.
  int filter = 2;
  // The device's residency priority, 0 to 1.
  float priority = 1.0f;
};

// A picture held in memory for drawing, with the device copy that the renderer makes of
// it. The picture is decoded on any thread; the upload happens on the drawing thread when
// a node first uses the texture.
class texture : public CORE::deviceResource {
 public:
  explicit texture(RENDERING::renderer* render);
  ~texture() override;

  // Uploads the picture through the renderer (on the drawing thread).
  bool cache() override;
  // Hands the device names to the renderer's discard list, so any thread may call it.
  bool discard() override;
  // Hands the device names back and drops the picture.
  bool clear() override;

  // Decodes a PNG or JPEG file into this texture (see IO::ioTexture). On failure, false
  // with a message on the error stream, and the texture is as it was. New data makes an
  // old device copy stale, so a success discards it: the next use uploads the new picture.
  bool readFromFile(const std::wstring& fileName);
  bool readFromFile(const std::string& fileName);
  // Takes a picture made in memory, with the same effect on the device copy.
  void setImage(IO::textureImage image);

  const IO::textureImage& getImage() const { return image; }
  int getWidth() const { return image.width; }
  int getHeight() const { return image.height; }
  // 24 for RGB, 32 for RGBA, 0 when empty.
  int getBitsPerPixel() const { return image.bitsPerPixel(); }

  const textureDescriptor& getParameters() const { return parameters; }
  void setParameters(const textureDescriptor& value) { parameters = value; }

 private:
  IO::textureImage image;
  textureDescriptor parameters;
};

}  // namespace TEXTURE
}  // namespace JEV
