#include "jev3d/scene/sgController.h"

#include <set>
#include <vector>

#include "jev3d/renderer/renderingContext.h"
#include "jev3d/system/winBase.h"

namespace JEV {
namespace SG {
namespace {

std::wstring widen(const std::string& id) { return IO::XML::utf8ToWstring(id); }

}  // namespace

sgController::sgController(SYSTEM::winBase* w) : window(w) {}

sgController::~sgController() { discard(); }

bool sgController::add(const std::wstring& id, node* n) {
  // A node that is stored already (it has its id) would get a second owner and be
  // deleted twice: refuse it and leave it alone.
  if (!n || !n->id.empty()) return false;
  const SYSTEM::sharedPointer<node> owner(n);
  if (!nodes.addEntry(id, owner)) return false;  // `owner` destroys the refused node
  n->id = id;
  return true;
}

node* sgController::addNode(node* n, const std::wstring& id) { return addTyped(id, n); }

node* sgController::addNode(node* n, const std::string& id) { return addTyped(id, n); }

shellNode* sgController::addShellNode(const std::wstring& id) {
  return addTyped(id, new shellNode);
}

shellNode* sgController::addShellNode(const std::string& id) { return addTyped(id, new shellNode); }

pickRayNode* sgController::addPickRayNode(const std::wstring& id) {
  return addTyped(id, new pickRayNode(window));
}

pickRayNode* sgController::addPickRayNode(const std::string& id) {
  return addTyped(id, new pickRayNode(window));
}

CAM::trackballNode* sgController::addTrackballNode(const std::wstring& id) {
  return addTyped(id, new CAM::trackballNode(window, window ? window->getInputContext() : nullptr,
                                             window ? window->getRenderingContext() : nullptr));
}

CAM::trackballNode* sgController::addTrackballNode(const std::string& id) {
  return addTrackballNode(widen(id));
}

RENDERING::INSTANCING::textureInstance* sgController::addTextureStateNode(const std::wstring& id) {
  RENDERING::renderingContext* rc = window ? window->getRenderingContext() : nullptr;
  return addTyped(
      id, new RENDERING::INSTANCING::textureInstance(rc ? rc->getTextureStorage() : nullptr));
}

RENDERING::INSTANCING::textureInstance* sgController::addTextureStateNode(const std::string& id) {
  return addTextureStateNode(widen(id));
}

RENDERING::INSTANCING::renderTargetInstance* sgController::addRenderTargetStateNode(
    const std::wstring& id) {
  RENDERING::renderingContext* rc = window ? window->getRenderingContext() : nullptr;
  return addTyped(id, new RENDERING::INSTANCING::renderTargetInstance(
                          rc ? rc->getRenderTargetStorage() : nullptr));
}

RENDERING::INSTANCING::renderTargetInstance* sgController::addRenderTargetStateNode(
    const std::string& id) {
  return addRenderTargetStateNode(widen(id));
}

node* sgController::getNode(const std::wstring& id) { return nodes.getEntry(id).get(); }

node* sgController::getNode(const std::string& id) { return nodes.getEntry(id).get(); }

const node* sgController::getNode(const std::wstring& id) const { return nodes.getEntry(id).get(); }

const node* sgController::getNode(const std::string& id) const { return nodes.getEntry(id).get(); }

bool sgController::isValid(const std::wstring& id) const { return nodes.isValid(id); }

bool sgController::isValid(const std::string& id) const { return nodes.isValid(id); }

bool sgController::setRoot(const std::wstring& id) {
  root = getNode(id);
  return root != nullptr;
}

bool sgController::setRoot(const std::string& id) { return setRoot(widen(id)); }

bool sgController::setRoot(node* n) {
  root = n;
  return n != nullptr;
}

bool sgController::erase(const std::wstring& id) {
  const node* n = getNode(id);
  if (!n) return false;
  const bool wasRoot = n == root;
  nodes.erase(id);
  if (wasRoot) root = nullptr;
  return true;
}

bool sgController::erase(const std::string& id) { return erase(widen(id)); }

bool sgController::eraseSubtree(const std::wstring& id) {
  node* top = getNode(id);
  if (!top) return false;
  // Everything below the top, each node once (a node may have several parents).
  std::vector<node*> below;
  std::set<const node::linker*> doomed{top};
  for (size_t i = 0; i <= below.size(); ++i) {
    const node* n = i == 0 ? top : below[i - 1];
    for (node::linker* slave : n->getSlavesCopy()) {
      if (doomed.insert(slave).second) below.push_back(static_cast<node*>(slave));
    }
  }
  // Spare every node with a parent outside the doomed part, and so, in turn, what hangs
  // only from it: repeat until nothing changes.
  for (bool spared = true; spared;) {
    spared = false;
    for (const node* n : below) {
      if (!doomed.count(n)) continue;
      for (int m = 0; m < n->getMastersCount(); ++m) {
        if (!doomed.count(n->getMasterAtIndex(m))) {
          doomed.erase(n);
          spared = true;
          break;
        }
      }
    }
  }
  // By name, and only nodes stored here: a node owned elsewhere is not ours to destroy.
  std::vector<std::wstring> names;
  for (const node* n : below) {
    if (doomed.count(n) && getNode(n->getId()) == n) names.push_back(n->getId());
  }
  names.push_back(id);
  for (const std::wstring& name : names) erase(name);
  return true;
}

bool sgController::eraseSubtree(const std::string& id) { return eraseSubtree(widen(id)); }

void sgController::discard() {
  while (nodes.getEntryCount() > 0) {
    // A copy: the name's storage goes with the entry.
    const std::wstring first = nodes.getName(0);
    erase(first);
  }
  nodes.clear();
  root = nullptr;
}

void sgController::update() {
  if (!root || root->disabled.cV()) return;
  root->update(window ? window->getRenderingContext() : nullptr,
               window ? window->getUpdateContext() : nullptr);
}

void sgController::render() {
  if (!root || root->disabled.cV()) return;
  root->render(window ? window->getRenderingContext() : nullptr);
}

}  // namespace SG
}  // namespace JEV
