#pragma once

#include <utility>
#include <vector>

#include "jev3d/resources/resourceBase.h"

namespace JEV {
namespace RENDERING {
class renderer;
}

namespace CORE {

// A resource whose device copy is a set of names the renderer gives out (textures,
// buffers): the renderer makes them in `cache` and records them with setDeviceNames; the
// resource hands them back through the renderer's discard lists when it discards, from
// whatever thread that happens on. This is where the OpenGL back end joins the resources.
class deviceResource : public resourceBase {
 public:
  explicit deviceResource(RENDERING::renderer* render) : render(render) {}
  // Hands the device names back.
  ~deviceResource() override;
  deviceResource(const deviceResource&) = delete;
  deviceResource& operator=(const deviceResource&) = delete;

  // There is no back end to upload through yet, so no names appear and cache fails: the
  // resource stays in memory.
  bool cache() override;
  bool isCached() const override;
  // Hands the device names back and keeps the data.
  bool discard() override;

  RENDERING::renderer* getRender() const { return render; }
  // The device's names for this resource; empty when not on the device.
  const std::vector<unsigned>& getDeviceNames() const { return deviceNames; }
  void setDeviceNames(std::vector<unsigned> names) { deviceNames = std::move(names); }

 private:
  RENDERING::renderer* render;
  std::vector<unsigned> deviceNames;
};

}  // namespace CORE
}  // namespace JEV
