#pragma once

#include <algorithm>

#include "jev3d/math/internal/xmlComponents.h"
#include "jev3d/math/point2.h"

namespace JEV {
namespace MATH {

template <class T>
void point2<T>::orthonormalize(point2& u, point2& v) {
  u.normalize();
  v -= u * (u * v);
  v.normalize();
}

template <class T>
void point2<T>::orthonormalize(point2* uv) {
  orthonormalize(uv[0], uv[1]);
}

template <class T>
void point2<T>::generateOrthonormalBasis(point2& u, point2& v, bool vIsUnit) {
  if (!vIsUnit) v.normalize();
  u = v.perp();
}

template <class T>
void point2<T>::computeExtremes(int count, const point2* points, point2& min, point2& max) {
  if (count < 1 || points == nullptr) {
    min = max = ZERO();
    return;
  }
  min = max = points[0];
  for (int i = 1; i < count; ++i) {
    min.x = std::min(min.x, points[i].x), max.x = std::max(max.x, points[i].x);
    min.y = std::min(min.y, points[i].y), max.y = std::max(max.y, points[i].y);
  }
}

template <class T>
void point2<T>::getBarycentrics(const point2& p, const point2& v0, const point2& v1,
                                const point2& v2, T bary[3]) {
  // Integer points would trap on a degenerate triangle; they compute in double.
  using R = std::conditional_t<std::is_floating_point_v<T>, T, double>;
  const R e0x = R(v1.x) - R(v0.x), e0y = R(v1.y) - R(v0.y);
  const R e1x = R(v2.x) - R(v0.x), e1y = R(v2.y) - R(v0.y);
  const R dx = R(p.x) - R(v0.x), dy = R(p.y) - R(v0.y);
  const R a00 = e0x * e0x + e0y * e0y, a01 = e0x * e1x + e0y * e1y, a11 = e1x * e1x + e1y * e1y;
  const R r0 = dx * e0x + dy * e0y, r1 = dx * e1x + dy * e1y;
  const R det = a00 * a11 - a01 * a01;
  const R b1 = (a11 * r0 - a01 * r1) / det;
  const R b2 = (a00 * r1 - a01 * r0) / det;
  bary[0] = T(R(1) - b1 - b2);
  bary[1] = T(b1);
  bary[2] = T(b2);
}

template <class T>
bool point2<T>::saveToXML(IO::XML::xmlNode* node, const std::string& element,
                          const std::string& xName, const std::string& yName) const {
  return internal::saveNamed(node, internal::widen(element), data(), internal::widen(xName),
                             internal::widen(yName));
}

template <class T>
bool point2<T>::saveToXML(const std::string& file, const std::string& element,
                          const std::string& xName, const std::string& yName) const {
  return internal::saveNamed(internal::widen(file), internal::widen(element), data(),
                             internal::widen(xName), internal::widen(yName));
}

template <class T>
bool point2<T>::saveToXMLW(IO::XML::xmlNode* node, const std::wstring& element,
                           const std::wstring& xName, const std::wstring& yName) const {
  return internal::saveNamed(node, element, data(), xName, yName);
}

template <class T>
bool point2<T>::saveToXMLW(const std::wstring& file, const std::wstring& element,
                           const std::wstring& xName, const std::wstring& yName) const {
  return internal::saveNamed(file, element, data(), xName, yName);
}

template <class T>
bool point2<T>::openFromXML(const IO::XML::xmlNode* node, const std::string& element,
                            const std::string& xName, const std::string& yName) {
  return internal::openNamed(node, internal::widen(element), data(), internal::widen(xName),
                             internal::widen(yName));
}

template <class T>
bool point2<T>::openFromXML(const std::string& file, const std::string& element,
                            const std::string& xName, const std::string& yName) {
  return internal::openNamed(internal::widen(file), internal::widen(element), data(),
                             internal::widen(xName), internal::widen(yName));
}

template <class T>
bool point2<T>::openFromXMLW(const IO::XML::xmlNode* node, const std::wstring& element,
                             const std::wstring& xName, const std::wstring& yName) {
  return internal::openNamed(node, element, data(), xName, yName);
}

template <class T>
bool point2<T>::openFromXMLW(const std::wstring& file, const std::wstring& element,
                             const std::wstring& xName, const std::wstring& yName) {
  return internal::openNamed(file, element, data(), xName, yName);
}

}  // namespace MATH
}  // namespace JEV
