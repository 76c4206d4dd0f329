#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "jev3d/renderer/deviceStateCopies.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/system/mutex.h"

namespace JEV {
namespace CORE {
class deviceResource;
}
namespace RENDERING {

// The OpenGL back end: a compatibility context made through the platform, with the
// fixed-function pipeline, reached through GLEW.
class renderGL : public renderer {
 public:
  renderGL();
  ~renderGL() override;

  bool readPixels(int x, int y, int width, int height, PIXELDATA_TYPE format, DATA_TYPE type,
                  void* data) override;
  // Twice on one renderer returns true without a second context.
  bool createContext(PLATFORM::windowHandle window, bool& recreate) override;
  bool makeCurrentContext(bool force) override;
  bool deleteContext() override;
  bool swapBuffers() override;
  PLATFORM::windowHandle getDC() const override { return window; }
  int getMaxTextureSize() override;
  int getMaxTextureUnits() override;
  int getMaxLight() override;
  VERTEXPROCESSING_TYPE getVertexProcessingType() override;
  VERTEXPROCESSING_TYPE getCurrentVertexProcessingType() const override { return vertexProcessing; }
  // From the context's GL; without a context, what the last context answered.
  MULTISAMPLE_TYPE getMaxMultiSampleType() override;
  MULTISAMPLE_TYPE getCurrentMultiSampleType() const override { return multiSample; }
  bool getTextureNonPowerOfTwo() const override { return nonPowerOfTwo; }
  const std::wstring& getRendererName() const override { return name; }
  int getRendererKind() const override { return 0; }
  bool isSupportRenderTargetOnTexture() override;
  bool setCurrentVertexProcessingType(VERTEXPROCESSING_TYPE type) override;
  // The samples the next createContext asks for. Where the window system fixes a window's
  // drawable when the window is made, that window must have been made for them
  // (PLATFORM::windowDescriptor::samples); the context otherwise comes without them.
  bool setCurrentMultiSampleType(MULTISAMPLE_TYPE type) override;
  bool cacheRenderTargetOnTexture(renderTarget* target) override;
  bool isCachedRenderTargetOnTexture(const renderTarget* target) const override;
  bool discardRenderTargetOnTexture(renderTarget* target) override;
  bool clear(INSTANCING::renderTargetInstance& target) override;
  bool resetDevice(renderingContext* context) override;
  bool beginScene(INSTANCING::renderTargetInstance& target) override;
  bool endScene() override { return true; }

  bool setAlphaState(RENDERSTATE::alphastate& state) override;
  bool setClipPlaneState(RENDERSTATE::clipPlanestate& state) override;
  bool setBlendState(RENDERSTATE::blendstate& state) override;
  bool setCullState(RENDERSTATE::cullstate& state) override;
  bool setLightingState(RENDERSTATE::lightingstate& state) override;
  bool setLightState(RENDERSTATE::lightstate& state) override;
  bool setColorMaterialState(RENDERSTATE::colorMaterialstate& state) override;
  bool setMaterialState(RENDERSTATE::materialstate& state) override;
  bool setTextureState(INSTANCING::textureInstance& state) override;
  bool setTexture3DState(INSTANCING::textureInstance& state) override;
  bool setZbufferState(RENDERSTATE::zbufferstate& state) override;
  bool setColorBufferState(RENDERSTATE::colorbufferstate& state) override;
  bool setViewportState(RENDERSTATE::viewportstate& state) override;
  bool setScissorState(RENDERSTATE::scissorstate& state) override;
  bool setWireFrameState(RENDERSTATE::wireframestate& state) override;
  bool setPointSizeState(RENDERSTATE::pointSizestate& state) override;
  bool setFogState(RENDERSTATE::fogState& state) override;

