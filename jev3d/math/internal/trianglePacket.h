#pragma once

#include <cstdint>

#include "jev3d/math/point3.h"
#include "jev3d/math/triangleQueries.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace JEV {
namespace MATH {
namespace INTERNAL {

// Four triangles stored by coordinate, so that one pass of vector instructions handles
// all four. Leaves are padded with copies of their last triangle, which can only tie.
struct alignas(16) trianglePacket {
  float a[3][4];
  float b[3][4];
  float c[3][4];

  void set(int lane, const point3<float>& pa, const point3<float>& pb, const point3<float>& pc) {
    for (int k = 0; k < 3; ++k) a[k][lane] = pa[k], b[k][lane] = pb[k], c[k][lane] = pc[k];
  }
  point3<float> cornerA(int lane) const {
    return point3<float>(a[0][lane], a[1][lane], a[2][lane]);
  }
  point3<float> cornerB(int lane) const {
    return point3<float>(b[0][lane], b[1][lane], b[2][lane]);
  }
  point3<float> cornerC(int lane) const {
    return point3<float>(c[0][lane], c[1][lane], c[2][lane]);
  }
};

// Closest points of the four triangles to p, with squared distances and the weights of
// the second and third corners: bit for bit what closestPointOnTriangle gives for each,
// as the same operations run in the same order.
struct packetClosest {
  float d[4];
  float q[3][4];
  float u[4], v[4];
};

#if defined(__SSE2__)
namespace PACKET {

struct vec {
  __m128 x, y, z;
};
inline vec load(const float (&s)[3][4]) {
  return {_mm_load_ps(s[0]), _mm_load_ps(s[1]), _mm_load_ps(s[2])};
}
inline vec sub(const vec& a, const vec& b) {
  return {_mm_sub_ps(a.x, b.x), _mm_sub_ps(a.y, b.y), _mm_sub_ps(a.z, b.z)};
}
// x·x + y·y + z·z, summed left to right as the scalar dot product does.
inline __m128 dot(const vec& a, const vec& b) {
  return _mm_add_ps(_mm_add_ps(_mm_mul_ps(a.x, b.x), _mm_mul_ps(a.y, b.y)), _mm_mul_ps(a.z, b.z));
}
inline vec madd(const vec& a, const vec& d, __m128 s) {
  return {_mm_add_ps(a.x, _mm_mul_ps(d.x, s)), _mm_add_ps(a.y, _mm_mul_ps(d.y, s)),
          _mm_add_ps(a.z, _mm_mul_ps(d.z, s))};
}
inline __m128 select(__m128 mask, __m128 a, __m128 b) {
  return _mm_or_ps(_mm_and_ps(mask, a), _mm_andnot_ps(mask, b));
}
inline vec select(__m128 mask, const vec& a, const vec& b) {
  return {select(mask, a.x, b.x), select(mask, a.y, b.y), select(mask, a.z, b.z)};
}

}  // namespace PACKET
#endif

inline void closestPointsOnPacket(const trianglePacket& t, const point3<float>& p,
                                  packetClosest& out) {
#if defined(__SSE2__)
  using namespace PACKET;
  const __m128 zero = _mm_setzero_ps(), one = _mm_set1_ps(1.0f);
  const vec pv{_mm_set1_ps(p.x), _mm_set1_ps(p.y), _mm_set1_ps(p.z)};
  const vec a = load(t.a), b = load(t.b), c = load(t.c);
  const vec ab = sub(b, a), ac = sub(c, a), ap = sub(pv, a), bp = sub(pv, b), cp = sub(pv, c);
  const __m128 d1 = dot(ab, ap), d2 = dot(ac, ap), d3 = dot(ab, bp), d4 = dot(ac, bp),
               d5 = dot(ab, cp), d6 = dot(ac, cp);
  const __m128 vc = _mm_sub_ps(_mm_mul_ps(d1, d4), _mm_mul_ps(d3, d2));
  const __m128 vb = _mm_sub_ps(_mm_mul_ps(d5, d2), _mm_mul_ps(d1, d6));
  const __m128 va = _mm_sub_ps(_mm_mul_ps(d3, d6), _mm_mul_ps(d5, d4));
  const __m128 e = _mm_sub_ps(d4, d3), f = _mm_sub_ps(d5, d6);

  // The regions in the order the scalar test takes them; the first that holds wins.
  const __m128 inA = _mm_and_ps(_mm_cmple_ps(d1, zero), _mm_cmple_ps(d2, zero));
  const __m128 inB = _mm_and_ps(_mm_cmpge_ps(d3, zero), _mm_cmple_ps(d4, d3));
  const __m128 inC = _mm_and_ps(_mm_cmpge_ps(d6, zero), _mm_cmple_ps(d5, d6));
  const __m128 inAB = _mm_and_ps(_mm_cmple_ps(vc, zero),
                                 _mm_and_ps(_mm_cmpge_ps(d1, zero), _mm_cmple_ps(d3, zero)));
  const __m128 inAC = _mm_and_ps(_mm_cmple_ps(vb, zero),
                                 _mm_and_ps(_mm_cmpge_ps(d2, zero), _mm_cmple_ps(d6, zero)));
  const __m128 inBC =
      _mm_and_ps(_mm_cmple_ps(va, zero), _mm_and_ps(_mm_cmpge_ps(e, zero), _mm_cmpge_ps(f, zero)));
  const __m128 sum = _mm_add_ps(_mm_add_ps(va, vb), vc);
  const __m128 inside = _mm_and_ps(_mm_and_ps(_mm_cmpge_ps(va, zero), _mm_cmpge_ps(vb, zero)),
                                   _mm_and_ps(_mm_cmpge_ps(vc, zero), _mm_cmpgt_ps(sum, zero)));

  const __m128 denAB = _mm_sub_ps(d1, d3), denAC = _mm_sub_ps(d2, d6), denBC = _mm_add_ps(e, f);
  const __m128 uAB = select(_mm_cmpgt_ps(denAB, zero), _mm_div_ps(d1, denAB), zero);
  const __m128 vAC = select(_mm_cmpgt_ps(denAC, zero), _mm_div_ps(d2, denAC), zero);
  const __m128 vBC = select(_mm_cmpgt_ps(denBC, zero), _mm_div_ps(e, denBC), zero);
  const __m128 inv = _mm_div_ps(one, sum);
  const __m128 uIn = _mm_mul_ps(vb, inv), vIn = _mm_mul_ps(vc, inv);

  // Blend from the last region to the first, so that earlier regions overwrite.
  vec q = madd(madd(a, ab, uIn), ac, vIn);
  __m128 u = uIn, v = vIn;
  q = select(inBC, madd(b, sub(c, b), vBC), q);
  u = select(inBC, _mm_sub_ps(one, vBC), u), v = select(inBC, vBC, v);
  q = select(inAC, madd(a, ac, vAC), q);
  u = select(inAC, zero, u), v = select(inAC, vAC, v);
  q = select(inAB, madd(a, ab, uAB), q);
  u = select(inAB, uAB, u), v = select(inAB, zero, v);
  q = select(inC, c, q);
  u = select(inC, zero, u), v = select(inC, one, v);
  q = select(inB, b, q);
  u = select(inB, one, u), v = select(inB, zero, v);
  q = select(inA, a, q);
  u = select(inA, zero, u), v = select(inA, zero, v);

  const vec gap = sub(pv, q);
  _mm_store_ps(out.d, dot(gap, gap));
  _mm_store_ps(out.q[0], q.x), _mm_store_ps(out.q[1], q.y), _mm_store_ps(out.q[2], q.z);
  _mm_store_ps(out.u, u), _mm_store_ps(out.v, v);

  // A lane in no region is a (nearly) flat triangle: the scalar test takes its edges.
  const __m128 any = _mm_or_ps(_mm_or_ps(_mm_or_ps(inA, inB), _mm_or_ps(inC, inAB)),
                               _mm_or_ps(_mm_or_ps(inAC, inBC), inside));
  const int missing = ~_mm_movemask_ps(any) & 0xF;
  if (missing == 0) return;
  for (int lane = 0; lane < 4; ++lane) {
    if (!(missing & (1 << lane))) continue;
#else
  for (int lane = 0; lane < 4; ++lane) {
#endif
    const point3<float> r = closestPointOnTriangle(p, t.cornerA(lane), t.cornerB(lane),
                                                   t.cornerC(lane), out.u[lane], out.v[lane]);
    out.d[lane] = (p - r).squaredNorm();
    for (int k = 0; k < 3; ++k) out.q[k][lane] = r[k];
  }
}

// Where a ray meets the four triangles of a packet.
struct packetRayHits {
  float t[4];
  float u[4], v[4];  // weights of the second and third corners
};

// The watertight ray test of intersectRayTriangle on the four triangles at once, bit for
// bit the same, as the same operations run in the same order. Returns a mask of the lanes
// met at t in [0, tMax].
inline __attribute__((always_inline)) int intersectPacket(const trianglePacket& tri, const watertightRay& ray, float tMax,
                           packetRayHits& out) {
#if defined(__SSE2__)
  const int kx = ray.kx, ky = ray.ky, kz = ray.kz;
  const __m128 ox = _mm_set1_ps(ray.origin[kx]), oy = _mm_set1_ps(ray.origin[ky]),
               oz = _mm_set1_ps(ray.origin[kz]);
  const __m128 sx = _mm_set1_ps(ray.sx), sy = _mm_set1_ps(ray.sy), sz = _mm_set1_ps(ray.sz);
  // Corners in the ray's sheared frame.
  const __m128 az = _mm_sub_ps(_mm_load_ps(tri.a[kz]), oz),
               bz = _mm_sub_ps(_mm_load_ps(tri.b[kz]), oz),
               cz = _mm_sub_ps(_mm_load_ps(tri.c[kz]), oz);
  __m128 corner[6] = {_mm_sub_ps(_mm_sub_ps(_mm_load_ps(tri.a[kx]), ox), _mm_mul_ps(sx, az)),
                      _mm_sub_ps(_mm_sub_ps(_mm_load_ps(tri.a[ky]), oy), _mm_mul_ps(sy, az)),
                      _mm_sub_ps(_mm_sub_ps(_mm_load_ps(tri.b[kx]), ox), _mm_mul_ps(sx, bz)),
                      _mm_sub_ps(_mm_sub_ps(_mm_load_ps(tri.b[ky]), oy), _mm_mul_ps(sy, bz)),
                      _mm_sub_ps(_mm_sub_ps(_mm_load_ps(tri.c[kx]), ox), _mm_mul_ps(sx, cz)),
                      _mm_sub_ps(_mm_sub_ps(_mm_load_ps(tri.c[ky]), oy), _mm_mul_ps(sy, cz))};
  const __m128 &ax = corner[0], &ay = corner[1], &bx = corner[2], &by = corner[3], &cx = corner[4],
               &cy = corner[5];
  const __m128 pu1 = _mm_mul_ps(cx, by), pu2 = _mm_mul_ps(cy, bx), pv1 = _mm_mul_ps(ax, cy),
               pv2 = _mm_mul_ps(ay, cx), pw1 = _mm_mul_ps(bx, ay), pw2 = _mm_mul_ps(by, ax);
  __m128 eu = _mm_sub_ps(pu1, pu2), ev = _mm_sub_ps(pv1, pv2), ew = _mm_sub_ps(pw1, pw2);

  const __m128 signBit = _mm_set1_ps(-0.0f), margin = _mm_set1_ps(0x1p-23f),
               tiny = _mm_set1_ps(1e-30f), zero = _mm_setzero_ps();
  const auto sure = [&](__m128 e, __m128 p1, __m128 p2) {
    const __m128 bound =
        _mm_mul_ps(_mm_add_ps(_mm_andnot_ps(signBit, p1), _mm_andnot_ps(signBit, p2)), margin);
    return _mm_cmpgt_ps(_mm_andnot_ps(signBit, e), _mm_max_ps(bound, tiny));
  };
  const __m128 allSure =
      _mm_and_ps(_mm_and_ps(sure(eu, pu1, pu2), sure(ev, pv1, pv2)), sure(ew, pw1, pw2));
  const __m128 anyNegative =
      _mm_or_ps(_mm_or_ps(_mm_cmplt_ps(eu, zero), _mm_cmplt_ps(ev, zero)), _mm_cmplt_ps(ew, zero));
  const __m128 anyPositive =
      _mm_or_ps(_mm_or_ps(_mm_cmpgt_ps(eu, zero), _mm_cmpgt_ps(ev, zero)), _mm_cmpgt_ps(ew, zero));
  int inside = ~_mm_movemask_ps(_mm_and_ps(anyNegative, anyPositive)) & 0xF;
  const int unsure = ~_mm_movemask_ps(allSure) & 0xF;
  if (unsure != 0) {
    // Lanes too close to an edge for float signs: the exact test decides them.
    float c[6][4], e[3][4];
    for (int k = 0; k < 6; ++k) _mm_storeu_ps(c[k], corner[k]);
    _mm_storeu_ps(e[0], eu), _mm_storeu_ps(e[1], ev), _mm_storeu_ps(e[2], ew);
    for (int lane = 0; lane < 4; ++lane) {
      if (!(unsure & (1 << lane))) continue;
      const bool met = exactEdgeTest(c[0][lane], c[1][lane], c[2][lane], c[3][lane], c[4][lane],
                                     c[5][lane], e[0][lane], e[1][lane], e[2][lane]);
      inside = met ? inside | (1 << lane) : inside & ~(1 << lane);
    }
    eu = _mm_loadu_ps(e[0]), ev = _mm_loadu_ps(e[1]), ew = _mm_loadu_ps(e[2]);
  }
  if (inside == 0) return 0;
  const __m128 det = _mm_add_ps(_mm_add_ps(eu, ev), ew);
  const __m128 inv = _mm_div_ps(_mm_set1_ps(1.0f), det);
  const __m128 t = _mm_mul_ps(
      _mm_add_ps(_mm_add_ps(_mm_mul_ps(eu, _mm_mul_ps(sz, az)), _mm_mul_ps(ev, _mm_mul_ps(sz, bz))),
                 _mm_mul_ps(ew, _mm_mul_ps(sz, cz))),
      inv);
  const __m128 valid =
      _mm_and_ps(_mm_cmpneq_ps(det, zero),
                 _mm_and_ps(_mm_cmpge_ps(t, zero), _mm_cmple_ps(t, _mm_set1_ps(tMax))));
  _mm_storeu_ps(out.t, t);
  _mm_storeu_ps(out.u, _mm_mul_ps(ev, inv));
  _mm_storeu_ps(out.v, _mm_mul_ps(ew, inv));
  return inside & _mm_movemask_ps(valid);
#else
  int mask = 0;
  for (int lane = 0; lane < 4; ++lane) {
    if (intersectRayTriangle(ray, tri.cornerA(lane), tri.cornerB(lane), tri.cornerC(lane), tMax,
                             out.t[lane], out.u[lane], out.v[lane]))
      mask |= 1 << lane;
  }
  return mask;
#endif
}

}  // namespace INTERNAL
}  // namespace MATH
}  // namespace JEV
