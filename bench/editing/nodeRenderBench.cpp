// Frames of a 1M-triangle editable node against a plain draw of the same triangles.
//   node1M/plainVBO        the grid's shared vertices (positions, normals) in buffers made
//                          with hand-written GL, one glDrawElements a frame
//   node1M/jev3d           the same triangles as an editMeshNode in object mode
//   node1M_face/jev3d      face mode with the wire on
//   node1M_edge/jev3d      edge mode (surface and wire)
//   node1M_vertex/jev3d    vertex mode (surface and points)
//   node1M_select/jev3d    object mode, 1% of the faces selected or deselected before each
//                          frame: the frame rewrites colour streams only
// Each repetition is one frame, finished with glFinish. Counters give the chunks rebuilt.
#include <GL/glew.h>
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "../support/benchDevice.h"
#include "jev3d/editing/editMeshNode.h"
#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/renderer/renderingContext.h"

namespace {

using namespace JEV::RENDERING;
using JEV::MESH::editMesh;
using JEV::MESH::EDITING::editMeshNode;

constexpr unsigned cells = 708;  // 708² × 2 = 1,002,528 triangles

struct nodeDevice : benchDevice<renderGL> {
  nodeDevice() : benchDevice(L"node bench") {
    if (!ok) return;
    editMesh& m = node.getEditMesh();
    const unsigned side = cells + 1;
    for (unsigned j = 0; j < side; ++j)
      for (unsigned i = 0; i < side; ++i)
        m.addVertex(2.0f * i / cells - 1.0f, 2.0f * j / cells - 1.0f,
                    0.1f * std::sin(float(i + j)));
    for (unsigned j = 0; j < cells; ++j)
      for (unsigned i = 0; i < cells; ++i) {
        const unsigned a = j * side + i, b = a + 1, c = a + side, d = c + 1;
        m.addTriFace(a, b, d);
        m.addTriFace(a, d, c);
      }
    m.checkMeshState();
    m.computeEdges(true);
    m.computeVE();
    m.computeNormalizedNormals();
  }
  void frame() {
    beginFrame(true);
    node.render(&rc);
    endFrame();
  }
  editMeshNode node;
};

nodeDevice& theNodeDevice() {
  static nodeDevice d;
  return d;
}

void report(benchmark::State& state, const nodeDevice& d,
            const JEV::MESH::EDITING::renderCacheCounts& before) {
  const auto& after = d.node.getRenderCacheCounts();
  const double frames = double(state.iterations());
  state.counters["faceChunksBuilt/frame"] = (after.faceChunks - before.faceChunks) / frames;
  state.counters["colorChunksBuilt/frame"] = (after.colorChunks - before.colorChunks) / frames;
  state.counters["chunks"] = double(d.node.getEditMesh().renderChunks.size());
}

void nodeFrames(benchmark::State& state, void (*setMode)(editMeshNode&), bool toggleSelection) {
  nodeDevice& d = theNodeDevice();
  if (!d.ok) return state.SkipWithError("no GL context");
  setMode(d.node);
  d.frame();  // caches what the mode needs
  const auto before = d.node.getRenderCacheCounts();
  editMesh& m = d.node.getEditMesh();
  const unsigned step = 100;  // every hundredth face: 1%
  bool selected = false;
  for (auto _ : state) {
    if (toggleSelection) {
      state.PauseTiming();
      selected = !selected;
      for (unsigned f = 0; f < m.fn(); f += step)
        selected ? d.node.selectFace(f) : d.node.deselectFace(f);
      state.ResumeTiming();
    }
    d.frame();
  }
  report(state, d, before);
  if (selected)
    for (unsigned f = 0; f < m.fn(); f += step) d.node.deselectFace(f);
  d.node.enableObjectModeDisplay();
  d.node.enableWireframeDisplay(false);
  d.node.enablePointDisplay(false);
}

void objectMode(editMeshNode& n) { n.enableObjectModeDisplay(); }
void faceMode(editMeshNode& n) {
  n.faceModeWireframe = true;
  n.enableFaceModeDisplay();
}
void edgeMode(editMeshNode& n) { n.enableEdgeModeDisplay(); }
void vertexMode(editMeshNode& n) { n.enableVertexModeDisplay(); }

void node1M_jev3d(benchmark::State& s) { nodeFrames(s, objectMode, false); }
void node1M_face(benchmark::State& s) { nodeFrames(s, faceMode, false); }
void node1M_edge(benchmark::State& s) { nodeFrames(s, edgeMode, false); }
void node1M_vertex(benchmark::State& s) { nodeFrames(s, vertexMode, false); }
void node1M_select(benchmark::State& s) { nodeFrames(s, objectMode, true); }

void node1M_plainVBO(benchmark::State& state) {
  nodeDevice& d = theNodeDevice();
  if (!d.ok) return state.SkipWithError("no GL context");
  const editMesh& m = d.node.getEditMesh();
  std::vector<float> positions, normals;
  std::vector<unsigned> indices;
  for (unsigned v = 0; v < m.vn(); ++v) {
    positions.insert(positions.end(), {m.vPos(v).x, m.vPos(v).y, m.vPos(v).z});
    normals.insert(normals.end(), {m.vNor(v).x, m.vNor(v).y, m.vNor(v).z});
  }
  for (unsigned f = 0; f < m.fn(); ++f)
    indices.insert(indices.end(), {m.fV(f, 0), m.fV(f, 1), m.fV(f, 2)});
  d.gl.makeCurrentContext(true);
  {
    const handVBO plain(normals, positions, indices);
    for (auto _ : state) {
      d.beginFrame(true);
      plain.draw();
      d.endFrame();
    }
  }
  state.counters["triangles"] = double(indices.size() / 3);
}

}  // namespace

BENCHMARK(node1M_plainVBO)->Name("node1M/plainVBO")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(node1M_jev3d)->Name("node1M/jev3d")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(node1M_face)->Name("node1M_face/jev3d")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(node1M_edge)->Name("node1M_edge/jev3d")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(node1M_vertex)->Name("node1M_vertex/jev3d")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(node1M_select)->Name("node1M_select/jev3d")->Unit(benchmark::kMillisecond)->UseRealTime();