  const RENDERSTATE::alphastate& getCurrentAlphaState() const override { return current.alpha; }
  const RENDERSTATE::clipPlanestate& getCurrentClipPlaneStateState(CLIP_PLANE plane) const override;
  const RENDERSTATE::blendstate& getCurrentBlendState() const override { return current.blend; }
  const RENDERSTATE::cullstate& getCurrentCullState() const override { return current.cull; }
  const RENDERSTATE::lightingstate& getCurrentLightingState() const override {
    return current.lighting;
  }
  const RENDERSTATE::lightstate& getCurrentLightState(LIGHT_SOURCE light) const override;
  const RENDERSTATE::colorMaterialstate& getCurrentColorMaterialState() const override {
    return current.colorMaterial;
  }
  const RENDERSTATE::materialstate& getCurrentMaterialState() const override {
    return current.material;
  }
  INSTANCING::textureInstance* getCurrentTextureState(TEXTURE_ACTIVE unit) const override;
  const RENDERSTATE::zbufferstate& getCurrentZbufferState() const override {
    return current.zbuffer;
  }
  const RENDERSTATE::colorbufferstate& getCurrentColorBufferState() const override {
    return current.colorBuffer;
  }
  const RENDERSTATE::viewportstate& getCurrentViewportState() const override {
    return current.viewport;
  }
  const RENDERSTATE::scissorstate& getCurrentScissorState() const override {
    return current.scissor;
  }
  const RENDERSTATE::wireframestate& getCurrentWireFrameState() const override {
    return current.wireframe;
  }
  const RENDERSTATE::pointSizestate& getCurrentPointSizeState() const override {
    return current.pointSize;
  }
  const RENDERSTATE::fogState& getCurrentFogState() const override { return current.fog; }
  INSTANCING::renderTargetInstance* getCurrentRenderTargetState() const override {
    return current.renderTarget;
  }

  bool createFont(GUI::font* font) override;
  bool cacheFont(GUI::font* font) override;
  bool isCachedFont(const GUI::font* font) const override;
  bool discardFont(GUI::font* font) override;
  bool getFontBox(GUI::font* font, const std::wstring& text, int& width, int& height) override;
  int getFontMaxHeight(GUI::font* font) override;
  bool renderText(GUI::font* font, const std::wstring& text, int x, int y,
                  CORE::color colour) override;

  bool setCameraState(const MATH::matrix4<float>& projection,
                      const MATH::matrix4<float>& view) override;
  const cameraState& getCurrentCameraState() const override { return current.camera; }
  bool setTransformState(const MATH::matrix4<float>& matrix) override;
  const transformState& getCurrentTransformState() const override { return current.transform; }
  bool updateFrustum() override;
  MATH::point4<float> getFrustumPlane(int index) const override;

  bool cacheTexture(TEXTURE::texture* texture) override;
  bool cacheTexture3D(TEXTURE::texture3D* texture) override;
  bool updateTexture(TEXTURE::texture* texture, const void* pixels) override;
  bool updateTexture(TEXTURE::texture* texture) override;
  bool discardTexture(TEXTURE::texture* texture) override;
  bool discardTexture3D(TEXTURE::texture3D* texture) override;

  bool cacheVertexDeclaration(vertexDeclaration* declaration) override;
  bool cacheIndexBuffer(indexBuffer* buffer, const unsigned short* indices,
                        unsigned count) override;
  bool cacheIndexBuffer(indexBuffer* buffer, const unsigned* indices, unsigned count) override;
  bool cacheVertexBufferElement(vertexBuffer* buffer, unsigned component, const void* data,
                                unsigned count) override;
  bool isCachedVertexBuffer(const vertexBuffer* buffer) const override;
  bool isCachedVertexBufferElement(const vertexBuffer* buffer, unsigned component) const override;
  bool isCachedIndexBuffer(const indexBuffer* buffer) const override;
  bool lockVertexBufferElement(vertexBuffer* buffer, unsigned component, void*& data) override;
  bool unlockVertexBufferElement(vertexBuffer* buffer, unsigned component) override;
  bool discardIndexBuffer(indexBuffer* buffer) override;
  bool discardVertexBuffer(vertexBuffer* buffer) override;
  bool discardVertexBufferElement(vertexBuffer* buffer, unsigned component) override;
  bool renderGeometry(DRAW_MODE mode, vertexBuffer* buffer, unsigned first,
                      unsigned count) override;
  bool renderIndexedGeometry(DRAW_MODE mode, vertexBuffer* buffer, indexBuffer* indices,
                             const std::vector<std::pair<unsigned, unsigned>>& ranges) override;
  bool renderIndexedGeometry(DRAW_MODE mode, vertexBuffer* buffer, indexBuffer* indices,
                             unsigned first, unsigned count) override;
  bool setVertexDeclaration(vertexDeclaration* declaration) override;
  bool setVertexBuffer(vertexBuffer* buffer) override;
  bool setIndexBuffer(indexBuffer* buffer) override;
  bool draw(DRAW_MODE mode, unsigned first, unsigned count) override;

