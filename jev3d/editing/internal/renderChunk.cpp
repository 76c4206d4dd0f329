#include "jev3d/editing/internal/renderChunk.h"

#include <algorithm>

#include "jev3d/editing/editMeshNode.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/renderer/renderer.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace INTERNAL {

namespace {

using VC = RENDERING::vertexDeclaration;
using p3 = MATH::point3<float>;

bool faceShown(const editMesh& m, unsigned int f) {
  if (m.isFaceDeleted(f) || m.fVNum(f) < 3) return false;
  if (m.hideSelected && m.isFaceSelected(f)) return false;
  if (m.hideUnselected && !m.isFaceSelected(f)) return false;
  return true;
}

CORE::color faceCornerColor(editMesh& m, unsigned int f, unsigned int v) {
  if (m.isFaceSelected(f) && m.selectedFacesDrawing) return m.faceSelectionColor;
  if (m.colorDisplayState == MESH_COLOR_VERTEX) return m.vCol(v);
  if (m.colorDisplayState == MESH_COLOR_FACE && f < m.fn()) {
    m.resizeFaceColorData(m.fn());
    return m.fCol(f);
  }
  return m.faceColor;
}

// Calls visit(face, corner vertex) for every soup vertex of the chunk's faces, three a
// fan triangle.
template <class V>
void forEachSoupVertex(const editMesh& m, const renderChunk& c, V visit) {
  for (unsigned int f : c.items) {
    if (!faceShown(m, f)) continue;
    for (unsigned int t = 0; t + 2 < m.fVNum(f); ++t) {
      unsigned int a, b, d;
      m.getTriangle(f, t, a, b, d);
      visit(f, a);
      visit(f, b);
      visit(f, d);
    }
  }
}

void cacheColors(editMesh& m, RENDERING::renderer* device, renderChunk& c) {
  std::vector<CORE::color> colors;
  colors.reserve(c.vertexCount);
  forEachSoupVertex(m, c,
                    [&](unsigned f, unsigned v) { colors.push_back(faceCornerColor(m, f, v)); });
  if (!colors.empty())
    device->cacheVertexBufferElement(&c.buffer, VC::COLOR, colors.data(), unsigned(colors.size()));
  c.colorStale = false;
}

void deleteList(std::vector<renderChunk*>& list, RENDERING::renderer* device, bool drawingThread,
                std::vector<unsigned>& names) {
  for (renderChunk* c : list) {
    if (device && drawingThread) {
      device->discardVertexBuffer(&c->buffer);
    } else {
      for (unsigned s = 0; s < c->buffer.getStreamCount(); ++s)
        if (c->buffer.getName(s)) names.push_back(c->buffer.getName(s));
    }
    delete c;
  }
  list.clear();
}

// Chunks of consecutive ids, each given up to `limit` vertices of its own.
template <class W>
void buildRangeChunks(std::vector<renderChunk*>& list, unsigned int count, unsigned int limit,
                      int mask, W weight) {
  renderChunk* current = nullptr;
  unsigned int used = 0;
  for (unsigned int id = 0; id < count; ++id) {
    const unsigned int w = weight(id);
    if (w == 0) continue;
    if (!current || used + w > limit) {
      current = new renderChunk(mask);
      list.push_back(current);
      used = 0;
    }
    current->items.push_back(id);
    used += w;
  }
}

// Remakes a list of position-and-colour chunks (wire or points): weight says how many
// vertices an element gives, emit appends them. Returns the chunks built.
template <class W, class E>
unsigned int buildColoredChunks(std::vector<renderChunk*>& list, RENDERING::renderer* device,
                                unsigned int count, unsigned int limit, W weight, E emit) {
  std::vector<unsigned> names;
  deleteList(list, device, true, names);
  buildRangeChunks(list, count, limit, VC::POS3 | VC::COLOR, weight);
  std::vector<p3> pos;
  std::vector<CORE::color> colors;
  for (renderChunk* c : list) {
    pos.clear();
    colors.clear();
    for (unsigned int id : c->items) emit(id, pos, colors);
    c->vertexCount = unsigned(pos.size());
    device->cacheVertexBufferElement(&c->buffer, VC::POS3, pos.data(), c->vertexCount);
    device->cacheVertexBufferElement(&c->buffer, VC::COLOR, colors.data(), c->vertexCount);
  }
  return unsigned(list.size());
}

unsigned int chunkLimit(const editMesh& m) { return std::max(m.getChunkVertexLimit(), 96u); }

}  // namespace

