#pragma once

#include <string>

#include "jev3d/fields/fieldBase.h"
#include "jev3d/fields/linkerBase.h"
#include "jev3d/system/delegate.h"
#include "jev3d/system/sharedPointer.h"

namespace JEV {
namespace RENDERING {
class renderingContext;
}
namespace SYSTEM {
class updateContext;
}

namespace SG {

class sgController;

// One node of the scene tree. The tree is the link structure itself: a child is a slave
// of its parent, `child->connect(parent, false)`, and a node may have several parents, in
// which case it is visited once under each. Links own nothing; the controller owns nodes.
//
// A walk (update or render) calls the node's delegate, then each child in link order over
// a copy of the child list, skipping children whose `disabled` reads true. Because of the
// copy, a delegate may connect or disconnect children while the walk runs: a child added
// is first visited in the next pass, a child disconnected is still visited in this one. A
// node destroyed while a walk runs is not visited again by that walk.
//
// Main thread only.
class node : public SYSTEM::linkerBase<SYSTEM::dummyLinkerType> {
 public:
  using linker = SYSTEM::linkerBase<SYSTEM::dummyLinkerType>;

  node();
  ~node() override;
  node(const node&) = delete;
  node& operator=(const node&) = delete;

  // Only nodes are taken as children, so that the walks can treat every slave as a node;
  // any other linker is refused (false, nothing changed).
  bool addSlave(linker* slave) override;
  bool addSlaveBefore(linker* slave, linker* sibling) override;
  bool addSlaveAfter(linker* slave, linker* sibling) override;

  // updateDelegate with (rc, uc), then the children's update.
  virtual void update(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc);
  // renderDelegate with (rc), then the children's render.
  virtual void render(RENDERING::renderingContext* rc);

  // The name under which the controller stores this node; empty until added.
  const std::wstring& getId() const { return id; }

  // True makes a parent skip this node and its subtree in both walks.
  SYSTEM::fieldBase<bool, SYSTEM::dummyLinkerType, SYSTEM::linkerBase> disabled;
  // Called at the start of update with (renderingContext*, updateContext*); empty at start.
  SYSTEM::sharedPointer<SYSTEM::delegate> updateDelegate;
  // Called at the start of render with (renderingContext*); empty at start.
  SYSTEM::sharedPointer<SYSTEM::delegate> renderDelegate;
  // Set only while a shell node walks through this node: the walk then takes the shell's
  // children in place of this node's own.
  node* shellOwner = nullptr;

 protected:
  // Open for the length of a walk step, so that nodes destroyed meanwhile are noted; a
  // subclass that touches a node after walking it (a shell, a state that pops itself)
  // holds one and asks destroyedDuringWalk first.
  class walkScope {
   public:
    walkScope();
    ~walkScope();
    walkScope(const walkScope&) = delete;
    walkScope& operator=(const walkScope&) = delete;
  };
  // True when `n` was destroyed while the outermost walk of this thread runs.
  static bool destroyedDuringWalk(const node* n);

 private:
  friend class sgController;

  std::wstring id;
};

}  // namespace SG
}  // namespace JEV
