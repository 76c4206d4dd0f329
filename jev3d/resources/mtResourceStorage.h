#pragma once

#include <string>
#include <utility>

#include "jev3d/resources/mtStorage.h"
#include "jev3d/resources/sharedResourceClient.h"
#include "jev3d/resources/sharedResourceServer.h"
#include "jev3d/system/sharedPointer.h"

namespace JEV {
namespace RENDERING {
class renderer;
}

namespace CORE {

// A locked storage of resource servers by name, for one rendering context: the common
// ground of the texture, mesh and other storages. Entries are sharedPointers to servers,
// so a server lives while its entry (or another copy) does; erasing an entry tells the
// clients that the name is gone.
template <class R>
class mtResourceStorage : public mtStorage<SYSTEM::sharedPointer<sharedResourceServer<R>>> {
 public:
  using server = sharedResourceServer<R>;
  using serverPointer = SYSTEM::sharedPointer<server>;
  using resourceType = typename server::resourceType;
  using base = mtStorage<serverPointer>;

  explicit mtResourceStorage(RENDERING::renderer* render) : render(render) {}
  // Clears every resource, as clear does.
  ~mtResourceStorage() override;

  RENDERING::renderer* getRender() const { return render; }

  // Forward to the named resource; false when there is no such entry. discard is true
  // once it has been passed on, whatever the resource answers.
  bool cache(const std::wstring& name);
  bool discard(const std::wstring& name);
  bool isCached(const std::wstring& name) const;

  // Clears each resource and erases its entry; clients are not told, as the servers'
  // destructors unlink them.
  void clear() override;
  // Clears the resource, tells each client's instance that the name is gone (its id
  // becomes empty; it stays linked), then drops the entry. False for no entry.
  bool erase(const std::wstring& name) override;
  using base::erase;

 protected:
  // The common steps of a load under `id`. With `id` taken: false unless `forceReload`,
  // else `read` refills the existing resource. Otherwise `make` builds a new resource,
  // `read` fills it, and the server enters the storage; a failed read leaves nothing
  // behind. Either way the server takes `memoryManagement`, and an unused resource under
  // policy 0 is discarded. `read(resourceType&)` and `make()` return bool and
  // resourceType* (owned from then on).
  template <class Make, class Read>
  bool loadResource(const std::wstring& id, int memoryManagement, bool forceReload, Make&& make,
                    Read&& read);

 private:
  RENDERING::renderer* render;
};

}  // namespace CORE
}  // namespace JEV

#include "jev3d/resources/mtResourceStorage.inl"
