#include <GL/glew.h>

#include "jev3d/renderer/indexBuffer.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/renderer/vertexBuffer.h"

namespace JEV {
namespace RENDERING {
namespace {

using VC = vertexDeclaration::VERTEX_COMPONENTS;

const GLenum drawModes[] = {GL_POINTS,    GL_LINES,          GL_LINE_STRIP,
                            GL_TRIANGLES, GL_TRIANGLE_STRIP, GL_TRIANGLE_FAN};

GLenum drawMode(renderer::DRAW_MODE mode) {
  return unsigned(mode) < 6 ? drawModes[mode] : GL_TRIANGLES;
}

// The texture unit of a coordinate component, -1 for the others.
int coordinateUnit(uint32_t c) {
  for (int u = 0; u < 5; ++u) {
    if (c == (uint32_t(VC::TC0_2) << u) || c == (uint32_t(VC::TC0_3) << u) ||
        c == (uint32_t(VC::TC0_4) << u)) {
      return u;
    }
  }
  return -1;
}

GLenum clientArray(uint32_t c) {
  if (c == VC::POS2 || c == VC::POS3 || c == VC::POS4) return GL_VERTEX_ARRAY;
  if (c == VC::NORMAL || c == VC::NORMAL1 || c == VC::NORMAL2) return GL_NORMAL_ARRAY;
  if (c == VC::COLOR) return GL_COLOR_ARRAY;
  return GL_TEXTURE_COORD_ARRAY;
}

// Points GL's array of `component` at `pointer` (an offset when a buffer is bound).
void elem2ptr(VC component, const void* pointer) {
  unsigned count = 0, bytes = 0;
  vertexDeclaration::getComponentSize(component, count, bytes);
  switch (clientArray(component)) {
    case GL_VERTEX_ARRAY:
      glVertexPointer(GLint(count), GL_FLOAT, 0, pointer);
      break;
    case GL_NORMAL_ARRAY:
      glNormalPointer(GL_FLOAT, 0, pointer);
      break;
    case GL_COLOR_ARRAY:
      glColorPointer(4, GL_UNSIGNED_BYTE, 0, pointer);
      break;
    default:
      glTexCoordPointer(GLint(count), GL_FLOAT, 0, pointer);
      break;
  }
}

void selectClientUnit(uint32_t component) {
  const int unit = coordinateUnit(component);
  if (unit >= 0) glClientActiveTexture(GLenum(GL_TEXTURE0 + unit));
}

uint32_t deleteBuffer(unsigned& name, uint32_t bytes) {
  if (name == 0 || !glIsBuffer(name)) {
    name = 0;
    return 0;
  }
  glDeleteBuffers(1, &name);
  name = 0;
  return bytes;
}

}  // namespace

bool renderGL::cacheVertexDeclaration(vertexDeclaration* declaration) {
  return declaration && !declaration->isNull();
}

bool renderGL::cacheVertexBufferElement(vertexBuffer* buffer, unsigned component,
                                        const void* source, unsigned count) {
  if (!buffer || buffer->declaration.isNull() || !source || count == 0) return false;
  const VC c = VC(component);
  const unsigned stream = buffer->declaration.getVertexComponentPosition(c);
  if (stream >= buffer->getStreamCount()) return false;
  unsigned elements = 0, size = 0;
  vertexDeclaration::getComponentSize(c, elements, size);
  const uint32_t bytes = count * size;
  const uint32_t oldBytes = buffer->counts[stream] * size;
  buffer->counts[stream] = count;
  if (vertexProcessing == VERTEXPROCESSING_CLIENT) {
    buffer->setData(stream, bytes, source);
    // Subtracted on this path as on the discard path: kept as the counter has always run.
    bufferMemoryUsed -= bytes;
    return true;
  }
  if (!makeCurrentContext(false)) return false;
  bufferMemoryUsed -= deleteBuffer(buffer->names[stream], oldBytes);
  glGenBuffers(1, &buffer->names[stream]);
  glBindBuffer(GL_ARRAY_BUFFER, buffer->names[stream]);
  glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(bytes), source, GL_DYNAMIC_DRAW);
  glBindBuffer(GL_ARRAY_BUFFER, 0);
  bufferMemoryUsed += bytes;
  return true;
}

bool renderGL::cacheIndexBuffer(indexBuffer* buffer, const unsigned* indices, unsigned count) {
  if (!buffer || !indices || count == 0) return false;
  discardIndexBuffer(buffer);
  buffer->indexType = indexBuffer::INDEX_32;
  return uploadIndices(buffer, indices, count * 4u, count);
}

bool renderGL::cacheIndexBuffer(indexBuffer* buffer, const unsigned short* indices,
                                unsigned count) {
  if (!buffer || !indices || count == 0) return false;
  // The old buffer is not freed here: its name is dropped and the next frame's discard
  // list or the context's end takes it.
  buffer->indexType = indexBuffer::INDEX_16;
  buffer->name = 0;
  return uploadIndices(buffer, indices, count * 2u, count);
}

bool renderGL::uploadIndices(indexBuffer* buffer, const void* indices, uint32_t bytes,
                             unsigned count) {
  buffer->indexCount = count;
  if (vertexProcessing == VERTEXPROCESSING_CLIENT) {
    buffer->setData(bytes, indices);
  } else {
    if (!makeCurrentContext(false)) return false;
    // Index data goes in through the array target; it is bound as element array to draw.
    glGenBuffers(1, &buffer->name);
    glBindBuffer(GL_ARRAY_BUFFER, buffer->name);
    glBufferData(GL_ARRAY_BUFFER, GLsizeiptr(bytes), indices, GL_DYNAMIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
  }
  bufferMemoryUsed += bytes;
  return true;
}

bool renderGL::isCachedVertexBuffer(const vertexBuffer* buffer) const {
  if (!buffer || buffer->getStreamCount() == 0) return false;
  for (unsigned s = 0; s < buffer->getStreamCount(); ++s) {
    if (!isCachedStream(*buffer, s)) return false;
  }
  return true;
}

bool renderGL::isCachedVertexBufferElement(const vertexBuffer* buffer, unsigned component) const {
  if (!buffer) return false;
  const unsigned stream = buffer->declaration.getVertexComponentPosition(VC(component));
  return stream < buffer->getStreamCount() && isCachedStream(*buffer, stream);
}

bool renderGL::isCachedStream(const vertexBuffer& buffer, unsigned stream) const {
  if (vertexProcessing == VERTEXPROCESSING_CLIENT) return !buffer.data[stream].empty();
  return buffer.names[stream] != 0 && glIsBuffer(buffer.names[stream]);
}

bool renderGL::isCachedIndexBuffer(const indexBuffer* buffer) const {
  if (!buffer) return false;
  if (vertexProcessing == VERTEXPROCESSING_CLIENT) return !buffer->data.empty();
  return buffer->name != 0 && glIsBuffer(buffer->name);
}

bool renderGL::lockVertexBufferElement(vertexBuffer* buffer, unsigned component, void*& out) {
  out = nullptr;
  if (!buffer) return false;
  const unsigned stream = buffer->declaration.getVertexComponentPosition(VC(component));
  if (stream >= buffer->getStreamCount()) return false;
  if (vertexProcessing == VERTEXPROCESSING_CLIENT) {
    out = buffer->pointers[stream];
    return out != nullptr;
  }
  if (!makeCurrentContext(false) || !glIsBuffer(buffer->names[stream])) return false;
  glBindBuffer(GL_ARRAY_BUFFER, buffer->names[stream]);
  out = glMapBuffer(GL_ARRAY_BUFFER, GL_WRITE_ONLY);
  return out != nullptr;
}

bool renderGL::unlockVertexBufferElement(vertexBuffer* buffer, unsigned component) {
  if (!buffer) return false;
  const unsigned stream = buffer->declaration.getVertexComponentPosition(VC(component));
  if (stream >= buffer->getStreamCount()) return false;
  if (vertexProcessing == VERTEXPROCESSING_CLIENT) return buffer->pointers[stream] != nullptr;
  if (!makeCurrentContext(false) || !glIsBuffer(buffer->names[stream])) return false;
  glBindBuffer(GL_ARRAY_BUFFER, buffer->names[stream]);
  const bool ok = glUnmapBuffer(GL_ARRAY_BUFFER) == GL_TRUE;
  glBindBuffer(GL_ARRAY_BUFFER, 0);
  return ok;
}

bool renderGL::discardIndexBuffer(indexBuffer* buffer) {
  if (!buffer) return false;
  const uint32_t bytes = buffer->indexCount * (buffer->indexType == indexBuffer::INDEX_16 ? 2 : 4);
  if (vertexProcessing == VERTEXPROCESSING_CLIENT) {
    if (!buffer->data.empty()) bufferMemoryUsed -= bytes;
    buffer->clearData();
    return true;
  }
  if (!makeCurrentContext(false)) return false;
  bufferMemoryUsed -= deleteBuffer(buffer->name, bytes);
  return true;
}

bool renderGL::discardVertexBuffer(vertexBuffer* buffer) {
  if (!buffer) return false;
  bool ok = true;
  for (unsigned s = 0; s < buffer->getStreamCount(); ++s) {
    ok = discardVertexBufferElement(buffer, buffer->declaration.getVertexComponent(s)) && ok;
  }
  return ok;
}

bool renderGL::discardVertexBufferElement(vertexBuffer* buffer, unsigned component) {
  if (!buffer) return false;
  const VC c = VC(component);
  const unsigned stream = buffer->declaration.getVertexComponentPosition(c);
  if (stream >= buffer->getStreamCount()) return false;
  unsigned elements = 0, size = 0;
  vertexDeclaration::getComponentSize(c, elements, size);
  const uint32_t bytes = buffer->counts[stream] * size;
  if (vertexProcessing == VERTEXPROCESSING_CLIENT) {
    if (!buffer->data[stream].empty()) bufferMemoryUsed -= bytes;
    buffer->clearData(stream);
    return true;
  }
  if (!makeCurrentContext(false)) return false;
  bufferMemoryUsed -= deleteBuffer(buffer->names[stream], bytes);
  return true;
}

bool renderGL::setVertexDeclaration(vertexDeclaration* declaration) {
  if (!declaration || !makeCurrentContext(false)) return false;
  const uint32_t next = uint32_t(declaration->getMask());
  // Only what goes away is switched off; components that stay are not touched.
  for (VC c : vertexDeclaration::walkOrder) {
    if (!(currentVertexMask & c) || (next & c)) continue;
    selectClientUnit(c);
    glEnableClientState(clientArray(c));
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    elem2ptr(c, nullptr);
    glDisableClientState(clientArray(c));
  }
  glClientActiveTexture(GL_TEXTURE0);
  currentVertexMask = next;
  return true;
}

bool renderGL::setVertexBuffer(vertexBuffer* buffer) {
  if (!buffer || !makeCurrentContext(false)) return false;
  const bool device = vertexProcessing == VERTEXPROCESSING_DEVICE;
  for (unsigned s = 0; s < buffer->getStreamCount(); ++s) {
    const VC c = buffer->declaration.getVertexComponent(s);
    selectClientUnit(c);
    glEnableClientState(clientArray(c));
    if (device) {
      glBindBuffer(GL_ARRAY_BUFFER, buffer->names[s]);
      elem2ptr(c, nullptr);
    } else {
      elem2ptr(c, buffer->pointers[s]);
    }
  }
  if (device) glBindBuffer(GL_ARRAY_BUFFER, 0);
  glClientActiveTexture(GL_TEXTURE0);
  return true;
}

bool renderGL::setIndexBuffer(indexBuffer* buffer) {
  if (!buffer || !makeCurrentContext(false)) return false;
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER,
               vertexProcessing == VERTEXPROCESSING_DEVICE ? buffer->name : 0);
  return true;
}

bool renderGL::draw(DRAW_MODE mode, unsigned first, unsigned count) {
  if (!makeCurrentContext(false)) return false;
  glDrawArrays(drawMode(mode), GLint(first), GLsizei(count));
  ++frameCounter;
  return true;
}

bool renderGL::renderGeometry(DRAW_MODE mode, vertexBuffer* buffer, unsigned first,
                              unsigned count) {
  if (!buffer) return false;
  return setVertexDeclaration(&buffer->declaration) && setVertexBuffer(buffer) &&
         draw(mode, first, count);
}

bool renderGL::renderIndexedGeometry(DRAW_MODE mode, vertexBuffer* buffer, indexBuffer* indices,
                                     unsigned first, unsigned count) {
  if (!buffer || !indices) return false;
  // An absent stream's count (0xFFFFFFFF) passed in as `count` must not draw.
  if (count > indices->indexCount || first > indices->indexCount - count) return false;
  if (!setVertexDeclaration(&buffer->declaration) || !setVertexBuffer(buffer) ||
      !setIndexBuffer(indices)) {
    return false;
  }
  const bool wide = indices->indexType == indexBuffer::INDEX_32;
  const size_t offset = size_t(first) * (wide ? 4 : 2);
  // With a bound buffer the pointer is an offset into it.
  const void* start = vertexProcessing == VERTEXPROCESSING_DEVICE
                          ? reinterpret_cast<const void*>(offset)
                          : static_cast<const void*>(indices->data.data() + offset);
  glDrawElements(drawMode(mode), GLsizei(count), wide ? GL_UNSIGNED_INT : GL_UNSIGNED_SHORT, start);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
  ++frameCounter;
  return true;
}

bool renderGL::renderIndexedGeometry(DRAW_MODE mode, vertexBuffer* buffer, indexBuffer* indices,
                                     const std::vector<std::pair<unsigned, unsigned>>& ranges) {
  for (const auto& range : ranges) {
    if (!renderIndexedGeometry(mode, buffer, indices, range.first, range.second)) return false;
  }
  return true;
}

}  // namespace RENDERING
}  // namespace JEV
