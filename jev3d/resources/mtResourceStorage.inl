#pragma once

namespace JEV {
namespace CORE {

template <class R>
mtResourceStorage<R>::~mtResourceStorage() {
  mtResourceStorage::clear();
}

template <class R>
bool mtResourceStorage<R>::cache(const std::wstring& name) {
  SYSTEM::scopedLock guard(this->lock);
  const serverPointer& entry = this->entries.getEntry(name);
  if (entry.isNull() || !entry->getPayload()) return false;
  return entry->getPayload()->cache();
}

template <class R>
bool mtResourceStorage<R>::discard(const std::wstring& name) {
  SYSTEM::scopedLock guard(this->lock);
  const serverPointer& entry = this->entries.getEntry(name);
  if (entry.isNull() || !entry->getPayload()) return false;
  entry->getPayload()->discard();
  return true;
}

template <class R>
bool mtResourceStorage<R>::isCached(const std::wstring& name) const {
  SYSTEM::scopedLock guard(this->lock);
  const serverPointer& entry = this->entries.getEntry(name);
  if (entry.isNull() || !entry->getPayload()) return false;
  return entry->getPayload()->isCached();
}

template <class R>
void mtResourceStorage<R>::clear() {
  SYSTEM::scopedLock guard(this->lock);
  while (this->entries.getEntryCount() > 0) {
    const serverPointer& first = this->entries.getEntry(0);
    if (!first.isNull() && first->getPayload()) first->getPayload()->clear();
    this->entries.erase(std::wstring(this->entries.getName(0)));
  }
  this->entries.clear();
}

template <class R>
bool mtResourceStorage<R>::erase(const std::wstring& name) {
  SYSTEM::scopedLock guard(this->lock);
  const serverPointer& entry = this->entries.getEntry(name);
  if (entry.isNull()) return false;
  if (entry->getPayload()) entry->getPayload()->clear();
  for (int i = 0; i < entry->getSlavesCount(); ++i) {
    auto* client = dynamic_cast<sharedResourceClient<R>*>(entry->getSlaveAtIndex(i));
    if (client && client->getOwner()) client->getOwner()->delegateRenameId(std::wstring());
  }
  return base::erase(name);
}

template <class R>
template <class Make, class Read>
bool mtResourceStorage<R>::loadResource(const std::wstring& id, int memoryManagement,
                                        bool forceReload, Make&& make, Read&& read) {
  {
    // A reload works on the stored object in place, so it holds the lock throughout: the
    // entry must not go while it is read into.
    SYSTEM::scopedLock guard(this->lock);
    if (this->entries.isValid(id)) {
      if (!forceReload) return false;
      const serverPointer& entry = this->entries.getEntry(id);
      if (entry.isNull() || !entry->getPayload() || !read(*entry->getPayload())) return false;
      entry->setMemoryManagement(memoryManagement);
      return true;
    }
  }
  // A new resource is read outside the lock, so that a long read does not stall others.
  R resource(make());
  if (resource.isNull() || id.empty() || !read(*resource)) return false;
  serverPointer entry(new server(resource, memoryManagement));
  // No client can be linked yet: under policy 0 the (absent) device copy is discarded.
  entry->setMemoryManagement(memoryManagement);
  // The counts of these pointers are plain integers that the storage's other users change
  // under the lock, so the local owners are given up under it too.
  SYSTEM::scopedLock guard(this->lock);
  const bool added = this->entries.addEntry(id, entry);
  entry.release();
  resource.release();
  return added;
}

}  // namespace CORE
}  // namespace JEV
