#pragma once

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "jev3d/platform/platform.h"
#include "jev3d/renderer/deviceStateCopies.h"
#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/instancing/textureInstance.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderingContext.h"

// A renderer with no device, for tests on the scripted platform: contexts come from the
// platform, frames are swaps on it, and every device call is logged in `calls` as its
// name and arguments ("setAlphaState 1 4 0.5"). A state call whose values differ from the
// device's copy is logged in `sent` as well: that is what a back end passes on to the
// graphics API. makeCurrentContext, called at the head of everything, is not logged.
class recordingRenderer : public JEV::RENDERING::renderer {
 public:
  using color = JEV::CORE::color;
  using matrix4f = JEV::MATH::matrix4<float>;

  bool readPixels(int x, int y, int w, int h, PIXELDATA_TYPE f, DATA_TYPE t, void*) override {
    log("readPixels", x, y, w, h, int(f), int(t));
    return false;
  }
  bool createContext(JEV::PLATFORM::windowHandle w, bool& recreate) override {
    recreate = false;
    if (!w) return false;
    if (context) return true;
    context = JEV::PLATFORM::current().createGLContext(w);
    if (!context) return false;
    window = w;
    if (recreateRequests > 0) {
      --recreateRequests;
      recreate = true;
      calls.push_back("createContext recreate");
      return true;
    }
    calls.push_back("createContext");
    return true;
  }
  bool makeCurrentContext(bool) override {
    return context && JEV::PLATFORM::current().makeCurrent(window, context);
  }
  bool deleteContext() override {
    if (!context) return false;
    JEV::PLATFORM::current().deleteGLContext(context);
    context = nullptr;
    window = 0;
    calls.push_back("deleteContext");
    return true;
  }
  bool swapBuffers() override {
    frameCounter = 0;
    calls.push_back("swapBuffers");
    return JEV::PLATFORM::current().swapBuffers(window);
  }
  JEV::PLATFORM::windowHandle getDC() const override { return window; }
  int getMaxTextureSize() override { return 0; }
  int getMaxTextureUnits() override { return 0; }
  int getMaxLight() override { return 8; }
  VERTEXPROCESSING_TYPE getVertexProcessingType() override { return VERTEXPROCESSING_CLIENT; }
  VERTEXPROCESSING_TYPE getCurrentVertexProcessingType() const override {
    return VERTEXPROCESSING_CLIENT;
  }
  MULTISAMPLE_TYPE getMaxMultiSampleType() override { return MULTISAMPLE_NONE; }
  MULTISAMPLE_TYPE getCurrentMultiSampleType() const override { return MULTISAMPLE_NONE; }
  bool getTextureNonPowerOfTwo() const override { return false; }
  const std::wstring& getRendererName() const override { return name; }
  int getRendererKind() const override { return 99; }
  bool isSupportRenderTargetOnTexture() override { return false; }
  bool setCurrentVertexProcessingType(VERTEXPROCESSING_TYPE t) override {
    return log("setCurrentVertexProcessingType", int(t));
  }
  bool setCurrentMultiSampleType(MULTISAMPLE_TYPE t) override {
    return log("setCurrentMultiSampleType", int(t));
  }
  bool cacheRenderTargetOnTexture(JEV::RENDERING::renderTarget*) override {
    return log("cacheRenderTargetOnTexture");
  }
  bool isCachedRenderTargetOnTexture(const JEV::RENDERING::renderTarget*) const override {
    return false;
  }
  bool discardRenderTargetOnTexture(JEV::RENDERING::renderTarget*) override {
    return log("discardRenderTargetOnTexture");
  }
  bool clear(JEV::RENDERING::INSTANCING::renderTargetInstance& t) override {
    return log("clear", label(&t));
  }
  bool resetDevice(JEV::RENDERING::renderingContext* ctx) override {
    calls.push_back("resetDevice " + std::to_string(ctx->windowWidth.cV()) + " " +
                    std::to_string(ctx->windowHeight.cV()));
    return true;
  }
  bool beginScene(JEV::RENDERING::INSTANCING::renderTargetInstance& t) override {
    const bool changed = copies.renderTarget != &t;
    copies.renderTarget = &t;
    return logState(changed, "beginScene", label(&t));
  }
  bool endScene() override { return log("endScene"); }

