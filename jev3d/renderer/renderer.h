#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "jev3d/math/matrix4.h"
#include "jev3d/math/point3.h"
#include "jev3d/math/point4.h"
#include "jev3d/platform/platform.h"
#include "jev3d/renderer/renderstate/renderStateEnums.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace GUI {
class font;
}
namespace TEXTURE {
class texture;
class texture3D;
}  // namespace TEXTURE
namespace RENDERING {

class renderingContext;
class renderTarget;
class cameraState;
class transformState;
class vertexDeclaration;
class vertexBuffer;
class indexBuffer;
class depthOrderingVector;
class renderableMesh;
struct meshMaterialStruct;
namespace INSTANCING {
class textureInstance;
class renderTargetInstance;
}  // namespace INSTANCING
namespace RENDERSTATE {
class alphastate;
class blendstate;
class clipPlanestate;
class colorbufferstate;
class colorMaterialstate;
class cullstate;
class fogState;
class lightingstate;
class lightstate;
class materialstate;
class pointSizestate;
class scissorstate;
class viewportstate;
class wireframestate;
class zbufferstate;
}  // namespace RENDERSTATE

// The abstract device through which everything that draws reaches the graphics API. One
// renderer serves one window; all of its operations belong to the thread that draws.
class renderer {
 public:
  enum VERTEXPROCESSING_TYPE {
    VERTEXPROCESSING_DEVICE = 0,  // buffers held by the device
    VERTEXPROCESSING_CLIENT = 1   // buffers held in client memory
  };
  enum MULTISAMPLE_TYPE {
    MULTISAMPLE_NONE = 0,
    MULTISAMPLE_2 = 2,
    MULTISAMPLE_4 = 4,
    MULTISAMPLE_8 = 8,
    MULTISAMPLE_16 = 16
  };
  enum DRAW_MODE {
    DRAW_POINTS = 0,
    DRAW_LINES = 1,
    DRAW_LINE_STRIP = 2,
    DRAW_TRIANGLES = 3,
    DRAW_TRIANGLE_STRIP = 4,
    DRAW_TRIANGLE_FAN = 5
  };
  enum depthOrderingType {
    DEPTH_ORDERING_FIRST = 0,
    DEPTH_ORDERING_LAST = 1,
    DEPTH_ORDERING_SORTED = 0x7FFFFFFF
  };
  // Formats and types of readPixels, indices into the back end's tables.
  enum PIXELDATA_TYPE {
    PIXELDATA_COLOR_INDEX,
    PIXELDATA_STENCIL,
    PIXELDATA_DEPTH,
    PIXELDATA_RED,
    PIXELDATA_GREEN,
    PIXELDATA_BLUE,
    PIXELDATA_ALPHA,
    PIXELDATA_RGB,
    PIXELDATA_RGBA,
    PIXELDATA_LUMINANCE,
    PIXELDATA_LUMINANCE_ALPHA,
    PIXELDATA_BGR
  };
  enum DATA_TYPE {
    DATA_UNSIGNED_BYTE,
    DATA_BYTE,
    DATA_BITMAP,
    DATA_UNSIGNED_SHORT,
    DATA_SHORT,
    DATA_UNSIGNED_INT,
    DATA_INT,
    DATA_FLOAT
  };

  using LIGHT_SOURCE = RENDERSTATE::renderStateEnums::LIGHT_SOURCE;
  using TEXTURE_ACTIVE = RENDERSTATE::renderStateEnums::TEXTURE_ACTIVE;
  using CLIP_PLANE = RENDERSTATE::renderStateEnums::CLIP_PLANE;

  renderer() = default;
  virtual ~renderer() = default;
  renderer(const renderer&) = delete;
  renderer& operator=(const renderer&) = delete;

