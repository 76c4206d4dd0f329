#pragma once

#include <cmath>

#include "jev3d/math/internal/xmlComponents.h"
#include "jev3d/math/mathBase.h"
#include "jev3d/math/matrix3.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/math/quaternion.h"

namespace JEV {
namespace MATH {

namespace internal {

// The twelve 2×2 minors of the upper two rows (a) and the lower two rows (b); the
// determinant and the adjoint are both sums of their products.
template <class T>
struct minors4 {
  T a[6], b[6];
  explicit minors4(const T* m) {
    a[0] = m[0] * m[5] - m[1] * m[4], a[1] = m[0] * m[6] - m[2] * m[4];
    a[2] = m[0] * m[7] - m[3] * m[4], a[3] = m[1] * m[6] - m[2] * m[5];
    a[4] = m[1] * m[7] - m[3] * m[5], a[5] = m[2] * m[7] - m[3] * m[6];
    b[0] = m[8] * m[13] - m[9] * m[12], b[1] = m[8] * m[14] - m[10] * m[12];
    b[2] = m[8] * m[15] - m[11] * m[12], b[3] = m[9] * m[14] - m[10] * m[13];
    b[4] = m[9] * m[15] - m[11] * m[13], b[5] = m[10] * m[15] - m[11] * m[14];
  }
  T determinant() const {
    return a[0] * b[5] - a[1] * b[4] + a[2] * b[3] + a[3] * b[2] - a[4] * b[1] + a[5] * b[0];
  }
};

}  // namespace internal

template <class T>
T matrix4<T>::determinant() const {
  return internal::minors4<T>(m).determinant();
}

template <class T>
matrix4<T> matrix4<T>::adjoint() const {
  const internal::minors4<T> n(m);
  const T* a = n.a;
  const T* b = n.b;
  return matrix4(
      m[5] * b[5] - m[6] * b[4] + m[7] * b[3], -m[1] * b[5] + m[2] * b[4] - m[3] * b[3],
      m[13] * a[5] - m[14] * a[4] + m[15] * a[3], -m[9] * a[5] + m[10] * a[4] - m[11] * a[3],
      -m[4] * b[5] + m[6] * b[2] - m[7] * b[1], m[0] * b[5] - m[2] * b[2] + m[3] * b[1],
      -m[12] * a[5] + m[14] * a[2] - m[15] * a[1], m[8] * a[5] - m[10] * a[2] + m[11] * a[1],
      m[4] * b[4] - m[5] * b[2] + m[7] * b[0], -m[0] * b[4] + m[1] * b[2] - m[3] * b[0],
      m[12] * a[4] - m[13] * a[2] + m[15] * a[0], -m[8] * a[4] + m[9] * a[2] - m[11] * a[0],
      -m[4] * b[3] + m[5] * b[1] - m[6] * b[0], m[0] * b[3] - m[1] * b[1] + m[2] * b[0],
      -m[12] * a[3] + m[13] * a[1] - m[14] * a[0], m[8] * a[3] - m[9] * a[1] + m[10] * a[0]);
}

template <class T>
matrix4<T> matrix4<T>::getInverse() const {
  const T det = determinant();
  if (std::abs(det) == T(0)) return ZERO();
  return adjoint() * (T(1) / det);
}

template <class T>
matrix4<T>& matrix4<T>::setRotateRad(T angle, const point3<T>& axis) {
  const point3<T> a = axis.getNormalized();
  const T c = std::cos(angle), s = std::sin(angle), t = T(1) - c;
  setIdentity();
  m[0] = t * a.x * a.x + c, m[1] = t * a.x * a.y + a.z * s, m[2] = t * a.x * a.z - a.y * s;
  m[4] = t * a.x * a.y - a.z * s, m[5] = t * a.y * a.y + c, m[6] = t * a.y * a.z + a.x * s;
  m[8] = t * a.x * a.z + a.y * s, m[9] = t * a.y * a.z - a.x * s, m[10] = t * a.z * a.z + c;
  return *this;
}

template <class T>
matrix4<T>& matrix4<T>::setLookAtLH(const point3<T>& eye, const point3<T>& at,
                                    const point3<T>& up) {
  const point3<T> zAxis = (at - eye).normalize();
  const point3<T> xAxis = point3<T>::cross(up, zAxis).normalize();
  const point3<T> yAxis = point3<T>::cross(zAxis, xAxis).normalize();
  *this = matrix4(xAxis.x, yAxis.x, zAxis.x, T(0),  //
                  xAxis.y, yAxis.y, zAxis.y, T(0),  //
                  xAxis.z, yAxis.z, zAxis.z, T(0),  //
                  -(xAxis * eye), -(yAxis * eye), -(zAxis * eye), T(1));
  return *this;
}

template <class T>
matrix4<T>& matrix4<T>::setOrthoLH(T left, T right, T bottom, T top, T zNear, T zFar) {
  setZero();
  m[0] = T(2) / (right - left);
  m[5] = T(2) / (top - bottom);
  m[10] = T(1) / (zFar - zNear);
  m[12] = (left + right) / (left - right);
  m[13] = (bottom + top) / (bottom - top);
  m[14] = zNear / (zNear - zFar);
  m[15] = T(1);
  return *this;
}

template <class T>
matrix4<T>& matrix4<T>::setFrustumLH(T left, T right, T bottom, T top, T zNear, T zFar) {
  setZero();
  m[0] = T(2) * zNear / (right - left);
  m[5] = T(2) * zNear / (top - bottom);
  m[8] = (left + right) / (left - right);
  m[9] = (bottom + top) / (bottom - top);
  m[10] = zFar / (zFar - zNear);
  m[11] = T(1);
  m[14] = zNear * zFar / (zNear - zFar);
  return *this;
}

template <class T>
matrix4<T>& matrix4<T>::setPerspectiveLHRad(T fovY, T aspect, T zNear, T zFar) {
  const T yScale = T(1) / std::tan(fovY / T(2));
  setZero();
  m[0] = yScale / aspect;
  m[5] = yScale;
  m[10] = zFar / (zFar - zNear);
  m[11] = T(1);
  m[14] = -zNear * zFar / (zFar - zNear);
  return *this;
}

template <class T>
matrix4<T>& matrix4<T>::setPerspectiveLHDeg(T fovYDeg, T aspect, T zNear, T zFar) {
  return setPerspectiveLHRad(mathBase<T>::PI() * fovYDeg / T(180), aspect, zNear, zFar);
}

template <class T>
matrix4<T> matrix4<T>::setProjectionMatrix(bool perspective, T fovDeg, T aspect, T zNear, T zFar) {
  if (perspective) return setPerspectiveLHDeg(fovDeg, aspect, zNear, zFar);
  const T h = std::tan(fovDeg * mathBase<T>::PI() / T(180)) * zNear;
  const T w = h * aspect;
  return setOrthoLH(T(-100) * w, T(100) * w, T(-100) * h, T(100) * h, zNear, zFar);
}

template <class T>
matrix4<T>& matrix4<T>::setReflection(const point3<T>& normal, const point3<T>& point) {
  const T twoNP = T(2) * (normal * point);
  setIdentity();
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) (*this)(r, c) -= T(2) * normal[r] * normal[c];
    (*this)(r, 3) = twoNP * normal[r];
  }
  return *this;
}

