#pragma once

#include <algorithm>

#include "jev3d/math/internal/xmlComponents.h"
#include "jev3d/math/point4.h"

namespace JEV {
namespace MATH {

template <class T>
void point4<T>::computeExtremes(int count, const point4* points, point4& min, point4& max) {
  if (count < 1 || points == nullptr) {
    min = max = ZERO();
    return;
  }
  min = max = points[0];
  for (int i = 1; i < count; ++i) {
    for (int k = 0; k < 4; ++k) {
      min[k] = std::min(min[k], points[i][k]);
      max[k] = std::max(max[k], points[i][k]);
    }
  }
}

template <class T>
bool point4<T>::saveToXML(IO::XML::xmlNode* node, const std::string& element,
                          const std::string& xName, const std::string& yName,
                          const std::string& zName, const std::string& wName) const {
  return internal::saveNamed(node, internal::widen(element), data(), internal::widen(xName),
                             internal::widen(yName), internal::widen(zName),
                             internal::widen(wName));
}

template <class T>
bool point4<T>::saveToXML(const std::string& file, const std::string& element,
                          const std::string& xName, const std::string& yName,
                          const std::string& zName, const std::string& wName) const {
  return internal::saveNamed(internal::widen(file), internal::widen(element), data(),
                             internal::widen(xName), internal::widen(yName), internal::widen(zName),
                             internal::widen(wName));
}

template <class T>
bool point4<T>::saveToXMLW(IO::XML::xmlNode* node, const std::wstring& element,
                           const std::wstring& xName, const std::wstring& yName,
                           const std::wstring& zName, const std::wstring& wName) const {
  return internal::saveNamed(node, element, data(), xName, yName, zName, wName);
}

template <class T>
bool point4<T>::saveToXMLW(const std::wstring& file, const std::wstring& element,
                           const std::wstring& xName, const std::wstring& yName,
                           const std::wstring& zName, const std::wstring& wName) const {
  return internal::saveNamed(file, element, data(), xName, yName, zName, wName);
}

template <class T>
bool point4<T>::openFromXML(const IO::XML::xmlNode* node, const std::string& element,
                            const std::string& xName, const std::string& yName,
                            const std::string& zName, const std::string& wName) {
  return internal::openNamed(node, internal::widen(element), data(), internal::widen(xName),
                             internal::widen(yName), internal::widen(zName),
                             internal::widen(wName));
}

template <class T>
bool point4<T>::openFromXML(const std::string& file, const std::string& element,
                            const std::string& xName, const std::string& yName,
                            const std::string& zName, const std::string& wName) {
  return internal::openNamed(internal::widen(file), internal::widen(element), data(),
                             internal::widen(xName), internal::widen(yName), internal::widen(zName),
                             internal::widen(wName));
}

template <class T>
bool point4<T>::openFromXMLW(const IO::XML::xmlNode* node, const std::wstring& element,
                             const std::wstring& xName, const std::wstring& yName,
                             const std::wstring& zName, const std::wstring& wName) {
  return internal::openNamed(node, element, data(), xName, yName, zName, wName);
}

template <class T>
bool point4<T>::openFromXMLW(const std::wstring& file, const std::wstring& element,
                             const std::wstring& xName, const std::wstring& yName,
                             const std::wstring& zName, const std::wstring& wName) {
  return internal::openNamed(file, element, data(), xName, yName, zName, wName);
}

}  // namespace MATH
}  // namespace JEV
