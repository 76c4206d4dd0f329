#include <GL/glew.h>

#include <cmath>

#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/instancing/textureInstance.h"
#include "jev3d/renderer/renderTarget.h"
#include "jev3d/renderer/rendergl/renderGL.h"
#include "jev3d/resources/texture.h"

namespace JEV {
namespace RENDERING {
namespace {

using matrix4f = MATH::matrix4<float>;

// Each state setter stores the state in the device copies and sends it to GL only when
// the copy says it changed.

const GLenum alphaFunctions[] = {GL_NEVER,   GL_LESS,     GL_EQUAL,  GL_LEQUAL,
                                 GL_GREATER, GL_NOTEQUAL, GL_GEQUAL, GL_ALWAYS};
const GLenum depthFunctions[] = {GL_NEVER,   GL_LESS,     GL_LEQUAL, GL_EQUAL,
                                 GL_GREATER, GL_NOTEQUAL, GL_GEQUAL, GL_ALWAYS};
const GLenum sourceBlends[] = {GL_ZERO,
                               GL_ONE,
                               GL_DST_COLOR,
                               GL_ONE_MINUS_DST_COLOR,
                               GL_SRC_ALPHA,
                               GL_ONE_MINUS_SRC_ALPHA,
                               GL_DST_ALPHA,
                               GL_ONE_MINUS_DST_ALPHA,
                               GL_SRC_ALPHA_SATURATE};
const GLenum destinationBlends[] = {GL_ZERO,      GL_ONE,
                                    GL_SRC_COLOR, GL_ONE_MINUS_SRC_COLOR,
                                    GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA,
                                    GL_DST_ALPHA, GL_ONE_MINUS_DST_ALPHA};
const GLenum colorMaterials[] = {GL_EMISSION, GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR,
                                 GL_AMBIENT_AND_DIFFUSE};
const GLenum faces[] = {GL_FRONT, GL_BACK, GL_FRONT_AND_BACK};
const GLenum fillModes[] = {GL_FILL, GL_LINE, GL_POINT};
// Lines and points sit slightly in front of filled faces without polygon offset.
const GLclampd depthNear[] = {0.0, double(0.0001f), double(0.00015f)};
const GLclampd depthFar[] = {1.0, double(0.9999f), double(0.99989f)};
const GLenum fogTypes[] = {GL_LINEAR, GL_EXP, GL_EXP2};
const GLenum fogHints[] = {GL_FASTEST, GL_NICEST};

template <class E, size_t N>
GLenum lookup(const GLenum (&table)[N], E value) {
  const size_t i = size_t(value);
  return i < N ? table[i] : table[0];
}

void toFloats(CORE::color c, GLfloat out[4]) {
  out[0] = c.r / 255.0f;
  out[1] = c.g / 255.0f;
  out[2] = c.b / 255.0f;
  out[3] = c.a / 255.0f;
}

void enableIf(GLenum capability, bool on) { on ? glEnable(capability) : glDisable(capability); }

void sendMaterialSide(GLenum face, CORE::color emissive, CORE::color ambient, CORE::color diffuse,
                      CORE::color specular, float shininess) {
  GLfloat v[4];
  toFloats(emissive, v);
  glMaterialfv(face, GL_EMISSION, v);
  toFloats(ambient, v);
  glMaterialfv(face, GL_AMBIENT, v);
  toFloats(diffuse, v);
  glMaterialfv(face, GL_DIFFUSE, v);
  toFloats(specular, v);
  glMaterialfv(face, GL_SPECULAR, v);
  glMaterialf(face, GL_SHININESS,
              shininess < 0.0f     ? 0.0f
              : shininess > 128.0f ? 128.0f
                                   : shininess);
}

MATH::point4<float> times(const MATH::point4<float>& p, const matrix4f& m) { return p * m; }

}  // namespace

bool renderGL::setAlphaState(RENDERSTATE::alphastate& s) {
  if (!mustSend(current.store(s))) return true;
  enableIf(GL_ALPHA_TEST, s.enable);
  glAlphaFunc(lookup(alphaFunctions, s.function), s.reference);
  return true;
}

bool renderGL::setClipPlaneState(RENDERSTATE::clipPlanestate& s) {
  if (!mustSend(current.store(s))) return true;
  if (s.plane < 0 || s.plane >= RENDERSTATE::renderStateEnums::CLIP_PLANE_COUNT) return false;
  const GLenum plane = GLenum(GL_CLIP_PLANE0 + s.plane);
  const GLdouble equation[4] = {s.a.cV(), s.b.cV(), s.c.cV(), s.d.cV()};
  glClipPlane(plane, equation);
  enableIf(plane, s.enable.cV());
  return true;
}

bool renderGL::setBlendState(RENDERSTATE::blendstate& s) {
  if (!mustSend(current.store(s))) return true;
  enableIf(GL_BLEND, s.enable);
  glBlendFunc(lookup(sourceBlends, s.source), lookup(destinationBlends, s.destination));
  return true;
}

bool renderGL::setCullState(RENDERSTATE::cullstate& s) {
  if (!mustSend(current.store(s))) return true;
  enableIf(GL_CULL_FACE, s.enable.cV());
  glCullFace(GL_BACK);
  glFrontFace(s.frontFace == RENDERSTATE::cullstate::FRONT_FACE_CW ? GL_CW : GL_CCW);
  return true;
}

bool renderGL::setLightingState(RENDERSTATE::lightingstate& s) {
  if (!mustSend(current.store(s))) return true;
  enableIf(GL_LIGHTING, s.enable.cV());
  const GLfloat ambient[4] = {0.2f, 0.2f, 0.2f, 1.0f};
  glLightModelfv(GL_LIGHT_MODEL_AMBIENT, ambient);
  glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, GL_FALSE);
  glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, s.twoSide.cV() ? GL_TRUE : GL_FALSE);
  return true;
}