template <class T>
matrix4<T>& matrix4<T>::setObliqueProjection(const point3<T>& normal, const point3<T>& point,
                                             const point3<T>& direction) {
  const T nd = normal * direction, np = normal * point;
  setZero();
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) (*this)(r, c) = direction[r] * normal[c] - (r == c ? nd : T(0));
    (*this)(r, 3) = -np * direction[r];
  }
  m[15] = -nd;
  return *this;
}

template <class T>
matrix4<T>& matrix4<T>::setPerspectiveProjection(const point3<T>& normal, const point3<T>& point,
                                                 const point3<T>& eye) {
  const T dist = normal * (eye - point);
  setZero();
  for (int r = 0; r < 3; ++r) {
    T rowDotEye = T(0);
    for (int c = 0; c < 3; ++c) {
      (*this)(r, c) = (r == c ? dist : T(0)) - eye[r] * normal[c];
      rowDotEye += (*this)(r, c) * eye[c];
    }
    (*this)(r, 3) = -rowDotEye;
    (*this)(3, r) = -normal[r];
  }
  m[15] = normal * eye;
  return *this;
}

template <class T>
matrix4<T> matrix4<T>::interpolateRotationMatricex(const matrix4& a, const matrix4& b, T t) {
  quaternion<T> qa(a.getMatrix3()), qb(b.getMatrix3()), q;
  qa.normalize();
  qb.normalize();
  q.slerp(t, qa, qb).normalize();
  matrix3<T> r;
  q.toRotationMatrix(r);
  return r.toMatrix4();
}

