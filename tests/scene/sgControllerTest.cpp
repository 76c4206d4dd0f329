#include "jev3d/scene/sgController.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "sceneTestSupport.h"

using JEV::SG::node;
using JEV::SG::sgController;
using JEV::SG::shellNode;
using strings = std::vector<std::string>;

namespace {

// Writes its id to a log as it is destroyed.
class countedNode : public node {
 public:
  explicit countedNode(strings& destroyed) : destroyed(destroyed) {}
  ~countedNode() override {
    destroyed.push_back(getId().empty() ? "(unnamed)" : JEV::IO::XML::wstringToUtf8(getId()));
  }
  strings& destroyed;
};

class sgControllerTest : public sceneWindowTest {
 protected:
  // Adds a counted node with a probe under `id` and links it below `parent`, if any.
  node* add(const std::string& id, const std::string& parent = "") {
    node* n = scene.addNode(new countedNode(destroyed), id);
    if (!n) return nullptr;
    probes.push_back(std::make_unique<walkProbe>(log, id));
    probes.back()->attach(*n);
    if (!parent.empty()) n->connect(scene.getNode(parent), false);
    return n;
  }
  walkProbe& probe(const std::string& id) {
    for (auto& p : probes) {
      if (p->name == id) return *p;
    }
    throw std::runtime_error("no probe " + id);
  }
  strings updateLog() {
    log.clear();
    scene.update();
    return log;
  }
  strings renderLog() {
    log.clear();
    scene.render();
    return log;
  }

  std::vector<std::unique_ptr<walkProbe>> probes;
};

}  // namespace

TEST_F(sgControllerTest, nodesAreStoredAndFoundByWideAndNarrowIds) {
  shellNode* shell = scene.addShellNode("shell");
  ASSERT_NE(shell, nullptr);
  EXPECT_EQ(shell->getId(), L"shell");
  EXPECT_EQ(scene.getShellNode(L"shell"), shell);
  EXPECT_EQ(scene.getNode("shell"), shell);
  const sgController& constScene = scene;
  EXPECT_EQ(constScene.getShellNode("shell"), shell);
  EXPECT_EQ(constScene.getNode(L"shell"), shell);
  EXPECT_TRUE(scene.isValid("shell"));
  EXPECT_TRUE(scene.isValid(L"shell"));

  // Narrow ids are UTF-8.
  node* accented = scene.addNode(new node, "n\xC3\xA9");
  ASSERT_NE(accented, nullptr);
  EXPECT_EQ(accented->getId(), L"n\u00e9");
  EXPECT_EQ(scene.getNode(L"n\u00e9"), accented);
  EXPECT_EQ(scene.getNodeCount(), 2);
  // A new node has no links.
  EXPECT_FALSE(shell->isConnected());
  EXPECT_TRUE(shell->isLeaf());
}

namespace {

// Adds a node of one family under a wide and a narrow id, and checks what the family's
// getters and a second add of the same id give.
template <class T, class Add, class Get, class AddNarrow>
void checkFamily(sgController& scene, const std::string& id, Add add, Get get,
                 AddNarrow addNarrow) {
  SCOPED_TRACE(id);
  T* wide = (scene.*add)(JEV::IO::XML::utf8ToWstring(id));
  ASSERT_NE(wide, nullptr);
  EXPECT_EQ(wide->getId(), JEV::IO::XML::utf8ToWstring(id));
  EXPECT_EQ((scene.*get)(JEV::IO::XML::utf8ToWstring(id)), wide);
  EXPECT_FALSE(wide->isConnected());
  EXPECT_EQ((scene.*add)(JEV::IO::XML::utf8ToWstring(id)), nullptr);
  const std::string narrowId = id + " narrow";
  T* narrow = (scene.*addNarrow)(narrowId);
  ASSERT_NE(narrow, nullptr);
  EXPECT_NE(narrow, wide);
  EXPECT_EQ(scene.getNode(narrowId), narrow);
}

}  // namespace