  // Reads a rectangle of the frame being drawn (origin bottom left) into `data`, which
  // must hold it; call it before swapBuffers. False without a context or for a format
  // outside the tables.
  virtual bool readPixels(int x, int y, int width, int height, PIXELDATA_TYPE format,
                          DATA_TYPE type, void* data) = 0;
  // Makes the window's context and makes it current. False on a null handle or any
  // failure. `recreate` comes back true when the window cannot take the context and must
  // be made anew; it stays false on platforms that choose the format per window.
  virtual bool createContext(PLATFORM::windowHandle window, bool& recreate) = 0;
  // Makes this renderer's context current on the calling thread. Unless `force`, it costs
  // nothing when the context is current already.
  virtual bool makeCurrentContext(bool force) = 0;
  // Deletes the context; the renderer can make a new one afterwards.
  virtual bool deleteContext() = 0;
  // Shows the frame drawn and zeroes the frame counter.
  virtual bool swapBuffers() = 0;
  // The window the context draws into, 0 before createContext.
  virtual PLATFORM::windowHandle getDC() const = 0;
  virtual int getMaxTextureSize() = 0;
  virtual int getMaxTextureUnits() = 0;
  virtual int getMaxLight() = 0;
  virtual VERTEXPROCESSING_TYPE getVertexProcessingType() = 0;
  virtual VERTEXPROCESSING_TYPE getCurrentVertexProcessingType() const = 0;
  virtual MULTISAMPLE_TYPE getMaxMultiSampleType() = 0;
  virtual MULTISAMPLE_TYPE getCurrentMultiSampleType() const = 0;
  virtual bool getTextureNonPowerOfTwo() const = 0;
  virtual const std::wstring& getRendererName() const = 0;
  virtual int getRendererKind() const = 0;
  virtual bool isSupportRenderTargetOnTexture() = 0;
  // Takes effect for buffers cached afterwards; false for a kind the device lacks.
  virtual bool setCurrentVertexProcessingType(VERTEXPROCESSING_TYPE type) = 0;
  // Takes effect at the next createContext; false above getMaxMultiSampleType.
  virtual bool setCurrentMultiSampleType(MULTISAMPLE_TYPE type) = 0;
  virtual bool cacheRenderTargetOnTexture(renderTarget* target) = 0;
  virtual bool isCachedRenderTargetOnTexture(const renderTarget* target) const = 0;
  virtual bool discardRenderTargetOnTexture(renderTarget* target) = 0;
  // Clears what the target says it clears, in the target's own colour.
  virtual bool clear(INSTANCING::renderTargetInstance& target) = 0;
  // Takes the window's size from the context after a resize.
  virtual bool resetDevice(renderingContext* context) = 0;
  // Draws into the target from now on: the window for a target of window kind.
  virtual bool beginScene(INSTANCING::renderTargetInstance& target) = 0;
  virtual bool endScene() = 0;

  // One setter a state: the device takes the state's values and keeps a copy of them,
  // which the matching getter returns.
  virtual bool setAlphaState(RENDERSTATE::alphastate& state) = 0;
  virtual bool setClipPlaneState(RENDERSTATE::clipPlanestate& state) = 0;
  virtual bool setBlendState(RENDERSTATE::blendstate& state) = 0;
  virtual bool setCullState(RENDERSTATE::cullstate& state) = 0;
  virtual bool setLightingState(RENDERSTATE::lightingstate& state) = 0;
  virtual bool setLightState(RENDERSTATE::lightstate& state) = 0;
  virtual bool setColorMaterialState(RENDERSTATE::colorMaterialstate& state) = 0;
  virtual bool setMaterialState(RENDERSTATE::materialstate& state) = 0;
  virtual bool setTextureState(INSTANCING::textureInstance& state) = 0;
  virtual bool setTexture3DState(INSTANCING::textureInstance& state) = 0;
  virtual bool setZbufferState(RENDERSTATE::zbufferstate& state) = 0;
  virtual bool setColorBufferState(RENDERSTATE::colorbufferstate& state) = 0;
  virtual bool setViewportState(RENDERSTATE::viewportstate& state) = 0;
  virtual bool setScissorState(RENDERSTATE::scissorstate& state) = 0;
  virtual bool setWireFrameState(RENDERSTATE::wireframestate& state) = 0;
  virtual bool setPointSizeState(RENDERSTATE::pointSizestate& state) = 0;
  virtual bool setFogState(RENDERSTATE::fogState& state) = 0;

