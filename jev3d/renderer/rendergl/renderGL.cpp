#include "jev3d/renderer/rendergl/renderGL.h"

#include <GL/glew.h>

#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/renderingContext.h"

namespace JEV {
namespace RENDERING {

namespace {

// The window and context made current last on this thread; GL's notion of "current" is
// per thread, so the cache is too.
thread_local PLATFORM::windowHandle currentWindow = 0;
thread_local PLATFORM::glContextHandle currentContext = nullptr;

const GLenum pixelFormats[] = {GL_COLOR_INDEX, GL_STENCIL_INDEX, GL_DEPTH_COMPONENT, GL_RED,
                               GL_GREEN,       GL_BLUE,          GL_ALPHA,           GL_RGB,
                               GL_RGBA,        GL_LUMINANCE,     GL_LUMINANCE_ALPHA, GL_BGR};
const GLenum dataTypes[] = {GL_UNSIGNED_BYTE, GL_BYTE,         GL_BITMAP, GL_UNSIGNED_SHORT,
                            GL_SHORT,         GL_UNSIGNED_INT, GL_INT,    GL_FLOAT};

// glewInit on an EGL context (the headless path) loads the entry points and then reports
// that there is no GLX display, which does not matter there.
bool initGlew() {
  const GLenum result = glewInit();
  return result == GLEW_OK || result == GLEW_ERROR_NO_GLX_DISPLAY;
}

void takeOver(const SYSTEM::mutex& lock, std::vector<unsigned>& list,
              std::vector<unsigned>& names) {
  lock.wait(SYSTEM::INFINITE);
  list.insert(list.end(), names.begin(), names.end());
  lock.release();
  names.clear();
}

}  // namespace

renderGL::renderGL() = default;

renderGL::~renderGL() {
  if (currentContext == context && context) {
    currentWindow = 0;
    currentContext = nullptr;
  }
}

bool renderGL::createContext(PLATFORM::windowHandle w, bool& recreate) {
  recreate = false;
  if (w == 0) return false;
  if (context) return true;
  PLATFORM::platform& p = PLATFORM::current();
  context = p.createGLContext(w);
  if (!context) return false;
  window = w;
  if (!makeCurrentContext(true)) {
    deleteContext();
    return false;
  }
  glewExperimental = GL_FALSE;
  if (!initGlew()) {
    deleteContext();
    return false;
  }
  nonPowerOfTwo = glewIsSupported("GL_ARB_texture_non_power_of_two") != 0;
  glDisable(GL_MULTISAMPLE);
  return true;
}

bool renderGL::makeCurrentContext(bool force) {
  if (!context) return false;
  if (!force && currentWindow == window && currentContext == context) return true;
  if (!PLATFORM::current().makeCurrent(window, context)) return false;
  currentWindow = window;
  currentContext = context;
  return true;
}

bool renderGL::deleteContext() {
  if (!context) return false;
  makeCurrentContext(false);
  PLATFORM::platform& p = PLATFORM::current();
  p.makeCurrent(0, nullptr);
  p.deleteGLContext(context);
  currentWindow = 0;
  currentContext = nullptr;
  context = nullptr;
  window = 0;
  currentVertexMask = 0;
  vertexProcessing = VERTEXPROCESSING_DEVICE;
  multiSample = MULTISAMPLE_NONE;
  return true;
}

bool renderGL::swapBuffers() {
  if (!makeCurrentContext(false)) return false;
  frameCounter = 0;
  return PLATFORM::current().swapBuffers(window);
}

bool renderGL::readPixels(int x, int y, int w, int h, PIXELDATA_TYPE format, DATA_TYPE type,
                          void* data) {
  if (format < 0 || format > PIXELDATA_BGR || type < 0 || type > DATA_FLOAT || !data) {
    return false;
  }
  if (!makeCurrentContext(false)) return false;
  // The frame being drawn: front-buffer reads come back black on software rasterisers
  // under X, and a swap may leave the back buffer undefined, so read before swapping. An
  // off-screen target reads from its colour texture.
  const bool offScreen = current.renderTarget && !current.renderTarget->isWindowTarget();
  glReadBuffer(offScreen ? GL_COLOR_ATTACHMENT0 : GL_BACK);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(x, y, w, h, pixelFormats[format], dataTypes[type], data);
  return true;
}

int renderGL::getMaxTextureSize() {
  GLint v = 0;
  if (makeCurrentContext(false)) glGetIntegerv(GL_MAX_TEXTURE_SIZE, &v);
  return v;
}

int renderGL::getMaxTextureUnits() {
  GLint v = 0;
  if (makeCurrentContext(false)) glGetIntegerv(GL_MAX_TEXTURE_UNITS, &v);
  return v;
}

int renderGL::getMaxLight() {
  GLint v = 0;
  if (makeCurrentContext(false)) glGetIntegerv(GL_MAX_LIGHTS, &v);
  return v;
}

renderer::VERTEXPROCESSING_TYPE renderGL::getVertexProcessingType() {
  if (!makeCurrentContext(false)) return VERTEXPROCESSING_CLIENT;
  return glewIsSupported("GL_ARB_vertex_buffer_object") ? VERTEXPROCESSING_DEVICE
                                                        : VERTEXPROCESSING_CLIENT;
}

bool renderGL::resetDevice(renderingContext* ctx) {
  if (!ctx) return false;
  width = ctx->windowWidth.cV();
  height = ctx->windowHeight.cV();
  // The window target draws over the whole client rectangle.
  INSTANCING::renderTargetInstance& target =
      ctx->getRenderStateStack()->getCurrentRenderTargetState();
  if (target.isWindowTarget()) {
    target.scissor.set(0, 0, width, height, target.scissor.enable.cV(), false);
    target.viewport.set(0, 0, width, height, false, RENDERSTATE::viewportstate::VIEWPORT_FREE);
    target.viewport.computeSize(this);
  }
  return true;
}

bool renderGL::init() {
  if (!makeCurrentContext(false)) return false;
  if (!initGlew()) return false;
  if (vertexProcessing == VERTEXPROCESSING_DEVICE &&
      !glewIsSupported("GL_ARB_vertex_buffer_object")) {
    vertexProcessing = VERTEXPROCESSING_CLIENT;
  }
  glEnable(GL_NORMALIZE);
  glShadeModel(GL_SMOOTH);
  glEnable(GL_LINE_SMOOTH);
  glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
  glHint(GL_POLYGON_SMOOTH_HINT, GL_NICEST);
  glPointSize(1.0f);
  glLineWidth(1.0f);
  GLfloat range[2] = {1.0f, 1.0f};
  glGetFloatv(GL_POINT_SIZE_RANGE, range);
  pointSizeMin = range[0];
  pointSizeMax = range[1];
  sendDefaultStates();
  return true;
}

void renderGL::addTextureToDiscardList(std::vector<unsigned>& names) {
  takeOver(textureDiscardLock, textureDiscardList, names);
}

void renderGL::addVertexBufferToDiscardList(std::vector<unsigned>& names) {
  takeOver(vertexBufferDiscardLock, vertexBufferDiscardList, names);
}

void renderGL::addIndexBufferToDiscardList(std::vector<unsigned>& names) {
  takeOver(indexBufferDiscardLock, indexBufferDiscardList, names);
}

void renderGL::addTextureToDiscardList3D(std::vector<unsigned>& names) {
  takeOver(textureDiscardLock, textureDiscardList, names);
}

void renderGL::addFontToDiscardList(std::vector<unsigned>& names) {
  takeOver(fontDiscardLock, fontDiscardList, names);
}

bool renderGL::emptyDiscardList() {
  if (!makeCurrentContext(false)) return false;
  textureDiscardLock.wait(SYSTEM::INFINITE);
  for (unsigned n : textureDiscardList) {
    if (glIsTexture(n)) glDeleteTextures(1, &n);
    unbookTexture(n);
  }
  textureDiscardList.clear();
  textureDiscardLock.release();
  vertexBufferDiscardLock.wait(SYSTEM::INFINITE);
  for (unsigned n : vertexBufferDiscardList) {
    if (glIsBuffer(n)) glDeleteBuffers(1, &n);
  }
  vertexBufferDiscardList.clear();
  vertexBufferDiscardLock.release();
  indexBufferDiscardLock.wait(SYSTEM::INFINITE);
  for (unsigned n : indexBufferDiscardList) {
    if (glIsBuffer(n)) glDeleteBuffers(1, &n);
  }
  indexBufferDiscardList.clear();
  indexBufferDiscardLock.release();
  // A font's device objects are its glyph textures.
  fontDiscardLock.wait(SYSTEM::INFINITE);
  for (unsigned n : fontDiscardList) {
    if (glIsTexture(n)) glDeleteTextures(1, &n);
  }
  fontDiscardList.clear();
  fontDiscardLock.release();
  return true;
}

}  // namespace RENDERING
}  // namespace JEV
