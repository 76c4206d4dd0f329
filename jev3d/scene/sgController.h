#pragma once

#include <string>

#include "jev3d/renderer/cameraState.h"
#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/instancing/textureInstance.h"
#include "jev3d/renderer/renderstate/alphastate.h"
#include "jev3d/renderer/renderstate/blendstate.h"
#include "jev3d/renderer/renderstate/clipPlanestate.h"
#include "jev3d/renderer/renderstate/colorMaterialstate.h"
#include "jev3d/renderer/renderstate/colorbufferstate.h"
#include "jev3d/renderer/renderstate/cullstate.h"
#include "jev3d/renderer/renderstate/fogState.h"
#include "jev3d/renderer/renderstate/lightingstate.h"
#include "jev3d/renderer/renderstate/lightstate.h"
#include "jev3d/renderer/renderstate/materialstate.h"
#include "jev3d/renderer/renderstate/pointSizestate.h"
#include "jev3d/renderer/renderstate/scissorstate.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "jev3d/renderer/renderstate/wireframestate.h"
#include "jev3d/renderer/renderstate/zbufferstate.h"
#include "jev3d/renderer/transformState.h"
#include "jev3d/resources/storage.h"
#include "jev3d/scene/node.h"
#include "jev3d/scene/pickRayNode.h"
#include "jev3d/scene/shellNode.h"
#include "jev3d/scene/trackballNode.h"
#include "jev3d/system/sharedPointer.h"

// The four getters of one node type: wide and narrow ids, const and not.
#define JEV3D_SG_GETTERS(stem, type)                                                 \
  type* get##stem(const std::wstring& id) { return getTyped<type>(id); }             \
  type* get##stem(const std::string& id) { return getTyped<type>(id); }              \
  const type* get##stem(const std::wstring& id) const { return getTyped<type>(id); } \
  const type* get##stem(const std::string& id) const { return getTyped<type>(id); }

// The two adds of a node type made in its default state, and its getters.
#define JEV3D_SG_NODE_FAMILY(stem, type)                                     \
  type* add##stem(const std::wstring& id) { return addTyped(id, new type); } \
  type* add##stem(const std::string& id) { return addTyped(id, new type); }  \
  JEV3D_SG_GETTERS(stem, type)

namespace JEV {
namespace SYSTEM {
class winBase;
}

namespace SG {

// Owns the nodes of one window by name and walks the tree from a root. Every add takes a
// wide or a narrow (UTF-8) id; it makes the node in its default state, stores it and
// returns it typed, or null for an empty id or one in use (the stored node is left as it
// was). A new node has no links: the caller connects it. The getters are one lookup each
// and cast to the named type without checking the real type: asking for a node under the
// wrong type's getter gives a pointer that must not be used. Null when absent.
//
// Erasing a node destroys it; its children survive as roots of detached trees, still
// owned here. Main thread only.
class sgController {
 public:
  // `window` supplies the contexts of the walks; it may be null, and the walks then get
  // null contexts.
  explicit sgController(SYSTEM::winBase* window);
  virtual ~sgController();
  sgController(const sgController&) = delete;
  sgController& operator=(const sgController&) = delete;

  // Takes ownership of `n` under `id` and returns it; null, with `n` destroyed, on an
  // empty or used id. A node stored already (here or in another controller) is refused
  // and left as it is.
  node* addNode(node* n, const std::wstring& id);
  node* addNode(node* n, const std::string& id);
  shellNode* addShellNode(const std::wstring& id);
  shellNode* addShellNode(const std::string& id);

  // A pick ray on the window's mouse.
  pickRayNode* addPickRayNode(const std::wstring& id);
  pickRayNode* addPickRayNode(const std::string& id);
  // A trackball on the window's input and rendering contexts.
  CAM::trackballNode* addTrackballNode(const std::wstring& id);
  CAM::trackballNode* addTrackballNode(const std::string& id);

  // The render states, each in its default state (a point size of 1).
  JEV3D_SG_NODE_FAMILY(AlphaStateNode, RENDERING::RENDERSTATE::alphastate)
  JEV3D_SG_NODE_FAMILY(ClipPlaneStateNode, RENDERING::RENDERSTATE::clipPlanestate)
  JEV3D_SG_NODE_FAMILY(BlendStateNode, RENDERING::RENDERSTATE::blendstate)
  JEV3D_SG_NODE_FAMILY(CullStateNode, RENDERING::RENDERSTATE::cullstate)
  JEV3D_SG_NODE_FAMILY(LightingStateNode, RENDERING::RENDERSTATE::lightingstate)
  JEV3D_SG_NODE_FAMILY(LightStateNode, RENDERING::RENDERSTATE::lightstate)
  JEV3D_SG_NODE_FAMILY(ColorMaterialStateNode, RENDERING::RENDERSTATE::colorMaterialstate)
  JEV3D_SG_NODE_FAMILY(MaterialStateNode, RENDERING::RENDERSTATE::materialstate)
  JEV3D_SG_NODE_FAMILY(ScissorStateNode, RENDERING::RENDERSTATE::scissorstate)
  JEV3D_SG_NODE_FAMILY(ViewportStateNode, RENDERING::RENDERSTATE::viewportstate)
  JEV3D_SG_NODE_FAMILY(ZbufferStateNode, RENDERING::RENDERSTATE::zbufferstate)
  JEV3D_SG_NODE_FAMILY(ColorBufferStateNode, RENDERING::RENDERSTATE::colorbufferstate)
  JEV3D_SG_NODE_FAMILY(PointSizeStateNode, RENDERING::RENDERSTATE::pointSizestate)
  JEV3D_SG_NODE_FAMILY(WireFrameStateNode, RENDERING::RENDERSTATE::wireframestate)
  JEV3D_SG_NODE_FAMILY(FogStateNode, RENDERING::RENDERSTATE::fogState)
  JEV3D_SG_NODE_FAMILY(TransformStateNode, RENDERING::transformState)
  JEV3D_SG_NODE_FAMILY(CameraStateNode, RENDERING::cameraState)

