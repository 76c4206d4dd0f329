// Walks of a scene tree owned by a controller, with a recording renderer behind the
// rendering context: 100,000 nodes, and 1,000 for a tree that stays in the caches.
// Counters report nodes walked per second.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "jev3d/renderer/renderingContext.h"
#include "jev3d/scene/sgController.h"
#include "jev3d/system/updateContext.h"
#include "support/recordingRenderer.h"

using JEV::RENDERING::renderingContext;
using JEV::SG::node;
using JEV::SG::sgController;
using JEV::SYSTEM::updateContext;

namespace {

constexpr int FAN_OUT = 10;  // a tree five levels deep below the root

// What a node's delegates do in the "delegates" cases: ask the device for something
// cheap, as a state or geometry node would before drawing.
struct nodeWork {
  long calls = 0;
  void onUpdate(renderingContext* rc, updateContext*) { calls += rc->windowWidth.cV() > 0; }
  void onRender(renderingContext* rc) { calls += rc->getRenderer()->getMaxLight() == 0; }
};

// The tree: node i hangs below node (i - 1) / FAN_OUT, so children are linked in order.
class sceneTree {
 public:
  sceneTree(int count, bool withDelegates) : scene(nullptr) {
    std::vector<node*> made;
    made.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
      node* n = scene.addNode(new node, "n" + std::to_string(i));
      if (i > 0) n->connect(made[static_cast<size_t>((i - 1) / FAN_OUT)], false);
      if (withDelegates) {
        n->updateDelegate = JEV::SYSTEM::makeDelegate(&work, &nodeWork::onUpdate);
        n->renderDelegate = JEV::SYSTEM::makeDelegate(&work, &nodeWork::onRender);
      }
      made.push_back(n);
    }
    scene.setRoot(made.front());
  }

  recordingRenderer device;
  renderingContext rc{&device, nullptr};
  updateContext uc;
  nodeWork work;
  sgController scene;
};

void reportNodes(benchmark::State& state) {
  state.counters["nodes/s"] = benchmark::Counter(
      double(state.range(0)) * double(state.iterations()), benchmark::Counter::kIsRate);
}

void updateWalk(benchmark::State& state, bool withDelegates) {
  sceneTree tree(static_cast<int>(state.range(0)), withDelegates);
  node* root = tree.scene.getRoot();
  for (auto _ : state) root->update(&tree.rc, &tree.uc);
  benchmark::DoNotOptimize(tree.work.calls);
  reportNodes(state);
}

void renderWalk(benchmark::State& state, bool withDelegates) {
  sceneTree tree(static_cast<int>(state.range(0)), withDelegates);
  node* root = tree.scene.getRoot();
  for (auto _ : state) root->render(&tree.rc);
  benchmark::DoNotOptimize(tree.work.calls);
  reportNodes(state);
}

// The same shape as plain structs walked recursively with no copy, no fields and no
// delegates: the floor that the walk's copies and checks are measured against.
struct bareNode {
  std::vector<bareNode*> children;
  bool disabled = false;
};

void bareWalk(benchmark::State& state) {
  const auto count = static_cast<size_t>(state.range(0));
  std::vector<std::unique_ptr<bareNode>> nodes;
  nodes.reserve(count);
  for (size_t i = 0; i < count; ++i) {
    nodes.push_back(std::make_unique<bareNode>());
    if (i > 0) nodes[(i - 1) / FAN_OUT]->children.push_back(nodes.back().get());
  }
  long visited = 0;
  struct walker {
    static void walk(const bareNode* n, long& visited) {
      ++visited;
      for (const bareNode* c : n->children) {
        if (!c->disabled) walk(c, visited);
      }
    }
  };
  for (auto _ : state) walker::walk(nodes.front().get(), visited);
  benchmark::DoNotOptimize(visited);
  reportNodes(state);
}

}  // namespace

#define SCENE_SIZES Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond)
BENCHMARK_CAPTURE(updateWalk, bare / jev3d, false)->SCENE_SIZES;
BENCHMARK_CAPTURE(renderWalk, bare / jev3d, false)->SCENE_SIZES;
BENCHMARK_CAPTURE(updateWalk, delegates / jev3d, true)->SCENE_SIZES;
BENCHMARK_CAPTURE(renderWalk, delegates / jev3d, true)->SCENE_SIZES;
BENCHMARK(bareWalk)->SCENE_SIZES;
