#include <GL/glew.h>

#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/resources/texture.h"

namespace JEV {
namespace RENDERING {
namespace {

uint32_t imageBytes(const IO::textureImage& image) {
  return uint32_t(image.width) * uint32_t(image.height) * uint32_t(image.bitsPerPixel() / 8);
}

bool hasMipmaps(int filter) { return filter != 0 && glGenerateMipmap != nullptr; }

// What a texture books: its pixels, and a third more for a mip chain.
uint32_t bookedBytes(const TEXTURE::texture& t) {
  const uint32_t bytes = imageBytes(t.getImage());
  return hasMipmaps(t.getParameters().filter) ? bytes + bytes / 3 : bytes;
}

void setFilters(int filter) {
  // Without mipmap generation only the nearest level exists.
  if (!hasMipmaps(filter)) {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    return;
  }
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER,
                  filter == 1 ? GL_LINEAR_MIPMAP_NEAREST : GL_LINEAR_MIPMAP_LINEAR);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  glGenerateMipmap(GL_TEXTURE_2D);
}

// The decoded image is RGB or RGBA, red first; anything else uploads as RGB.
void upload(const IO::textureImage& image) {
  const GLenum format = image.components == 4 ? GL_RGBA : GL_RGB;
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glTexImage2D(GL_TEXTURE_2D, 0, image.components == 4 ? 4 : 3, image.width, image.height, 0,
               format, GL_UNSIGNED_BYTE, image.pixels.data());
}

}  // namespace

bool renderGL::cacheTexture(TEXTURE::texture* t) {
  if (!t || !makeCurrentContext(false)) return false;
  discardTexture(t);
  const IO::textureImage& image = t->getImage();
  if (image.empty() || image.width <= 0 || image.height <= 0) return false;
  GLuint name = 0;
  glGenTextures(1, &name);
  glBindTexture(GL_TEXTURE_2D, name);
  upload(image);
  setFilters(t->getParameters().filter);
  const GLfloat priority = t->getParameters().priority;
  glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_PRIORITY, priority);
  glBindTexture(GL_TEXTURE_2D, 0);
  t->setDeviceNames({name});
  textureMemoryUsed += bookedBytes(*t);
  return true;
}

bool renderGL::discardTexture(TEXTURE::texture* t) {
  if (!t || !makeCurrentContext(false)) return false;
  for (unsigned name : t->getDeviceNames()) {
    if (!glIsTexture(name)) continue;
    glDeleteTextures(1, &name);
    textureMemoryUsed -= bookedBytes(*t);
  }
  t->setDeviceNames({});
  return true;
}

bool renderGL::updateTexture(TEXTURE::texture* t, const void* pixels) {
  if (!t || !pixels || t->getDeviceNames().empty() || !makeCurrentContext(false)) return false;
  const IO::textureImage& image = t->getImage();
  glBindTexture(GL_TEXTURE_2D, t->getDeviceNames().front());
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glTexImage2D(GL_TEXTURE_2D, 0, image.components == 4 ? 4 : 3, image.width, image.height, 0,
               image.components == 4 ? GL_RGBA : GL_RGB, GL_UNSIGNED_BYTE, pixels);
  if (hasMipmaps(t->getParameters().filter)) glGenerateMipmap(GL_TEXTURE_2D);
  glBindTexture(GL_TEXTURE_2D, 0);
  return true;
}

bool renderGL::updateTexture(TEXTURE::texture* t) {
  return t && updateTexture(t, t->getImage().pixels.data());
}

// Volumes have no resource class yet: nothing asks for them.
bool renderGL::cacheTexture3D(TEXTURE::texture3D*) { return false; }
bool renderGL::discardTexture3D(TEXTURE::texture3D*) { return false; }

}  // namespace RENDERING
}  // namespace JEV
