#include "jev3d/math/matrix4.h"

#include "jev3d/math/internal/matrix4.inl"

namespace JEV {
namespace MATH {

template class matrix4<float>;
template class matrix4<double>;
template bool matrix4<int>::jacobi(const matrix4<int>&, int[4], matrix4<int>&, int&);

}  // namespace MATH
}  // namespace JEV