void buildFaceChunks(editMesh& m, RENDERING::renderer* device, renderCacheCounts& counts) {
  std::vector<unsigned> names;
  deleteList(m.renderChunks, device, true, names);
  unsigned int limit = chunkLimit(m);
  // Chunk ids live in 16 bits of the face record.
  unsigned long long soup = 0;
  for (unsigned int f = 0; f < m.fn(); ++f)
    if (faceShown(m, f)) soup += 3ull * (m.fVNum(f) - 2);
  while (soup / limit >= 0xFFFF) limit *= 2;
  buildRangeChunks(m.renderChunks, m.fn(), limit, VC::POS3 | VC::NORMAL | VC::COLOR,
                   [&](unsigned f) { return faceShown(m, f) ? 3 * (m.fVNum(f) - 2) : 0u; });
  std::vector<p3> pos, nor;
  for (size_t i = 0; i < m.renderChunks.size(); ++i) {
    renderChunk& c = *m.renderChunks[i];
    pos.clear();
    nor.clear();
    forEachSoupVertex(m, c, [&](unsigned f, unsigned v) {
      pos.push_back(m.vPos(v));
      nor.push_back(m.smoothShadingDrawing ? m.vNor(v) : m.fNor(f));
    });
    for (unsigned int f : c.items) m.F(f).chunkId = uint16_t(i);
    c.vertexCount = unsigned(pos.size());
    device->cacheVertexBufferElement(&c.buffer, VC::POS3, pos.data(), c.vertexCount);
    device->cacheVertexBufferElement(&c.buffer, VC::NORMAL, nor.data(), c.vertexCount);
    cacheColors(m, device, c);
    ++counts.faceChunks;
  }
  m.smoothFaceRenderStateValid = m.smoothShadingDrawing;
  m.flatFaceRenderStateValid = !m.smoothShadingDrawing;
  m.selectionRenderStateValid = true;
  m.faceSelectionChanged = false;
}

void refreshFaceColors(editMesh& m, RENDERING::renderer* device, bool all,
                       renderCacheCounts& counts) {
  for (renderChunk* c : m.renderChunks) {
    if (!all && !c->colorStale) continue;
    cacheColors(m, device, *c);
    ++counts.colorChunks;
  }
  m.selectionRenderStateValid = true;
  m.faceSelectionChanged = false;
}

void buildEdgeChunks(editMesh& m, RENDERING::renderer* device, renderCacheCounts& counts) {
  counts.edgeChunks += buildColoredChunks(
      m.edgeChunks, device, m.en(), chunkLimit(m),
      [&](unsigned e) { return m.edgeIsDeleted(e) ? 0u : 2u; },
      [&](unsigned e, std::vector<p3>& pos, std::vector<CORE::color>& colors) {
        const CORE::color col = m.isEdgeSelected(e) ? m.edgeSelectionColor : m.currentEdgeColor;
        for (unsigned int k = 0; k < 2; ++k) {
          pos.push_back(m.vPos(m.eV(e, k)));
          colors.push_back(col);
        }
      });
  m.edgeRenderStateValid = true;
}

void buildPointChunks(editMesh& m, RENDERING::renderer* device, renderCacheCounts& counts) {
  counts.pointChunks += buildColoredChunks(
      m.vertChunks, device, m.vn(), chunkLimit(m),
      [&](unsigned v) { return m.isVertDeleted(v) ? 0u : 1u; },
      [&](unsigned v, std::vector<p3>& pos, std::vector<CORE::color>& colors) {
        pos.push_back(m.vPos(v));
        colors.push_back(m.isVertSelected(v) ? m.vertexSelectionColor : m.currentVertexColor);
      });
  m.vertexRenderStateValid = true;
}

void drawChunks(const std::vector<renderChunk*>& chunks, RENDERING::renderer* device, int mode) {
  for (renderChunk* c : chunks)
    if (c->vertexCount)
      device->renderGeometry(RENDERING::renderer::DRAW_MODE(mode), &c->buffer, 0, c->vertexCount);
}

void releaseChunks(editMesh& m, RENDERING::renderer* device, bool drawingThread) {
  std::vector<unsigned> names;
  deleteList(m.renderChunks, device, drawingThread, names);
  deleteList(m.edgeChunks, device, drawingThread, names);
  deleteList(m.selectedFaceChunks, device, drawingThread, names);
  deleteList(m.vertChunks, device, drawingThread, names);
  if (device && !names.empty()) device->addVertexBufferToDiscardList(names);
}

}  // namespace INTERNAL
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
