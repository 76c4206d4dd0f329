#pragma once

#include <algorithm>

#include "jev3d/math/internal/xmlComponents.h"
#include "jev3d/math/point3.h"

namespace JEV {
namespace MATH {

template <class T>
void point3<T>::orthonormalize(point3& u, point3& v, point3& w) {
  u.normalize();
  v -= u * (u * v);
  v.normalize();
  w -= u * (u * w) + v * (v * w);
  w.normalize();
}

template <class T>
void point3<T>::orthonormalize(point3* uvw) {
  orthonormalize(uvw[0], uvw[1], uvw[2]);
}

template <class T>
void point3<T>::generateOrthonormalBasis(point3& u, point3& v, point3& w, bool wIsUnit) {
  if (!wIsUnit) w.normalize();
  // Drop the smaller of x and y so that the first perpendicular never degenerates.
  if (std::abs(w.x) >= std::abs(w.y)) {
    const T inv = T(1.0 / std::sqrt(double(w.x) * w.x + double(w.z) * w.z));
    u = point3(-w.z * inv, T(0), w.x * inv);
    v = point3(w.y * u.z, w.z * u.x - w.x * u.z, -w.y * u.x);
  } else {
    const T inv = T(1.0 / std::sqrt(double(w.y) * w.y + double(w.z) * w.z));
    u = point3(T(0), w.z * inv, -w.y * inv);
    v = point3(w.y * u.z - w.z * u.y, -w.x * u.z, w.x * u.y);
  }
}

template <class T>
void point3<T>::computeExtremes(int count, const point3* points, point3& min, point3& max) {
  if (count < 1 || points == nullptr) {
    min = max = ZERO();
    return;
  }
  min = max = points[0];
  for (int i = 1; i < count; ++i) {
    const point3& p = points[i];
    min.x = std::min(min.x, p.x), max.x = std::max(max.x, p.x);
    min.y = std::min(min.y, p.y), max.y = std::max(max.y, p.y);
    min.z = std::min(min.z, p.z), max.z = std::max(max.z, p.z);
  }
}

namespace internal {

// Integer points would trap on a degenerate triangle; they compute in double.
template <class T>
using baryReal = std::conditional_t<std::is_floating_point_v<T>, T, double>;

// Barycentrics of p against the triangle a, b, c (projected onto its plane).
template <class R>
void triangleBarycentrics(const point3<R>& p, const point3<R>& a, const point3<R>& b,
                          const point3<R>& c, R out[3]) {
  const point3<R> e0 = b - a, e1 = c - a, d = p - a;
  const R a00 = e0 * e0, a01 = e0 * e1, a11 = e1 * e1;
  const R r0 = d * e0, r1 = d * e1;
  const R det = a00 * a11 - a01 * a01;
  out[1] = (a11 * r0 - a01 * r1) / det;
  out[2] = (a00 * r1 - a01 * r0) / det;
  out[0] = R(1) - out[1] - out[2];
}

template <class T, class R>
point3<R> toReal(const point3<T>& p) {
  return point3<R>(R(p.x), R(p.y), R(p.z));
}

}  // namespace internal

template <class T>
point3<T> point3<T>::getBarycentrics(const point3& p, const point3& v0, const point3& v1,
                                     const point3& v2) {
  using R = internal::baryReal<T>;
  R b[3];
  internal::triangleBarycentrics<R>(internal::toReal<T, R>(p), internal::toReal<T, R>(v0),
                                    internal::toReal<T, R>(v1), internal::toReal<T, R>(v2), b);
  return point3(T(b[0]), T(b[1]), T(b[2]));
}

template <class T>
void point3<T>::getBarycentrics(const point3& v0, const point3& v1, const point3& v2,
                                const point3& v3, T bary[4]) const {
  using R = internal::baryReal<T>;
  using P = point3<R>;
  // Corners relative to v3: c[3] is v3 itself, c[4] the query point.
  P c[5] = {internal::toReal<T, R>(v0) - internal::toReal<T, R>(v3),
            internal::toReal<T, R>(v1) - internal::toReal<T, R>(v3),
            internal::toReal<T, R>(v2) - internal::toReal<T, R>(v3), P(),
            internal::toReal<T, R>(*this) - internal::toReal<T, R>(v3)};
  // Keep the triple product in range for large coordinates.
  R maxAbs = R(0);
  for (const P& d : c) maxAbs = std::max({maxAbs, std::abs(d.x), std::abs(d.y), std::abs(d.z)});
  if (maxAbs > R(1)) {
    for (P& d : c) d *= R(1) / maxAbs;
  }
  const R det = c[0] * P::cross(c[1], c[2]);
  R out[4] = {R(1), R(0), R(0), R(0)};
  if (det != R(0)) {
    out[0] = (c[4] * P::cross(c[1], c[2])) / det;
    out[1] = (c[4] * P::cross(c[2], c[0])) / det;
    out[2] = (c[4] * P::cross(c[0], c[1])) / det;
    out[3] = R(1) - out[0] - out[1] - out[2];
  } else {
    // Flat: the face of largest area carries the coordinates.
    static constexpr int faces[4][3] = {{0, 1, 2}, {0, 1, 3}, {0, 2, 3}, {1, 2, 3}};
    int bestFace = -1;
    R bestArea = R(0);
    for (int f = 0; f < 4; ++f) {
      const P& a = c[faces[f][0]];
      const R area = P::cross(c[faces[f][1]] - a, c[faces[f][2]] - a).squaredNorm();
      if (area > bestArea) bestArea = area, bestFace = f;
    }
    if (bestFace >= 0) {
      const int* f = faces[bestFace];
      R b[3];
      internal::triangleBarycentrics<R>(c[4], c[f[0]], c[f[1]], c[f[2]], b);
      out[0] = R(0);
      for (int k = 0; k < 3; ++k) out[f[k]] = b[k];
    } else {
      // All corners on a line: the longest edge carries them.
      int bestI = -1, bestJ = -1;
      R bestLen = R(0);
      for (int i = 0; i < 4; ++i) {
        for (int j = i + 1; j < 4; ++j) {
          const R len = (c[j] - c[i]).squaredNorm();
          if (len > bestLen) bestLen = len, bestI = i, bestJ = j;
        }
      }
      if (bestI >= 0) {
        const R t = ((c[4] - c[bestI]) * (c[bestJ] - c[bestI])) / bestLen;
        out[0] = R(0);
        out[bestI] = R(1) - t;
        out[bestJ] = t;
      }
    }
  }
  for (int k = 0; k < 4; ++k) bary[k] = T(out[k]);
}

template <class T>
bool point3<T>::saveToXML(IO::XML::xmlNode* node, const std::string& element,
                          const std::string& xName, const std::string& yName,
                          const std::string& zName) const {
  return internal::saveNamed(node, internal::widen(element), data(), internal::widen(xName),
                             internal::widen(yName), internal::widen(zName));
}

template <class T>
bool point3<T>::saveToXML(const std::string& file, const std::string& element,
                          const std::string& xName, const std::string& yName,
                          const std::string& zName) const {
  return internal::saveNamed(internal::widen(file), internal::widen(element), data(),
                             internal::widen(xName), internal::widen(yName),
                             internal::widen(zName));
}

template <class T>
bool point3<T>::saveToXMLW(IO::XML::xmlNode* node, const std::wstring& element,
                           const std::wstring& xName, const std::wstring& yName,
                           const std::wstring& zName) const {
  return internal::saveNamed(node, element, data(), xName, yName, zName);
}

template <class T>
bool point3<T>::saveToXMLW(const std::wstring& file, const std::wstring& element,
                           const std::wstring& xName, const std::wstring& yName,
                           const std::wstring& zName) const {
  return internal::saveNamed(file, element, data(), xName, yName, zName);
}

template <class T>
bool point3<T>::openFromXML(const IO::XML::xmlNode* node, const std::string& element,
                            const std::string& xName, const std::string& yName,
                            const std::string& zName) {
  return internal::openNamed(node, internal::widen(element), data(), internal::widen(xName),
                             internal::widen(yName), internal::widen(zName));
}

template <class T>
bool point3<T>::openFromXML(const std::string& file, const std::string& element,
                            const std::string& xName, const std::string& yName,
                            const std::string& zName) {
  return internal::openNamed(internal::widen(file), internal::widen(element), data(),
                             internal::widen(xName), internal::widen(yName),
                             internal::widen(zName));
}

template <class T>
bool point3<T>::openFromXMLW(const IO::XML::xmlNode* node, const std::wstring& element,
                             const std::wstring& xName, const std::wstring& yName,
                             const std::wstring& zName) {
  return internal::openNamed(node, element, data(), xName, yName, zName);
}

template <class T>
bool point3<T>::openFromXMLW(const std::wstring& file, const std::wstring& element,
                             const std::wstring& xName, const std::wstring& yName,
                             const std::wstring& zName) {
  return internal::openNamed(file, element, data(), xName, yName, zName);
}

}  // namespace MATH
}  // namespace JEV