  virtual const RENDERSTATE::alphastate& getCurrentAlphaState() const = 0;
  // Spelled with the doubled word on purpose: callers know it by this name.
  virtual const RENDERSTATE::clipPlanestate& getCurrentClipPlaneStateState(
      CLIP_PLANE plane) const = 0;
  virtual const RENDERSTATE::blendstate& getCurrentBlendState() const = 0;
  virtual const RENDERSTATE::cullstate& getCurrentCullState() const = 0;
  virtual const RENDERSTATE::lightingstate& getCurrentLightingState() const = 0;
  virtual const RENDERSTATE::lightstate& getCurrentLightState(LIGHT_SOURCE light) const = 0;
  virtual const RENDERSTATE::colorMaterialstate& getCurrentColorMaterialState() const = 0;
  virtual const RENDERSTATE::materialstate& getCurrentMaterialState() const = 0;
  // The instance last set on the unit, or null.
  virtual INSTANCING::textureInstance* getCurrentTextureState(TEXTURE_ACTIVE unit) const = 0;
  virtual const RENDERSTATE::zbufferstate& getCurrentZbufferState() const = 0;
  virtual const RENDERSTATE::colorbufferstate& getCurrentColorBufferState() const = 0;
  virtual const RENDERSTATE::viewportstate& getCurrentViewportState() const = 0;
  virtual const RENDERSTATE::scissorstate& getCurrentScissorState() const = 0;
  virtual const RENDERSTATE::wireframestate& getCurrentWireFrameState() const = 0;
  virtual const RENDERSTATE::pointSizestate& getCurrentPointSizeState() const = 0;
  virtual const RENDERSTATE::fogState& getCurrentFogState() const = 0;
  // The target last begun, or null.
  virtual INSTANCING::renderTargetInstance* getCurrentRenderTargetState() const = 0;

  virtual bool createFont(GUI::font* font) = 0;
  virtual bool cacheFont(GUI::font* font) = 0;
  virtual bool isCachedFont(const GUI::font* font) const = 0;
  virtual bool discardFont(GUI::font* font) = 0;
  // The size in pixels of `text` drawn in `font`; false when the font is not cached.
  virtual bool getFontBox(GUI::font* font, const std::wstring& text, int& width, int& height) = 0;
  virtual int getFontMaxHeight(GUI::font* font) = 0;
  // Draws `text` with its baseline's left end at window pixel (x, y).
  virtual bool renderText(GUI::font* font, const std::wstring& text, int x, int y,
                          CORE::color colour) = 0;

  virtual bool setCameraState(const MATH::matrix4<float>& projection,
                              const MATH::matrix4<float>& view) = 0;
  virtual const cameraState& getCurrentCameraState() const = 0;
  virtual bool setTransformState(const MATH::matrix4<float>& matrix) = 0;
  virtual const transformState& getCurrentTransformState() const = 0;
  // Recomputes the six planes of the view volume from the current camera and transform.
  virtual bool updateFrustum() = 0;
  // Plane `index` (0 to 5) as (a, b, c, d) with ax + by + cz + d >= 0 inside.
  virtual MATH::point4<float> getFrustumPlane(int index) const = 0;

