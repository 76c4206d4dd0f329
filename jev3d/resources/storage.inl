#pragma once

#include <iterator>

namespace JEV {
namespace CORE {

template <class T>
bool storage<T>::addEntry(const std::string& name, const T& entry) {
  return addEntry(widen(name), entry);
}

template <class T>
bool storage<T>::addEntry(const std::wstring& name, const T& entry) {
  if (name.empty()) return false;
  return entries.emplace(name, entry).second;
}

template <class T>
bool storage<T>::isValid(const std::string& name) const {
  return isValid(widen(name));
}

template <class T>
bool storage<T>::isValid(const std::wstring& name) const {
  return entries.count(name) != 0;
}

template <class T>
T& storage<T>::getEntry(int index) {
  if (index < 0 || index >= getEntryCount()) return nullEntry;
  return std::next(entries.begin(), index)->second;
}

template <class T>
const T& storage<T>::getEntry(int index) const {
  if (index < 0 || index >= getEntryCount()) return nullEntry;
  return std::next(entries.begin(), index)->second;
}

template <class T>
T& storage<T>::getEntry(const std::string& name) {
  return getEntry(widen(name));
}

template <class T>
const T& storage<T>::getEntry(const std::string& name) const {
  return getEntry(widen(name));
}

template <class T>
T& storage<T>::getEntry(const std::wstring& name) {
  auto it = entries.find(name);
  return it == entries.end() ? nullEntry : it->second;
}

template <class T>
const T& storage<T>::getEntry(const std::wstring& name) const {
  auto it = entries.find(name);
  return it == entries.end() ? nullEntry : it->second;
}

template <class T>
const std::wstring& storage<T>::getName(int index) const {
  if (index < 0 || index >= getEntryCount()) return nullName;
  return std::next(entries.begin(), index)->first;
}

template <class T>
const std::wstring& storage<T>::getName(const T& entry) const {
  for (const auto& e : entries) {
    if (e.second == entry) return e.first;
  }
  return nullName;
}

template <class T>
int storage<T>::getEntryCount() const {
  return static_cast<int>(entries.size());
}

template <class T>
void storage<T>::clear() {
  entries.clear();
}

template <class T>
bool storage<T>::erase(const std::string& name) {
  return erase(widen(name));
}

template <class T>
bool storage<T>::erase(const std::wstring& name) {
  return entries.erase(name) != 0;
}

template <class T>
const std::wstring& storage<T>::getUniqueId() {
  for (;;) {
    std::wstring name = L"RESOURCE" + std::to_wstring(uniqueCounter);
    ++uniqueCounter;
    if (!entries.count(name)) {
      uniqueId = std::move(name);
      return uniqueId;
    }
  }
}

}  // namespace CORE
}  // namespace JEV
