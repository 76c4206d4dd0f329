#pragma once

#include "jev3d/scene/node.h"

namespace JEV {
namespace SG {

// A node that can lend its place in the tree to another node: when `internalNode` is set
// and `useOwnChildren` reads false, a walk runs the internal node (its state, its
// delegate) around this shell's children instead of the internal node's own. So one state
// object can serve in several places of the tree.
class shellNode : public node {
 public:
  shellNode() = default;

  void update(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc) override;
  void render(RENDERING::renderingContext* rc) override;

  // Deliberately does nothing: the internal node is set only by code that writes
  // `internalNode` itself, so a shell usually walks as a plain node.
  virtual void setInternalNode(node* internal);

  node* internalNode = nullptr;
  SYSTEM::fieldBase<bool> useOwnChildren;
};

}  // namespace SG
}  // namespace JEV
