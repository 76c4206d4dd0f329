#pragma once

namespace JEV {
namespace CORE {

template <class T>
bool mtStorage<T>::addEntry(const std::string& name, const T& entry) {
  SYSTEM::scopedLock guard(lock);
  return entries.addEntry(name, entry);
}

template <class T>
bool mtStorage<T>::addEntry(const std::wstring& name, const T& entry) {
  SYSTEM::scopedLock guard(lock);
  return entries.addEntry(name, entry);
}

template <class T>
bool mtStorage<T>::isValid(const std::string& name) const {
  SYSTEM::scopedLock guard(lock);
  return entries.isValid(name);
}

template <class T>
bool mtStorage<T>::isValid(const std::wstring& name) const {
  SYSTEM::scopedLock guard(lock);
  return entries.isValid(name);
}

template <class T>
T& mtStorage<T>::getEntry(int index) {
  SYSTEM::scopedLock guard(lock);
  return entries.getEntry(index);
}

template <class T>
const T& mtStorage<T>::getEntry(int index) const {
  SYSTEM::scopedLock guard(lock);
  return entries.getEntry(index);
}

template <class T>
T& mtStorage<T>::getEntry(const std::string& name) {
  SYSTEM::scopedLock guard(lock);
  return entries.getEntry(name);
}

template <class T>
const T& mtStorage<T>::getEntry(const std::string& name) const {
  SYSTEM::scopedLock guard(lock);
  return entries.getEntry(name);
}

template <class T>
T& mtStorage<T>::getEntry(const std::wstring& name) {
  SYSTEM::scopedLock guard(lock);
  return entries.getEntry(name);
}

template <class T>
const T& mtStorage<T>::getEntry(const std::wstring& name) const {
  SYSTEM::scopedLock guard(lock);
  return entries.getEntry(name);
}

template <class T>
const std::wstring& mtStorage<T>::getName(int index) const {
  SYSTEM::scopedLock guard(lock);
  return entries.getName(index);
}

template <class T>
const std::wstring& mtStorage<T>::getName(const T& entry) const {
  SYSTEM::scopedLock guard(lock);
  return entries.getName(entry);
}

template <class T>
int mtStorage<T>::getEntryCount() const {
  SYSTEM::scopedLock guard(lock);
  return entries.getEntryCount();
}

template <class T>
void mtStorage<T>::clear() {
  SYSTEM::scopedLock guard(lock);
  entries.clear();
}

template <class T>
bool mtStorage<T>::erase(const std::string& name) {
  return erase(IO::XML::utf8ToWstring(name));
}

template <class T>
bool mtStorage<T>::erase(const std::wstring& name) {
  SYSTEM::scopedLock guard(lock);
  return entries.erase(name);
}

template <class T>
const std::wstring& mtStorage<T>::getUniqueId() {
  SYSTEM::scopedLock guard(lock);
  return entries.getUniqueId();
}

}  // namespace CORE
}  // namespace JEV