  bool setAlphaState(JEV::RENDERING::RENDERSTATE::alphastate& s) override {
    return logState(copies.store(s), "setAlphaState", s.enable, int(s.function), s.reference);
  }
  bool setClipPlaneState(JEV::RENDERING::RENDERSTATE::clipPlanestate& s) override {
    return logState(copies.store(s), "setClipPlaneState", int(s.plane), s.enable.cV(), s.a.cV(),
                    s.b.cV(), s.c.cV(), s.d.cV());
  }
  bool setBlendState(JEV::RENDERING::RENDERSTATE::blendstate& s) override {
    return logState(copies.store(s), "setBlendState", s.enable, int(s.source), int(s.destination));
  }
  bool setCullState(JEV::RENDERING::RENDERSTATE::cullstate& s) override {
    return logState(copies.store(s), "setCullState", s.enable.cV(), int(s.frontFace));
  }
  bool setLightingState(JEV::RENDERING::RENDERSTATE::lightingstate& s) override {
    return logState(copies.store(s), "setLightingState", s.enable.cV(), s.twoSide.cV());
  }
  bool setLightState(JEV::RENDERING::RENDERSTATE::lightstate& s) override {
    return logState(copies.store(s), "setLightState", s.light, int(s.type), s.enable,
                    s.diffuse.cV());
  }
  bool setColorMaterialState(JEV::RENDERING::RENDERSTATE::colorMaterialstate& s) override {
    return logState(copies.store(s), "setColorMaterialState", int(s.mode), int(s.face));
  }
  bool setMaterialState(JEV::RENDERING::RENDERSTATE::materialstate& s) override {
    return logState(copies.store(s), "setMaterialState", s.frontEmissive.cV(), s.frontAmbient.cV(),
                    s.frontDiffuse.cV(), s.frontSpecular.cV(), s.frontShininess.cV(),
                    s.backEmissive.cV(), s.backAmbient.cV(), s.backDiffuse.cV(),
                    s.backSpecular.cV(), s.backShininess.cV());
  }
  bool setTextureState(JEV::RENDERING::INSTANCING::textureInstance& s) override {
    return logState(copies.store(s.unit, &s), "setTextureState", int(s.unit), label(&s));
  }
  bool setTexture3DState(JEV::RENDERING::INSTANCING::textureInstance& s) override {
    return logState(copies.store(s.unit, &s), "setTexture3DState", int(s.unit), label(&s));
  }
  bool setZbufferState(JEV::RENDERING::RENDERSTATE::zbufferstate& s) override {
    return logState(copies.store(s), "setZbufferState", s.enable.cV(), int(s.function),
                    s.writeEnable.cV(), s.clearFirst.cV(), s.rangeNear.cV(), s.rangeFar.cV());
  }
  bool setColorBufferState(JEV::RENDERING::RENDERSTATE::colorbufferstate& s) override {
    return logState(copies.store(s), "setColorBufferState", s.writeMask.cV());
  }
  bool setViewportState(JEV::RENDERING::RENDERSTATE::viewportstate& s) override {
    return logState(copies.store(s), "setViewportState", s.computedX.cV(), s.computedY.cV(),
                    s.computedWidth.cV(), s.computedHeight.cV());
  }
  bool setScissorState(JEV::RENDERING::RENDERSTATE::scissorstate& s) override {
    return logState(copies.store(s), "setScissorState", s.enable.cV(), s.computedX.cV(),
                    s.computedY.cV(), s.computedWidth.cV(), s.computedHeight.cV());
  }
  bool setWireFrameState(JEV::RENDERING::RENDERSTATE::wireframestate& s) override {
    return logState(copies.store(s), "setWireFrameState", int(s.mode));
  }
  bool setPointSizeState(JEV::RENDERING::RENDERSTATE::pointSizestate& s) override {
    return logState(copies.store(s), "setPointSizeState", s.size.cV());
  }
  bool setFogState(JEV::RENDERING::RENDERSTATE::fogState& s) override {
    return logState(copies.store(s), "setFogState", s.enable.cV(), int(s.type), int(s.mode),
                    s.color, s.start.cV(), s.end.cV(), s.density.cV());
  }

