#pragma once

#include <map>
#include <string>

#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace CORE {

// A named, name-ordered map of entries. A missing name reads as `nullEntry` (a default T),
// never as an error, so callers test what they get. Narrow names are read as UTF-8.
template <class T>
class storage {
 public:
  storage() = default;
  virtual ~storage() = default;

  // False for an empty name or a name in use.
  virtual bool addEntry(const std::string& name, const T& entry);
  virtual bool addEntry(const std::wstring& name, const T& entry);
  virtual bool isValid(const std::string& name) const;
  virtual bool isValid(const std::wstring& name) const;
  // Entry by position in name order; `nullEntry` when out of range.
  virtual T& getEntry(int index);
  virtual const T& getEntry(int index) const;
  // Entry by name; `nullEntry` when absent.
  virtual T& getEntry(const std::string& name);
  virtual const T& getEntry(const std::string& name) const;
  virtual T& getEntry(const std::wstring& name);
  virtual const T& getEntry(const std::wstring& name) const;
  // Name by position; `nullName` (empty) when out of range.
  virtual const std::wstring& getName(int index) const;
  // First name, in name order, whose entry equals `entry`; `nullName` if none.
  virtual const std::wstring& getName(const T& entry) const;
  virtual int getEntryCount() const;
  virtual void clear();
  // False when absent.
  virtual bool erase(const std::string& name);
  virtual bool erase(const std::wstring& name);
  // A name not in use, "RESOURCE<n>" for the next free n. The counter only grows, so a
  // name handed out is not handed out again.
  virtual const std::wstring& getUniqueId();

 protected:
  static std::wstring widen(const std::string& name) { return IO::XML::utf8ToWstring(name); }

  std::map<std::wstring, T> entries;
  T nullEntry{};
  std::wstring nullName;
  std::wstring uniqueId;
  unsigned uniqueCounter = 0;
};

}  // namespace CORE
}  // namespace JEV

#include "jev3d/resources/storage.inl"