TEST_F(sgControllerTest, everyStateNodeFamilyAddsAndGetsByName) {
  using namespace JEV::RENDERING;
  using namespace JEV::RENDERING::RENDERSTATE;
  using INSTANCING::renderTargetInstance;
  using INSTANCING::textureInstance;
  using W = const std::wstring&;
  using N = const std::string&;
#define FAMILY(T, stem)                                                                        \
  checkFamily<T>(scene, #stem, static_cast<T* (sgController::*)(W)>(&sgController::add##stem), \
                 static_cast<T* (sgController::*)(W)>(&sgController::get##stem),               \
                 static_cast<T* (sgController::*)(N)>(&sgController::add##stem))
  FAMILY(alphastate, AlphaStateNode);
  FAMILY(clipPlanestate, ClipPlaneStateNode);
  FAMILY(blendstate, BlendStateNode);
  FAMILY(cullstate, CullStateNode);
  FAMILY(lightingstate, LightingStateNode);
  FAMILY(lightstate, LightStateNode);
  FAMILY(colorMaterialstate, ColorMaterialStateNode);
  FAMILY(materialstate, MaterialStateNode);
  FAMILY(scissorstate, ScissorStateNode);
  FAMILY(viewportstate, ViewportStateNode);
  FAMILY(zbufferstate, ZbufferStateNode);
  FAMILY(colorbufferstate, ColorBufferStateNode);
  FAMILY(pointSizestate, PointSizeStateNode);
  FAMILY(wireframestate, WireFrameStateNode);
  FAMILY(fogState, FogStateNode);
  FAMILY(transformState, TransformStateNode);
  FAMILY(cameraState, CameraStateNode);
  FAMILY(textureInstance, TextureStateNode);
  FAMILY(renderTargetInstance, RenderTargetStateNode);
#undef FAMILY
  EXPECT_EQ(scene.getNodeCount(), 2 * 19);

  // Narrow ids, const getters, and what each is made with.
  pointSizestate* points = scene.addPointSizeStateNode("points");
  ASSERT_NE(points, nullptr);
  EXPECT_EQ(points->size.cV(), 1.0f);
  const sgController& constScene = scene;
  EXPECT_EQ(constScene.getPointSizeStateNode("points"), points);
  EXPECT_EQ(constScene.getPointSizeStateNode(L"points"), points);
  textureInstance* texture = scene.addTextureStateNode("texture");
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->getResourceStorage(), win.getRenderingContext()->getTextureStorage());
  EXPECT_NE(texture->getResourceStorage(), nullptr);
  EXPECT_EQ(scene.addTextureStateNode("texture"), nullptr);
  renderTargetInstance* target = scene.addRenderTargetStateNode("target");
  ASSERT_NE(target, nullptr);
  EXPECT_TRUE(target->isWindowTarget());
  EXPECT_EQ(target->getResourceStorage(), win.getRenderingContext()->getRenderTargetStorage());
  EXPECT_NE(target->getResourceStorage(), nullptr);
  EXPECT_EQ(constScene.getRenderTargetStateNode("target"), target);
  EXPECT_EQ(scene.getAlphaStateNode("missing"), nullptr);
}

TEST_F(sgControllerTest, addedStateNodesHoldForTheirSubtree) {
  using namespace JEV::RENDERING::RENDERSTATE;
  blendstate* blend = scene.addBlendStateNode("blend");
  blend->set(true, blendstate::SRC_ONE, blendstate::DST_ONE);
  wireframestate* wire = scene.addWireFrameStateNode(L"wire");
  wire->mode = wireframestate::FILL_LINE;
  wire->connect(blend, false);
  ASSERT_NE(add("leaf", "wire"), nullptr);
  ASSERT_TRUE(scene.setRoot("blend"));
  device.clearLog();
  scene.render();
  EXPECT_EQ(device.only("setBlendState"), (strings{"setBlendState 1 1 1", "setBlendState 0 4 5"}));
  EXPECT_EQ(device.only("setWireFrameState"),
            (strings{"setWireFrameState 1", "setWireFrameState 0"}));
}

TEST_F(sgControllerTest, anIdInUseIsRefusedAndTheStoredNodeKeepsIt) {
  node* first = add("a");
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(scene.addNode(new countedNode(destroyed), "a"), nullptr);
  EXPECT_EQ(scene.addShellNode(L"a"), nullptr);
  EXPECT_EQ(destroyed, strings{"(unnamed)"});  // the refused counted node; the shell too
  EXPECT_EQ(scene.getNode("a"), first);
  EXPECT_EQ(first->getId(), L"a");
  EXPECT_EQ(scene.getNodeCount(), 1);
}

TEST_F(sgControllerTest, anEmptyIdANullNodeAndAStoredNodeAreRefused) {
  EXPECT_EQ(scene.addNode(new countedNode(destroyed), ""), nullptr);
  EXPECT_EQ(scene.addShellNode(L""), nullptr);
  EXPECT_EQ(scene.addNode(nullptr, "x"), nullptr);
  EXPECT_EQ(destroyed, strings{"(unnamed)"});
  // Storing a node twice would give it two owners: the second add leaves it alone.
  node* a = add("a");
  EXPECT_EQ(scene.addNode(a, "b"), nullptr);
  EXPECT_FALSE(scene.isValid("b"));
  EXPECT_EQ(scene.getNode("a"), a);
  EXPECT_EQ(destroyed.size(), 1u);
}

TEST_F(sgControllerTest, aMissingIdGivesNullFromEveryGetter) {
  add("a");
  EXPECT_EQ(scene.getNode("b"), nullptr);
  EXPECT_EQ(scene.getNode(L"b"), nullptr);
  EXPECT_EQ(scene.getShellNode("b"), nullptr);
  EXPECT_EQ(static_cast<const sgController&>(scene).getShellNode(L"b"), nullptr);
  EXPECT_FALSE(scene.isValid("b"));
  EXPECT_FALSE(scene.isValid(""));
  EXPECT_FALSE(scene.erase("b"));
  EXPECT_FALSE(scene.eraseSubtree("b"));
}

TEST_F(sgControllerTest, theWalksStartAtTheRootWithTheWindowsContexts) {
  add("root");
  add("a", "root");
  add("b", "root");
  add("loose");
  EXPECT_TRUE(updateLog().empty());  // no root yet
  ASSERT_TRUE(scene.setRoot("root"));
  EXPECT_EQ(updateLog(), (strings{"root.update", "a.update", "b.update"}));
  EXPECT_EQ(probe("a").lastRc, win.getRenderingContext());
  EXPECT_EQ(probe("a").lastUc, win.getUpdateContext());
  EXPECT_EQ(renderLog(), (strings{"root.render", "a.render", "b.render"}));

  // A disabled root stops the whole walk.
  scene.getRoot()->disabled = true;
  EXPECT_TRUE(updateLog().empty());
  EXPECT_TRUE(renderLog().empty());
  scene.getRoot()->disabled = false;

  // Any node can be the root.
  EXPECT_TRUE(scene.setRoot(scene.getNode("a")));
  EXPECT_EQ(renderLog(), strings{"a.render"});
  EXPECT_FALSE(scene.setRoot(static_cast<node*>(nullptr)));
  EXPECT_EQ(scene.getRoot(), nullptr);
}

TEST_F(sgControllerTest, anUnknownRootIdClearsTheRoot) {
  add("root");
  ASSERT_TRUE(scene.setRoot(L"root"));
  EXPECT_FALSE(scene.setRoot("missing"));
  EXPECT_EQ(scene.getRoot(), nullptr);
  EXPECT_TRUE(renderLog().empty());
}

TEST_F(sgControllerTest, withoutAWindowTheWalksGetNullContexts) {
  sgController bare(nullptr);
  node* r = bare.addNode(new node, "r");
  walkProbe p(log, "r");
  p.attach(*r);
  p.lastRc = win.getRenderingContext();
  bare.setRoot(r);
  bare.update();
  EXPECT_EQ(log, strings{"r.update"});
  EXPECT_EQ(p.lastRc, nullptr);
  EXPECT_EQ(p.lastUc, nullptr);
}

TEST_F(sgControllerTest, erasingTheRootLeavesNoRootAndNothingDrawn) {
  add("root");
  add("a", "root");
  scene.setRoot("root");
  EXPECT_TRUE(scene.erase("root"));
  EXPECT_EQ(destroyed, strings{"root"});
  EXPECT_EQ(scene.getRoot(), nullptr);
  EXPECT_TRUE(renderLog().empty());
  // Its child lives on as a detached root, still owned.
  ASSERT_NE(scene.getNode("a"), nullptr);
  EXPECT_FALSE(scene.getNode("a")->isConnected());
}

TEST_F(sgControllerTest, erasingANodeDetachesItsChildrenWhichStayOwned) {
  add("root");
  add("a", "root");
  add("a1", "a");
  add("a2", "a");
  add("b", "root");
  scene.setRoot("root");
  EXPECT_TRUE(scene.erase(L"a"));
  EXPECT_EQ(destroyed, strings{"a"});
  EXPECT_EQ(updateLog(), (strings{"root.update", "b.update"}));
  EXPECT_EQ(scene.getNodeCount(), 4);
  node* a1 = scene.getNode("a1");
  ASSERT_NE(a1, nullptr);
  EXPECT_FALSE(a1->isConnected());
  // A detached tree can be hung back in.
  a1->connect(scene.getRoot(), false);
  EXPECT_EQ(updateLog(), (strings{"root.update", "b.update", "a1.update"}));
}

TEST_F(sgControllerTest, erasingASubtreeSparesWhatIsLinkedFromOutsideIt) {
  add("root");
  add("a", "root");
  add("a1", "a");
  add("a11", "a1");
  add("a2", "a");
  add("a21", "a2");
  add("b", "root");
  add("s", "a1");
  scene.getNode("s")->connect(scene.getNode("a11"), false);  // shared inside the subtree
  scene.getNode("a2")->connect(scene.getNode("b"), false);   // shared with outside
  add("t", "a1");
  scene.getNode("t")->connect(scene.getNode("a2"), false);  // hangs from a2 too: spared
  scene.setRoot("root");
  // A node stored elsewhere is not destroyed here.
  sgController other(nullptr);
  node* foreign = other.addNode(new countedNode(destroyed), "foreign");
  foreign->connect(scene.getNode("a1"), false);

  EXPECT_TRUE(scene.eraseSubtree("a"));
  std::sort(destroyed.begin(), destroyed.end());
  EXPECT_EQ(destroyed, (strings{"a", "a1", "a11", "s"}));
  EXPECT_EQ(updateLog(),
            (strings{"root.update", "b.update", "a2.update", "a21.update", "t.update"}));
  EXPECT_EQ(scene.getNode("a2")->getMastersCount(), 1);
  EXPECT_EQ(scene.getNode("t")->getMastersCount(), 1);
  EXPECT_EQ(other.getNode("foreign"), foreign);
  EXPECT_FALSE(foreign->isConnected());
  EXPECT_EQ(scene.getRoot(), scene.getNode("root"));

  // The root's subtree: everything, the root included.
  destroyed.clear();
  EXPECT_TRUE(scene.eraseSubtree("root"));
  EXPECT_EQ(scene.getNodeCount(), 0);
  EXPECT_EQ(scene.getRoot(), nullptr);
  EXPECT_EQ(destroyed.size(), 5u);
}

TEST_F(sgControllerTest, discardDestroysEveryNodeOneAtATimeInNameOrder) {
  add("c");
  add("a", "c");
  add("b", "a");
  scene.setRoot("c");
  scene.discard();
  EXPECT_EQ(destroyed, (strings{"a", "b", "c"}));
  EXPECT_EQ(scene.getNodeCount(), 0);
  EXPECT_EQ(scene.getRoot(), nullptr);
  EXPECT_TRUE(renderLog().empty());
  // The controller works on after a discard.
  EXPECT_NE(add("a"), nullptr);
}

TEST_F(sgControllerTest, theControllersDestructorDestroysItsNodes) {
  {
    sgController local(nullptr);
    local.addNode(new countedNode(destroyed), "y");
    local.addNode(new countedNode(destroyed), "x");
  }
  EXPECT_EQ(destroyed, (strings{"x", "y"}));
}

TEST_F(sgControllerTest, aNodeErasedByNameDuringTheWalkIsSkipped) {
  add("root");
  add("a", "root");
  add("b", "root");
  add("c", "root");
  scene.setRoot("root");
  probe("a").also = [&] { scene.erase("b"); };
  EXPECT_EQ(updateLog(), (strings{"root.update", "a.update", "c.update"}));
  probe("a").also = [&] { scene.erase("root"); };
  EXPECT_EQ(renderLog(), (strings{"root.render", "a.render", "c.render"}));
  EXPECT_EQ(scene.getRoot(), nullptr);
}
