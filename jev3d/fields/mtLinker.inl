#pragma once

namespace JEV {
namespace SYSTEM {

template <class D>
mtLinker<D>::mtLinker() : lock(new mutex(true)) {}

template <class D>
mtLinker<D>::mtLinker(mtLinker* master, bool follow) : lock(new mutex(true)) {
  this->connect(master, follow);
}

template <class D>
mtLinker<D>::mtLinker(const mtLinker& other) : base(other), lock(new mutex(true)) {}

template <class D>
mtLinker<D>& mtLinker<D>::operator=(const mtLinker& other) {
  scopedLock guard(*lock);
  base::operator=(other);
  return *this;
}

template <class D>
mtLinker<D>::~mtLinker() {
  {
    scopedLock guard(*lock);
    disconnectFromAllMaster();
  }
  {
    scopedLock guard(*lock);
    disconnectSlaves();
  }
  delete lock;
}

template <class D>
void mtLinker<D>::disconnect(base* master, bool notifyOther) {
  scopedLock guard(*lock);
  base::disconnect(master, notifyOther);
}

template <class D>
void mtLinker<D>::disconnect(base* master) {
  disconnect(master, true);
}

template <class D>
void mtLinker<D>::disconnect() {
  disconnect(true);
}

template <class D>
void mtLinker<D>::disconnect(bool notifyMaster) {
  scopedLock guard(*lock);
  base::disconnect(notifyMaster);
}

template <class D>
void mtLinker<D>::disconnectFromAllMaster() {
  scopedLock guard(*lock);
  base::disconnectFromAllMaster();
}

template <class D>
bool mtLinker<D>::isConnected() const {
  scopedLock guard(*lock);
  return base::isConnected();
}

template <class D>
bool mtLinker<D>::isLeaf() const {
  scopedLock guard(*lock);
  return base::isLeaf();
}

template <class D>
linkerBase<D>* mtLinker<D>::getFrontMaster() {
  scopedLock guard(*lock);
  return base::getFrontMaster();
}

template <class D>
const linkerBase<D>* mtLinker<D>::getFrontMaster() const {
  scopedLock guard(*lock);
  return base::getFrontMaster();
}

template <class D>
linkerBase<D>* mtLinker<D>::getBackMaster() {
  scopedLock guard(*lock);
  return base::getBackMaster();
}

template <class D>
const linkerBase<D>* mtLinker<D>::getBackMaster() const {
  scopedLock guard(*lock);
  return base::getBackMaster();
}

template <class D>
linkerBase<D>* mtLinker<D>::getFrontSlave() {
  scopedLock guard(*lock);
  return base::getFrontSlave();
}

template <class D>
const linkerBase<D>* mtLinker<D>::getFrontSlave() const {
  scopedLock guard(*lock);
  return base::getFrontSlave();
}

template <class D>
linkerBase<D>* mtLinker<D>::getBackSlave() {
  scopedLock guard(*lock);
  return base::getBackSlave();
}

template <class D>
const linkerBase<D>* mtLinker<D>::getBackSlave() const {
  scopedLock guard(*lock);
  return base::getBackSlave();
}

template <class D>
linkerBase<D>* mtLinker<D>::getSlaveAtIndex(int index) {
  scopedLock guard(*lock);
  return base::getSlaveAtIndex(index);
}

template <class D>
const linkerBase<D>* mtLinker<D>::getSlaveAtIndex(int index) const {
  scopedLock guard(*lock);
  return base::getSlaveAtIndex(index);
}

template <class D>
linkerBase<D>* mtLinker<D>::getMasterAtIndex(int index) {
  scopedLock guard(*lock);
  return base::getMasterAtIndex(index);
}

template <class D>
const linkerBase<D>* mtLinker<D>::getMasterAtIndex(int index) const {
  scopedLock guard(*lock);
  return base::getMasterAtIndex(index);
}

template <class D>
int mtLinker<D>::getIndexOfSlave(base* const slave) const {
  scopedLock guard(*lock);
  return base::getIndexOfSlave(slave);
}

template <class D>
int mtLinker<D>::getIndexOfMaster(base* const master) const {
  scopedLock guard(*lock);
  return base::getIndexOfMaster(master);
}

template <class D>
int mtLinker<D>::getSlavesCount() const {
  scopedLock guard(*lock);
  return base::getSlavesCount();
}

template <class D>
int mtLinker<D>::getMastersCount() const {
  scopedLock guard(*lock);
  return base::getMastersCount();
}

template <class D>
void mtLinker<D>::disconnectSlaves() {
  scopedLock guard(*lock);
  base::disconnectSlaves();
}

template <class D>
bool mtLinker<D>::isConnectTo(base* master) const {
  scopedLock guard(*lock);
  return base::isConnectTo(master);
}

template <class D>
bool mtLinker<D>::isChildOf(base* ancestor) const {
  scopedLock guard(*lock);
  return base::isChildOf(ancestor);
}

template <class D>
typename mtLinker<D>::linkerList mtLinker<D>::getSlavesCopy() const {
  scopedLock guard(*lock);
  return base::getSlavesCopy();
}

template <class D>
bool mtLinker<D>::addSlave(base* slave) {
  scopedLock guard(*lock);
  return base::addSlave(slave);
}

template <class D>
bool mtLinker<D>::addSlaveBefore(base* slave, base* sibling) {
  scopedLock guard(*lock);
  return base::addSlaveBefore(slave, sibling);
}

template <class D>
bool mtLinker<D>::addSlaveAfter(base* slave, base* sibling) {
  scopedLock guard(*lock);
  return base::addSlaveAfter(slave, sibling);
}

template <class D>
linkerBase<D>* mtLinker<D>::getMasterFrontFirst() const {
  scopedLock guard(*lock);
  return base::getMasterFrontFirst();
}

template <class D>
void mtLinker<D>::clearSlaves() {
  scopedLock guard(*lock);
  base::clearSlaves();
}

template <class D>
void mtLinker<D>::clearMasters() {
  scopedLock guard(*lock);
  base::clearMasters();
}

template <class D>
linkerBase<D>* mtLinker<D>::connectTo(base* master, bool follow) {
  return connectLocked(master, nullptr, base::place::BACK, follow);
}

template <class D>
linkerBase<D>* mtLinker<D>::connectToBefore(base* master, base* sibling, bool follow) {
  return connectLocked(master, sibling, base::place::BEFORE, follow);
}

template <class D>
linkerBase<D>* mtLinker<D>::connectToAfter(base* master, base* sibling, bool follow) {
  return connectLocked(master, sibling, base::place::AFTER, follow);
}

template <class D>
void mtLinker<D>::removeSlave(base* slave) {
  scopedLock guard(*lock);
  base::removeSlave(slave);
}

template <class D>
linkerBase<D>* mtLinker<D>::connectLocked(base* master, base* sibling, typename base::place where,
                                          bool follow) {
  // Checks and the master's acceptance run outside this lock, under the master's own.
  if (!this->prepareConnect(master, sibling, where, follow)) return nullptr;
  scopedLock guard(*lock);
  this->appendMaster(master);
  return this;
}

}  // namespace SYSTEM
}  // namespace JEV
