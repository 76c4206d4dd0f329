#pragma once

#include <vector>

#include "jev3d/math/point3.h"
#include "jev3d/math/ray3.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace INTERNAL {

using point3f = MATH::point3<float>;

// Distance from p to the segment a-b (a point when a equals b).
float pointSegmentDistance(const point3f& p, const point3f& a, const point3f& b);
// Smallest distance between the segments a0-a1 and b0-b1.
float segmentSegmentDistance(const point3f& a0, const point3f& a1, const point3f& b0,
                             const point3f& b1);
// Number of segments of a chain of n points: n - 1, or n when closed (and n > 2).
unsigned int segmentCount(unsigned int n, bool closed);

// True, with bestT lowered to p's place along the ray, when p lies within the squared
// radius r2 of the ray and nearer its origin than bestT: the picking rule for control points.
bool nearerOnRay(const MATH::ray3<float>& ray, const point3f& p, float r2, float& bestT);

// Inserts evenly spaced points into every segment longer than maxLength, so that none is
// longer. isNew (when given) marks the inserted points. A maxLength that is not positive
// leaves the points as they are.
void refinePoints(const std::vector<point3f>& in, float maxLength, bool closed,
                  std::vector<point3f>& out, std::vector<unsigned char>* isNew = nullptr);
// Marks the points that a Douglas-Peucker pass keeps at the given tolerance: the chain's
// ends always (for a closed chain the first point and the one farthest from it).
void simplifyPoints(const std::vector<point3f>& in, float tolerance, bool closed,
                    std::vector<unsigned char>& keep);
// Samples the uniform cubic B-spline of the control points, samplesPerSpan points a span.
// An open curve is clamped to its end points by tripling them; fewer than 2 points give
// the points themselves.
void discretizeBSpline(const std::vector<point3f>& controlPoints, unsigned int samplesPerSpan,
                       bool closed, std::vector<point3f>& out);

}  // namespace INTERNAL
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