template <class T>
matrix4<T> matrix4<T>::getRandomTransform(T angleDeg, T x, T y, T z) {
  // The mixing of the arguments is a fixture's and kept as it is.
  const matrix4 translate = getTranslate(y, z, x + angleDeg);
  const matrix4 scale = getScale(angleDeg + z, y, y);
  const matrix4 rotate = getRotateRad(angleDeg * mathBase<T>::DEG_TO_RAD(), point3<T>(x, y, z));
  return IDENTITY() * translate * scale * rotate;
}

template <class T>
matrix4<T> matrix4<T>::getRandomTransform(unsigned int seed) {
  std::srand(seed);
  const auto draw = [] { return T((mathBase<T>::rand15() + 1) / 32767.0); };
  const T angle = draw() * T(360);
  const T x = draw() + T(1);
  const T y = draw() + T(1);
  const T z = draw() + T(1);
  return getRandomTransform(angle, x, y, z);
}

template <class T>
bool matrix4<T>::jacobi(const matrix4& input, T values[4], matrix4& vectors, int& rotations) {
  matrix4 a(input);
  vectors.setIdentity();
  rotations = 0;
  T pending[4], accumulated[4];
  for (int i = 0; i < 4; ++i) values[i] = accumulated[i] = a(i, i), pending[i] = T(0);
  for (int sweep = 0; sweep < 50; ++sweep) {
    T offDiagonal = T(0);
    for (int p = 0; p < 3; ++p)
      for (int q = p + 1; q < 4; ++q) offDiagonal += std::abs(a(p, q));
    if (offDiagonal == T(0)) return true;
    // Early sweeps only rotate the large elements.
    const T threshold = sweep < 4 ? T(0.2) * offDiagonal / T(16) : T(0);
    for (int p = 0; p < 3; ++p) {
      for (int q = p + 1; q < 4; ++q) {
        const T g = T(100) * std::abs(a(p, q));
        if (sweep >= 4 && std::abs(values[p]) + g == std::abs(values[p]) &&
            std::abs(values[q]) + g == std::abs(values[q])) {
          a(p, q) = T(0);
          continue;
        }
        if (!(std::abs(a(p, q)) > threshold)) continue;
        T h = values[q] - values[p];
        T t;
        if (std::abs(h) + g == std::abs(h)) {
          t = a(p, q) / h;
        } else {
          const T theta = T(0.5) * h / a(p, q);
          t = T(1) / (std::abs(theta) + T(std::sqrt(1.0 + double(theta) * theta)));
          if (theta < T(0)) t = -t;
        }
        const T c = T(1.0 / std::sqrt(1.0 + double(t) * t));
        const T s = t * c;
        const T tau = s / (T(1) + c);
        h = t * a(p, q);
        pending[p] -= h, pending[q] += h;
        values[p] -= h, values[q] += h;
        a(p, q) = T(0);
        for (int j = 0; j < p; ++j) jacobiRotate(a, s, tau, j, p, j, q);
        for (int j = p + 1; j < q; ++j) jacobiRotate(a, s, tau, p, j, j, q);
        for (int j = q + 1; j < 4; ++j) jacobiRotate(a, s, tau, p, j, q, j);
        for (int j = 0; j < 4; ++j) jacobiRotate(vectors, s, tau, j, p, j, q);
        ++rotations;
      }
    }
    for (int i = 0; i < 4; ++i) {
      accumulated[i] += pending[i];
      values[i] = accumulated[i];
      pending[i] = T(0);
    }
  }
  return false;
}

