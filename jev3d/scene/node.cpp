#include "jev3d/scene/node.h"

#include <algorithm>
#include <vector>

namespace JEV {
namespace SG {
namespace {

// The walks of this thread. A walk's copy of a child list may outlive a child that a
// delegate destroys (the controller's erase, say); such nodes are noted here until the
// outermost walk ends, and the copies skip them.
struct walkRecord {
  int depth = 0;
  std::vector<const node::linker*> destroyed;
};
thread_local walkRecord walks;

// Takes the linker, so that a slave can be checked before it is cast to a node.
bool destroyedInWalk(const node::linker* n) {
  return !walks.destroyed.empty() &&
         std::find(walks.destroyed.begin(), walks.destroyed.end(), n) != walks.destroyed.end();
}

// Walks the children of `n` (or of its shell owner) over a copy, calling `visit` on each
// live, enabled one. Stops at once if `n` itself was destroyed by its delegate.
template <class Visit>
void walkChildren(node* n, Visit visit) {
  if (destroyedInWalk(n)) return;
  node* owner = n->shellOwner;
  if (owner && destroyedInWalk(owner)) return;
  const node::linkerList children = owner ? owner->getSlavesCopy() : n->getSlavesCopy();
  // Ask for every child's first lines at once: in a large tree each child is a cache
  // miss, and the misses then overlap instead of coming one after another.
  for (node::linker* slave : children) {
    __builtin_prefetch(slave);
    __builtin_prefetch(reinterpret_cast<const char*>(slave) + 64);
  }
  for (node::linker* slave : children) {
    if (destroyedInWalk(slave)) continue;
    // Every slave of a node is a node: addSlave refuses anything else.
    node* child = static_cast<node*>(slave);
    if (!child->disabled.cV()) visit(child);
  }
}

bool isNode(node::linker* slave) { return dynamic_cast<node*>(slave) != nullptr; }

}  // namespace

node::node() : disabled(false) {
  // A node made during a walk may reuse the address of one destroyed in it.
  if (!walks.destroyed.empty()) {
    walks.destroyed.erase(std::remove(walks.destroyed.begin(), walks.destroyed.end(), this),
                          walks.destroyed.end());
  }
}

node::~node() {
  if (walks.depth > 0) walks.destroyed.push_back(this);
}

node::walkScope::walkScope() { ++walks.depth; }

node::walkScope::~walkScope() {
  if (--walks.depth == 0) walks.destroyed.clear();
}

bool node::destroyedDuringWalk(const node* n) { return destroyedInWalk(n); }

bool node::addSlave(linker* slave) { return isNode(slave) && linker::addSlave(slave); }

bool node::addSlaveBefore(linker* slave, linker* sibling) {
  return isNode(slave) && linker::addSlaveBefore(slave, sibling);
}

bool node::addSlaveAfter(linker* slave, linker* sibling) {
  return isNode(slave) && linker::addSlaveAfter(slave, sibling);
}

void node::update(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc) {
  walkScope scope;
  if (!updateDelegate.isNull()) {
    // Held by a copy: the delegate may destroy this node, and with it the member.
    const SYSTEM::sharedPointer<SYSTEM::delegate> call = updateDelegate;
    call->invoke(static_cast<void*>(rc), static_cast<void*>(uc));
  }
  walkChildren(this, [rc, uc](node* child) { child->update(rc, uc); });
}

void node::render(RENDERING::renderingContext* rc) {
  walkScope scope;
  if (!renderDelegate.isNull()) {
    const SYSTEM::sharedPointer<SYSTEM::delegate> call = renderDelegate;
    call->invoke(static_cast<void*>(rc));
  }
  walkChildren(this, [rc](node* child) { child->render(rc); });
}

}  // namespace SG
}  // namespace JEV
