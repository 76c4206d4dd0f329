#pragma once

#include <algorithm>
#include <cmath>
#include <utility>

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

// A ray made ready for the watertight triangle test. Its longest axis becomes z and a
// shear takes the direction onto that axis, so that every triangle is tested in one 2D
// frame where the ray is the point (0, 0). A corner lands in that frame the same way
// whichever triangle it belongs to, so two triangles that share an edge decide it from
// the same numbers.
struct watertightRay {
  point3<float> origin;
  int kx = 0, ky = 1, kz = 2;
  float sx = 0.0f, sy = 0.0f, sz = 0.0f;
  bool valid = false;  // false for a zero or non-finite direction, which meets nothing

  watertightRay(const point3<float>& o, const point3<float>& d) : origin(o) {
    const float ax = std::abs(d.x), ay = std::abs(d.y), az = std::abs(d.z);
    kz = ax > ay ? (ax > az ? 0 : 2) : (ay > az ? 1 : 2);
    kx = (kz + 1) % 3;
    ky = (kx + 1) % 3;
    // Keeps the frame right-handed, so that a triangle's winding shows in its sign.
    if (d[kz] < 0.0f) std::swap(kx, ky);
    valid = d[kz] != 0.0f && std::isfinite(d.x) && std::isfinite(d.y) && std::isfinite(d.z);
    if (!valid) return;
    sx = d[kx] / d[kz];
    sy = d[ky] / d[kz];
    sz = 1.0f / d[kz];
  }
};

namespace INTERNAL {

// Whether the edge function e = qx·py - qy·px, computed in float from the products p1 and
// p2, has the sign of the exact value: rounding moves it by at most 2^-24·(|p1| + |p2|),
// half the margin asked here. Tiny values are left to the exact test.
inline bool edgeSignIsSure(float e, float p1, float p2) {
  return std::abs(e) > std::max((std::abs(p1) + std::abs(p2)) * 0x1p-23f, 1e-30f);
}

// An edge function that is exactly 0 puts the ray on the edge. The edge goes to one of
// the two triangles that share it: to the one for which the edge, turned by the winding
// sign, points up (or right when level). The neighbour lists the edge the other way, or
// has the other winding, so exactly one of them takes it; at a vertex inside a fan the
// same rule hands the ray to exactly one triangle.
inline bool ownsEdge(double dx, double dy, double sign) {
  dx *= sign, dy *= sign;
  return dy > 0.0 || (dy == 0.0 && dx > 0.0);
}

// Decides whether the ray meets the triangle whose sheared corners are (ax, ay), (bx, by),
// (cx, cy) with exact signs: the products of floats are exact in double and the difference
// is rounded once, which keeps its sign. Sets the edge functions u, v, w (of the edges
// opposite a, b and c) as floats.
inline bool exactEdgeTest(float ax, float ay, float bx, float by, float cx, float cy, float& u,
                          float& v, float& w) {
  const double eu = double(cx) * by - double(cy) * bx;
  const double ev = double(ax) * cy - double(ay) * cx;
  const double ew = double(bx) * ay - double(by) * ax;
  u = float(eu), v = float(ev), w = float(ew);
  const bool anyNegative = eu < 0.0 || ev < 0.0 || ew < 0.0;
  const bool anyPositive = eu > 0.0 || ev > 0.0 || ew > 0.0;
  if (anyNegative == anyPositive) return false;  // outside, or a triangle of no area
  const double sign = anyPositive ? 1.0 : -1.0;
  if (eu == 0.0 && !ownsEdge(double(cx) - bx, double(cy) - by, sign)) return false;
  if (ev == 0.0 && !ownsEdge(double(ax) - cx, double(ay) - cy, sign)) return false;
  if (ew == 0.0 && !ownsEdge(double(bx) - ax, double(by) - ay, sign)) return false;
  return true;
}

}  // namespace INTERNAL

// Watertight intersection of a prepared ray with the triangle (a, b, c), from either side:
// a ray that crosses a surface through a shared edge or vertex meets exactly one of the
// triangles there and never slips between them. True when it meets the triangle at t in
// [0, tMax]; u and v are the weights of b and c at the hit. Rays in the triangle's plane
// and zero-area triangles give false. triangleTree's packets run the same operations.
inline bool intersectRayTriangle(const watertightRay& ray, const point3<float>& a,
                                 const point3<float>& b, const point3<float>& c, float tMax,
                                 float& t, float& u, float& v) {
  if (!ray.valid) return false;
  const int kx = ray.kx, ky = ray.ky, kz = ray.kz;
  const float az = a[kz] - ray.origin[kz], bz = b[kz] - ray.origin[kz], cz = c[kz] - ray.origin[kz];
  const float ax = (a[kx] - ray.origin[kx]) - ray.sx * az,
              ay = (a[ky] - ray.origin[ky]) - ray.sy * az;
  const float bx = (b[kx] - ray.origin[kx]) - ray.sx * bz,
              by = (b[ky] - ray.origin[ky]) - ray.sy * bz;
  const float cx = (c[kx] - ray.origin[kx]) - ray.sx * cz,
              cy = (c[ky] - ray.origin[ky]) - ray.sy * cz;
  const float pu1 = cx * by, pu2 = cy * bx, pv1 = ax * cy, pv2 = ay * cx, pw1 = bx * ay,
              pw2 = by * ax;
  float eu = pu1 - pu2, ev = pv1 - pv2, ew = pw1 - pw2;
  if (INTERNAL::edgeSignIsSure(eu, pu1, pu2) && INTERNAL::edgeSignIsSure(ev, pv1, pv2) &&
      INTERNAL::edgeSignIsSure(ew, pw1, pw2)) {
    if ((eu < 0.0f || ev < 0.0f || ew < 0.0f) && (eu > 0.0f || ev > 0.0f || ew > 0.0f))
      return false;
  } else if (!INTERNAL::exactEdgeTest(ax, ay, bx, by, cx, cy, eu, ev, ew)) {
    return false;
  }
  const float det = eu + ev + ew;
  if (!(det != 0.0f)) return false;
  const float inv = 1.0f / det;
  t = (eu * (ray.sz * az) + ev * (ray.sz * bz) + ew * (ray.sz * cz)) * inv;
  if (!(t >= 0.0f && t <= tMax)) return false;
  u = ev * inv;
  v = ew * inv;
  return true;
}

// The same for a ray given by origin and direction, which need not be unit.
inline bool intersectRayTriangle(const point3<float>& origin, const point3<float>& direction,
                                 const point3<float>& a, const point3<float>& b,
                                 const point3<float>& c, float tMax, float& t, float& u, float& v) {
  return intersectRayTriangle(watertightRay(origin, direction), a, b, c, tMax, t, u, v);
}

}  // namespace MATH
}  // namespace JEV
