#pragma once

// One window and GL device for a whole benchmark run, of a fixed square size. `ok` is false
// when the platform gives no window or context; the benchmarks then skip.
#include <GL/glew.h>

#include <cstdint>
#include <vector>

#include "jev3d/platform/platform.h"
#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/renderStateStack.h"
#include "jev3d/renderer/renderingContext.h"

template <class GL>
struct benchDevice {
  static constexpr int windowSize = 256;

  explicit benchDevice(const wchar_t* title) {
    window = JEV::PLATFORM::current().createWindow(
        JEV::PLATFORM::windowDescriptor{
            title, JEV::PLATFORM::rect{0, 0, windowSize, windowSize}, {}},
        ignoreMessages);
    bool recreate = false;
    ok = window && gl.createContext(window, recreate) && gl.init();
    rc.windowWidth = windowSize;
    rc.windowHeight = windowSize;
    if (ok) gl.resetDevice(&rc);
  }

  // Begins the window target with its clear; `forceCurrent` makes the context current
  // again even when it is.
  void beginFrame(bool forceCurrent) {
    gl.makeCurrentContext(forceCurrent);
    gl.emptyDiscardList();
    auto& target = rc.getRenderStateStack()->getCurrentRenderTargetState();
    gl.beginScene(target);
    gl.clear(target);
  }
  // Waits for the frame to be drawn, then shows it.
  void endFrame() {
    glFinish();
    gl.swapBuffers();
  }

  JEV::PLATFORM::windowHandle window = 0;
  GL gl;
  JEV::RENDERING::renderingContext rc{&gl, nullptr};
  bool ok = false;

 private:
  static std::int64_t ignoreMessages(JEV::PLATFORM::windowHandle, unsigned, std::uint64_t,
                                     std::int64_t) {
    return 0;
  }
};

// Indexed triangles with normals in buffers made and drawn with hand-written GL, the plain
// draw the renderer is compared with. Made on the device's current context.
class handVBO {
 public:
  handVBO(const std::vector<float>& normals, const std::vector<float>& positions,
          const std::vector<unsigned>& indices)
      : indexCount(GLsizei(indices.size())) {
    glGenBuffers(3, buffers);
    glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
    glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(normals.size() * 4), normals.data(), GL_STATIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, buffers[1]);
    glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(positions.size() * 4), positions.data(),
                 GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[2]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, GLsizeiptr(indices.size() * 4), indices.data(),
                 GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
  }
  ~handVBO() { glDeleteBuffers(3, buffers); }
  handVBO(const handVBO&) = delete;
  handVBO& operator=(const handVBO&) = delete;

  void draw() const {
    glEnableClientState(GL_NORMAL_ARRAY);
    glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
    glNormalPointer(GL_FLOAT, 0, nullptr);
    glEnableClientState(GL_VERTEX_ARRAY);
    glBindBuffer(GL_ARRAY_BUFFER, buffers[1]);
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[2]);
    glDrawElements(GL_TRIANGLES, indexCount, GL_UNSIGNED_INT, nullptr);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
  }

 private:
  GLuint buffers[3] = {0, 0, 0};
  GLsizei indexCount;
};
