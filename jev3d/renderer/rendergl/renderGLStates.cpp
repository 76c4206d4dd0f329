#include "jev3d/renderer/instancing/renderTargetInstance.h"
#include "jev3d/renderer/instancing/textureInstance.h"
#include "jev3d/renderer/rendergl/renderGL.h"

namespace JEV {
namespace RENDERING {

// The state setters keep the device's copies; the copies decide what reaches GL.

bool renderGL::setAlphaState(RENDERSTATE::alphastate& s) {
  current.store(s);
  return true;
}

bool renderGL::setClipPlaneState(RENDERSTATE::clipPlanestate& s) {
  current.store(s);
  return true;
}

bool renderGL::setBlendState(RENDERSTATE::blendstate& s) {
  current.store(s);
  return true;
}

bool renderGL::setCullState(RENDERSTATE::cullstate& s) {
  current.store(s);
  return true;
}

bool renderGL::setLightingState(RENDERSTATE::lightingstate& s) {
  current.store(s);
  return true;
}

bool renderGL::setLightState(RENDERSTATE::lightstate& s) {
  current.store(s);
  return true;
}

bool renderGL::setColorMaterialState(RENDERSTATE::colorMaterialstate& s) {
  current.store(s);
  return true;
}

bool renderGL::setMaterialState(RENDERSTATE::materialstate& s) {
  current.store(s);
  return true;
}

bool renderGL::setTextureState(INSTANCING::textureInstance& s) {
  current.store(s.unit, &s);
  return true;
}

bool renderGL::setTexture3DState(INSTANCING::textureInstance& s) {
  current.store(s.unit, &s);
  return true;
}

bool renderGL::setZbufferState(RENDERSTATE::zbufferstate& s) {
  current.store(s);
  return true;
}

bool renderGL::setColorBufferState(RENDERSTATE::colorbufferstate& s) {
  current.store(s);
  return true;
}

bool renderGL::setViewportState(RENDERSTATE::viewportstate& s) {
  current.store(s);
  return true;
}

bool renderGL::setScissorState(RENDERSTATE::scissorstate& s) {
  current.store(s);
  return true;
}

bool renderGL::setWireFrameState(RENDERSTATE::wireframestate& s) {
  current.store(s);
  return true;
}

bool renderGL::setPointSizeState(RENDERSTATE::pointSizestate& s) {
  current.store(s);
  return true;
}

bool renderGL::setFogState(RENDERSTATE::fogState& s) {
  current.store(s);
  return true;
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

bool renderGL::setCameraState(const MATH::matrix4<float>& projection,
                              const MATH::matrix4<float>& view) {
  current.storeCamera(projection, view);
  return true;
}

bool renderGL::setTransformState(const MATH::matrix4<float>& matrix) {
  current.storeTransform(matrix);
  return true;
}

bool renderGL::beginScene(INSTANCING::renderTargetInstance& target) {
  current.renderTarget = &target;
  return true;
}

bool renderGL::clear(INSTANCING::renderTargetInstance&) { return true; }

}  // namespace RENDERING
}  // namespace JEV
