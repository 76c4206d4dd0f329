#include <GL/glew.h>

#include "jev3d/renderer/renderTarget.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/resources/texture.h"
#include "jev3d/resources/texture3D.h"

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
  bookTexture(name, bookedBytes(*t));
  return true;
}

bool renderGL::discardTexture(TEXTURE::texture* t) { return deleteTextureNames(t); }

bool renderGL::deleteTextureNames(CORE::deviceResource* t) {
  if (!t || !makeCurrentContext(false)) return false;
  for (unsigned name : t->getDeviceNames()) {
    if (glIsTexture(name)) glDeleteTextures(1, &name);
    unbookTexture(name);
  }
  t->setDeviceNames({});
  return true;
}

void renderGL::bookTexture(unsigned name, uint32_t bytes) {
  textureBooking[name] = bytes;
  textureMemoryUsed += bytes;
}

void renderGL::unbookTexture(unsigned name) {
  const auto booked = textureBooking.find(name);
  if (booked == textureBooking.end()) return;
  textureMemoryUsed -= booked->second;
  textureBooking.erase(booked);
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

bool renderGL::isSupportRenderTargetOnTexture() {
  if (!makeCurrentContext(false) || !glCheckFramebufferStatus) return false;
  return glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_UNSUPPORTED;
}

bool renderGL::cacheRenderTargetOnTexture(renderTarget* target) {
  if (!target || !target->getTexture() || !makeCurrentContext(false)) return false;
  if (!glGenFramebuffers) return false;
  TEXTURE::texture& colour = *target->getTexture();
  if (!colour.cache() || colour.getDeviceNames().empty()) return false;
  discardRenderTargetOnTexture(target);
  glGenFramebuffers(1, &target->framebuffer);
  glGenRenderbuffers(1, &target->depthBuffer);
  glBindRenderbuffer(GL_RENDERBUFFER, target->depthBuffer);
  glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, colour.getWidth(),
                        colour.getHeight());
  glBindRenderbuffer(GL_RENDERBUFFER, 0);
  glBindFramebuffer(GL_FRAMEBUFFER, target->framebuffer);
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                         colour.getDeviceNames().front(), 0);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER,
                            target->depthBuffer);
  const bool complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  if (!complete) discardRenderTargetOnTexture(target);
  return complete;
}

bool renderGL::isCachedRenderTargetOnTexture(const renderTarget* target) const {
  return target && target->framebuffer != 0 && glIsFramebuffer(target->framebuffer);
}

bool renderGL::discardRenderTargetOnTexture(renderTarget* target) {
  if (!target || !makeCurrentContext(false)) return false;
  if (target->framebuffer && glIsFramebuffer(target->framebuffer)) {
    glDeleteFramebuffers(1, &target->framebuffer);
  }
  if (target->depthBuffer && glIsRenderbuffer(target->depthBuffer)) {
    glDeleteRenderbuffers(1, &target->depthBuffer);
  }
  target->framebuffer = 0;
  target->depthBuffer = 0;
  return true;
}

bool renderGL::cacheTexture3D(TEXTURE::texture3D* t) {
  if (!t || !makeCurrentContext(false) || !glTexImage3D) return false;
  discardTexture3D(t);
  if (t->empty()) return false;
  // Luminance 8 is named as the internal format and as the format, as it always has
  // been. A device that refuses it as a format is given the plain luminance format for
  // the same bytes, so that the volume still arrives.
  constexpr GLenum luminance8 = 0x8040;
  constexpr GLint clampToBorder = 0x812D;
  // Earlier errors are not this upload's (a few at most are queued).
  for (int i = 0; i < 16 && glGetError() != GL_NO_ERROR; ++i) {
  }
  GLuint name = 0;
  glGenTextures(1, &name);
  glBindTexture(GL_TEXTURE_3D, name);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glTexImage3D(GL_TEXTURE_3D, 0, GLint(luminance8), t->getWidth(), t->getHeight(), t->getDepth(),
               0, luminance8, GL_UNSIGNED_BYTE, t->getSamples().data());
  if (glGetError() != GL_NO_ERROR) {
    glTexImage3D(GL_TEXTURE_3D, 0, GLint(luminance8), t->getWidth(), t->getHeight(),
                 t->getDepth(), 0, GL_LUMINANCE, GL_UNSIGNED_BYTE, t->getSamples().data());
  }
  glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_WRAP_S, clampToBorder);
  glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_WRAP_T, clampToBorder);
  glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_WRAP_R, clampToBorder);
  const bool mipmaps = glGenerateMipmap != nullptr;
  glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_MIN_FILTER,
                  mipmaps ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR);
  glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  if (mipmaps) glGenerateMipmap(GL_TEXTURE_3D);
  glBindTexture(GL_TEXTURE_3D, 0);
  const bool uploaded = glGetError() == GL_NO_ERROR;
  if (!uploaded) {
    glDeleteTextures(1, &name);
    return false;
  }
  t->setDeviceNames({name});
  // One byte a sample, and the chain of halved levels adds about a seventh.
  const uint32_t bytes = uint32_t(t->getSamples().size());
  bookTexture(name, mipmaps ? bytes + bytes / 7 : bytes);
  return true;
}

bool renderGL::discardTexture3D(TEXTURE::texture3D* t) { return deleteTextureNames(t); }

}  // namespace RENDERING
}  // namespace JEV