  virtual bool cacheTexture(TEXTURE::texture* texture) = 0;
  virtual bool cacheTexture3D(TEXTURE::texture3D* texture) = 0;
  // Replaces the device copy's pixels by `pixels`, or by the texture's own data.
  virtual bool updateTexture(TEXTURE::texture* texture, const void* pixels) = 0;
  virtual bool updateTexture(TEXTURE::texture* texture) = 0;
  virtual bool discardTexture(TEXTURE::texture* texture) = 0;
  virtual bool discardTexture3D(TEXTURE::texture3D* texture) = 0;

  // The point on the window (x, y, depth in 0..1) of the object point `object` under the
  // device's current transform, camera and viewport.
  bool project(const MATH::point3<float>& object, MATH::point3<float>& window);
  // The object point of window point (x, y, depth in 0..1).
  bool unproject(const MATH::point3<float>& window, MATH::point3<float>& object);
  // The ray through window pixel (x, y), relative to the viewport: its origin on the near
  // plane and its unit direction.
  bool pickRay(int x, int y, MATH::point3<float>& origin, MATH::point3<float>& direction);
  // The same from given states. False when the matrices cannot be inverted or the
  // viewport is empty; the outputs are then left alone.
  static bool project(const MATH::point3<float>& object, const MATH::matrix4<float>& modelView,
                      const MATH::matrix4<float>& projection, const int viewport[4],
                      MATH::point3<float>& window);
  static bool unproject(const MATH::point3<float>& window, const MATH::matrix4<float>& modelView,
                        const MATH::matrix4<float>& projection, const int viewport[4],
                        MATH::point3<float>& object);
  static bool pickRay(int x, int y, const MATH::matrix4<float>& modelView,
                      const MATH::matrix4<float>& projection, const int viewport[4],
                      MATH::point3<float>& origin, MATH::point3<float>& direction);
  static bool project(const MATH::point3<float>& object, const transformState& transform,
                      const cameraState& camera, const RENDERSTATE::viewportstate& viewport,
                      MATH::point3<float>& window);
  static bool unproject(const MATH::point3<float>& window, const transformState& transform,
                        const cameraState& camera, const RENDERSTATE::viewportstate& viewport,
                        MATH::point3<float>& object);
  static bool pickRay(int x, int y, const transformState& transform, const cameraState& camera,
                      const RENDERSTATE::viewportstate& viewport, MATH::point3<float>& origin,
                      MATH::point3<float>& direction);

  // Vertex data: components are vertexDeclaration::VERTEX_COMPONENTS bits.
  virtual bool cacheVertexDeclaration(vertexDeclaration* declaration) = 0;
  virtual bool cacheIndexBuffer(indexBuffer* buffer, const unsigned short* indices,
                                unsigned count) = 0;
  virtual bool cacheIndexBuffer(indexBuffer* buffer, const unsigned* indices, unsigned count) = 0;
  // Caches one stream of `buffer`: `count` elements of the component's size.
  virtual bool cacheVertexBufferElement(vertexBuffer* buffer, unsigned component, const void* data,
                                        unsigned count) = 0;
  virtual bool isCachedVertexBuffer(const vertexBuffer* buffer) const = 0;
  virtual bool isCachedVertexBufferElement(const vertexBuffer* buffer,
                                           unsigned component) const = 0;
  virtual bool isCachedIndexBuffer(const indexBuffer* buffer) const = 0;
  // Maps one stream for writing; unlock before drawing with it.
  virtual bool lockVertexBufferElement(vertexBuffer* buffer, unsigned component, void*& data) = 0;
  virtual bool unlockVertexBufferElement(vertexBuffer* buffer, unsigned component) = 0;
  virtual bool discardIndexBuffer(indexBuffer* buffer) = 0;
  virtual bool discardVertexBuffer(vertexBuffer* buffer) = 0;
  virtual bool discardVertexBufferElement(vertexBuffer* buffer, unsigned component) = 0;
  virtual bool renderGeometry(DRAW_MODE mode, vertexBuffer* buffer, unsigned first,
                              unsigned count) = 0;
  // One draw a range of (first index, index count).
  virtual bool renderIndexedGeometry(DRAW_MODE mode, vertexBuffer* buffer, indexBuffer* indices,
                                     const std::vector<std::pair<unsigned, unsigned>>& ranges) = 0;
  virtual bool renderIndexedGeometry(DRAW_MODE mode, vertexBuffer* buffer, indexBuffer* indices,
                                     unsigned first, unsigned count) = 0;
  virtual bool setVertexDeclaration(vertexDeclaration* declaration) = 0;
  virtual bool setVertexBuffer(vertexBuffer* buffer) = 0;
  virtual bool setIndexBuffer(indexBuffer* buffer) = 0;
  // Draws `count` vertices from `first` of what setVertexDeclaration and setVertexBuffer
  // chose.
  virtual bool draw(DRAW_MODE mode, unsigned first, unsigned count) = 0;

