#pragma once

#include <cstdint>
#include <string>

#include "jev3d/platform/platform.h"

namespace JEV {
namespace RENDERING {

class renderingContext;

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
  virtual bool getTextureNonPowerOfTwo() const = 0;
  virtual const std::wstring& getRendererName() const = 0;
  virtual int getRendererKind() const = 0;
  // Takes the window's size from the context after a resize.
  virtual bool resetDevice(renderingContext* context) = 0;
  // Sets the device's fixed state after the context is made.
  virtual bool init() = 0;
  // Deletes, on the drawing thread, what other threads gave up since the last frame.
  virtual bool emptyDiscardList() = 0;

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
