#pragma once

#include <string>

namespace JEV {
namespace IO {
namespace XML {
class xmlNode;
}  // namespace XML
}  // namespace IO

namespace MATH {
namespace internal {

// The shared body of the value types' XML overloads: `count` numbers stored as the
// attributes `names` of one element called `element`.

// Appends the element to `parent`; false if parent is null or the link fails.
bool saveComponents(IO::XML::xmlNode* parent, const std::wstring& element,
                    const std::wstring* names, const int* values, int count);
bool saveComponents(IO::XML::xmlNode* parent, const std::wstring& element,
                    const std::wstring* names, const float* values, int count);
bool saveComponents(IO::XML::xmlNode* parent, const std::wstring& element,
                    const std::wstring* names, const double* values, int count);

// Reads the attributes of the first child element of `parent` with that name; false if
// there is none. A missing or unreadable attribute leaves its value untouched.
bool openComponents(const IO::XML::xmlNode* parent, const std::wstring& element,
                    const std::wstring* names, int* values, int count);
bool openComponents(const IO::XML::xmlNode* parent, const std::wstring& element,
                    const std::wstring* names, float* values, int count);
bool openComponents(const IO::XML::xmlNode* parent, const std::wstring& element,
                    const std::wstring* names, double* values, int count);

// The file forms: a new file holding only the element, and a file whose top level holds
// it. False when the file cannot be written or read, or the element is absent.
template <class T>
bool saveComponentsToFile(const std::wstring& file, const std::wstring& element,
                          const std::wstring* names, const T* values, int count);
template <class T>
bool openComponentsFromFile(const std::wstring& file, const std::wstring& element,
                            const std::wstring* names, T* values, int count);

// Narrow names widened as the XML layer does.
std::wstring widen(const std::string& text);

// The same with the attribute names given one by one.
template <class T, class... N>
bool saveNamed(IO::XML::xmlNode* parent, const std::wstring& element, const T* values,
               const N&... names) {
  const std::wstring list[] = {names...};
  return saveComponents(parent, element, list, values, int(sizeof...(N)));
}
template <class T, class... N>
bool saveNamed(const std::wstring& file, const std::wstring& element, const T* values,
               const N&... names) {
  const std::wstring list[] = {names...};
  return saveComponentsToFile(file, element, list, values, int(sizeof...(N)));
}
template <class T, class... N>
bool openNamed(const IO::XML::xmlNode* parent, const std::wstring& element, T* values,
               const N&... names) {
  const std::wstring list[] = {names...};
  return openComponents(parent, element, list, values, int(sizeof...(N)));
}
template <class T, class... N>
bool openNamed(const std::wstring& file, const std::wstring& element, T* values,
               const N&... names) {
  const std::wstring list[] = {names...};
  return openComponentsFromFile(file, element, list, values, int(sizeof...(N)));
}

}  // namespace internal
}  // namespace MATH
}  // namespace JEV
