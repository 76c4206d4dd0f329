#pragma once

#include <algorithm>

#include "jev3d/math/point4.h"

namespace JEV {
namespace MATH {

template <class T>
void point4<T>::computeExtremes(int count, const point4* points, point4& min, point4& max) {
  if (count < 1 || points == nullptr) {
    min = max = ZERO();
    return;
  }
  min = max = points[0];
  for (int i = 1; i < count; ++i) {
    for (int k = 0; k < 4; ++k) {
      min[k] = std::min(min[k], points[i][k]);
      max[k] = std::max(max[k], points[i][k]);
    }
  }
}

}  // namespace MATH
}  // namespace JEV
