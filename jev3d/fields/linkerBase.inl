#pragma once

#include <algorithm>

namespace JEV {
namespace SYSTEM {
namespace INTERNAL {

template <class L>
bool listHas(const std::vector<L*>& list, const L* x) {
  return std::find(list.begin(), list.end(), x) != list.end();
}

template <class L>
L* listAt(const std::vector<L*>& list, int index) {
  if (index < 0 || index >= static_cast<int>(list.size())) return nullptr;
  return list[static_cast<size_t>(index)];
}

template <class L>
int listIndexOf(const std::vector<L*>& list, const L* x) {
  auto it = std::find(list.begin(), list.end(), x);
  return it == list.end() ? -1 : static_cast<int>(it - list.begin());
}

}  // namespace INTERNAL

template <class D>
linkerBase<D>::linkerBase(linkerBase* master, bool follow) {
  connect(master, follow);
}

template <class D>
linkerBase<D>::linkerBase(const linkerBase& other)
    : followMaster(other.followMaster),
      multipleSlaves(other.multipleSlaves),
      multipleMasters(other.multipleMasters) {}

template <class D>
linkerBase<D>& linkerBase<D>::operator=(const linkerBase& other) {
  followMaster = other.followMaster;
  multipleSlaves = other.multipleSlaves;
  multipleMasters = other.multipleMasters;
  return *this;
}

template <class D>
linkerBase<D>::~linkerBase() {
  disconnectFromAllMaster();
  disconnectSlaves();
}

template <class D>
void linkerBase<D>::disconnect(bool notifyMaster) {
  if (masters.empty()) return;
  linkerBase* front = masters.front();
  if (notifyMaster) front->removeSlave(this);
  masters.erase(masters.begin());
}

template <class D>
void linkerBase<D>::disconnect(linkerBase* master, bool notifyOther) {
  auto it = std::find(masters.begin(), masters.end(), master);
  if (it == masters.end()) return;
  masters.erase(it);
  if (notifyOther) master->removeSlave(this);
}

template <class D>
void linkerBase<D>::disconnect(linkerBase* master) {
  disconnect(master, true);
}

template <class D>
void linkerBase<D>::disconnect() {
  disconnect(true);
}

template <class D>
void linkerBase<D>::disconnectFromAllMaster() {
  while (!masters.empty()) {
    masters.front()->removeSlave(this);
    masters.erase(masters.begin());
  }
}

template <class D>
linkerBase<D>* linkerBase<D>::connect(linkerBase* master, bool follow) {
  return connectTo(master, follow);
}

template <class D>
void linkerBase<D>::connectToMasterOf(const linkerBase& other) {
  for (int i = 0; i < other.getMastersCount(); ++i) {
    connect(const_cast<linkerBase*>(other.getMasterAtIndex(i)), true);
  }
}

template <class D>
linkerBase<D>* linkerBase<D>::connectBefore(linkerBase* master, linkerBase* sibling, bool follow) {
  return connectToBefore(master, sibling, follow);
}

template <class D>
linkerBase<D>* linkerBase<D>::connectAfter(linkerBase* master, linkerBase* sibling, bool follow) {
  return connectToAfter(master, sibling, follow);
}

template <class D>
bool linkerBase<D>::isConnected() const {
  return !masters.empty();
}

template <class D>
bool linkerBase<D>::isLeaf() const {
  return slaves.empty();
}

template <class D>
linkerBase<D>* linkerBase<D>::getFrontMaster() {
  return masters.empty() ? nullptr : masters.front();
}

template <class D>
const linkerBase<D>* linkerBase<D>::getFrontMaster() const {
  return masters.empty() ? nullptr : masters.front();
}

template <class D>
linkerBase<D>* linkerBase<D>::getBackMaster() {
  return masters.empty() ? nullptr : masters.back();
}

template <class D>
const linkerBase<D>* linkerBase<D>::getBackMaster() const {
  return masters.empty() ? nullptr : masters.back();
}

template <class D>
linkerBase<D>* linkerBase<D>::getFrontSlave() {
  return slaves.empty() ? nullptr : slaves.front();
}

template <class D>
const linkerBase<D>* linkerBase<D>::getFrontSlave() const {
  return slaves.empty() ? nullptr : slaves.front();
}

template <class D>
linkerBase<D>* linkerBase<D>::getBackSlave() {
  return slaves.empty() ? nullptr : slaves.back();
}

template <class D>
const linkerBase<D>* linkerBase<D>::getBackSlave() const {
  return slaves.empty() ? nullptr : slaves.back();
}

template <class D>
linkerBase<D>* linkerBase<D>::getSlaveAtIndex(int index) {
  return INTERNAL::listAt(slaves, index);
}

template <class D>
const linkerBase<D>* linkerBase<D>::getSlaveAtIndex(int index) const {
  return INTERNAL::listAt(slaves, index);
}

template <class D>
linkerBase<D>* linkerBase<D>::getMasterAtIndex(int index) {
  return INTERNAL::listAt(masters, index);
}

template <class D>
const linkerBase<D>* linkerBase<D>::getMasterAtIndex(int index) const {
  return INTERNAL::listAt(masters, index);
}

template <class D>
int linkerBase<D>::getIndexOfSlave(linkerBase* const slave) const {
  return INTERNAL::listIndexOf(slaves, slave);
}

template <class D>
int linkerBase<D>::getIndexOfMaster(linkerBase* const master) const {
  return INTERNAL::listIndexOf(masters, master);
}

template <class D>
int linkerBase<D>::getSlavesCount() const {
  return static_cast<int>(slaves.size());
}

template <class D>
int linkerBase<D>::getMastersCount() const {
  return static_cast<int>(masters.size());
}

template <class D>
void linkerBase<D>::disconnectSlaves() {
  const linkerList copy = slaves;
  for (linkerBase* slave : copy) slave->disconnect(this, false);
  slaves.clear();
}

template <class D>
bool linkerBase<D>::isConnectTo(linkerBase* master) const {
  return INTERNAL::listHas(masters, master);
}

template <class D>
bool linkerBase<D>::isChildOf(linkerBase* ancestor) const {
  for (linkerBase* master : masters) {
    if (master == ancestor || master->isChildOf(ancestor)) return true;
  }
  return false;
}

template <class D>
bool linkerBase<D>::addSlave(linkerBase* slave) {
  return insertSlave(slave, nullptr, place::BACK);
}

template <class D>
bool linkerBase<D>::addSlaveBefore(linkerBase* slave, linkerBase* sibling) {
  return insertSlave(slave, sibling, place::BEFORE);
}

template <class D>
bool linkerBase<D>::addSlaveAfter(linkerBase* slave, linkerBase* sibling) {
  return insertSlave(slave, sibling, place::AFTER);
}

template <class D>
typename linkerBase<D>::linkerList linkerBase<D>::getSlavesCopy() const {
  return slaves;
}

template <class D>
linkerBase<D>* linkerBase<D>::getMasterFrontFirst() const {
  return masters.empty() ? nullptr : masters.front();
}

template <class D>
void linkerBase<D>::clearSlaves() {
  slaves.clear();
}

template <class D>
void linkerBase<D>::clearMasters() {
  masters.clear();
}

template <class D>
linkerBase<D>* linkerBase<D>::connectTo(linkerBase* master, bool follow) {
  return connectAt(master, nullptr, place::BACK, follow);
}

template <class D>
linkerBase<D>* linkerBase<D>::connectToBefore(linkerBase* master, linkerBase* sibling,
                                              bool follow) {
  return connectAt(master, sibling, place::BEFORE, follow);
}

template <class D>
linkerBase<D>* linkerBase<D>::connectToAfter(linkerBase* master, linkerBase* sibling, bool follow) {
  return connectAt(master, sibling, place::AFTER, follow);
}

template <class D>
void linkerBase<D>::removeSlave(linkerBase* slave) {
  slaves.erase(std::remove(slaves.begin(), slaves.end(), slave), slaves.end());
}

template <class D>
const void* linkerBase<D>::linkedValue(const std::type_info&) const {
  return nullptr;
}

template <class D>
void linkerBase<D>::masterNotified() {}

template <class D>
bool linkerBase<D>::prepareConnect(linkerBase* master, linkerBase* sibling, place where,
                                   bool follow) {
  if (!master || (where != place::BACK && !sibling)) return false;
  if (isConnectTo(master)) return false;
  const bool accepted = where == place::BACK     ? master->addSlave(this)
                        : where == place::BEFORE ? master->addSlaveBefore(this, sibling)
                                                 : master->addSlaveAfter(this, sibling);
  if (!accepted) return false;
  followMaster = follow;
  // Only now, once the new master has accepted, are the old ones dropped.
  if (!multipleMasters) disconnectFromAllMaster();
  return true;
}

template <class D>
void linkerBase<D>::appendMaster(linkerBase* master) {
  if (!INTERNAL::listHas(masters, master)) masters.push_back(master);
}

template <class D>
linkerBase<D>* linkerBase<D>::connectAt(linkerBase* master, linkerBase* sibling, place where,
                                        bool follow) {
  if (!prepareConnect(master, sibling, where, follow)) return nullptr;
  appendMaster(master);
  return this;
}

template <class D>
bool linkerBase<D>::insertSlave(linkerBase* slave, linkerBase* sibling, place where) {
  if (!multipleSlaves && !slaves.empty()) {
    linkerBase* displaced = slaves.front();
    displaced->disconnect(this, false);
    slaves.erase(slaves.begin());
  }
  if (where == place::BACK) {
    if (!INTERNAL::listHas(slaves, slave)) slaves.push_back(slave);
    return true;
  }
  auto it = std::find(slaves.begin(), slaves.end(), sibling);
  if (it == slaves.end()) return false;
  slaves.insert(where == place::BEFORE ? it : it + 1, slave);
  return true;
}

}  // namespace SYSTEM
}  // namespace JEV
