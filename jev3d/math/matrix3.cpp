#include "jev3d/math/matrix3.h"

#include "jev3d/math/internal/matrix3.inl"

namespace JEV {
namespace MATH {

template class matrix3<float>;
template class matrix3<double>;

}  // namespace MATH
}  // namespace JEV
