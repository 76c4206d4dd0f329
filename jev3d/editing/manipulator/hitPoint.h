#pragma once

#include "jev3d/math/point3.h"

namespace JEV {
namespace SG {
class node;
}
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {

// Where a pick ray met a manipulator's handle: the widget, its id (-1 for none), the
// point in the space the ray was given in, and the face that was hit.
struct hitPoint {
  SG::node* node = nullptr;
  int id = -1;
  MATH::point3<float> point;
  int face = -1;
};

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