  // Sets the device's fixed state after the context is made.
  virtual bool init() = 0;
  // Hand device names over for deletion at the head of the next frame; safe from any
  // thread. The vector is emptied.
  virtual void addTextureToDiscardList(std::vector<unsigned>& names) = 0;
  virtual void addTextureToDiscardList3D(std::vector<unsigned>& names) = 0;
  virtual void addVertexBufferToDiscardList(std::vector<unsigned>& names) = 0;
  virtual void addIndexBufferToDiscardList(std::vector<unsigned>& names) = 0;
  virtual void addFontToDiscardList(std::vector<unsigned>& names) = 0;
  // Deletes, on the drawing thread, what other threads gave up since the last frame.
  virtual bool emptyDiscardList() = 0;

  // Depth ordering of meshes drawn with blending; see depthOrderingVector. Each form
  // appends one item and computes its reference point; a missing material is a default
  // one.
  void insertToDepthOrdering(renderingContext* context, depthOrderingVector& ordering,
                             const transformState& transform, renderableMesh* mesh,
                             depthOrderingType type);
  void insertToDepthOrdering(renderingContext* context, depthOrderingVector& ordering,
                             const transformState& transform, renderableMesh* mesh,
                             bool useMaterial, depthOrderingType type);
  void insertToDepthOrdering(renderingContext* context, depthOrderingVector& ordering,
                             const transformState& transform, renderableMesh* mesh,
                             bool useMaterial, const meshMaterialStruct& material,
                             depthOrderingType type);
  void insertToDepthOrdering(renderingContext* context, depthOrderingVector& ordering,
                             const transformState& transform, std::vector<renderableMesh*>& meshes,
                             const std::vector<bool>& useMaterial, depthOrderingType type);
  void insertToDepthOrdering(renderingContext* context, depthOrderingVector& ordering,
                             const transformState& transform, std::vector<renderableMesh*>& meshes,
                             const std::vector<bool>& useMaterial,
                             const std::vector<meshMaterialStruct>& materials,
                             depthOrderingType type);
  // True when a material of an item has a front diffuse alpha other than 255.
  bool useBlendDepthOrdering(depthOrderingVector& ordering) const;
  // Draws the items of type first, then the sorted pass (farthest first when `sort`,
  // insertion order otherwise), then the items of type last. Other types are not drawn.
  void renderDepthOrdering(renderingContext* context, depthOrderingVector& ordering, bool sort);

  float getPointSizeMin() const { return pointSizeMin; }
  float getPointSizeMax() const { return pointSizeMax; }
  uint32_t getTextureMemoryUsed() const { return textureMemoryUsed; }
  uint32_t getMemoryUsed() const { return textureMemoryUsed + bufferMemoryUsed; }
  uint32_t getFrameCounter() const { return frameCounter; }

 protected:
  float pointSizeMin = 1.0f;
  float pointSizeMax = 1.0f;
  uint32_t textureMemoryUsed = 0;
  uint32_t bufferMemoryUsed = 0;
  uint32_t frameCounter = 0;
};

}  // namespace RENDERING
}  // namespace JEV
