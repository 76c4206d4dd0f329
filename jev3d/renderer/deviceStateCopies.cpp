#include "jev3d/renderer/deviceStateCopies.h"

#include <tuple>

#include "jev3d/renderer/instancing/textureInstance.h"
#include "jev3d/resources/texture.h"

namespace JEV {
namespace RENDERING {
namespace {

// Clones `s` into `copy` and reports whether the compared values differed.
template <class S, class Key>
bool storeIfChanged(const S& s, S& copy, Key key) {
  const bool changed = key(s) != key(copy);
  s.clone(&copy);
  return changed;
}

// The copies of the rectangles are mirrors that nothing links to nor observes, written at
// every push and pop of every clip: a changed value is written without notifying, and
// the member fields are read without a call through the table. True when the value
// changed.
template <class F>
bool mirror(const F& from, F& to) {
  const auto& v = SYSTEM::memberValue(from);
  if (SYSTEM::memberValue(to) == v) return false;
  to.F::V() = v;
  return true;
}

// True when the computed rectangle, the one the device gets, changed.
bool mirrorRectangle(const RENDERSTATE::rectangleState& from, RENDERSTATE::rectangleState& to) {
  mirror(from.x, to.x);
  mirror(from.y, to.y);
  mirror(from.width, to.width);
  mirror(from.height, to.height);
  mirror(from.intersectParent, to.intersectParent);
  bool changed = mirror(from.computedX, to.computedX);
  changed |= mirror(from.computedY, to.computedY);
  changed |= mirror(from.computedWidth, to.computedWidth);
  changed |= mirror(from.computedHeight, to.computedHeight);
  return changed;
}

template <class M>
bool sameMatrix(const M& a, const M& b) {
  for (int i = 0; i < 16; ++i)
    if (a[i] != b[i]) return false;
  return true;
}

}  // namespace

deviceStateCopies::deviceStateCopies() {
  for (int p = 0; p < CLIP_PLANE_COUNT; ++p) clipPlanes[p].plane = CLIP_PLANE(p);
  for (int l = 0; l < LIGHT_SOURCE_COUNT; ++l) lights[l].light = unsigned(l);
}

bool deviceStateCopies::store(const RENDERSTATE::alphastate& s) {
  return storeIfChanged(s, alpha, [](const RENDERSTATE::alphastate& a) {
    return std::make_tuple(a.enable, a.function, a.reference);
  });
}

bool deviceStateCopies::store(const RENDERSTATE::clipPlanestate& s) {
  if (s.plane < 0 || s.plane >= CLIP_PLANE_COUNT) return true;
  return storeIfChanged(s, clipPlanes[s.plane], [](const RENDERSTATE::clipPlanestate& c) {
    return std::make_tuple(c.enable.cV(), c.a.cV(), c.b.cV(), c.c.cV(), c.d.cV());
  });
}

bool deviceStateCopies::store(const RENDERSTATE::blendstate& s) {
  return storeIfChanged(s, blend, [](const RENDERSTATE::blendstate& b) {
    return std::make_tuple(b.enable, b.source, b.destination);
  });
}

bool deviceStateCopies::store(const RENDERSTATE::cullstate& s) {
  return storeIfChanged(s, cull, [](const RENDERSTATE::cullstate& c) {
    return std::make_tuple(c.enable.cV(), c.frontFace);
  });
}

bool deviceStateCopies::store(const RENDERSTATE::lightingstate& s) {
  return storeIfChanged(s, lighting, [](const RENDERSTATE::lightingstate& l) {
    return std::make_tuple(l.enable.cV(), l.twoSide.cV());
  });
}

bool deviceStateCopies::store(const RENDERSTATE::lightstate& s) {
  if (s.light >= unsigned(LIGHT_SOURCE_COUNT)) return true;
  RENDERSTATE::lightstate& copy = lights[s.light];
  // Lights are placed through matrices that may change between frames: any difference
  // in them, or in the light itself, sends it again.
  const bool changed =
      std::make_tuple(s.type, s.enable, s.ambient.cV(), s.diffuse.cV(), s.specular.cV(),
                      s.direction.x, s.direction.y, s.direction.z, s.position.x, s.position.y,
                      s.position.z, s.spotExponent, s.spotCutoff, s.constantAttenuation,
                      s.linearAttenuation, s.quadraticAttenuation, s.viewFlag.cV()) !=
          std::make_tuple(copy.type, copy.enable, copy.ambient.cV(), copy.diffuse.cV(),
                          copy.specular.cV(), copy.direction.x, copy.direction.y, copy.direction.z,
                          copy.position.x, copy.position.y, copy.position.z, copy.spotExponent,
                          copy.spotCutoff, copy.constantAttenuation, copy.linearAttenuation,
                          copy.quadraticAttenuation, copy.viewFlag.cV()) ||
      !sameMatrix(s.positionMatrix.cV(), copy.positionMatrix.cV()) ||
      !sameMatrix(s.directionMatrix.cV(), copy.directionMatrix.cV()) ||
      !sameMatrix(camera.view.cV(), lightViews[s.light]);
  s.clone(&copy);
  lightViews[s.light] = camera.view.cV();
  return changed;
}

bool deviceStateCopies::store(const RENDERSTATE::colorMaterialstate& s) {
  return storeIfChanged(s, colorMaterial, [](const RENDERSTATE::colorMaterialstate& c) {
    return std::make_tuple(c.mode, c.face);
  });
}

bool deviceStateCopies::store(const RENDERSTATE::materialstate& s) {
  return storeIfChanged(s, material, [](const RENDERSTATE::materialstate& m) {
    return std::make_tuple(m.frontEmissive.cV().toU32(), m.frontAmbient.cV().toU32(),
                           m.frontDiffuse.cV().toU32(), m.frontSpecular.cV().toU32(),
                           m.frontShininess.cV(), m.backEmissive.cV().toU32(),
                           m.backAmbient.cV().toU32(), m.backDiffuse.cV().toU32(),
                           m.backSpecular.cV().toU32(), m.backShininess.cV());
  });
}

bool deviceStateCopies::store(const RENDERSTATE::zbufferstate& s) {
  // A state that clears first acts on every application, so it is always sent.
  const bool changed = storeIfChanged(s, zbuffer, [](const RENDERSTATE::zbufferstate& z) {
    return std::make_tuple(z.enable.cV(), z.function, z.writeEnable.cV(), z.rangeNear.cV(),
                           z.rangeFar.cV());
  });
  return changed || s.clearFirst.cV();
}

bool deviceStateCopies::store(const RENDERSTATE::colorbufferstate& s) {
  return storeIfChanged(s, colorBuffer,
                        [](const RENDERSTATE::colorbufferstate& c) { return c.writeMask.cV(); });
}

bool deviceStateCopies::store(const RENDERSTATE::viewportstate& s) {
  viewport.type = s.type;
  return mirrorRectangle(s, viewport);
}

bool deviceStateCopies::store(const RENDERSTATE::scissorstate& s) {
  const bool changed = mirror(s.enable, scissor.enable);
  return mirrorRectangle(s, scissor) || changed;
}

bool deviceStateCopies::store(const RENDERSTATE::wireframestate& s) {
  return storeIfChanged(s, wireframe,
                        [](const RENDERSTATE::wireframestate& w) { return int(w.mode); });
}

bool deviceStateCopies::store(const RENDERSTATE::pointSizestate& s) {
  return storeIfChanged(s, pointSize,
                        [](const RENDERSTATE::pointSizestate& p) { return p.size.cV(); });
}

bool deviceStateCopies::store(const RENDERSTATE::fogState& s) {
  return storeIfChanged(s, fog, [](const RENDERSTATE::fogState& f) {
    return std::make_tuple(f.enable.cV(), f.mode, f.type, f.color.toU32(), f.start.cV(), f.end.cV(),
                           f.density.cV());
  });
}

bool deviceStateCopies::store(TEXTURE_ACTIVE unit, INSTANCING::textureInstance* texture) {
  if (unit < 0 || unit >= TEXTURE_ACTIVE_COUNT) return true;
  // An instance may be given another texture, and a texture may be cached anew.
  const TEXTURE::texture* object = texture ? texture->getTexture() : nullptr;
  const unsigned name =
      object && !object->getDeviceNames().empty() ? object->getDeviceNames().front() : 0;
  const INSTANCING::textureInstance::environmentDescriptor environment =
      texture ? texture->environment : INSTANCING::textureInstance::environmentDescriptor();
  const bool changed = textures[unit] != texture || textureObjects[unit] != object ||
                       textureNames[unit] != name || textureEnvironments[unit] != environment;
  textures[unit] = texture;
  textureEnvironments[unit] = environment;
  textureObjects[unit] = object;
  textureNames[unit] = name;
  return changed;
}

bool deviceStateCopies::storeCamera(const MATH::matrix4<float>& projection,
                                    const MATH::matrix4<float>& view) {
  const bool changed =
      !sameMatrix(projection, camera.projection.cV()) || !sameMatrix(view, camera.view.cV());
  camera.projection = projection;
  camera.view = view;
  return changed;
}

bool deviceStateCopies::storeTransform(const MATH::matrix4<float>& matrix) {
  const bool changed = !sameMatrix(matrix, transform.matrix.cV());
  transform.matrix = matrix;
  return changed;
}

}  // namespace RENDERING
}  // namespace JEV
