#pragma once

#include <string>
#include <vector>

#include "jev3d/renderer/renderer.h"
#include "jev3d/system/mutex.h"

namespace JEV {
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
  bool getTextureNonPowerOfTwo() const override { return nonPowerOfTwo; }
  const std::wstring& getRendererName() const override { return name; }
  int getRendererKind() const override { return 0; }
  bool resetDevice(renderingContext* context) override;
  bool init() override;
  bool emptyDiscardList() override;

  // Hand GL names over for deletion at the head of the next frame; safe from any thread.
  // The vector is emptied.
  void addTextureNamesToDiscardList(std::vector<unsigned>& names);
  void addVertexBufferNamesToDiscardList(std::vector<unsigned>& names);
  void addIndexBufferNamesToDiscardList(std::vector<unsigned>& names);

  int getWidth() const { return width; }
  int getHeight() const { return height; }
  VERTEXPROCESSING_TYPE getCurrentVertexProcessingType() const { return vertexProcessing; }
  MULTISAMPLE_TYPE getCurrentMultiSampleType() const { return multiSample; }

 private:
  PLATFORM::glContextHandle context = nullptr;
  PLATFORM::windowHandle window = 0;
  unsigned currentVertexMask = 0;
  int width = 0;
  int height = 0;
  std::wstring name = L"RenderGL";
  bool nonPowerOfTwo = false;
  VERTEXPROCESSING_TYPE vertexProcessing = VERTEXPROCESSING_DEVICE;
  MULTISAMPLE_TYPE multiSample = MULTISAMPLE_NONE;
  SYSTEM::mutex textureDiscardLock;
  SYSTEM::mutex vertexBufferDiscardLock;
  SYSTEM::mutex indexBufferDiscardLock;
  std::vector<unsigned> textureDiscardList;
  std::vector<unsigned> vertexBufferDiscardList;
  std::vector<unsigned> indexBufferDiscardList;
};

}  // namespace RENDERING
}  // namespace JEV