bool renderGL::setLightState(RENDERSTATE::lightstate& s) {
  if (!mustSend(current.store(s))) return true;
  // The device has fewer light tokens than the stack has slots.
  GLint lights = 0;
  glGetIntegerv(GL_MAX_LIGHTS, &lights);
  if (s.light >= unsigned(lights)) return false;
  const GLenum light = GLenum(GL_LIGHT0 + s.light);
  if (!s.enable) {
    glDisable(light);
    return true;
  }
  GLint mode = GL_MODELVIEW;
  glGetIntegerv(GL_MATRIX_MODE, &mode);
  if (mode != GL_MODELVIEW) glMatrixMode(GL_MODELVIEW);
  glPushMatrix();
  glLoadIdentity();
  glEnable(light);
  GLfloat v[4];
  toFloats(s.ambient.cV(), v);
  glLightfv(light, GL_AMBIENT, v);
  toFloats(s.diffuse.cV(), v);
  glLightfv(light, GL_DIFFUSE, v);
  toFloats(s.specular.cV(), v);
  glLightfv(light, GL_SPECULAR, v);
  const matrix4f& view = current.camera.view.cV();
  if (s.type == RENDERSTATE::lightstate::LIGHT_DIRECTIONAL) {
    MATH::point4<float> d = times(MATH::point4<float>(s.direction, 0.0f), s.directionMatrix.cV());
    if (!s.viewFlag.cV()) d = times(d, view);
    d.x = -d.x;
    d.y = -d.y;
    s.setCameraSpace(s.getCameraSpacePosition(), MATH::point3<float>(d.x, d.y, d.z));
    const GLfloat position[4] = {d.x, d.y, d.z, 0.0f};
    glLightfv(light, GL_POSITION, position);
  } else {
    matrix4f flipZ;
    flipZ[10] = -1.0f;
    MATH::point4<float> p =
        times(times(MATH::point4<float>(s.position, 1.0f), s.positionMatrix.cV()), flipZ);
    MATH::point4<float> d = times(MATH::point4<float>(s.direction, 0.0f), s.directionMatrix.cV());
    // The opposite sense of the directional light's flag, kept as lights have always been
    // placed.
    if (s.viewFlag.cV()) {
      p = times(p, view);
      d = times(d, view);
    }
    d.x = -d.x;
    d.y = -d.y;
    s.setCameraSpace(MATH::point3<float>(p.x, p.y, p.z), MATH::point3<float>(d.x, d.y, d.z));
    const GLfloat position[4] = {p.x, p.y, p.z, p.w};
    const GLfloat direction[3] = {d.x, d.y, d.z};
    glLightfv(light, GL_POSITION, position);
    glLightfv(light, GL_SPOT_DIRECTION, direction);
    glLightf(light, GL_SPOT_EXPONENT, s.spotExponent);
    glLightf(light, GL_SPOT_CUTOFF, s.spotCutoff);
  }
  glLightf(light, GL_CONSTANT_ATTENUATION, s.constantAttenuation);
  glLightf(light, GL_LINEAR_ATTENUATION, s.linearAttenuation);
  glLightf(light, GL_QUADRATIC_ATTENUATION, s.quadraticAttenuation);
  glPopMatrix();
  if (mode != GL_MODELVIEW) glMatrixMode(GLenum(mode));
  // The copy keeps what was computed here too.
  current.store(s);
  return true;
}

