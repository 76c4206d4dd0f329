#pragma once

#include <type_traits>
#include <utility>

#include "jev3d/fields/mtLinker.h"

namespace JEV {
namespace CORE {

// One shared resource at either end of a use: the server that holds it, or a client that
// reads it through its link. `R` is a sharedPointer to the resource. The links are locked
// ones, since resources are loaded and used from several threads.
template <class R>
class sharedResource : public SYSTEM::mtLinker<SYSTEM::dummyLinkerType> {
 public:
  using pointerType = R;
  // The resource's own type, `X` of sharedPointer<X>.
  using resourceType = std::remove_pointer_t<decltype(std::declval<const R&>().get())>;

  sharedResource() = default;
  explicit sharedResource(const R& value) : resource(value) {}

  virtual R& getSharedResource() { return resource; }
  virtual const R& getSharedResource() const { return resource; }
  bool isNull() const { return getSharedResource().isNull(); }

  // The same object under the same reference block.
  bool operator==(const sharedResource& other) const {
    const R& mine = getSharedResource();
    const R& theirs = other.getSharedResource();
    return mine.get() == theirs.get() && mine.getInfo() == theirs.getInfo();
  }
  bool operator!=(const sharedResource& other) const { return !(*this == other); }

 protected:
  R resource;
};

}  // namespace CORE
}  // namespace JEV