template <class T>
bool matrix4<T>::computeRigidMatchMatrix(matrix4& result, const std::vector<point3<T>>& a,
                                         const std::vector<point3<T>>& b, bool withTranslation) {
  point3<T> meanA, meanB;
  matrix3<T> s;
  s.setCrossCovariance(a, b, meanA, meanB);
  // Horn's symmetric 4×4 matrix: its dominant eigenvector is the best unit quaternion.
  const T trace = s.getTrace();
  const T d0 = s(2, 1) - s(1, 2), d1 = s(0, 2) - s(2, 0), d2 = s(1, 0) - s(0, 1);
  matrix4 n(trace, d0, d1, d2,                                                 //
            d0, T(2) * s(0, 0) - trace, s(0, 1) + s(1, 0), s(0, 2) + s(2, 0),  //
            d1, s(1, 0) + s(0, 1), T(2) * s(1, 1) - trace, s(1, 2) + s(2, 1),  //
            d2, s(2, 0) + s(0, 2), s(2, 1) + s(1, 2), T(2) * s(2, 2) - trace);
  T values[4];
  matrix4 vectors;
  int rotations = 0;
  jacobi(n, values, vectors, rotations);
  // The strictly largest magnitude wins; an eigenvalue of 0 is never chosen.
  int best = -1;
  T bestMagnitude = T(0);
  for (int i = 0; i < 4; ++i) {
    if (std::abs(values[i]) > bestMagnitude) bestMagnitude = std::abs(values[i]), best = i;
  }
  quaternion<T> q;
  if (best >= 0)
    q = quaternion<T>(vectors(0, best), vectors(1, best), vectors(2, best), vectors(3, best));
  q.ToMatrix(result);
  if (withTranslation) {
    const point3<T> t = meanB - meanA * result;
    result = result * getTranslate(t.x, t.y, t.z);
  }
  return true;
}

namespace internal {

inline std::array<std::wstring, 16> widen(const std::array<std::string, 16>& names) {
  std::array<std::wstring, 16> wide;
  for (int i = 0; i < 16; ++i) wide[i] = widen(names[i]);
  return wide;
}

}  // namespace internal

template <class T>
bool matrix4<T>::saveToXMLW(IO::XML::xmlNode* node, const std::wstring& element,
                            const std::array<std::wstring, 16>& names) const {
  return internal::saveComponents(node, element, names.data(), m, 16);
}
template <class T>
bool matrix4<T>::saveToXMLW(const std::wstring& file, const std::wstring& element,
                            const std::array<std::wstring, 16>& names) const {
  return internal::saveComponentsToFile(file, element, names.data(), m, 16);
}
template <class T>
bool matrix4<T>::openFromXMLW(const IO::XML::xmlNode* node, const std::wstring& element,
                              const std::array<std::wstring, 16>& names) {
  return internal::openComponents(node, element, names.data(), m, 16);
}
template <class T>
bool matrix4<T>::openFromXMLW(const std::wstring& file, const std::wstring& element,
                              const std::array<std::wstring, 16>& names) {
  return internal::openComponentsFromFile(file, element, names.data(), m, 16);
}
template <class T>
bool matrix4<T>::saveToXML(IO::XML::xmlNode* node, const std::string& element,
                           const std::array<std::string, 16>& names) const {
  return saveToXMLW(node, internal::widen(element), internal::widen(names));
}
template <class T>
bool matrix4<T>::saveToXML(const std::string& file, const std::string& element,
                           const std::array<std::string, 16>& names) const {
  return saveToXMLW(internal::widen(file), internal::widen(element), internal::widen(names));
}
template <class T>
bool matrix4<T>::openFromXML(const IO::XML::xmlNode* node, const std::string& element,
                             const std::array<std::string, 16>& names) {
  return openFromXMLW(node, internal::widen(element), internal::widen(names));
}
template <class T>
bool matrix4<T>::openFromXML(const std::string& file, const std::string& element,
                             const std::array<std::string, 16>& names) {
  return openFromXMLW(internal::widen(file), internal::widen(element), internal::widen(names));
}

}  // namespace MATH
}  // namespace JEV
