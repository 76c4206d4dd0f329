#include "jev3d/math/internal/xmlComponents.h"

#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/io/xml/xmlDocument.h"
#include "jev3d/io/xml/xmlElement.h"

namespace JEV {
namespace MATH {
namespace internal {

namespace {

using IO::XML::xmlDocument;
using IO::XML::xmlElement;
using IO::XML::xmlNode;

template <class T>
bool saveAll(xmlNode* parent, const std::wstring& element, const std::wstring* names,
             const T* values, int count) {
  if (parent == nullptr) return false;
  xmlElement e(element);
  for (int i = 0; i < count; ++i) e.setAttribute(names[i], values[i]);
  return e.connect(parent) != nullptr;
}

bool query(const xmlElement& e, const std::wstring& name, int& v) {
  return e.queryIntValue(name, v);
}
bool query(const xmlElement& e, const std::wstring& name, float& v) {
  return e.queryFloatValue(name, v);
}
bool query(const xmlElement& e, const std::wstring& name, double& v) {
  return e.queryDoubleValue(name, v);
}

template <class T>
bool openAll(const xmlNode* parent, const std::wstring& element, const std::wstring* names,
             T* values, int count) {
  if (parent == nullptr) return false;
  // The first child element of that name; other kinds of node with the same text are skipped.
  for (int i = 0; i < parent->getChildCount(); ++i) {
    const xmlNode* child = parent->getChild(i);
    if (child == nullptr || child->getType() != IO::XML::XML_ELEMENT ||
        child->getValueW() != element)
      continue;
    const auto& e = static_cast<const xmlElement&>(*child);
    for (int k = 0; k < count; ++k) {
      T v;
      if (query(e, names[k], v)) values[k] = v;
    }
    return true;
  }
  return false;
}

}  // namespace

bool saveComponents(xmlNode* parent, const std::wstring& element, const std::wstring* names,
                    const int* values, int count) {
  return saveAll(parent, element, names, values, count);
}
bool saveComponents(xmlNode* parent, const std::wstring& element, const std::wstring* names,
                    const float* values, int count) {
  return saveAll(parent, element, names, values, count);
}
bool saveComponents(xmlNode* parent, const std::wstring& element, const std::wstring* names,
                    const double* values, int count) {
  return saveAll(parent, element, names, values, count);
}
bool openComponents(const xmlNode* parent, const std::wstring& element, const std::wstring* names,
                    int* values, int count) {
  return openAll(parent, element, names, values, count);
}
bool openComponents(const xmlNode* parent, const std::wstring& element, const std::wstring* names,
                    float* values, int count) {
  return openAll(parent, element, names, values, count);
}
bool openComponents(const xmlNode* parent, const std::wstring& element, const std::wstring* names,
                    double* values, int count) {
  return openAll(parent, element, names, values, count);
}

template <class T>
bool saveComponentsToFile(const std::wstring& file, const std::wstring& element,
                          const std::wstring* names, const T* values, int count) {
  xmlDocument doc;
  return saveComponents(&doc, element, names, values, count) && doc.writeToFile(file);
}

template <class T>
bool openComponentsFromFile(const std::wstring& file, const std::wstring& element,
                            const std::wstring* names, T* values, int count) {
  xmlDocument doc;
  return doc.readFromFile(file) && openComponents(&doc, element, names, values, count);
}

template bool saveComponentsToFile(const std::wstring&, const std::wstring&, const std::wstring*,
                                   const int*, int);
template bool saveComponentsToFile(const std::wstring&, const std::wstring&, const std::wstring*,
                                   const float*, int);
template bool saveComponentsToFile(const std::wstring&, const std::wstring&, const std::wstring*,
                                   const double*, int);
template bool openComponentsFromFile(const std::wstring&, const std::wstring&, const std::wstring*,
                                     int*, int);
template bool openComponentsFromFile(const std::wstring&, const std::wstring&, const std::wstring*,
                                     float*, int);
template bool openComponentsFromFile(const std::wstring&, const std::wstring&, const std::wstring*,
                                     double*, int);

std::wstring widen(const std::string& text) { return IO::XML::utf8ToWstring(text); }

}  // namespace internal
}  // namespace MATH
}  // namespace JEV
