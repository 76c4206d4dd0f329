#pragma once

#include <string>

namespace JEV {
namespace CORE {

// What a client knows of the instance that holds it: enough for a storage to tell the
// instance that its resource's name is gone, whatever the storage and client types.
class resourceInstanceBase {
 public:
  virtual ~resourceInstanceBase() = default;
  // Sets the instance's resource id. Called by the storage.
  virtual void delegateRenameId(const std::wstring& id) = 0;
};

}  // namespace CORE
}  // namespace JEV
