#pragma once

#include <typeinfo>
#include <vector>

namespace JEV {
namespace SYSTEM {

// The tag of the one linker family in use.
struct dummyLinkerType {};

template <class T, class D, template <class> class L>
class fieldBase;

// A node with an ordered list of masters and an ordered list of slaves: the edges between
// fields, and the parent-child edges of the scene graph, the widget tree and XML trees.
// `slave->connect(master)`. Links are plain pointers both ways and own nothing; when either
// end dies, its destructor unlinks it from the other. Cycles are not detected: a caller
// that links A to B and B to A gets walks that never end. Belongs to one thread; see
// mtLinker for the locked kind.
template <class D>
class linkerBase {
 public:
  using linkerList = std::vector<linkerBase*>;

  linkerBase() = default;
  // Connects to `master` at once (see connect).
  linkerBase(linkerBase* master, bool follow);
  // A copy starts unlinked: only the flags are copied, since the other ends would not
  // know of the copy.
  linkerBase(const linkerBase& other);
  linkerBase& operator=(const linkerBase& other);
  virtual ~linkerBase();

  // Removes `master` from the masters, and this from its slaves if `notifyOther`.
  virtual void disconnect(linkerBase* master, bool notifyOther);
  virtual void disconnect(linkerBase* master);
  // Drops the front master only.
  virtual void disconnect();
  virtual void disconnectFromAllMaster();
  // Makes this a slave of `master`, appended to its slaves. Null when `master` is null or
  // already a master of this, or when it refuses. `follow` is one flag for all masters.
  virtual linkerBase* connect(linkerBase* master, bool follow);
  // Connects, following, to every master of `other`.
  virtual void connectToMasterOf(const linkerBase& other);
  // As connect, placed before or after `sibling` in the master's slaves. Null, with no
  // change, when `sibling` is null or not a slave of `master`.
  virtual linkerBase* connectBefore(linkerBase* master, linkerBase* sibling, bool follow);
  virtual linkerBase* connectAfter(linkerBase* master, linkerBase* sibling, bool follow);

  virtual bool isConnected() const;
  virtual bool isLeaf() const;
  virtual linkerBase* getFrontMaster();
  virtual const linkerBase* getFrontMaster() const;
  virtual linkerBase* getBackMaster();
  virtual const linkerBase* getBackMaster() const;
  virtual linkerBase* getFrontSlave();
  virtual const linkerBase* getFrontSlave() const;
  virtual linkerBase* getBackSlave();
  virtual const linkerBase* getBackSlave() const;
  // Null for a negative or too large index.
  virtual linkerBase* getSlaveAtIndex(int index);
  virtual const linkerBase* getSlaveAtIndex(int index) const;
  virtual linkerBase* getMasterAtIndex(int index);
  virtual const linkerBase* getMasterAtIndex(int index) const;
  // Position in the list, or -1.
  virtual int getIndexOfSlave(linkerBase* const slave) const;
  virtual int getIndexOfMaster(linkerBase* const master) const;
  virtual int getSlavesCount() const;
  virtual int getMastersCount() const;
  // Unlinks every slave from this master.
  virtual void disconnectSlaves();
  // `master` is directly one of the masters.
  virtual bool isConnectTo(linkerBase* master) const;
  // `ancestor` is a master of this or, recursively, of one of its masters.
  virtual bool isChildOf(linkerBase* ancestor) const;
  // The master's side of a connection. With multipleSlaves false the existing slave is
  // displaced first. Appends `slave` unless it is in the list already; true.
  virtual bool addSlave(linkerBase* slave);
  // Inserts before or after `sibling`; false, after any displacement, when `sibling` is
  // not a slave. A slave already in the list gets a second entry.
  virtual bool addSlaveBefore(linkerBase* slave, linkerBase* sibling);
  virtual bool addSlaveAfter(linkerBase* slave, linkerBase* sibling);

  // A snapshot of the slaves, safe to walk while links change.
  virtual linkerList getSlavesCopy() const;
  bool isFollowingMaster() const { return followMaster; }

 protected:
  // Drops the front master; tells it if `notifyMaster`.
  virtual void disconnect(bool notifyMaster);
  virtual linkerBase* getMasterFrontFirst() const;
  virtual void clearSlaves();
  virtual void clearMasters();
  virtual linkerBase* connectTo(linkerBase* master, bool follow);
  virtual linkerBase* connectToBefore(linkerBase* master, linkerBase* sibling, bool follow);
  virtual linkerBase* connectToAfter(linkerBase* master, linkerBase* sibling, bool follow);
  // Removes every entry equal to `slave`.
  virtual void removeSlave(linkerBase* slave);

  // Field hooks, so that a field reads and notifies through any linker it is linked to.
  // The value of this linker when it holds a value of `type`, else null.
  virtual const void* linkedValue(const std::type_info& type) const;
  // Called by a master field as it notifies.
  virtual void masterNotified();

  enum class place { BACK, BEFORE, AFTER };
  // Steps of connecting that precede the append to `masters`: checks, the master's
  // acceptance, the follow flag, the dropping of masters. False to refuse.
  bool prepareConnect(linkerBase* master, linkerBase* sibling, place where, bool follow);
  void appendMaster(linkerBase* master);
  linkerBase* connectAt(linkerBase* master, linkerBase* sibling, place where, bool follow);
  bool insertSlave(linkerBase* slave, linkerBase* sibling, place where);

  bool followMaster = false;
  bool multipleSlaves = true;
  bool multipleMasters = true;
  linkerList masters;
  linkerList slaves;

  template <class T, class D2, template <class> class L>
  friend class fieldBase;
};

extern template class linkerBase<dummyLinkerType>;

}  // namespace SYSTEM
}  // namespace JEV

#include "jev3d/fields/linkerBase.inl"