bool renderGL::setColorMaterialState(RENDERSTATE::colorMaterialstate& s) {
  if (!mustSend(current.store(s))) return true;
  if (s.mode == RENDERSTATE::colorMaterialstate::COLOR_MATERIAL_OFF) {
    glDisable(GL_COLOR_MATERIAL);
    return true;
  }
  // While enabled, GL writes the vertex colour into the material: the copy no longer
  // says what GL holds.
  materialTracked = true;
  glColorMaterial(lookup(faces, s.face), lookup(colorMaterials, s.mode));
  glEnable(GL_COLOR_MATERIAL);
  return true;
}

bool renderGL::setMaterialState(RENDERSTATE::materialstate& s) {
  if (!mustSend(current.store(s) || materialTracked)) return true;
  materialTracked =
      current.colorMaterial.mode != RENDERSTATE::colorMaterialstate::COLOR_MATERIAL_OFF;
  sendMaterialSide(GL_FRONT, s.frontEmissive.cV(), s.frontAmbient.cV(), s.frontDiffuse.cV(),
                   s.frontSpecular.cV(), s.frontShininess.cV());
  sendMaterialSide(GL_BACK, s.backEmissive.cV(), s.backAmbient.cV(), s.backDiffuse.cV(),
                   s.backSpecular.cV(), s.backShininess.cV());
  return true;
}

bool renderGL::setTextureState(INSTANCING::textureInstance& s) {
  if (!mustSend(current.store(s.unit, &s))) return true;
  GLint units = 0;
  glGetIntegerv(GL_MAX_TEXTURE_UNITS, &units);
  if (s.unit >= units) return false;
  glActiveTexture(GLenum(GL_TEXTURE0 + s.unit));
  TEXTURE::texture* t = s.getTexture();
  if (!t || t->getDeviceNames().empty()) {
    glBindTexture(GL_TEXTURE_2D, 0);
    glDisable(GL_TEXTURE_2D);
    glActiveTexture(GL_TEXTURE0);
    return true;
  }
  glEnable(GL_TEXTURE_2D);
  glBindTexture(GL_TEXTURE_2D, t->getDeviceNames().front());
  glMatrixMode(GL_TEXTURE);
  glLoadIdentity();
  glMatrixMode(GL_MODELVIEW);
  glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
  glActiveTexture(GL_TEXTURE0);
  return true;
}

bool renderGL::setTexture3DState(INSTANCING::textureInstance& s) {
  if (!mustSend(current.store(s.unit, &s))) return true;
  // Always unit 0, with its parameters on the 2D target: kept as it has always been.
  glActiveTexture(GL_TEXTURE0);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  return true;
}

bool renderGL::setZbufferState(RENDERSTATE::zbufferstate& s) {
  if (!mustSend(current.store(s))) return true;
  if (s.clearFirst.cV()) {
    glDepthMask(GL_TRUE);
    glClearDepth(1.0);
    glClear(GL_DEPTH_BUFFER_BIT);
  }
  enableIf(GL_DEPTH_TEST, s.enable.cV());
  glDepthFunc(lookup(depthFunctions, s.function));
  glDepthMask(s.writeEnable.cV() ? GL_TRUE : GL_FALSE);
  glDepthRange(s.rangeNear.cV(), s.rangeFar.cV());
  return true;
}

bool renderGL::setColorBufferState(RENDERSTATE::colorbufferstate& s) {
  if (!mustSend(current.store(s))) return true;
  const GLboolean w = s.writeMask.cV() ? GL_TRUE : GL_FALSE;
  glColorMask(w, w, w, w);
  return true;
}

bool renderGL::setViewportState(RENDERSTATE::viewportstate& s) {
  if (!mustSend(current.store(s))) return true;
  glViewport(s.computedX.cV(), s.computedY.cV(), s.computedWidth.cV(), s.computedHeight.cV());
  return true;
}