  bool init() override;
  void addTextureToDiscardList(std::vector<unsigned>& names) override;
  void addTextureToDiscardList3D(std::vector<unsigned>& names) override;
  void addVertexBufferToDiscardList(std::vector<unsigned>& names) override;
  void addIndexBufferToDiscardList(std::vector<unsigned>& names) override;
  void addFontToDiscardList(std::vector<unsigned>& names) override;
  bool emptyDiscardList() override;

  int getWidth() const { return width; }
  int getHeight() const { return height; }

  // Each state setter stores a copy of the state and sends it to GL, every time: GL then
  // holds exactly what the last setter said, even where other code touched GL between.
  // With this option on, a state equal to the stored copy is not sent again, which saves
  // the calls of a scene that repeats its states. Two states are sent even then: a
  // z-buffer state that clears first (the clear is its effect), and a material while
  // colour-material tracking has written into GL's material. Lights are compared with the
  // view they were placed under. Off by default.
  void setSkipUnchangedStates(bool on) { skipUnchanged = on; }
  bool getSkipUnchangedStates() const { return skipUnchanged; }

 private:
  // Loads GL's projection and model-view matrices from the current camera and transform.
  bool loadMatrices();
  // Sends every state once, so that GL and the device copies agree.
  void sendDefaultStates();
  // Texture memory is booked by name, so that names deleted through the discard list are
  // taken off too.
  void bookTexture(unsigned name, uint32_t bytes);
  void unbookTexture(unsigned name);
  // Deletes a texture's names, takes their bytes off the books and empties its list.
  bool deleteTextureNames(CORE::deviceResource* t);
  bool uploadIndices(indexBuffer* buffer, const void* indices, uint32_t bytes, unsigned count);
  bool isCachedStream(const vertexBuffer& buffer, unsigned stream) const;
  // Whether a state goes to GL: always, unless unchanged states are skipped and this one
  // equals its copy.
  bool mustSend(bool changed);

  PLATFORM::glContextHandle context = nullptr;
  PLATFORM::windowHandle window = 0;
  unsigned currentVertexMask = 0;
  int width = 0;
  int height = 0;
  std::wstring name = L"RenderGL";
  bool nonPowerOfTwo = false;
  VERTEXPROCESSING_TYPE vertexProcessing = VERTEXPROCESSING_DEVICE;
  MULTISAMPLE_TYPE multiSample = MULTISAMPLE_NONE;
  // What getMaxMultiSampleType answered last with a context.
  MULTISAMPLE_TYPE mostSamples = MULTISAMPLE_NONE;
  SYSTEM::mutex textureDiscardLock;
  SYSTEM::mutex vertexBufferDiscardLock;
  SYSTEM::mutex indexBufferDiscardLock;
  SYSTEM::mutex fontDiscardLock;
  std::vector<unsigned> textureDiscardList;
  std::vector<unsigned> vertexBufferDiscardList;
  std::vector<unsigned> indexBufferDiscardList;
  std::vector<unsigned> fontDiscardList;
  deviceStateCopies current;
  bool sendAll = false;
  bool skipUnchanged = false;
  std::map<unsigned, uint32_t> textureBooking;
  MATH::point4<float> frustumPlanes[6];
  // Colour material has written into GL's material since the copy was last sent.
  bool materialTracked = false;
};

}  // namespace RENDERING
}  // namespace JEV
