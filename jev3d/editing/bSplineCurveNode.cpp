#include "jev3d/editing/bSplineCurveNode.h"

#include "jev3d/editing/internal/polylineMath.h"

namespace JEV {
namespace MESH {
namespace EDITING {

void bSplineCurveNode::setControlPoints(const std::vector<MATH::point3<float>>& controlPoints) {
  std::vector<MATH::point3<float>> curve;
  discretize(controlPoints, samplesPerSpan.cV(), closed.cV(), curve);
  setPoints(curve);
}

void bSplineCurveNode::refine(const std::vector<MATH::point3<float>>& in, float maxLength,
                              bool closed, std::vector<MATH::point3<float>>& out) {
  INTERNAL::refinePoints(in, maxLength, closed, out);
}

void bSplineCurveNode::discretize(const std::vector<MATH::point3<float>>& controlPoints,
                                  unsigned int samples, bool closed,
                                  std::vector<MATH::point3<float>>& out) {
  INTERNAL::discretizeBSpline(controlPoints, samples, closed, out);
}

void bSplineCurveNode::simplify(const std::vector<MATH::point3<float>>& in, float tolerance,
                                bool closed, std::vector<MATH::point3<float>>& out) {
  std::vector<unsigned char> keep;
  INTERNAL::simplifyPoints(in, tolerance, closed, keep);
  out.clear();
  for (size_t i = 0; i < in.size(); ++i)
    if (keep[i]) out.push_back(in[i]);
}

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
