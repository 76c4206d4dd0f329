#include "jev3d/scene/node.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "jev3d/scene/shellNode.h"
#include "sceneTestSupport.h"

using JEV::RENDERING::renderingContext;
using JEV::SG::node;
using JEV::SG::shellNode;
using JEV::SYSTEM::updateContext;
using strings = std::vector<std::string>;

namespace {

// Nodes named by letter, each with a probe; the test links them.
class walkTest : public ::testing::Test {
 protected:
  node& make(const std::string& name) { return make<node>(name); }
  template <class N>
  N& make(const std::string& name) {
    nodes.push_back(std::make_unique<N>());
    probes.push_back(std::make_unique<walkProbe>(log, name));
    probes.back()->attach(*nodes.back());
    return static_cast<N&>(*nodes.back());
  }
  walkProbe& probe(size_t i) { return *probes[i]; }
  strings updateLog(node& root) {
    log.clear();
    root.update(&rc, &uc);
    return log;
  }
  strings renderLog(node& root) {
    log.clear();
    root.render(&rc);
    return log;
  }

  strings log;
  std::vector<std::unique_ptr<walkProbe>> probes;
  std::vector<std::unique_ptr<node>> nodes;
  renderingContext rc{nullptr, nullptr};
  updateContext uc;
};

}  // namespace

TEST_F(walkTest, aNodeCallsItsDelegateThenItsChildrenInLinkOrderDepthFirst) {
  node& r = make("r");
  node& a = make("a");
  node& b = make("b");
  node& c = make("c");
  node& a1 = make("a1");
  node& a2 = make("a2");
  a.connect(&r, false);
  c.connect(&r, false);
  b.connectBefore(&r, &c, false);
  a1.connect(&a, false);
  a2.connect(&a, false);
  EXPECT_EQ(updateLog(r),
            (strings{"r.update", "a.update", "a1.update", "a2.update", "b.update", "c.update"}));
  EXPECT_EQ(renderLog(r),
            (strings{"r.render", "a.render", "a1.render", "a2.render", "b.render", "c.render"}));
}

TEST_F(walkTest, theDelegatesReceiveTheWalksContexts) {
  node& r = make("r");
  make("a").connect(&r, false);
  r.update(&rc, &uc);
  EXPECT_EQ(probe(1).lastRc, &rc);
  EXPECT_EQ(probe(1).lastUc, &uc);
  renderingContext other(nullptr, nullptr);
  r.render(&other);
  EXPECT_EQ(probe(0).lastRc, &other);
  EXPECT_EQ(probe(1).lastRc, &other);
}

TEST_F(walkTest, aNodeWithoutDelegatesStillWalksItsChildren) {
  node& r = make("r");
  make("a").connect(&r, false);
  r.updateDelegate.release();
  r.renderDelegate.release();
  EXPECT_EQ(updateLog(r), strings{"a.update"});
  EXPECT_EQ(renderLog(r), strings{"a.render"});
}

TEST_F(walkTest, aDisabledChildIsSkippedWithItsSubtreeAndWalkedAgainOnceEnabled) {
  node& r = make("r");
  node& a = make("a");
  node& b = make("b");
  make("a1").connect(&a, false);
  a.connect(&r, false);
  b.connect(&r, false);
  a.disabled = true;
  EXPECT_EQ(updateLog(r), (strings{"r.update", "b.update"}));
  EXPECT_EQ(renderLog(r), (strings{"r.render", "b.render"}));
  a.disabled = false;
  EXPECT_EQ(updateLog(r), (strings{"r.update", "a.update", "a1.update", "b.update"}));
}

TEST_F(walkTest, disabledIsAFieldThatCanFollowAnother) {
  node& r = make("r");
  node& a = make("a");
  a.connect(&r, false);
  JEV::SYSTEM::fieldBase<bool> hideAll(true);
  a.disabled.connect(&hideAll, true);
  EXPECT_EQ(updateLog(r), strings{"r.update"});
  hideAll = false;
  EXPECT_EQ(updateLog(r), (strings{"r.update", "a.update"}));
}

TEST_F(walkTest, aNodeWithTwoParentsIsVisitedOnceUnderEach) {
  node& r = make("r");
  node& p = make("p");
  node& q = make("q");
  node& shared = make("s");
  make("s1").connect(&shared, false);
  p.connect(&r, false);
  q.connect(&r, false);
  shared.connect(&p, false);
  shared.connect(&q, false);
  EXPECT_EQ(shared.getMastersCount(), 2);
  EXPECT_EQ(updateLog(r), (strings{"r.update", "p.update", "s.update", "s1.update", "q.update",
                                   "s.update", "s1.update"}));
  // Disabling it hides it under both.
  shared.disabled = true;
  EXPECT_EQ(renderLog(r), (strings{"r.render", "p.render", "q.render"}));
}

TEST_F(walkTest, aChildAddedWhileTheChildrenAreWalkedIsFirstVisitedInTheNextPass) {
  node& r = make("r");
  node& a = make("a");
  node& late = make("late");
  a.connect(&r, false);
  // a adds a sibling after the parent took its copy.
  probe(1).also = [&] { late.connect(&r, false); };
  EXPECT_EQ(updateLog(r), (strings{"r.update", "a.update"}));
  probe(1).also = nullptr;
  EXPECT_EQ(updateLog(r), (strings{"r.update", "a.update", "late.update"}));
}

