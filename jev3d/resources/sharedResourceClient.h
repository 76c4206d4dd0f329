#pragma once

#include "jev3d/resources/resourceInstanceBase.h"
#include "jev3d/resources/sharedResource.h"

namespace JEV {
namespace CORE {

// A user's end of a shared resource: a slave of the server, counted by being linked. It
// keeps no pointer of its own to the resource and reads the server's through the link,
// one hop and no lookup.
template <class R>
class sharedResourceClient : public sharedResource<R> {
 public:
  explicit sharedResourceClient(resourceInstanceBase* owner = nullptr) : owner(owner) {}

  // The server's resource when linked and following, else this client's own (null).
  R& getSharedResource() override {
    if (this->isFollowingMaster()) {
      if (auto* server = dynamic_cast<sharedResource<R>*>(this->getFrontMaster())) {
        return server->getSharedResource();
      }
    }
    return this->resource;
  }
  const R& getSharedResource() const override {
    if (this->isFollowingMaster()) {
      if (auto* server = dynamic_cast<const sharedResource<R>*>(this->getFrontMaster())) {
        return server->getSharedResource();
      }
    }
    return this->resource;
  }

  resourceInstanceBase* getOwner() const { return owner; }
  void setOwner(resourceInstanceBase* value) { owner = value; }

 private:
  resourceInstanceBase* owner;
};

}  // namespace CORE
}  // namespace JEV
