#include "jev3d/editing/internal/polylineMath.h"

#include <algorithm>
#include <cmath>

namespace JEV {
namespace MESH {
namespace EDITING {
namespace INTERNAL {

namespace {

double clamp01(double t) { return std::min(1.0, std::max(0.0, t)); }

point3f lerp(const point3f& a, const point3f& b, double t) {
  return point3f(float(a.x + (b.x - a.x) * t), float(a.y + (b.y - a.y) * t),
                 float(a.z + (b.z - a.z) * t));
}

// Douglas-Peucker on in[first..last] (indices taken modulo the size for closed chains).
void simplifyRange(const std::vector<point3f>& in, size_t first, size_t last, float tolerance,
                   std::vector<unsigned char>& keep) {
  // An explicit stack: a long scan would nest too deep for recursion.
  std::vector<std::pair<size_t, size_t>> todo{{first, last}};
  const size_t n = in.size();
  while (!todo.empty()) {
    const auto [a, b] = todo.back();
    todo.pop_back();
    if (b <= a + 1) continue;
    float worst = -1.f;
    size_t at = a;
    for (size_t i = a + 1; i < b; ++i) {
      const float d = pointSegmentDistance(in[i % n], in[a % n], in[b % n]);
      if (d > worst) worst = d, at = i;
    }
    if (worst <= tolerance) continue;
    keep[at % n] = 1;
    todo.emplace_back(a, at);
    todo.emplace_back(at, b);
  }
}

}  // namespace

float pointSegmentDistance(const point3f& p, const point3f& a, const point3f& b) {
  const point3f ab = b - a;
  const double len2 = double(ab.squaredNorm());
  const double t = len2 > 0.0 ? clamp01(double((p - a) * ab) / len2) : 0.0;
  return (p - lerp(a, b, t)).norm();
}

float segmentSegmentDistance(const point3f& a0, const point3f& a1, const point3f& b0,
                             const point3f& b1) {
  // Closest parameters of the two lines, clamped to the segments, then each re-clamped
  // against the other's choice.
  const point3f d1 = a1 - a0, d2 = b1 - b0, r = a0 - b0;
  const double a = d1.squaredNorm(), e = d2.squaredNorm(), f = d2 * r;
  double s = 0.0, t = 0.0;
  if (a <= 0.0 && e <= 0.0) return r.norm();
  if (a <= 0.0) {
    t = clamp01(f / e);
  } else {
    const double c = d1 * r;
    if (e <= 0.0) {
      s = clamp01(-c / a);
    } else {
      const double b = d1 * d2, denom = a * e - b * b;
      s = denom > 0.0 ? clamp01((b * f - c * e) / denom) : 0.0;
      t = (b * s + f) / e;
      if (t < 0.0) {
        t = 0.0, s = clamp01(-c / a);
      } else if (t > 1.0) {
        t = 1.0, s = clamp01((b - c) / a);
      }
    }
  }
  return (lerp(a0, a1, s) - lerp(b0, b1, t)).norm();
}

bool nearerOnRay(const MATH::ray3<float>& ray, const point3f& p, float r2, float& bestT) {
  if (ray.squaredDistance(p) > r2) return false;
  const float len2 = ray.direction.squaredNorm();
  const float t = len2 > 0.f ? ((p - ray.origin) * ray.direction) / len2 : 0.f;
  if (t >= bestT) return false;
  bestT = t;
  return true;
}

unsigned int segmentCount(unsigned int n, bool closed) {
  if (n < 2) return 0;
  return closed && n > 2 ? n : n - 1;
}

void refinePoints(const std::vector<point3f>& in, float maxLength, bool closed,
                  std::vector<point3f>& out, std::vector<unsigned char>* isNew) {
  out.clear();
  if (isNew) isNew->clear();
  const unsigned int n = unsigned(in.size());
  const unsigned int segments = segmentCount(n, closed);
  for (unsigned int i = 0; i < n; ++i) {
    out.push_back(in[i]);
    if (isNew) isNew->push_back(0);
    if (i >= segments || !(maxLength > 0.f)) continue;
    const point3f& a = in[i];
    const point3f& b = in[(i + 1) % n];
    const double len = (b - a).norm();
    // Bounded so that a tiny length on a huge curve cannot exhaust memory.
    const double pieces = std::min(std::ceil(len / maxLength), 1e6);
    for (unsigned int k = 1; k < unsigned(pieces); ++k) {
      out.push_back(lerp(a, b, double(k) / pieces));
      if (isNew) isNew->push_back(1);
    }
  }
}

void simplifyPoints(const std::vector<point3f>& in, float tolerance, bool closed,
                    std::vector<unsigned char>& keep) {
  const size_t n = in.size();
  keep.assign(n, 0);
  if (n == 0) return;
  keep[0] = 1;
  keep[n - 1] = 1;
  if (n < 3) return;
  if (!closed) {
    simplifyRange(in, 0, n - 1, tolerance, keep);
    return;
  }
  size_t far = 0;
  float best = -1.f;
  for (size_t i = 1; i < n; ++i) {
    const float d = (in[i] - in[0]).norm();
    if (d > best) best = d, far = i;
  }
  keep[n - 1] = 0;
  keep[far] = 1;
  simplifyRange(in, 0, far, tolerance, keep);
  simplifyRange(in, far, n, tolerance, keep);
}

void discretizeBSpline(const std::vector<point3f>& controlPoints, unsigned int samplesPerSpan,
                       bool closed, std::vector<point3f>& out) {
  out.clear();
  const size_t n = controlPoints.size();
  if (n < 2 || samplesPerSpan == 0) {
    out = controlPoints;
    return;
  }
  std::vector<point3f> p;
  if (closed) {
    p = controlPoints;
    p.push_back(controlPoints[0]);
    p.push_back(controlPoints[1 % n]);
    p.push_back(controlPoints[2 % n]);
  } else {
    p.push_back(controlPoints.front());
    p.push_back(controlPoints.front());
    p.insert(p.end(), controlPoints.begin(), controlPoints.end());
    p.push_back(controlPoints.back());
    p.push_back(controlPoints.back());
  }
  const size_t spans = p.size() - 3;
  for (size_t s = 0; s < spans; ++s) {
    const unsigned int count = (s + 1 == spans && !closed) ? samplesPerSpan + 1 : samplesPerSpan;
    for (unsigned int k = 0; k < count; ++k) {
      const double t = double(k) / samplesPerSpan, t2 = t * t, t3 = t2 * t;
      const double w0 = (1 - t) * (1 - t) * (1 - t) / 6.0;
      const double w1 = (3 * t3 - 6 * t2 + 4) / 6.0;
      const double w2 = (-3 * t3 + 3 * t2 + 3 * t + 1) / 6.0;
      const double w3 = t3 / 6.0;
      const point3f &a = p[s], &b = p[s + 1], &c = p[s + 2], &d = p[s + 3];
      out.emplace_back(float(w0 * a.x + w1 * b.x + w2 * c.x + w3 * d.x),
                       float(w0 * a.y + w1 * b.y + w2 * c.y + w3 * d.y),
                       float(w0 * a.z + w1 * b.z + w2 * c.z + w3 * d.z));
    }
  }
}

}  // namespace INTERNAL
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
