#pragma once

#include <cmath>

#include "jev3d/math/matrix4.h"
#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {
namespace INTERNAL {

// Row-vector transforms the handles build their drags from.

inline MATH::matrix4<float> translation(const MATH::point3<float>& d) {
  return MATH::matrix4<float>::getTranslate(d.x, d.y, d.z);
}

// The turn of v by `angle` about the unit axis k (right-handed).
inline MATH::point3<float> turnVector(const MATH::point3<float>& v, const MATH::point3<float>& k,
                                      float angle) {
  const float c = std::cos(angle), s = std::sin(angle);
  return v * c + k.cross(v) * s + k * ((k * v) * (1.f - c));
}

// The turn by `angle` about the unit axis k through c.
inline MATH::matrix4<float> turnAbout(const MATH::point3<float>& c, const MATH::point3<float>& k,
                                      float angle) {
  MATH::matrix4<float> r;
  for (int i = 0; i < 3; ++i) {
    MATH::point3<float> e;
    e[i] = 1.f;
    const MATH::point3<float> out = turnVector(e, k, angle);
    for (int j = 0; j < 3; ++j) r(i, j) = out[j];
  }
  return translation(-c) * r * translation(c);
}

// Scale by f along the unit axis k, about the plane through c across it.
inline MATH::matrix4<float> axisScaleAbout(const MATH::point3<float>& c,
                                           const MATH::point3<float>& k, float f) {
  MATH::matrix4<float> m;
  for (int r = 0; r < 3; ++r)
    for (int col = 0; col < 3; ++col) m(r, col) += (f - 1.f) * k[r] * k[col];
  return translation(-c) * m * translation(c);
}

}  // namespace INTERNAL
}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
