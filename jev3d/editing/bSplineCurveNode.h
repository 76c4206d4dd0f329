#pragma once

#include <vector>

#include "jev3d/editing/polylineNode.h"
#include "jev3d/fields/fieldBase.h"
#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
namespace EDITING {

// Draws the uniform cubic B-spline of a chain of control points, sampled
// samplesPerSpan points a span; an open curve is clamped to its end points.
class bSplineCurveNode : public polylineNode {
 public:
  // Samples the curve of these control points into the points drawn.
  void setControlPoints(const std::vector<MATH::point3<float>>& controlPoints);

  // Points inserted so that no segment is longer than maxLength.
  static void refine(const std::vector<MATH::point3<float>>& in, float maxLength, bool closed,
                     std::vector<MATH::point3<float>>& out);
  // The B-spline of the control points as samplesPerSpan points a span.
  static void discretize(const std::vector<MATH::point3<float>>& controlPoints,
                         unsigned int samplesPerSpan, bool closed,
                         std::vector<MATH::point3<float>>& out);
  // The points a Douglas-Peucker pass keeps at the tolerance.
  static void simplify(const std::vector<MATH::point3<float>>& in, float tolerance, bool closed,
                       std::vector<MATH::point3<float>>& out);

  SYSTEM::fieldBase<unsigned int> samplesPerSpan{8u};
};

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