  const JEV::RENDERING::RENDERSTATE::alphastate& getCurrentAlphaState() const override {
    return copies.alpha;
  }
  const JEV::RENDERING::RENDERSTATE::clipPlanestate& getCurrentClipPlaneStateState(
      CLIP_PLANE plane) const override {
    return copies.clipPlanes[plane];
  }
  const JEV::RENDERING::RENDERSTATE::blendstate& getCurrentBlendState() const override {
    return copies.blend;
  }
  const JEV::RENDERING::RENDERSTATE::cullstate& getCurrentCullState() const override {
    return copies.cull;
  }
  const JEV::RENDERING::RENDERSTATE::lightingstate& getCurrentLightingState() const override {
    return copies.lighting;
  }
  const JEV::RENDERING::RENDERSTATE::lightstate& getCurrentLightState(
      LIGHT_SOURCE light) const override {
    return copies.lights[light];
  }
  const JEV::RENDERING::RENDERSTATE::colorMaterialstate& getCurrentColorMaterialState()
      const override {
    return copies.colorMaterial;
  }
  const JEV::RENDERING::RENDERSTATE::materialstate& getCurrentMaterialState() const override {
    return copies.material;
  }
  JEV::RENDERING::INSTANCING::textureInstance* getCurrentTextureState(
      TEXTURE_ACTIVE unit) const override {
    return copies.textures[unit];
  }
  const JEV::RENDERING::RENDERSTATE::zbufferstate& getCurrentZbufferState() const override {
    return copies.zbuffer;
  }
  const JEV::RENDERING::RENDERSTATE::colorbufferstate& getCurrentColorBufferState() const override {
    return copies.colorBuffer;
  }
  const JEV::RENDERING::RENDERSTATE::viewportstate& getCurrentViewportState() const override {
    return copies.viewport;
  }
  const JEV::RENDERING::RENDERSTATE::scissorstate& getCurrentScissorState() const override {
    return copies.scissor;
  }
  const JEV::RENDERING::RENDERSTATE::wireframestate& getCurrentWireFrameState() const override {
    return copies.wireframe;
  }
  const JEV::RENDERING::RENDERSTATE::pointSizestate& getCurrentPointSizeState() const override {
    return copies.pointSize;
  }
  const JEV::RENDERING::RENDERSTATE::fogState& getCurrentFogState() const override {
    return copies.fog;
  }
  JEV::RENDERING::INSTANCING::renderTargetInstance* getCurrentRenderTargetState() const override {
    return copies.renderTarget;
  }

  bool createFont(JEV::GUI::font*) override { return log("createFont"); }
  bool cacheFont(JEV::GUI::font*) override { return log("cacheFont"); }
  bool isCachedFont(const JEV::GUI::font*) const override { return false; }
  bool discardFont(JEV::GUI::font*) override { return log("discardFont"); }
  bool getFontBox(JEV::GUI::font*, const std::wstring& text, int& width, int& height) override {
    width = int(text.size()) * 8;
    height = 16;
    return log("getFontBox", text.size());
  }
  int getFontMaxHeight(JEV::GUI::font*) override {
    log("getFontMaxHeight");
    return 16;
  }
  bool renderText(JEV::GUI::font*, const std::wstring& text, int x, int y, color c) override {
    return log("renderText", text.size(), x, y, c);
  }

