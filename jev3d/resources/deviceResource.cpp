#include "jev3d/resources/deviceResource.h"

namespace JEV {
namespace CORE {

deviceResource::~deviceResource() { deviceResource::discard(); }

bool deviceResource::cache() { return isCached(); }

bool deviceResource::isCached() const { return !deviceNames.empty(); }

bool deviceResource::discard() {
  deviceNames.clear();
  return true;
}

}  // namespace CORE
}  // namespace JEV
