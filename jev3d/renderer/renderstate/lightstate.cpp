#include "jev3d/renderer/renderstate/lightstate.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

lightstate::lightstate(unsigned l, LIGHT_TYPE t, bool e, CORE::color a, CORE::color d,
                       CORE::color s, const MATH::point3<float>& dir,
                       const MATH::point3<float>& pos, float se, float sc, float ca, float la,
                       float qa, const MATH::matrix4<float>& pm, const MATH::matrix4<float>& dm) {
  set(l, t, e, a, d, s, dir, pos, se, sc, ca, la, qa, pm, dm);
}

void lightstate::set(unsigned l, LIGHT_TYPE t, bool e, CORE::color a, CORE::color d, CORE::color s,
                     const MATH::point3<float>& dir, const MATH::point3<float>& pos, float se,
                     float sc, float ca, float la, float qa, const MATH::matrix4<float>& pm,
                     const MATH::matrix4<float>& dm) {
  light = l;
  type = t;
  enable = e;
  ambient = a;
  diffuse = d;
  specular = s;
  direction = dir;
  position = pos;
  spotExponent = se;
  spotCutoff = sc;
  constantAttenuation = ca;
  linearAttenuation = la;
  quadraticAttenuation = qa;
  positionMatrix = pm;
  directionMatrix = dm;
}

void lightstate::clone(lightstate* target) const {
  target->set(light, type, enable, ambient.cV(), diffuse.cV(), specular.cV(), direction, position,
              spotExponent, spotCutoff, constantAttenuation, linearAttenuation,
              quadraticAttenuation, positionMatrix.cV(), directionMatrix.cV());
  target->viewFlag = viewFlag.cV();
  target->setCameraSpace(cameraSpacePosition, cameraSpaceDirection);
}

void lightstate::render(renderingContext* rc) {
  // A light past the 24 slots would land on the texture slots: its subtree is drawn
  // without it.
  if (light >= LIGHT_SOURCE_COUNT) {
    SG::node::render(rc);
    return;
  }
  renderOnSlot(rc, LIGHT_STATE0 + int(light));
}

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
