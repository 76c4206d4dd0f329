#include "jev3d/algo/measurement/internal/triangleSoup.h"

#include "jev3d/math/triangleQueries.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace MEASUREMENT {
namespace INTERNAL {

using MATH::point3;

point3<float> onTriangle(const std::vector<point3<float>>& points,
                         const std::vector<int>& triangles, unsigned int t,
                         const point3<float>& p) {
  float u, v;
  return MATH::closestPointOnTriangle(p, points[std::size_t(triangles[3 * std::size_t(t)])],
                                      points[std::size_t(triangles[3 * std::size_t(t) + 1])],
                                      points[std::size_t(triangles[3 * std::size_t(t) + 2])], u, v);
}

point3<float> triangleNormal(const std::vector<point3<float>>& points,
                             const std::vector<int>& triangles, unsigned int t) {
  const point3<float>& a = points[std::size_t(triangles[3 * std::size_t(t)])];
  return point3<float>::cross(points[std::size_t(triangles[3 * std::size_t(t) + 1])] - a,
                              points[std::size_t(triangles[3 * std::size_t(t) + 2])] - a);
}

triangleFans::triangleFans(std::size_t pointCount, const std::vector<int>& soup)
    : start(pointCount + 1, 0) {
  for (int p : soup) ++start[std::size_t(p) + 1];
  for (std::size_t i = 0; i < pointCount; ++i) start[i + 1] += start[i];
  triangles.resize(soup.size());
  std::vector<unsigned int> fill(start.begin(), start.end() - 1);
  for (std::size_t c = 0; c < soup.size(); ++c)
    triangles[fill[std::size_t(soup[c])]++] = unsigned(c / 3);
}

unsigned int walkToNearest(const std::vector<point3<float>>& points,
                           const std::vector<int>& triangles, const triangleFans& fans,
                           unsigned int t, const point3<float>& p, point3<float>& closest,
                           float& distance) {
  closest = onTriangle(points, triangles, t, p);
  distance = (p - closest).norm();
  for (bool moved = true; moved;) {
    moved = false;
    const unsigned int from = t;
    for (int c = 0; c < 3; ++c) {
      const std::size_t corner = std::size_t(triangles[3 * std::size_t(from) + std::size_t(c)]);
      for (unsigned int f = fans.start[corner]; f < fans.start[corner + 1]; ++f) {
        const unsigned int s = fans.triangles[f];
        if (s == t) continue;
        const point3<float> q = onTriangle(points, triangles, s, p);
        const float d = (p - q).norm();
        if (d < distance) t = s, closest = q, distance = d, moved = true;
      }
    }
  }
  return t;
}

}  // namespace INTERNAL
}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
