#pragma once

#include "jev3d/math/matrix4.h"
#include "jev3d/math/point3.h"
#include "jev3d/renderer/renderstate/renderstate.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace RENDERING {
namespace RENDERSTATE {

// One light source of the fixed pipeline, `light` 0 to 23 (stack slot 10 + light). The
// position and direction are taken through their matrices when the device applies the
// state; with `viewFlag` they are in camera space already.
class lightstate : public renderstate {
 public:
  lightstate() = default;
  lightstate(unsigned light, LIGHT_TYPE type, bool enable, CORE::color ambient, CORE::color diffuse,
             CORE::color specular, const MATH::point3<float>& direction,
             const MATH::point3<float>& position, float spotExponent, float spotCutoff,
             float constantAttenuation, float linearAttenuation, float quadraticAttenuation,
             const MATH::matrix4<float>& positionMatrix,
             const MATH::matrix4<float>& directionMatrix);
  void set(unsigned light, LIGHT_TYPE type, bool enable, CORE::color ambient, CORE::color diffuse,
           CORE::color specular, const MATH::point3<float>& direction,
           const MATH::point3<float>& position, float spotExponent, float spotCutoff,
           float constantAttenuation, float linearAttenuation, float quadraticAttenuation,
           const MATH::matrix4<float>& positionMatrix, const MATH::matrix4<float>& directionMatrix);
  void clone(lightstate* target) const;
  void render(renderingContext* rc) override;

  // What the device computed at the last apply.
  const MATH::point3<float>& getCameraSpacePosition() const { return cameraSpacePosition; }
  const MATH::point3<float>& getCameraSpaceDirection() const { return cameraSpaceDirection; }
  // Written by the device when it applies the state.
  void setCameraSpace(const MATH::point3<float>& position, const MATH::point3<float>& direction) {
    cameraSpacePosition = position;
    cameraSpaceDirection = direction;
  }

  unsigned light = 0;
  LIGHT_TYPE type = LIGHT_DIRECTIONAL;
  bool enable = false;
  SYSTEM::fieldBase<CORE::color> ambient{CORE::color(150, 150, 150, 255)};
  SYSTEM::fieldBase<CORE::color> diffuse{CORE::color(200, 200, 200, 255)};
  SYSTEM::fieldBase<CORE::color> specular{CORE::color(0, 0, 0, 255)};
  MATH::point3<float> direction{0.0f, 0.0f, 1.0f};
  MATH::point3<float> position{0.0f, 1.0f, 0.0f};
  float spotExponent = 0.0f;
  float spotCutoff = 180.0f;
  float constantAttenuation = 1.0f;
  float linearAttenuation = 0.0f;
  float quadraticAttenuation = 0.0f;
  SYSTEM::fieldBase<MATH::matrix4<float>> positionMatrix;
  SYSTEM::fieldBase<bool> viewFlag{false};
  SYSTEM::fieldBase<MATH::matrix4<float>> directionMatrix;

 private:
  MATH::point3<float> cameraSpaceDirection{0.0f, 0.0f, 0.0f};
  MATH::point3<float> cameraSpacePosition{0.0f, 0.0f, 0.0f};
};

}  // namespace RENDERSTATE
}  // namespace RENDERING
}  // namespace JEV