  bool setCameraState(const matrix4f& projection, const matrix4f& view) override {
    return logState(copies.storeCamera(projection, view), "setCameraState", projection, view);
  }
  const JEV::RENDERING::cameraState& getCurrentCameraState() const override {
    return copies.camera;
  }
  bool setTransformState(const matrix4f& matrix) override {
    return logState(copies.storeTransform(matrix), "setTransformState", matrix);
  }
  const JEV::RENDERING::transformState& getCurrentTransformState() const override {
    return copies.transform;
  }
  bool updateFrustum() override { return log("updateFrustum"); }
  JEV::MATH::point4<float> getFrustumPlane(int) const override {
    return JEV::MATH::point4<float>::ZERO();
  }

  bool cacheTexture(JEV::TEXTURE::texture*) override { return log("cacheTexture"); }
  bool cacheTexture3D(JEV::TEXTURE::texture3D*) override { return log("cacheTexture3D"); }
  bool updateTexture(JEV::TEXTURE::texture*, const void*) override {
    return log("updateTexture pixels");
  }
  bool updateTexture(JEV::TEXTURE::texture*) override { return log("updateTexture"); }
  bool discardTexture(JEV::TEXTURE::texture*) override { return log("discardTexture"); }
  bool discardTexture3D(JEV::TEXTURE::texture3D*) override { return log("discardTexture3D"); }

  bool cacheVertexDeclaration(JEV::RENDERING::vertexDeclaration*) override {
    return log("cacheVertexDeclaration");
  }
  bool cacheIndexBuffer(JEV::RENDERING::indexBuffer*, const unsigned short*, unsigned n) override {
    return log("cacheIndexBuffer 16", n);
  }
  bool cacheIndexBuffer(JEV::RENDERING::indexBuffer*, const unsigned*, unsigned n) override {
    return log("cacheIndexBuffer 32", n);
  }
  bool cacheVertexBufferElement(JEV::RENDERING::vertexBuffer*, unsigned component, const void*,
                                unsigned n) override {
    return log("cacheVertexBufferElement", component, n);
  }
  bool isCachedVertexBuffer(const JEV::RENDERING::vertexBuffer*) const override { return false; }
  bool isCachedVertexBufferElement(const JEV::RENDERING::vertexBuffer*, unsigned) const override {
    return false;
  }
  bool isCachedIndexBuffer(const JEV::RENDERING::indexBuffer*) const override { return false; }
  bool lockVertexBufferElement(JEV::RENDERING::vertexBuffer*, unsigned component,
                               void*& data) override {
    data = nullptr;
    log("lockVertexBufferElement", component);
    return false;
  }
  bool unlockVertexBufferElement(JEV::RENDERING::vertexBuffer*, unsigned component) override {
    return log("unlockVertexBufferElement", component);
  }
  bool discardIndexBuffer(JEV::RENDERING::indexBuffer*) override {
    return log("discardIndexBuffer");
  }
  bool discardVertexBuffer(JEV::RENDERING::vertexBuffer*) override {
    return log("discardVertexBuffer");
  }
  bool discardVertexBufferElement(JEV::RENDERING::vertexBuffer*, unsigned component) override {
    return log("discardVertexBufferElement", component);
  }
  bool renderGeometry(DRAW_MODE mode, JEV::RENDERING::vertexBuffer*, unsigned first,
                      unsigned n) override {
    return log("renderGeometry", int(mode), first, n);
  }
  bool renderIndexedGeometry(DRAW_MODE mode, JEV::RENDERING::vertexBuffer*,
                             JEV::RENDERING::indexBuffer*,
                             const std::vector<std::pair<unsigned, unsigned>>& ranges) override {
    return log("renderIndexedGeometry ranges", int(mode), ranges.size());
  }
  bool renderIndexedGeometry(DRAW_MODE mode, JEV::RENDERING::vertexBuffer*,
                             JEV::RENDERING::indexBuffer*, unsigned first, unsigned n) override {
    return log("renderIndexedGeometry", int(mode), first, n);
  }
  bool setVertexDeclaration(JEV::RENDERING::vertexDeclaration*) override {
    return log("setVertexDeclaration");
  }
  bool setVertexBuffer(JEV::RENDERING::vertexBuffer*) override { return log("setVertexBuffer"); }
  bool setIndexBuffer(JEV::RENDERING::indexBuffer*) override { return log("setIndexBuffer"); }
  bool draw(DRAW_MODE mode, unsigned first, unsigned n) override {
    return log("draw", int(mode), first, n);
  }