bool renderGL::setScissorState(RENDERSTATE::scissorstate& s) {
  if (!mustSend(current.store(s))) return true;
  enableIf(GL_SCISSOR_TEST, s.enable.cV());
  glScissor(s.computedX.cV(), s.computedY.cV(), s.computedWidth.cV(), s.computedHeight.cV());
  return true;
}

bool renderGL::setWireFrameState(RENDERSTATE::wireframestate& s) {
  if (!mustSend(current.store(s))) return true;
  glPolygonMode(GL_FRONT_AND_BACK, lookup(fillModes, s.mode));
  const size_t i = size_t(s.mode) < 3 ? size_t(s.mode) : 0;
  glDepthRange(depthNear[i], depthFar[i]);
  return true;
}

bool renderGL::setPointSizeState(RENDERSTATE::pointSizestate& s) {
  if (!mustSend(current.store(s))) return true;
  glPointSize(s.size.cV());
  return true;
}

bool renderGL::setFogState(RENDERSTATE::fogState& s) {
  if (!mustSend(current.store(s))) return true;
  enableIf(GL_FOG, s.enable.cV());
  glFogi(GL_FOG_MODE, GLint(lookup(fogTypes, s.type)));
  GLfloat colour[4];
  toFloats(s.color, colour);
  glFogfv(GL_FOG_COLOR, colour);
  glFogf(GL_FOG_START, s.start.cV());
  glFogf(GL_FOG_END, s.end.cV());
  glFogf(GL_FOG_DENSITY, s.density.cV());
  glHint(GL_FOG_HINT, lookup(fogHints, s.mode));
  return true;
}

bool renderGL::mustSend(bool changed) { return (changed || sendAll) && makeCurrentContext(false); }

void renderGL::sendDefaultStates() {
  sendAll = true;
  setTransformState(matrix4f());
  setCameraState(matrix4f(), matrix4f());
  updateFrustum();
  RENDERSTATE::colorbufferstate colourBuffer;
  setColorBufferState(colourBuffer);
  RENDERSTATE::alphastate alpha;
  setAlphaState(alpha);
  for (int p = 0; p < RENDERSTATE::renderStateEnums::CLIP_PLANE_COUNT; ++p) {
    RENDERSTATE::clipPlanestate plane;
    plane.plane = CLIP_PLANE(p);
    setClipPlaneState(plane);
  }
  RENDERSTATE::blendstate blend;
  setBlendState(blend);
  RENDERSTATE::cullstate cull;
  setCullState(cull);
  RENDERSTATE::lightingstate lighting;
  setLightingState(lighting);
  const int lights = getMaxLight();
  for (int l = 0; l < lights && l < RENDERSTATE::renderStateEnums::LIGHT_SOURCE_COUNT; ++l) {
    RENDERSTATE::lightstate light;
    light.light = unsigned(l);
    setLightState(light);
  }
  RENDERSTATE::colorMaterialstate colorMaterial;
  setColorMaterialState(colorMaterial);
  RENDERSTATE::materialstate material;
  setMaterialState(material);
  RENDERSTATE::scissorstate scissor;
  setScissorState(scissor);
  RENDERSTATE::wireframestate wireframe;
  setWireFrameState(wireframe);
  RENDERSTATE::zbufferstate zbuffer;
  setZbufferState(zbuffer);
  RENDERSTATE::pointSizestate pointSize;
  setPointSizeState(pointSize);
  RENDERSTATE::fogState fog;
  setFogState(fog);
  const int units = getMaxTextureUnits();
  for (int t = 0; t < units && t < RENDERSTATE::renderStateEnums::TEXTURE_ACTIVE_COUNT; ++t) {
    INSTANCING::textureInstance texture{TEXTURE_ACTIVE(t)};
    setTextureState(texture);
    // The instance goes now; what stays is that the unit holds no texture.
    current.store(TEXTURE_ACTIVE(t), nullptr);
  }
  sendAll = false;
}

const RENDERSTATE::clipPlanestate& renderGL::getCurrentClipPlaneStateState(CLIP_PLANE plane) const {
  return current.clipPlanes[plane];
}

const RENDERSTATE::lightstate& renderGL::getCurrentLightState(LIGHT_SOURCE light) const {
  return current.lights[light];
}

INSTANCING::textureInstance* renderGL::getCurrentTextureState(TEXTURE_ACTIVE unit) const {
  return current.textures[unit];
}

bool renderGL::setCameraState(const matrix4f& projection, const matrix4f& view) {
  if (!mustSend(current.storeCamera(projection, view))) return true;
  return loadMatrices();
}

