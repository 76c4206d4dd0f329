#pragma once

#include "jev3d/math/point3.h"

namespace JEV {
namespace MATH {

// Closest point to p on the segment [a, b]; t is its parameter in [0, 1]. A segment of
// zero length gives a.
inline point3<float> closestPointOnSegment(const point3<float>& p, const point3<float>& a,
                                           const point3<float>& b, float& t) {
  const point3<float> ab = b - a;
  const float len2 = ab * ab;
  const float s = len2 > 0.0f ? ((p - a) * ab) / len2 : 0.0f;
  t = s < 0.0f ? 0.0f : (s > 1.0f ? 1.0f : s);
  return t == 0.0f ? a : (t == 1.0f ? b : a + ab * t);
}

// Closest point to p on the triangle (a, b, c). u and v are the weights of b and c: the
// point is a + (b - a)·u + (c - a)·v. Zero-area triangles give the closest point on their
// edges; finite input never gives NaN.
inline point3<float> closestPointOnTriangle(const point3<float>& p, const point3<float>& a,
                                            const point3<float>& b, const point3<float>& c,
                                            float& u, float& v) {
  // Voronoi regions of the corners, then of the edges, then the inside.
  const point3<float> ab = b - a, ac = c - a, ap = p - a;
  const float d1 = ab * ap, d2 = ac * ap;
  if (d1 <= 0.0f && d2 <= 0.0f) {
    u = v = 0.0f;
    return a;
  }
  const point3<float> bp = p - b;
  const float d3 = ab * bp, d4 = ac * bp;
  if (d3 >= 0.0f && d4 <= d3) {
    u = 1.0f, v = 0.0f;
    return b;
  }
  const point3<float> cp = p - c;
  const float d5 = ab * cp, d6 = ac * cp;
  if (d6 >= 0.0f && d5 <= d6) {
    u = 0.0f, v = 1.0f;
    return c;
  }
  const float vc = d1 * d4 - d3 * d2;
  if (vc <= 0.0f && d1 >= 0.0f && d3 <= 0.0f) {
    const float den = d1 - d3;
    u = den > 0.0f ? d1 / den : 0.0f, v = 0.0f;
    return a + ab * u;
  }
  const float vb = d5 * d2 - d1 * d6;
  if (vb <= 0.0f && d2 >= 0.0f && d6 <= 0.0f) {
    const float den = d2 - d6;
    u = 0.0f, v = den > 0.0f ? d2 / den : 0.0f;
    return a + ac * v;
  }
  const float va = d3 * d6 - d5 * d4;
  const float e = d4 - d3, f = d5 - d6;
  if (va <= 0.0f && e >= 0.0f && f >= 0.0f) {
    const float den = e + f;
    v = den > 0.0f ? e / den : 0.0f, u = 1.0f - v;
    return b + (c - b) * v;
  }
  const float sum = va + vb + vc;
  if (va >= 0.0f && vb >= 0.0f && vc >= 0.0f && sum > 0.0f) {
    const float inv = 1.0f / sum;
    u = vb * inv, v = vc * inv;
    return a + ab * u + ac * v;
  }
  // Rounding on a (nearly) flat triangle left no region: the closest of the three edges.
  float tab, tbc, tca;
  const point3<float> qab = closestPointOnSegment(p, a, b, tab);
  const point3<float> qbc = closestPointOnSegment(p, b, c, tbc);
  const point3<float> qca = closestPointOnSegment(p, c, a, tca);
  const float dab = (p - qab).squaredNorm(), dbc = (p - qbc).squaredNorm(),
              dca = (p - qca).squaredNorm();
  if (dab <= dbc && dab <= dca) {
    u = tab, v = 0.0f;
    return qab;
  }
  if (dbc <= dca) {
    u = 1.0f - tbc, v = tbc;
    return qbc;
  }
  u = 0.0f, v = 1.0f - tca;
  return qca;
}

// Intersection of the ray origin + t·direction with the triangle (a, b, c), from either
// side. True when it meets it at t in [0, tMax]; u and v are the weights of b and c at the
// hit. Rays in the triangle's plane and zero-area triangles give false.
inline bool intersectRayTriangle(const point3<float>& origin, const point3<float>& direction,
                                 const point3<float>& a, const point3<float>& b,
                                 const point3<float>& c, float tMax, float& t, float& u, float& v) {
  const point3<float> e1 = b - a, e2 = c - a;
  const point3<float> pv = point3<float>::cross(direction, e2);
  const float det = e1 * pv;
  if (!(det != 0.0f)) return false;
  const float inv = 1.0f / det;
  const point3<float> tv = origin - a;
  u = (tv * pv) * inv;
  if (!(u >= 0.0f && u <= 1.0f)) return false;
  const point3<float> qv = point3<float>::cross(tv, e1);
  v = (direction * qv) * inv;
  if (!(v >= 0.0f && u + v <= 1.0f)) return false;
  t = (e2 * qv) * inv;
  return t >= 0.0f && t <= tMax;
}

}  // namespace MATH
}  // namespace JEV
