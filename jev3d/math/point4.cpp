#include "jev3d/math/point4.h"

#include "jev3d/math/internal/point4.inl"

namespace JEV {
namespace MATH {

template class point4<int>;
template class point4<float>;
template class point4<double>;

}  // namespace MATH
}  // namespace JEV
