// Drawing through the renderer against plain GL, on whatever context the platform gives
// (llvmpipe under Xvfb or its offscreen driver here).
//   indexed1M/jev3d      a 1M-triangle grid through vertexBuffer, indexBuffer and
//                        renderIndexedGeometry, one frame a repetition
//   indexed1M/handVBO    the same buffers made and drawn with hand-written GL calls
//   nodes10k/jev3d       10,000 small nodes, each under its own material and transform
//                        state node; counters give renderer calls and draws per frame
#include <GL/glew.h>
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

#include "../support/benchDevice.h"
#include "jev3d/platform/messages.h"
#include "jev3d/renderer/indexBuffer.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/renderstate/materialstate.h"
#include "jev3d/renderer/transformState.h"
#include "jev3d/renderer/vertexBuffer.h"

namespace {

using namespace JEV::RENDERING;
using VC = vertexDeclaration::VERTEX_COMPONENTS;

// A renderGL that counts what the scene walk asks of it.
class countingGL : public renderGL {
 public:
  bool setMaterialState(RENDERSTATE::materialstate& s) override {
    ++calls;
    return renderGL::setMaterialState(s);
  }
  bool setTransformState(const JEV::MATH::matrix4<float>& m) override {
    ++calls;
    return renderGL::setTransformState(m);
  }
  bool renderIndexedGeometry(DRAW_MODE mode, vertexBuffer* b, indexBuffer* i, unsigned first,
                             unsigned count) override {
    ++calls;
    return renderGL::renderIndexedGeometry(mode, b, i, first, count);
  }
  long calls = 0;
};

// One window and context for the whole run.
using device = benchDevice<countingGL>;

device& theDevice() {
  static device d(L"bench");
  return d;
}

// A grid of n × n cells, two triangles a cell, over [-1, 1]², with normals up.
struct grid {
  explicit grid(unsigned n) {
    const unsigned side = n + 1;
    for (unsigned j = 0; j < side; ++j)
      for (unsigned i = 0; i < side; ++i) {
        positions.insert(positions.end(),
                         {2.0f * i / n - 1.0f, 2.0f * j / n - 1.0f, 0.1f * std::sin(float(i + j))});
        normals.insert(normals.end(), {0.0f, 0.0f, -1.0f});
      }
    for (unsigned j = 0; j < n; ++j)
      for (unsigned i = 0; i < n; ++i) {
        const unsigned a = j * side + i, b = a + 1, c = a + side, d = c + 1;
        indices.insert(indices.end(), {a, b, d, a, d, c});
      }
  }
  unsigned vertexCount() const { return unsigned(positions.size() / 3); }
  std::vector<float> positions, normals;
  std::vector<unsigned> indices;
};

const grid& millionTriangles() {
  static const grid g(708);  // 708² × 2 = 1,002,528 triangles
  return g;
}

void indexedJev3d(benchmark::State& state) {
  device& d = theDevice();
  if (!d.ok) return state.SkipWithError("no GL context");
  const grid& g = millionTriangles();
  vertexBuffer vb(VC::NORMAL | VC::POS3);
  indexBuffer ib;
  d.gl.cacheVertexBufferElement(&vb, VC::NORMAL, g.normals.data(), g.vertexCount());
  d.gl.cacheVertexBufferElement(&vb, VC::POS3, g.positions.data(), g.vertexCount());
  d.gl.cacheIndexBuffer(&ib, g.indices.data(), unsigned(g.indices.size()));
  for (auto _ : state) {
    d.beginFrame(false);
    d.gl.renderIndexedGeometry(renderer::DRAW_TRIANGLES, &vb, &ib, 0, ib.getIndexNumber());
    d.endFrame();
  }
  d.gl.discardVertexBuffer(&vb);
  d.gl.discardIndexBuffer(&ib);
  state.counters["triangles"] = double(g.indices.size() / 3);
}

void indexedHandVBO(benchmark::State& state) {
  device& d = theDevice();
  if (!d.ok) return state.SkipWithError("no GL context");
  const grid& g = millionTriangles();
  {
    const handVBO plain(g.normals, g.positions, g.indices);
    for (auto _ : state) {
      d.beginFrame(false);
      plain.draw();
      d.endFrame();
    }
  }
  state.counters["triangles"] = double(g.indices.size() / 3);
}

// A node that draws one small quad.
class quadNode : public JEV::SG::node {
 public:
  quadNode(renderGL& gl, vertexBuffer& vb, indexBuffer& ib) : gl(gl), vb(vb), ib(ib) {}
  void render(renderingContext* rc) override {
    gl.renderIndexedGeometry(renderer::DRAW_TRIANGLES, &vb, &ib, 0, 6);
    JEV::SG::node::render(rc);
  }
  renderGL& gl;
  vertexBuffer& vb;
  indexBuffer& ib;
};

void nodes10k(benchmark::State& state) {
  device& d = theDevice();
  if (!d.ok) return state.SkipWithError("no GL context");
  const float quad[] = {0, 0, 0, 0.01f, 0, 0, 0.01f, 0.01f, 0, 0, 0.01f, 0};
  const float up[] = {0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1};
  const unsigned corners[] = {0, 1, 2, 0, 2, 3};
  vertexBuffer vb(VC::NORMAL | VC::POS3);
  indexBuffer ib;
  d.gl.cacheVertexBufferElement(&vb, VC::NORMAL, up, 4);
  d.gl.cacheVertexBufferElement(&vb, VC::POS3, quad, 4);
  d.gl.cacheIndexBuffer(&ib, corners, 6);

  // root → 10,000 × (material → transform → quad); neighbours share a material in pairs,
  // so half the material changes are repeats, which renderGL sends as the others unless
  // it is set to skip unchanged states (it is not, here).
  JEV::SG::node root;
  std::vector<std::unique_ptr<JEV::SG::node>> owned;
  for (int i = 0; i < 10000; ++i) {
    auto material = std::make_unique<RENDERSTATE::materialstate>();
    material->frontDiffuse = JEV::CORE::color(uint8_t(i / 2 % 256), 100, 200, 255);
    JEV::MATH::matrix4<float> at;
    at[12] = float(i % 100) * 0.02f - 1.0f;
    at[13] = float(i / 100) * 0.02f - 1.0f;
    auto transform = std::make_unique<transformState>(at);
    auto leaf = std::make_unique<quadNode>(d.gl, vb, ib);
    leaf->connect(transform.get(), false);
    transform->connect(material.get(), false);
    material->connect(&root, false);
    owned.push_back(std::move(material));
    owned.push_back(std::move(transform));
    owned.push_back(std::move(leaf));
  }
  long frames = 0;
  d.gl.calls = 0;
  for (auto _ : state) {
    d.beginFrame(false);
    root.render(&d.rc);
    d.endFrame();
    ++frames;
  }
  state.counters["fps"] = benchmark::Counter(double(frames), benchmark::Counter::kIsRate);
  state.counters["rendererCallsPerFrame"] = double(d.gl.calls) / double(frames ? frames : 1);
  d.gl.discardVertexBuffer(&vb);
  d.gl.discardIndexBuffer(&ib);
}

}  // namespace

BENCHMARK(indexedJev3d)->Name("indexed1M/jev3d")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(indexedHandVBO)->Name("indexed1M/handVBO")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(nodes10k)->Name("nodes10k/jev3d")->Unit(benchmark::kMillisecond)->UseRealTime();
