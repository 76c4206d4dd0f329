#pragma once

#include <string>

#include "jev3d/resources/resourceInstanceBase.h"

namespace JEV {
namespace CORE {

// What a node holds to use a shared resource: the storage it draws from (borrowed), the
// name of the resource, and a client linked to that resource's server. `S` is the storage
// class, `C` the client class (a sharedResourceClient<R>), `R` the sharedPointer to the
// resource. Names are looked up only when connecting; afterwards the resource is one link
// hop away.
template <class S, class C, class R>
class resourceInstance : public resourceInstanceBase {
 public:
  explicit resourceInstance(S* storage = nullptr);
  // A copy draws from the same storage and is a further client of the same resource.
  resourceInstance(const resourceInstance& other);
  resourceInstance& operator=(const resourceInstance& other);
  // The client unlinks as it goes, which may discard the resource's device copy.
  ~resourceInstance() override = default;

  // Links the client, following, to the server stored under `name` and takes `name` as
  // the resource id. False, with the id unchanged, without a storage, for a name not in
  // it, or when the client is linked to that server already. A client linked to another
  // resource keeps that link too; disconnect first.
  bool connectToResourceStorage(const std::wstring& name);
  bool connectToResourceStorage(const std::string& name);
  // The same with the entry at `position` in name order.
  bool connectToResourceStorage(int position);
  // Unlinks the client from every server and empties the id. False without a storage.
  bool disconnectToResourceStorage();

  R& getSharedResource() { return client.getSharedResource(); }
  const R& getSharedResource() const { return client.getSharedResource(); }
  bool isNull() const { return client.isNull(); }

  const std::wstring& getResourceId() const { return resourceId; }
  S* getResourceStorage() const { return storage; }
  // Changes the storage; a link made through the old one stays until disconnected.
  void setResourceStorage(S* value) { storage = value; }
  // The resource as text: its id and whether it is held, on the device, or gone.
  std::wstring makeResourceString() const;

  void delegateRenameId(const std::wstring& id) override { resourceId = id; }

 protected:
  C& getClient() { return client; }

  S* storage;
  std::wstring resourceId;
  C client;
};

}  // namespace CORE
}  // namespace JEV

#include "jev3d/resources/resourceInstance.inl"
