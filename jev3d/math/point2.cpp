#include "jev3d/math/point2.h"

#include "jev3d/math/internal/point2.inl"

namespace JEV {
namespace MATH {

template class point2<int>;
template class point2<float>;
template class point2<double>;

}  // namespace MATH
}  // namespace JEV
