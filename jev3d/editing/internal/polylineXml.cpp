#include "jev3d/editing/internal/polylineXml.h"

#include <cmath>
#include <cwchar>
#include <limits>

#include "jev3d/io/xml/xmlElement.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace INTERNAL {

const IO::XML::xmlElement* asElement(const IO::XML::xmlNode* n, const wchar_t* name) {
  if (!n || n->getType() != IO::XML::XML_ELEMENT || n->getValueW() != name) return nullptr;
  return static_cast<const IO::XML::xmlElement*>(n);
}

bool readIndex(const IO::XML::xmlElement& e, const wchar_t* name, unsigned int& out) {
  const IO::XML::xmlAttribute* a = e.getAttribute(std::wstring(name));
  if (!a || a->getValueW().empty()) return false;
  for (wchar_t c : a->getValueW())
    if (c < L'0' || c > L'9') return false;
  return a->queryUnsignedIntValue(out);
}

bool readCoordinate(const IO::XML::xmlElement& e, const wchar_t* name, float& out) {
  const IO::XML::xmlAttribute* a = e.getAttribute(std::wstring(name));
  if (!a || a->getValueW().empty()) return false;
  const std::wstring& text = a->getValueW();
  wchar_t* end = nullptr;
  const double v = std::wcstod(text.c_str(), &end);
  while (end && (*end == L' ' || *end == L'\t')) ++end;
  if (!end || *end != 0 || !std::isfinite(v) || std::fabs(v) > std::numeric_limits<float>::max())
    return false;
  out = float(v);
  return true;
}

bool readName(const IO::XML::xmlElement& e, const wchar_t* name, std::wstring& out) {
  const IO::XML::xmlAttribute* a = e.getAttribute(std::wstring(name));
  if (!a) return false;
  out = a->getValueW();
  return true;
}

}  // namespace INTERNAL
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
