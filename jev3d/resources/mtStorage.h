#pragma once

#include <string>

#include "jev3d/resources/storage.h"
#include "jev3d/system/mutex.h"

namespace JEV {
namespace CORE {

// A storage that several threads share: every operation runs under `lock`, which the
// owning thread may take again. The getters that return references hand them out after
// the lock is given back, so a reference stays good only while no other thread erases
// its entry; copy what you keep.
template <class T>
class mtStorage {
 public:
  mtStorage() = default;
  virtual ~mtStorage() = default;
  mtStorage(const mtStorage&) = delete;
  mtStorage& operator=(const mtStorage&) = delete;

  // False for an empty name or a name in use.
  virtual bool addEntry(const std::string& name, const T& entry);
  virtual bool addEntry(const std::wstring& name, const T& entry);
  virtual bool isValid(const std::string& name) const;
  virtual bool isValid(const std::wstring& name) const;
  // Entry by position in name order; the null entry when out of range.
  virtual T& getEntry(int index);
  virtual const T& getEntry(int index) const;
  // Entry by name; the null entry when absent.
  virtual T& getEntry(const std::string& name);
  virtual const T& getEntry(const std::string& name) const;
  virtual T& getEntry(const std::wstring& name);
  virtual const T& getEntry(const std::wstring& name) const;
  // Name by position; empty when out of range.
  virtual const std::wstring& getName(int index) const;
  // First name, in name order, whose entry equals `entry`; empty if none.
  virtual const std::wstring& getName(const T& entry) const;
  virtual int getEntryCount() const;
  virtual void clear();
  // False when absent. The narrow form goes through the wide one, so an override of the
  // wide form serves both.
  virtual bool erase(const std::string& name);
  virtual bool erase(const std::wstring& name);
  // A name not in use, "RESOURCE<n>"; see storage::getUniqueId.
  virtual const std::wstring& getUniqueId();

 protected:
  // The entries, the null entry and name, and the unique-name counter.
  storage<T> entries;
  SYSTEM::mutex lock;
};

}  // namespace CORE
}  // namespace JEV

#include "jev3d/resources/mtStorage.inl"
