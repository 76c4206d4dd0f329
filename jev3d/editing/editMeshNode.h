#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "jev3d/editing/editableObject.h"
#include "jev3d/editing/meshInterfaceDLL.h"
#include "jev3d/fields/fieldBase.h"
#include "jev3d/math/triangleTree.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/renderer/renderstate/blendstate.h"
#include "jev3d/renderer/renderstate/colorMaterialstate.h"
#include "jev3d/renderer/renderstate/cullstate.h"
#include "jev3d/renderer/renderstate/lightingstate.h"
#include "jev3d/renderer/renderstate/pointSizestate.h"
#include "jev3d/renderer/renderstate/zbufferstate.h"
#include "jev3d/system/color.h"
#include "jev3d/system/mutex.h"

namespace JEV {
namespace RENDERING {
class renderer;
}
namespace MESH {
class renderChunk;
namespace EDITING {

enum EDIT_MESH_DISPLAY_MODE : unsigned int {
  EDIT_MESH_DISPLAY_OBJECT = 0,
  EDIT_MESH_DISPLAY_FACE = 1,
  EDIT_MESH_DISPLAY_VERTEX = 2,
  EDIT_MESH_DISPLAY_EDGE = 3,
};

// Chunks the render cache has built since the node was made, by kind; a colour refresh
// rewrites one stream of a face chunk.
struct renderCacheCounts {
  unsigned int faceChunks = 0;
  unsigned int colorChunks = 0;
  unsigned int edgeChunks = 0;
  unsigned int pointChunks = 0;
};

// An editable mesh standing in the scene: a scene node with a transform that embeds one
// editMesh and shows it through the neutral mesh interface too. It draws the mesh in one
// of four display modes from a render cache of chunks, rebuilt only for what the mesh's
// stale flags say changed. Drawing runs under the node's mutex, and so do discard and
// invalidateRenderData, which may therefore run on another thread while a frame draws.
class editMeshNode : public editableObject, public meshInterfaceDLL {
 public:
  // Render-flag bits.
  static constexpr uint32_t POINT_DRAWING = 0x04;
  static constexpr uint32_t WIREFRAME_DRAWING = 0x02;

  // With a renderer, render data freed from another thread reaches that renderer's
  // discard lists before the node has drawn once.
  explicit editMeshNode(RENDERING::renderer* device = nullptr);
  // A deep copy of the mesh and the display choices; no links, id, delegates or render
  // cache.
  editMeshNode(const editMeshNode& other);
  editMeshNode& operator=(const editMeshNode& other);
  ~editMeshNode() override;
  editMeshNode* clone() const { return new editMeshNode(*this); }

  editMesh& getEditMesh() { return mesh; }
  const editMesh& getEditMesh() const { return mesh; }
  void setMeshName(const std::wstring& n) { meshName = n; }
  const std::wstring& getMeshName() const { return meshName; }

  // Forwards to the embedded mesh; the selection calls also mark what must be recoloured.
  void selectFace(unsigned int f);
  void deselectFace(unsigned int f);
  void selectVert(unsigned int v);
  void deselectVert(unsigned int v);
  unsigned int getSelFn() const { return mesh.getSelFn(); }
  void computeBBox() { mesh.computeBBox(); }
  void computeVABBTree(unsigned int leafSize = 8) { mesh.computeVABBTree(leafSize); }
  void computeFABBTree(unsigned int leafSize = 8) { mesh.computeFABBTree(leafSize); }
  void reverseFaceOrder() {
    mesh.reverseFaceOrder();
    invalidateRenderData();
  }
  // Tells the node which faces an edit changed: their render data and edge flags go stale.
  void updateFaces(const std::vector<unsigned int>& faces);
  // Applies m to every vertex (normals by its rotation) and marks the geometry stale.
  void transform(const MATH::matrix4<float>& m);

