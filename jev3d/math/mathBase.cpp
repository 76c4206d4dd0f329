#include "jev3d/math/mathBase.h"

namespace JEV {
namespace MATH {

template class mathBase<float>;
template class mathBase<double>;

}  // namespace MATH
}  // namespace JEV
