#pragma once

#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace CORE {

template <class S, class C, class R>
resourceInstance<S, C, R>::resourceInstance(S* storage) : storage(storage), client(this) {}

template <class S, class C, class R>
resourceInstance<S, C, R>::resourceInstance(const resourceInstance& other)
    : resourceInstanceBase(other),
      storage(other.storage),
      resourceId(other.resourceId),
      client(this) {
  client.connectToMasterOf(other.client);
}

template <class S, class C, class R>
resourceInstance<S, C, R>& resourceInstance<S, C, R>::operator=(const resourceInstance& other) {
  if (this == &other) return *this;
  client.disconnectFromAllMaster();
  storage = other.storage;
  resourceId = other.resourceId;
  client.connectToMasterOf(other.client);
  return *this;
}

template <class S, class C, class R>
bool resourceInstance<S, C, R>::connectToResourceStorage(const std::wstring& name) {
  if (!storage) return false;
  // The storage keeps the server alive; the link itself owns nothing.
  auto* server = storage->getEntry(name).get();
  if (!client.connect(server, true)) return false;
  resourceId = name;
  return true;
}

template <class S, class C, class R>
bool resourceInstance<S, C, R>::connectToResourceStorage(const std::string& name) {
  return connectToResourceStorage(IO::XML::utf8ToWstring(name));
}

template <class S, class C, class R>
bool resourceInstance<S, C, R>::connectToResourceStorage(int position) {
  if (!storage) return false;
  auto* server = storage->getEntry(position).get();
  if (!client.connect(server, true)) return false;
  resourceId = storage->getName(position);
  return true;
}

template <class S, class C, class R>
bool resourceInstance<S, C, R>::disconnectToResourceStorage() {
  if (!storage) return false;
  client.disconnectFromAllMaster();
  resourceId.clear();
  return true;
}

template <class S, class C, class R>
std::wstring resourceInstance<S, C, R>::makeResourceString() const {
  const R& resource = getSharedResource();
  const wchar_t* state = resource.isNull()      ? L"no resource"
                         : resource->isCached() ? L"on the device"
                                                : L"in memory";
  return (resourceId.empty() ? std::wstring(L"(unnamed)") : resourceId) + L": " + state;
}

}  // namespace CORE
}  // namespace JEV