bool renderGL::setTransformState(const matrix4f& matrix) {
  if (!mustSend(current.storeTransform(matrix))) return true;
  return loadMatrices();
}

// GL's handedness lives only here: F flips z, GL's projection is F·projection and its
// model-view transform·view·F. Row-vector matrices stored by rows are what GL reads as
// its column-major layout.
bool renderGL::loadMatrices() {
  if (!makeCurrentContext(false)) return false;
  matrix4f flip;
  flip[10] = -1.0f;
  const matrix4f projection = flip * current.camera.projection.cV();
  const matrix4f modelView = current.transform.matrix.cV() * current.camera.view.cV() * flip;
  glMatrixMode(GL_PROJECTION);
  glLoadMatrixf(&projection[0]);
  glMatrixMode(GL_MODELVIEW);
  glLoadMatrixf(&modelView[0]);
  return true;
}

// Row vectors: a point p is inside when p·(column 3 ± column k) >= 0 for the clip matrix
// view·projection, so the planes are sums and differences of its columns.
bool renderGL::updateFrustum() {
  const matrix4f m = current.camera.view.cV() * current.camera.projection.cV();
  const MATH::point4<float> w = m.getColumn(3);
  for (int k = 0; k < 3; ++k) {
    const MATH::point4<float> c = m.getColumn(k);
    frustumPlanes[2 * k] = w + c;
    frustumPlanes[2 * k + 1] = w - c;
  }
  for (int i = 0; i < 6; ++i) {
    MATH::point4<float>& p = frustumPlanes[i];
    const float length = std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
    if (length > 0.0f)
      p = MATH::point4<float>(p.x / length, p.y / length, p.z / length, p.w / length);
  }
  return true;
}

MATH::point4<float> renderGL::getFrustumPlane(int index) const {
  return index >= 0 && index < 6 ? frustumPlanes[index] : MATH::point4<float>::ZERO();
}

bool renderGL::beginScene(INSTANCING::renderTargetInstance& target) {
  current.renderTarget = &target;
  if (!makeCurrentContext(false)) return false;
  if (glBindFramebuffer) {
    glBindFramebuffer(GL_FRAMEBUFFER,
                      target.isWindowTarget() ? 0 : target.getTarget()->getFramebuffer());
  }
  setScissorState(target.scissor);
  setViewportState(target.viewport);
  return true;
}

bool renderGL::clear(INSTANCING::renderTargetInstance& target) {
  if (!makeCurrentContext(false)) return false;
  GLint viewport[4], scissor[4];
  GLboolean scissorOn = glIsEnabled(GL_SCISSOR_TEST);
  GLboolean colourMask[4], depthMask = GL_TRUE;
  glGetIntegerv(GL_VIEWPORT, viewport);
  glGetIntegerv(GL_SCISSOR_BOX, scissor);
  glGetBooleanv(GL_COLOR_WRITEMASK, colourMask);
  glGetBooleanv(GL_DEPTH_WRITEMASK, &depthMask);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  glDepthMask(GL_TRUE);
  const RENDERSTATE::viewportstate& r = target.viewport;
  glViewport(r.computedX.cV(), r.computedY.cV(), r.computedWidth.cV(), r.computedHeight.cV());
  glScissor(r.computedX.cV(), r.computedY.cV(), r.computedWidth.cV(), r.computedHeight.cV());
  glEnable(GL_SCISSOR_TEST);
  GLfloat colour[4];
  toFloats(target.clearColour.cV(), colour);
  glClearColor(colour[0], colour[1], colour[2], colour[3]);
  glClearDepth(1.0);
  glClearStencil(0);
  GLbitfield buffers = 0;
  if (target.clearColorBuffer.cV()) buffers |= GL_COLOR_BUFFER_BIT;
  if (target.clearDepthBuffer.cV()) buffers |= GL_DEPTH_BUFFER_BIT;
  if (target.clearStencilBuffer.cV()) buffers |= GL_STENCIL_BUFFER_BIT;
  glClear(buffers);
  glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
  glScissor(scissor[0], scissor[1], scissor[2], scissor[3]);
  enableIf(GL_SCISSOR_TEST, scissorOn == GL_TRUE);
  glColorMask(colourMask[0], colourMask[1], colourMask[2], colourMask[3]);
  glDepthMask(depthMask);
  return true;
}

}  // namespace RENDERING
}  // namespace JEV
