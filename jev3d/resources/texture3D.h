#pragma once

#include <vector>

#include "jev3d/resources/deviceResource.h"

namespace JEV {
namespace TEXTURE {

// A volume of 8-bit luminance samples held in memory, with the device copy that the
// renderer makes of it on the drawing thread.
class texture3D : public CORE::deviceResource {
 public:
  explicit texture3D(RENDERING::renderer* render);
  ~texture3D() override;

  // Uploads the volume through the renderer (on the drawing thread).
  bool cache() override;
  // Hands the device names to the renderer's discard list, so any thread may call it.
  bool discard() override;
  // Hands the device names back and drops the volume.
  bool clear() override;

  // Takes `width` × `height` × `depth` samples, x fastest, then y, then z. False, the
  // volume unchanged, when a side is below one or the sample count does not match. New
  // samples make an old device copy stale, so a success discards it.
  bool setVolume(int width, int height, int depth, std::vector<unsigned char> samples);

  int getWidth() const { return width; }
  int getHeight() const { return height; }
  int getDepth() const { return depth; }
  const std::vector<unsigned char>& getSamples() const { return samples; }
  bool empty() const { return samples.empty(); }

 private:
  int width = 0;
  int height = 0;
  int depth = 0;
  std::vector<unsigned char> samples;
};

}  // namespace TEXTURE
}  // namespace JEV
