#include "jev3d/editing/editMeshNode.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "jev3d/editing/internal/renderChunk.h"
#include "jev3d/mesh/aabbtreeEditMeshFaceWrap.h"
#include "jev3d/renderer/cameraState.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/renderstate/viewportstate.h"
#include "jev3d/renderer/transformStack.h"
#include "jev3d/renderer/transformState.h"

namespace JEV {
namespace MESH {
namespace EDITING {

using RS = RENDERING::RENDERSTATE::renderStateEnums;
using p3 = MATH::point3<float>;

namespace {

// Holds the drawing mutex for a scope.
class drawLock {
 public:
  explicit drawLock(SYSTEM::mutex& m) : lock(m) { lock.wait(SYSTEM::INFINITE); }
  ~drawLock() { lock.release(); }
  drawLock(const drawLock&) = delete;
  drawLock& operator=(const drawLock&) = delete;

 private:
  SYSTEM::mutex& lock;
};

}  // namespace

editMeshNode::editMeshNode(RENDERING::renderer* renderer)
    : editableObject(true), meshInterfaceDLL(mesh), device(renderer) {
  faceSelectionColor.V() = mesh.faceSelectionColor;
  faceSelectionColor.registerEventOnChangeValue(
      SYSTEM::makeDelegate(this, &editMeshNode::faceSelectionColorValueChangeDelegate));
  builtEdgeColor = mesh.currentEdgeColor;
}

editMeshNode::editMeshNode(const editMeshNode& other)
    : editableObject(true), meshInterfaceDLL(mesh), device(other.device.load()) {
  faceSelectionColor.registerEventOnChangeValue(
      SYSTEM::makeDelegate(this, &editMeshNode::faceSelectionColorValueChangeDelegate));
  *this = other;
}

editMeshNode& editMeshNode::operator=(const editMeshNode& other) {
  if (this == &other) return *this;
  discard();
  copyAttributes(other);
  mesh = other.mesh;
  mesh.invalidateRenderData();
  meshName = other.meshName;
  displayMode = other.displayMode;
  renderFlags = other.renderFlags;
  xRay = other.xRay;
  transparent = other.transparent;
  cull.enable = other.cull.enable.cV();
  faceModeWireframe = other.faceModeWireframe;
  faceModePoints = other.faceModePoints;
  vertexModeWireframe = other.vertexModeWireframe;
  edgeModePoints = other.edgeModePoints;
  color = other.color.cV();
  faceSelectionColor.V() = other.faceSelectionColor.cV();
  return *this;
}

editMeshNode::~editMeshNode() {
  INTERNAL::releaseChunks(mesh, device.load(), false);
  delete drawMutex.load();
}

SYSTEM::mutex& editMeshNode::renderMutex() {
  SYSTEM::mutex* m = drawMutex.load();
  if (m) return *m;
  auto* made = new SYSTEM::mutex(true);
  if (drawMutex.compare_exchange_strong(m, made)) return *made;
  delete made;
  return *m;
}

void editMeshNode::faceSelectionColorValueChangeDelegate() {
  mesh.setFaceSelectionColor(faceSelectionColor.cV());
  mesh.selectionRenderStateValid = false;
}

// Selection

void editMeshNode::selectFace(unsigned int f) {
  mesh.selectFace(f);
  if (mesh.F(f).chunkId < mesh.renderChunks.size())
    mesh.renderChunks[mesh.F(f).chunkId]->colorStale = true;
  mesh.invalidateSelectedVertFlags();
}

void editMeshNode::deselectFace(unsigned int f) {
  mesh.deselectFace(f);
  if (mesh.F(f).chunkId < mesh.renderChunks.size())
    mesh.renderChunks[mesh.F(f).chunkId]->colorStale = true;
  mesh.invalidateSelectedVertFlags();
}

void editMeshNode::selectVert(unsigned int v) {
  mesh.selectVert(v);
  mesh.invalidateSelectedVertFlags();
}

void editMeshNode::deselectVert(unsigned int v) {
  mesh.deselectVert(v);
  mesh.invalidateSelectedVertFlags();
}

void editMeshNode::updateFaces(const std::vector<unsigned int>& faces) {
  for (unsigned int f : faces)
    if (f < mesh.fn()) mesh.computeNormalizedFaceNormal(f);
  mesh.updateBBox();
  mesh.invalidateRenderData();
  mesh.invalidateSelectedEdgeFlags();
}

void editMeshNode::transform(const MATH::matrix4<float>& m) {
  MATH::matrix4<float> rotation = m;
  rotation[12] = rotation[13] = rotation[14] = 0.f;
  for (unsigned int v = 0; v < mesh.vn(); ++v) {
    mesh.vPos(v) = mesh.vPos(v) * m;
    mesh.vNor(v) = mesh.vNor(v) * rotation;
    editMesh::normalizeFast(mesh.vNor(v));
  }
  mesh.computeNormalizedFaceNormals();
  mesh.updateSelVertPosNorSum();
  mesh.updateBBox();
  invalidateRenderData();
}

// Display

void editMeshNode::setDrawingBit(uint32_t bit, bool on) {
  const bool was = (renderFlags & bit) != 0;
  renderFlags = on ? renderFlags | bit : renderFlags & ~bit;
  if (bit == WIREFRAME_DRAWING) {
    if (on && !was) mesh.edgeRenderStateValid = false;
    mesh.wireframeDrawing = on;
  } else {
    if (on && !was) mesh.vertexRenderStateValid = false;
    mesh.pointDrawing = on;
  }
}

void editMeshNode::enableObjectModeDisplay() { displayMode = EDIT_MESH_DISPLAY_OBJECT; }

void editMeshNode::enableFaceModeDisplay() {
  displayMode = EDIT_MESH_DISPLAY_FACE;
  setDrawingBit(WIREFRAME_DRAWING, false);
  setDrawingBit(POINT_DRAWING, false);
  setDrawingBit(WIREFRAME_DRAWING, faceModeWireframe);
  setDrawingBit(POINT_DRAWING, faceModePoints);
}

void editMeshNode::enableVertexModeDisplay() {
  displayMode = EDIT_MESH_DISPLAY_VERTEX;
  setDrawingBit(POINT_DRAWING, true);
  setDrawingBit(WIREFRAME_DRAWING, vertexModeWireframe);
}

void editMeshNode::enableEdgeModeDisplay() {
  displayMode = EDIT_MESH_DISPLAY_EDGE;
  setDrawingBit(WIREFRAME_DRAWING, true);
  setDrawingBit(POINT_DRAWING, edgeModePoints);
}

void editMeshNode::setSurfaceDisplayMode(bool smooth) {
  if (mesh.smoothShadingDrawing == smooth) return;
  mesh.smoothShadingDrawing = smooth;
  mesh.smoothFaceRenderStateValid = mesh.flatFaceRenderStateValid = false;
}

void editMeshNode::enableWireframeDisplay(bool on) {
  setDrawingBit(WIREFRAME_DRAWING, on);
  if (displayMode == EDIT_MESH_DISPLAY_FACE) faceModeWireframe = on;
  if (displayMode == EDIT_MESH_DISPLAY_VERTEX) vertexModeWireframe = on;
}

void editMeshNode::enablePointDisplay(bool on) {
  setDrawingBit(POINT_DRAWING, on);
  if (displayMode == EDIT_MESH_DISPLAY_FACE) faceModePoints = on;
  if (displayMode == EDIT_MESH_DISPLAY_EDGE) edgeModePoints = on;
}

void editMeshNode::checkDisplayMode() {
  switch (displayMode) {
    case EDIT_MESH_DISPLAY_OBJECT:
      mesh.edgeColor = color.cV();
      if (mesh.currentEdgeColor != mesh.edgeColor) mesh.currentEdgeColor = mesh.edgeColor;
      break;
    case EDIT_MESH_DISPLAY_FACE:
    case EDIT_MESH_DISPLAY_VERTEX: {
      const bool wanted =
          displayMode == EDIT_MESH_DISPLAY_FACE ? faceModeWireframe : vertexModeWireframe;
      if (mesh.wireframeDrawing != wanted) setDrawingBit(WIREFRAME_DRAWING, wanted);
      mesh.colorEdgesWithGhostColor();
      break;
    }
    case EDIT_MESH_DISPLAY_EDGE:
      mesh.colorEdgesWithDefaultColor();
      break;
  }
}

void editMeshNode::checkRenderFlags() {
  if (mesh.wireframeDrawing != ((renderFlags & WIREFRAME_DRAWING) != 0))
    setDrawingBit(WIREFRAME_DRAWING, mesh.wireframeDrawing);
  if (mesh.pointDrawing != ((renderFlags & POINT_DRAWING) != 0))
    setDrawingBit(POINT_DRAWING, mesh.pointDrawing);
  // The wire takes its colour at build time.
  if (builtEdgeColor != mesh.currentEdgeColor) {
    builtEdgeColor = mesh.currentEdgeColor;
    mesh.edgeRenderStateValid = false;
  }
}

// Drawing

void editMeshNode::render(RENDERING::renderingContext* rc) {
  checkDisplayMode();
  checkRenderFlags();
  if (!rc || !rc->getRenderer() || !isActive()) {
    SG::node::render(rc);
    return;
  }
  device = rc->getRenderer();
  RENDERING::transformState state(getTransformMatrix());
  rc->getTransformStack()->push(&state, true);
  RENDERING::RENDERSTATE::renderStateStack* states = rc->getRenderStateStack();
  states->pushState(RS::CULL_STATE, &cull, true);
  states->pushState(RS::COLOR_MATERIAL_STATE, &colorMaterial, true);
  const bool seeThrough = transparent || xRay;
  if (seeThrough) {
    seeThroughDepth.writeEnable = false;
    states->pushState(RS::BLEND_STATE, &blend, true);
    states->pushState(RS::ZBUFFER_STATE, &seeThroughDepth, true);
  }
  {
    drawLock hold(renderMutex());
    if (mesh.renderChunksDiscardPending || mesh.renderChunksDeletePending) discardRenderChunks();
    if (transparent) meshDepthOrdering(rc);
    if (mesh.surfaceDrawing) renderChunks(rc);
    if (mesh.wireframeDrawing) renderWireFrame(rc);
    if (mesh.pointDrawing) renderPoints(rc);
  }
  if (seeThrough) {
    states->popState(RS::ZBUFFER_STATE, true);
    states->popState(RS::BLEND_STATE, true);
  }
  states->popState(RS::COLOR_MATERIAL_STATE, true);
  states->popState(RS::CULL_STATE, true);
  rc->getTransformStack()->pop(true);
  SG::node::render(rc);
}

void editMeshNode::renderChunks(RENDERING::renderingContext* rc) {
  RENDERING::renderer* r = rc->getRenderer();
  const bool facesValid =
      mesh.smoothShadingDrawing ? mesh.smoothFaceRenderStateValid : mesh.flatFaceRenderStateValid;
  const bool hiding = mesh.hideSelected || mesh.hideUnselected;
  const bool selectionStale = !mesh.selectionRenderStateValid || mesh.faceSelectionChanged;
  if (!facesValid || mesh.renderChunks.empty() || (hiding && selectionStale))
    INTERNAL::buildFaceChunks(mesh, r, cacheCounts);
  else
    INTERNAL::refreshFaceColors(mesh, r, selectionStale, cacheCounts);
  INTERNAL::drawChunks(mesh.renderChunks, r, RENDERING::renderer::DRAW_TRIANGLES);
}

void editMeshNode::renderWireFrame(RENDERING::renderingContext* rc) {
  if (!mesh.edgeRenderStateValid || mesh.edgeChunks.empty())
    INTERNAL::buildEdgeChunks(mesh, rc->getRenderer(), cacheCounts);
  renderUnlit(rc, mesh.edgeChunks, RENDERING::renderer::DRAW_LINES, nullptr);
}

void editMeshNode::renderPoints(RENDERING::renderingContext* rc) {
  if (!mesh.vertexRenderStateValid || mesh.vertChunks.empty())
    INTERNAL::buildPointChunks(mesh, rc->getRenderer(), cacheCounts);
  renderUnlit(rc, mesh.vertChunks, RENDERING::renderer::DRAW_POINTS, &pointSize);
}

void editMeshNode::renderUnlit(RENDERING::renderingContext* rc,
                               const std::vector<renderChunk*>& chunks, int mode,
                               RENDERING::RENDERSTATE::pointSizestate* size) {
  RENDERING::RENDERSTATE::renderStateStack* states = rc->getRenderStateStack();
  states->pushState(RS::LIGHTING_STATE, &unlit, true);
  if (size) states->pushState(RS::POINT_SIZE_STATE, size, true);
  INTERNAL::drawChunks(chunks, rc->getRenderer(), mode);
  if (size) states->popState(RS::POINT_SIZE_STATE, true);
  states->popState(RS::LIGHTING_STATE, true);
}

void editMeshNode::meshDepthOrdering(RENDERING::renderingContext* rc) {
  // Farthest chunk first, by the view depth of its first vertex's position.
  const MATH::matrix4<float> toWorld = rc->getTransformStack()->getCurrentMatrix();
  const MATH::matrix4<float>& view = rc->getRenderer()->getCurrentCameraState().view.cV();
  std::vector<std::pair<float, renderChunk*>> order;
  for (renderChunk* c : mesh.renderChunks) {
    float depth = 0.f;
    if (!c->items.empty() && mesh.fVNum(c->items.front()) > 0)
      depth = (mesh.vPos(mesh.fV(c->items.front(), 0)) * toWorld * view).z;
    order.emplace_back(depth, c);
  }
  std::stable_sort(order.begin(), order.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (size_t i = 0; i < order.size(); ++i) mesh.renderChunks[i] = order[i].second;
  for (size_t i = 0; i < mesh.renderChunks.size(); ++i)
    for (unsigned int f : mesh.renderChunks[i]->items) mesh.F(f).chunkId = uint16_t(i);
}

void editMeshNode::discardRenderChunks() {
  INTERNAL::releaseChunks(mesh, device.load(), true);
  mesh.renderChunksDiscardPending = false;
  mesh.renderChunksDeletePending = false;
  mesh.invalidateRenderData();
}

void editMeshNode::discard() {
  drawLock hold(renderMutex());
  INTERNAL::releaseChunks(mesh, device.load(), false);
  mesh.invalidateRenderData();
}

void editMeshNode::invalidateRenderData() {
  drawLock hold(renderMutex());
  mesh.invalidateRenderData();
}

void editMeshNode::adoptMesh(editMesh& built) {
  built.checkMeshState();
  built.computeEdges(true);
  built.computeVE();
  built.computeNormalizedNormals();
  built.computeBBox();
  {
    drawLock hold(renderMutex());
    INTERNAL::releaseChunks(mesh, device.load(), false);
    mesh = built;
    mesh.invalidateRenderData();
  }
}

// Picking

bool editMeshNode::getRayIntersect(const p3& origin, const p3& direction, MATH::rayHit& hit,
                                   p3& point) {
  if (!mesh.getFABBTree()) mesh.computeFABBTree(8);
  const auto* tree = mesh.getFABBTree();
  if (!tree) return false;
  // The inverse is kept while the matrix stays: picking runs ray after ray.
  if (std::memcmp(&pickMatrix, &getTransformMatrix(), sizeof pickMatrix) != 0 ||
      !pickInverseValid) {
    pickMatrix = getTransformMatrix();
    pickInverse = pickMatrix.getInverse();
    pickInverseValid = true;
  }
  const MATH::matrix4<float>& toObject = pickInverse;
  const p3 o = origin * toObject;
  const MATH::point4<float> d4 =
      MATH::point4<float>(direction.x, direction.y, direction.z, 0.f) * toObject;
  const p3 d(d4.x, d4.y, d4.z);
  if (!tree->firstHit(o, d, std::numeric_limits<float>::max(), hit)) return false;
  point = (o + d * hit.t) * getTransformMatrix();
  return true;
}

bool editMeshNode::pickRay(RENDERING::renderingContext* rc, int x, int y, MATH::rayHit& hit,
                           p3& point) {
  if (!rc || !rc->getRenderer()) return false;
  RENDERING::renderer* r = rc->getRenderer();
  const RENDERING::transformState world;
  p3 origin, direction;
  if (!RENDERING::renderer::pickRay(x, y, world, r->getCurrentCameraState(),
                                    r->getCurrentViewportState(), origin, direction))
    return false;
  return getRayIntersect(origin, direction, hit, point);
}

namespace {

// Window rectangle tests of object points under the device's camera and viewport.
class windowRect {
 public:
  windowRect(RENDERING::renderer* r, const MATH::matrix4<float>& placed, int x0, int y0, int x1,
             int y1)
      : device(r),
        transform(placed),
        lowX(float(std::min(x0, x1))),
        highX(float(std::max(x0, x1))),
        lowY(float(std::min(y0, y1))),
        highY(float(std::max(y0, y1))) {}
  bool contains(const p3& object) const {
    p3 window;
    if (!RENDERING::renderer::project(object, transform, device->getCurrentCameraState(),
                                      device->getCurrentViewportState(), window))
      return false;
    return window.x >= lowX && window.x <= highX && window.y >= lowY && window.y <= highY;
  }

 private:
  RENDERING::renderer* device;
  const RENDERING::transformState transform;
  float lowX, highX, lowY, highY;
};

}  // namespace

unsigned int editMeshNode::selectFaceWithRect2D(RENDERING::renderingContext* rc, int x0, int y0,
                                                int x1, int y1, bool select) {
  if (!rc || !rc->getRenderer()) return 0;
  const windowRect rect(rc->getRenderer(), getTransformMatrix(), x0, y0, x1, y1);
  unsigned int changed = 0;
  for (unsigned int f = 0; f < mesh.fn(); ++f) {
    if (mesh.isFaceDeleted(f) || mesh.fVNum(f) == 0 || mesh.isFaceSelected(f) == select) continue;
    p3 centre(0.f, 0.f, 0.f);
    for (unsigned int i = 0; i < mesh.fVNum(f); ++i) centre = centre + mesh.F2VPOS(f, i);
    if (!rect.contains(centre / float(mesh.fVNum(f)))) continue;
    select ? selectFace(f) : deselectFace(f);
    ++changed;
  }
  return changed;
}

unsigned int editMeshNode::selectVertWithRect2D(RENDERING::renderingContext* rc, int x0, int y0,
                                                int x1, int y1, bool select) {
  if (!rc || !rc->getRenderer()) return 0;
  const windowRect rect(rc->getRenderer(), getTransformMatrix(), x0, y0, x1, y1);
  unsigned int changed = 0;
  for (unsigned int v = 0; v < mesh.vn(); ++v) {
    if (mesh.isVertDeleted(v) || mesh.isVertSelected(v) == select || !rect.contains(mesh.vPos(v)))
      continue;
    select ? selectVert(v) : deselectVert(v);
    ++changed;
  }
  return changed;
}

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
