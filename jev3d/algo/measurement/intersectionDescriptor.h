#pragma once

#include <vector>

namespace JEV {
namespace MESH {
namespace ALGO {
namespace MEASUREMENT {

// The result of testing two solids against each other: for the vertices of each, the
// signed distance to the other (negative inside it, MAX_T outside its grid), how many lie
// inside and how deep the deepest does, and whether the two intersect.
struct intersectionDescriptor {
  bool intersects = false;
  unsigned int firstInsideSecond = 0, secondInsideFirst = 0;
  // The most negative distance of each model's vertices, 0 when none lies inside.
  float firstDepth = 0.0f, secondDepth = 0.0f;
  std::vector<float> firstDistances, secondDistances;

  void clear() { *this = intersectionDescriptor(); }
};

}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