  // A texture instance on the window's texture storage (none without a window).
  RENDERING::INSTANCING::textureInstance* addTextureStateNode(const std::wstring& id);
  RENDERING::INSTANCING::textureInstance* addTextureStateNode(const std::string& id);
  JEV3D_SG_GETTERS(TextureStateNode, RENDERING::INSTANCING::textureInstance)
  // A render target instance on the window's render target storage (none without a
  // window); it draws into the window until it is connected to a target.
  RENDERING::INSTANCING::renderTargetInstance* addRenderTargetStateNode(const std::wstring& id);
  RENDERING::INSTANCING::renderTargetInstance* addRenderTargetStateNode(const std::string& id);
  JEV3D_SG_GETTERS(RenderTargetStateNode, RENDERING::INSTANCING::renderTargetInstance)

  node* getNode(const std::wstring& id);
  node* getNode(const std::string& id);
  const node* getNode(const std::wstring& id) const;
  const node* getNode(const std::string& id) const;
  shellNode* getShellNode(const std::wstring& id) { return getTyped<shellNode>(id); }
  shellNode* getShellNode(const std::string& id) { return getTyped<shellNode>(id); }
  const shellNode* getShellNode(const std::wstring& id) const { return getTyped<shellNode>(id); }
  const shellNode* getShellNode(const std::string& id) const { return getTyped<shellNode>(id); }

  pickRayNode* getPickRayNode(const std::wstring& id) { return getTyped<pickRayNode>(id); }
  pickRayNode* getPickRayNode(const std::string& id) { return getTyped<pickRayNode>(id); }
  const pickRayNode* getPickRayNode(const std::wstring& id) const {
    return getTyped<pickRayNode>(id);
  }
  const pickRayNode* getPickRayNode(const std::string& id) const {
    return getTyped<pickRayNode>(id);
  }
  CAM::trackballNode* getTrackballNode(const std::wstring& id) {
    return getTyped<CAM::trackballNode>(id);
  }
  CAM::trackballNode* getTrackballNode(const std::string& id) {
    return getTyped<CAM::trackballNode>(id);
  }
  const CAM::trackballNode* getTrackballNode(const std::wstring& id) const {
    return getTyped<CAM::trackballNode>(id);
  }
  const CAM::trackballNode* getTrackballNode(const std::string& id) const {
    return getTyped<CAM::trackballNode>(id);
  }

  bool isValid(const std::wstring& id) const;
  bool isValid(const std::string& id) const;
  // True if `id` exists; a missing id sets the root to null and gives false.
  bool setRoot(const std::wstring& id);
  bool setRoot(const std::string& id);
  // Any node, owned here or not; false for null.
  bool setRoot(node* n);
  node* getRoot() const { return root; }
  // Destroys the node; false when absent. Erasing the root leaves no root.
  bool erase(const std::wstring& id);
  bool erase(const std::string& id);
  // Destroys the node and every node below it that is stored here and that no node
  // outside that part links to: a node shared with another part of the tree survives,
  // detached from the erased part. False when absent.
  bool eraseSubtree(const std::wstring& id);
  bool eraseSubtree(const std::string& id);
  // Destroys every node, one at a time in name order, so that each destructor runs while
  // the others still exist; leaves no root.
  void discard();
  // The nodes stored, in name order.
  int getNodeCount() const { return nodes.getEntryCount(); }

  // Walk the root with the window's contexts, unless there is no root or it is disabled.
  void update();
  void render();

  SYSTEM::winBase* getWindow() const { return window; }

 protected:
  // Stores `created` under `id` and returns it; null, with `created` destroyed, on an
  // empty or used id. The typed add operations are one call of this.
  template <class T>
  T* addTyped(const std::wstring& id, T* created) {
    return add(id, created) ? created : nullptr;
  }
  template <class T>
  T* addTyped(const std::string& id, T* created) {
    return addTyped(IO::XML::utf8ToWstring(id), created);
  }
  template <class T, class I>
  T* getTyped(const I& id) {
    return static_cast<T*>(getNode(id));
  }
  template <class T, class I>
  const T* getTyped(const I& id) const {
    return static_cast<const T*>(getNode(id));
  }

  SYSTEM::winBase* window;
  CORE::storage<SYSTEM::sharedPointer<node>> nodes;
  node* root = nullptr;

 private:
  bool add(const std::wstring& id, node* n);
};

}  // namespace SG
}  // namespace JEV

#undef JEV3D_SG_NODE_FAMILY
#undef JEV3D_SG_GETTERS
