#pragma once

#include "jev3d/resources/sharedResource.h"

namespace JEV {
namespace CORE {

// What a server does with the device copy when its last client goes.
enum SRS_MEMORY_MANAGEMENT {
  // Discard it; the next client's first use uploads it again from memory.
  SRS_DISCARD_WITHOUT_CLIENTS = 0,
  // Keep it (any value other than 0 means this).
  SRS_KEEP_CACHED = 1
};

// Holds one loaded resource for a storage and counts its users: its clients are its
// slaves, and the slave list is the count. When the last client unlinks under policy 0,
// the resource's device copy is discarded on the unlinking thread.
template <class R>
class sharedResourceServer : public sharedResource<R> {
 public:
  using typename sharedResource<R>::resourceType;
  using linker = SYSTEM::linkerBase<SYSTEM::dummyLinkerType>;

  explicit sharedResourceServer(const R& value, int memoryManagement = SRS_DISCARD_WITHOUT_CLIENTS)
      : sharedResource<R>(value), payload(value.get()), memoryManagement(memoryManagement) {}

  // The resource itself, for direct access without a pointer copy.
  resourceType* getPayload() const { return payload; }
  int getMemoryManagement() const { return memoryManagement; }
  // Stores the policy; under policy 0 with no client left, discards at once.
  void setMemoryManagement(int value) {
    memoryManagement = value;
    discardIfUnused();
  }
  int getClientCount() const { return this->getSlavesCount(); }

 protected:
  void removeSlave(linker* slave) override {
    sharedResource<R>::removeSlave(slave);
    discardIfUnused();
  }

 private:
  void discardIfUnused() {
    if (payload && memoryManagement == SRS_DISCARD_WITHOUT_CLIENTS && this->getSlavesCount() == 0) {
      payload->discard();
    }
  }

  resourceType* payload;
  int memoryManagement;
};

}  // namespace CORE
}  // namespace JEV
