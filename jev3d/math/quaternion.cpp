#include "jev3d/math/quaternion.h"

#include "jev3d/math/internal/quaternion.inl"

namespace JEV {
namespace MATH {

template class quaternion<float>;
template class quaternion<double>;
template quaternion<int>& quaternion<int>::fromRotationMatrix(const matrix3<int>&);
template void quaternion<int>::toRotationMatrix(matrix3<int>&) const;

}  // namespace MATH
}  // namespace JEV
