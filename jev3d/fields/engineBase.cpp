#include "jev3d/fields/engineBase.h"

#include <string>

#include "jev3d/fields/engineCondition.h"
#include "jev3d/math/matrix3.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/math/point2.h"
#include "jev3d/math/point3.h"
#include "jev3d/math/point4.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace SYSTEM {

// The engine kinds of the library's interface, over both linker kinds.
#define JEV3D_ENGINE_BOTH_KINDS(T)                    \
  template class INTERNAL::engineOver<T, linkerBase>; \
  template class INTERNAL::engineOver<T, mtLinker>;   \
  template class engineBase<T>;                       \
  template class MT::engineBase<T>;

JEV3D_ENGINE_BOTH_KINDS(char)
JEV3D_ENGINE_BOTH_KINDS(unsigned char)
JEV3D_ENGINE_BOTH_KINDS(short)
JEV3D_ENGINE_BOTH_KINDS(unsigned short)
JEV3D_ENGINE_BOTH_KINDS(int)
JEV3D_ENGINE_BOTH_KINDS(unsigned int)
JEV3D_ENGINE_BOTH_KINDS(unsigned long)
JEV3D_ENGINE_BOTH_KINDS(float)
JEV3D_ENGINE_BOTH_KINDS(double)
JEV3D_ENGINE_BOTH_KINDS(bool)
JEV3D_ENGINE_BOTH_KINDS(MATH::point2<int>)
JEV3D_ENGINE_BOTH_KINDS(MATH::point2<float>)
JEV3D_ENGINE_BOTH_KINDS(MATH::point2<double>)
JEV3D_ENGINE_BOTH_KINDS(MATH::point3<int>)
JEV3D_ENGINE_BOTH_KINDS(MATH::point3<float>)
JEV3D_ENGINE_BOTH_KINDS(MATH::point3<double>)
JEV3D_ENGINE_BOTH_KINDS(MATH::point4<int>)
JEV3D_ENGINE_BOTH_KINDS(MATH::point4<float>)
JEV3D_ENGINE_BOTH_KINDS(MATH::point4<double>)
JEV3D_ENGINE_BOTH_KINDS(MATH::matrix3<float>)
JEV3D_ENGINE_BOTH_KINDS(MATH::matrix3<double>)
JEV3D_ENGINE_BOTH_KINDS(MATH::matrix4<float>)
JEV3D_ENGINE_BOTH_KINDS(MATH::matrix4<double>)
JEV3D_ENGINE_BOTH_KINDS(CORE::color)
JEV3D_ENGINE_BOTH_KINDS(std::string)

#undef JEV3D_ENGINE_BOTH_KINDS

}  // namespace SYSTEM
}  // namespace JEV