  // Display
  void enableObjectModeDisplay();
  void enableFaceModeDisplay();
  void enableVertexModeDisplay();
  void enableEdgeModeDisplay();
  EDIT_MESH_DISPLAY_MODE getDisplayMode() const { return displayMode; }
  // Smooth (vertex normals) or flat (face normals) shading.
  void setSurfaceDisplayMode(bool smooth);
  // Turn a kind of drawing on or off now, and keep the choice for the current mode.
  void enableWireframeDisplay(bool on);
  void enablePointDisplay(bool on);
  // Surface drawn see-through and depth-sorted by chunk; X-ray draws the wire over it.
  void activateXRayMode(bool on) { xRay = on; }
  void activateTransparentMode(bool on) { transparent = on; }
  void activateCulling(bool on) { cull.enable = on; }
  uint32_t getRenderFlags() const { return renderFlags; }
  // The choices kept for face mode (wire, points), vertex mode (wire) and edge mode
  // (points).
  bool faceModeWireframe = false;
  bool faceModePoints = false;
  bool vertexModeWireframe = false;
  bool edgeModePoints = false;

  // The object-mode edge colour, read into the mesh at each frame.
  SYSTEM::fieldBase<CORE::color> color{CORE::color::fromU32(0xFF7FFF7Fu)};
  // Passed on to the mesh when written.
  SYSTEM::fieldBase<CORE::color> faceSelectionColor;
  void setFaceSelectionColor(const CORE::color& c) { faceSelectionColor = c; }

  // Drawing: the order is fixed (display mode, render flags, transform and states, the
  // mutex, the chunks, release, children).
  void render(RENDERING::renderingContext* rc) override;
  // Frees the render data (from any thread) under the mutex.
  void discard();
  // Marks every piece of render data stale, under the mutex.
  void invalidateRenderData();
  // Ask the drawing thread to free the chunks at its next frame.
  void needDiscardRenderChunks() { mesh.needDiscardRenderChunks(); }
  void needDeleteRenderChunks() { mesh.needDeleteRenderChunks(); }
  bool hasRenderMutex() const { return drawMutex.load() != nullptr; }
  const renderCacheCounts& getRenderCacheCounts() const { return cacheCounts; }

  // Picking, in world space (the node's transform is undone first). The face index is
  // built when stale.
  bool getRayIntersect(const MATH::point3<float>& origin, const MATH::point3<float>& direction,
                       MATH::rayHit& hit, MATH::point3<float>& point);
  // The ray through window pixel (x, y) under rc's camera; false when nothing is hit.
  bool pickRay(RENDERING::renderingContext* rc, int x, int y, MATH::rayHit& hit,
               MATH::point3<float>& point);
  // Selects (or deselects) the live faces whose centroid projects inside the window
  // rectangle; returns how many changed.
  unsigned int selectFaceWithRect2D(RENDERING::renderingContext* rc, int x0, int y0, int x1, int y1,
                                    bool select = true);
  // The same for live vertices.
  unsigned int selectVertWithRect2D(RENDERING::renderingContext* rc, int x0, int y0, int x1, int y1,
                                    bool select = true);

  // Measures and cleaning, forwarded to the algorithms
  unsigned int removeDegenerateFace();
  unsigned int removeIsolatePieces(unsigned int minFaces, SYSTEM::callBack* cb = nullptr);
  unsigned int decimate(unsigned int targetFaces, SYSTEM::callBack* cb = nullptr);
  // Closes the border loops of at most maxSize vertices (0: every loop): ear cutting, then
  // refinement and fairing into the surface unless triangulateOnly. The mesh becomes
  // triangles; false, leaving it as it was, when its border cannot be walked.
  bool holeFilling(unsigned int maxSize = 0, bool triangulateOnly = false,
                   SYSTEM::callBack* cb = nullptr);
  void laplacianSmoothing(unsigned int iterations, bool smoothBorder,
                          SYSTEM::callBack* cb = nullptr);

