#include "jev3d/scene/shellNode.h"

namespace JEV {
namespace SG {

void shellNode::update(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc) {
  if (internalNode && !useOwnChildren.cV()) {
    walkScope scope;
    node* internal = internalNode;
    internal->shellOwner = this;
    internal->update(rc, uc);
    if (!destroyedDuringWalk(internal)) internal->shellOwner = nullptr;
  } else {
    node::update(rc, uc);
  }
}

void shellNode::render(RENDERING::renderingContext* rc) {
  if (internalNode && !useOwnChildren.cV()) {
    walkScope scope;
    node* internal = internalNode;
    internal->shellOwner = this;
    internal->render(rc);
    if (!destroyedDuringWalk(internal)) internal->shellOwner = nullptr;
  } else {
    node::render(rc);
  }
}

void shellNode::setInternalNode(node*) {}

}  // namespace SG
}  // namespace JEV