TEST_F(walkTest, aChildAddedByTheParentsOwnDelegateIsInThisPass) {
  // The delegate runs before the copy of the children is taken.
  node& r = make("r");
  node& a = make("a");
  probe(0).also = [&] { a.connect(&r, false); };
  EXPECT_EQ(renderLog(r), (strings{"r.render", "a.render"}));
}

TEST_F(walkTest, aChildRemovedDuringTheWalkIsStillVisitedInThisPass) {
  node& r = make("r");
  node& a = make("a");
  node& b = make("b");
  node& c = make("c");
  a.connect(&r, false);
  b.connect(&r, false);
  c.connect(&r, false);
  // a removes both of its later siblings; the pass goes on over its copy.
  probe(1).also = [&] {
    b.disconnect(&r);
    r.disconnectSlaves();
  };
  EXPECT_EQ(updateLog(r), (strings{"r.update", "a.update", "b.update", "c.update"}));
  EXPECT_EQ(r.getSlavesCount(), 0);
  probe(1).also = nullptr;
  EXPECT_EQ(updateLog(r), strings{"r.update"});
}

TEST_F(walkTest, aNodeDestroyedDuringTheWalkIsNotVisitedAgain) {
  node& r = make("r");
  node& a = make("a");
  node& b = make("b");
  node& c = make("c");
  a.connect(&r, false);
  c.connect(&r, false);
  b.connect(&r, false);
  b.connect(&a, false);  // b also below a, so it is reached twice in a pass
  // After b has run under a, c destroys it before its turn under r.
  probe(3).also = [&] { nodes[2].reset(); };
  EXPECT_EQ(renderLog(r), (strings{"r.render", "a.render", "b.render", "c.render"}));
  EXPECT_EQ(r.getSlavesCount(), 2);
  EXPECT_EQ(a.getSlavesCount(), 0);
}

TEST_F(walkTest, aNodeThatDestroysItselfEndsItsOwnWalkAndTheParentGoesOn) {
  node& r = make("r");
  node& a = make("a");
  make("a1").connect(&a, false);
  make("b").connect(&r, false);
  a.connectBefore(&r, r.getFrontSlave(), false);
  probe(1).also = [&] { nodes[1].reset(); };
  EXPECT_EQ(updateLog(r), (strings{"r.update", "a.update", "b.update"}));
  // a's child survives as a detached root.
  EXPECT_FALSE(nodes[2]->isConnected());
}

TEST_F(walkTest, aNodeTakesOnlyNodesAsChildren) {
  node& r = make("r");
  JEV::SYSTEM::fieldBase<bool> flag;
  EXPECT_EQ(flag.connect(&r, false), nullptr);
  node& a = make("a");
  a.connect(&r, false);
  EXPECT_EQ(flag.connectBefore(&r, &a, false), nullptr);
  EXPECT_EQ(flag.connectAfter(&r, &a, false), nullptr);
  EXPECT_EQ(r.getSlavesCount(), 1);
  EXPECT_FALSE(flag.isConnected());
  // A node may still hang below a field's link list.
  EXPECT_NE(a.connect(&flag, false), nullptr);
  EXPECT_EQ(updateLog(r), (strings{"r.update", "a.update"}));
}

TEST_F(walkTest, aShellRunsItsInternalNodeAroundTheShellsChildren) {
  node& r = make("r");
  auto& shell = make<shellNode>("shell");
  node& state = make("state");
  make("own").connect(&state, false);
  make("x").connect(&shell, false);
  make("y").connect(&shell, false);
  shell.connect(&r, false);

  // The setter is deliberately inert: the shell walks as a plain node.
  shell.setInternalNode(&state);
  EXPECT_EQ(shell.internalNode, nullptr);
  EXPECT_EQ(updateLog(r), (strings{"r.update", "shell.update", "x.update", "y.update"}));

  shell.internalNode = &state;
  EXPECT_EQ(updateLog(r), (strings{"r.update", "state.update", "x.update", "y.update"}));
  EXPECT_EQ(renderLog(r), (strings{"r.render", "state.render", "x.render", "y.render"}));
  EXPECT_EQ(state.shellOwner, nullptr);
  // Outside a shell the internal node walks its own children.
  EXPECT_EQ(updateLog(state), (strings{"state.update", "own.update"}));

  shell.useOwnChildren = true;
  EXPECT_EQ(renderLog(r), (strings{"r.render", "shell.render", "x.render", "y.render"}));
}

TEST_F(walkTest, anInternalNodeDestroyedInsideItsShellWalkBreaksNothing) {
  node& r = make("r");
  auto& shell = make<shellNode>("shell");
  node& state = make("state");
  make("x").connect(&shell, false);
  shell.connect(&r, false);
  shell.internalNode = &state;
  probe(2).also = [&] {
    shell.internalNode = nullptr;
    nodes[2].reset();
  };
  EXPECT_EQ(updateLog(r), (strings{"r.update", "state.update"}));
  EXPECT_EQ(updateLog(r), (strings{"r.update", "shell.update", "x.update"}));
}