  bool init() override {
    calls.push_back("init");
    return true;
  }
  void addTextureToDiscardList(std::vector<unsigned>& names) override {
    log("addTextureToDiscardList", names.size());
    names.clear();
  }
  void addTextureToDiscardList3D(std::vector<unsigned>& names) override {
    log("addTextureToDiscardList3D", names.size());
    names.clear();
  }
  void addVertexBufferToDiscardList(std::vector<unsigned>& names) override {
    log("addVertexBufferToDiscardList", names.size());
    names.clear();
  }
  void addIndexBufferToDiscardList(std::vector<unsigned>& names) override {
    log("addIndexBufferToDiscardList", names.size());
    names.clear();
  }
  void addFontToDiscardList(std::vector<unsigned>& names) override {
    log("addFontToDiscardList", names.size());
    names.clear();
  }
  bool emptyDiscardList() override {
    calls.push_back("emptyDiscardList");
    return true;
  }

  // Calls whose text starts with `prefix`.
  int count(const std::string& prefix) const { return countIn(calls, prefix); }
  int countSent(const std::string& prefix) const { return countIn(sent, prefix); }
  // The calls starting with `prefix`, in order.
  std::vector<std::string> only(const std::string& prefix) const {
    std::vector<std::string> out;
    for (const auto& c : calls)
      if (c.compare(0, prefix.size(), prefix) == 0) out.push_back(c);
    return out;
  }
  void clearLog() {
    calls.clear();
    sent.clear();
  }
  // Names bottom entries and other targets in the log: "T<n>" by first appearance.
  std::string label(const void* p) {
    for (size_t i = 0; i < labels.size(); ++i)
      if (labels[i] == p) return "T" + std::to_string(i);
    labels.push_back(p);
    return "T" + std::to_string(labels.size() - 1);
  }

  std::vector<std::string> calls;
  std::vector<std::string> sent;
  // Off, calls are only counted: benchmarks measure the caller, not the log's strings.
  bool keepCalls = true;
  long long callCount = 0;
  int recreateRequests = 0;
  JEV::PLATFORM::glContextHandle context = nullptr;
  JEV::PLATFORM::windowHandle window = 0;
  std::wstring name = L"recording";
  JEV::RENDERING::deviceStateCopies copies;

 private:
  static int countIn(const std::vector<std::string>& list, const std::string& prefix) {
    int n = 0;
    for (const auto& c : list) n += c.compare(0, prefix.size(), prefix) == 0 ? 1 : 0;
    return n;
  }
  static void put(std::ostringstream& o, bool v) { o << (v ? 1 : 0); }
  static void put(std::ostringstream& o, const color& c) {
    o << int(c.r) << ',' << int(c.g) << ',' << int(c.b) << ',' << int(c.a);
  }
  static void put(std::ostringstream& o, const matrix4f& m) {
    for (int i = 0; i < 16; ++i) o << (i ? "," : "") << m[i];
  }
  static void put(std::ostringstream& o, const std::string& s) { o << s; }
  template <class T>
  static void put(std::ostringstream& o, const T& v) {
    o << v;
  }
  template <class... A>
  static std::string format(const char* what, const A&... args) {
    std::ostringstream o;
    o << what;
    ((o << ' ', put(o, args)), ...);
    return o.str();
  }
  template <class... A>
  bool log(const char* what, const A&... args) {
    ++callCount;
    if (!keepCalls) return true;
    calls.push_back(format(what, args...));
    return true;
  }
  template <class... A>
  bool logState(bool changed, const char* what, const A&... args) {
    ++callCount;
    if (!keepCalls) return true;
    calls.push_back(format(what, args...));
    if (changed) sent.push_back(calls.back());
    return true;
  }

  std::vector<const void*> labels;
};
