#pragma once

#include <string>
#include <vector>

#include "jev3d/platform/platform.h"
#include "jev3d/renderer/renderer.h"
#include "jev3d/renderer/renderingContext.h"

// A renderer with no device, for tests on the scripted platform: contexts come from the
// platform, frames are swaps on it, and every call is logged.
class recordingRenderer : public JEV::RENDERING::renderer {
 public:
  bool readPixels(int, int, int, int, PIXELDATA_TYPE, DATA_TYPE, void*) override { return false; }
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
  int getMaxLight() override { return 0; }
  VERTEXPROCESSING_TYPE getVertexProcessingType() override { return VERTEXPROCESSING_CLIENT; }
  bool getTextureNonPowerOfTwo() const override { return false; }
  const std::wstring& getRendererName() const override { return name; }
  int getRendererKind() const override { return 99; }
  bool resetDevice(JEV::RENDERING::renderingContext* ctx) override {
    calls.push_back("resetDevice " + std::to_string(ctx->windowWidth.cV()) + " " +
                    std::to_string(ctx->windowHeight.cV()));
    return true;
  }
  bool init() override {
    calls.push_back("init");
    return true;
  }
  bool emptyDiscardList() override {
    calls.push_back("emptyDiscardList");
    return true;
  }

  int count(const std::string& prefix) const {
    int n = 0;
    for (const auto& c : calls) n += c.compare(0, prefix.size(), prefix) == 0 ? 1 : 0;
    return n;
  }

  std::vector<std::string> calls;
  int recreateRequests = 0;
  JEV::PLATFORM::glContextHandle context = nullptr;
  JEV::PLATFORM::windowHandle window = 0;
  std::wstring name = L"recording";
};
