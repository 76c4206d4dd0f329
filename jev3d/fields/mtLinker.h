#pragma once

#include "jev3d/fields/linkerBase.h"
#include "jev3d/system/mutex.h"

namespace JEV {
namespace SYSTEM {

// A linker whose lists are guarded by a lock of its own, for links shared with other
// threads. Each operation takes only the receiver's lock. Connecting runs its checks and
// the master's acceptance outside the lock and takes it for the append alone; a master
// holds its lock through the whole of addSlave, displacement included. A disconnect on
// the slave takes the master's lock inside the slave's, so two threads writing one link
// from opposite ends can deadlock: keep each link's writes on one thread.
template <class D>
class mtLinker : public linkerBase<D> {
 public:
  using base = linkerBase<D>;
  using typename base::linkerList;

  mtLinker();
  mtLinker(mtLinker* master, bool follow);
  mtLinker(const mtLinker& other);
  mtLinker& operator=(const mtLinker& other);
  ~mtLinker() override;

  void disconnect(base* master, bool notifyOther) override;
  void disconnect(base* master) override;
  void disconnect() override;
  void disconnectFromAllMaster() override;

  bool isConnected() const override;
  bool isLeaf() const override;
  base* getFrontMaster() override;
  const base* getFrontMaster() const override;
  base* getBackMaster() override;
  const base* getBackMaster() const override;
  base* getFrontSlave() override;
  const base* getFrontSlave() const override;
  base* getBackSlave() override;
  const base* getBackSlave() const override;
  base* getSlaveAtIndex(int index) override;
  const base* getSlaveAtIndex(int index) const override;
  base* getMasterAtIndex(int index) override;
  const base* getMasterAtIndex(int index) const override;
  int getIndexOfSlave(base* const slave) const override;
  int getIndexOfMaster(base* const master) const override;
  int getSlavesCount() const override;
  int getMastersCount() const override;
  void disconnectSlaves() override;
  bool isConnectTo(base* master) const override;
  bool isChildOf(base* ancestor) const override;
  linkerList getSlavesCopy() const override;

 protected:
  // The master's side stays reachable through linkerBase pointers, as connecting needs.
  bool addSlave(base* slave) override;
  bool addSlaveBefore(base* slave, base* sibling) override;
  bool addSlaveAfter(base* slave, base* sibling) override;
  void disconnect(bool notifyMaster) override;
  base* getMasterFrontFirst() const override;
  void clearSlaves() override;
  void clearMasters() override;
  base* connectTo(base* master, bool follow) override;
  base* connectToBefore(base* master, base* sibling, bool follow) override;
  base* connectToAfter(base* master, base* sibling, bool follow) override;
  void removeSlave(base* slave) override;

 private:
  base* connectLocked(base* master, base* sibling, typename base::place where, bool follow);

  mutex* lock;
};

extern template class mtLinker<dummyLinkerType>;

}  // namespace SYSTEM
}  // namespace JEV

#include "jev3d/fields/mtLinker.inl"