  // Files. Reads replace the mesh only on success (false leaves it as it was). STL
  // vertices are welded where positions are bit-identical. load and save choose the
  // format by the suffix (".ply", ".stl", else Em2).
  bool readPlyFromFile(const std::wstring& name, SYSTEM::callBack* cb = nullptr);
  bool writePlyToFile(const std::wstring& name, bool binary = true,
                      SYSTEM::callBack* cb = nullptr) const;
  bool readStlFromFile(const std::wstring& name, SYSTEM::callBack* cb = nullptr);
  bool writeStlToFile(const std::wstring& name, bool binary = true,
                      SYSTEM::callBack* cb = nullptr) const;
  bool readEm2FromFile(const std::wstring& name);
  bool writeEm2ToFile(const std::wstring& name) const;
  bool load(const std::wstring& name, SYSTEM::callBack* cb = nullptr);
  bool save(const std::wstring& name, SYSTEM::callBack* cb = nullptr) const;
  bool load(const std::string& name, SYSTEM::callBack* cb = nullptr);
  bool save(const std::string& name, SYSTEM::callBack* cb = nullptr) const;

  // Factories: each replaces the mesh and returns false when given too little.
  // A polygon on the points, closed or not.
  bool makeMeshFromPolyline(const std::vector<MATH::point3<float>>& points);
  // Vertices only.
  bool makeMeshFromPoints(const std::vector<MATH::point3<float>>& points);
  // The selected faces of src with their vertices.
  bool makeMeshFromSelectedVertex(const editMeshNode& src);
  // The box as six quads wound outward.
  bool makeMeshFromAxisAlignedBox3f(const MATH::point3<float>& low,
                                    const MATH::point3<float>& high);

 private:
  void checkDisplayMode();
  void checkRenderFlags();
  void setDrawingBit(uint32_t bit, bool on);
  void renderChunks(RENDERING::renderingContext* rc);
  void renderWireFrame(RENDERING::renderingContext* rc);
  void renderPoints(RENDERING::renderingContext* rc);
  // Lines or points, unlit, with the point size when given.
  void renderUnlit(RENDERING::renderingContext* rc, const std::vector<renderChunk*>& chunks,
                   int mode, RENDERING::RENDERSTATE::pointSizestate* size);
  void meshDepthOrdering(RENDERING::renderingContext* rc);
  void discardRenderChunks();
  // The drawing mutex, made on first use by whichever side comes first.
  SYSTEM::mutex& renderMutex();
  void faceSelectionColorValueChangeDelegate();
  // Replaces the mesh by a finished copy (edges, VE, normals, box) and drops the cache.
  void adoptMesh(editMesh& built);

  editMesh mesh;
  std::wstring meshName;
  EDIT_MESH_DISPLAY_MODE displayMode = EDIT_MESH_DISPLAY_OBJECT;
  std::atomic<SYSTEM::mutex*> drawMutex{nullptr};

  uint32_t renderFlags = 0;
  bool xRay = false;
  bool transparent = false;
  std::atomic<RENDERING::renderer*> device{nullptr};
  renderCacheCounts cacheCounts;
  MATH::matrix4<float> pickMatrix, pickInverse;
  bool pickInverseValid = false;
  CORE::color builtEdgeColor;
  RENDERING::RENDERSTATE::cullstate cull;
  RENDERING::RENDERSTATE::colorMaterialstate colorMaterial;
  RENDERING::RENDERSTATE::blendstate blend{
      true, RENDERING::RENDERSTATE::renderStateEnums::SRC_SRC_ALPHA,
      RENDERING::RENDERSTATE::renderStateEnums::DST_ONE_MINUS_SRC_ALPHA};
  RENDERING::RENDERSTATE::zbufferstate seeThroughDepth;
  RENDERING::RENDERSTATE::lightingstate unlit{false, false};
  RENDERING::RENDERSTATE::pointSizestate pointSize{4.f};
};

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
