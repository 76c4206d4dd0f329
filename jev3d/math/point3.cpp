#include "jev3d/math/point3.h"

#include "jev3d/math/internal/point3.inl"

namespace JEV {
namespace MATH {

template class point3<int>;
template class point3<float>;
template class point3<double>;

}  // namespace MATH
}  // namespace JEV
