#pragma once

namespace JEV {
namespace CORE {

// The base of everything a storage loads. The data lives in memory; a device copy of it
// (an upload) is made by `cache` and dropped by `discard`, so that the copy can come and
// go with the resource's users while the data stays. A resource with nothing to put on a
// device succeeds at every step, which is what these defaults say.
class resourceBase {
 public:
  resourceBase() = default;
  virtual ~resourceBase();

  // Makes the device copy of the data. Only on the thread that owns the rendering context.
  virtual bool cache();
  // Whether the device copy exists.
  virtual bool isCached() const;
  // Drops the device copy and keeps the data, so that `cache` can make it again.
  virtual bool discard();
  // Drops the device copy and the data.
  virtual bool clear();

  // A private resource is one its owner made for itself, not for sharing by name.
  bool isPrivate() const { return privateResource; }
  void setPrivate(bool value) { privateResource = value; }

 protected:
  bool privateResource = false;
};

}  // namespace CORE
}  // namespace JEV
