#include "jev3d/io/xml/xmlElement.h"

#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace IO {
namespace XML {

xmlElement::xmlElement(const std::wstring& name) {
  type = XML_ELEMENT;
  valueW = name;
}

xmlElement::xmlElement(const std::string& name) : xmlElement(utf8ToWstring(name)) {}

xmlElement::~xmlElement() { clearAttributes(); }

void xmlElement::cloneTo(xmlElement& target) const {
  if (&target == this) return;
  target.valueW = valueW;
  target.clearAttributes();
  for (const auto& entry : attributes) {
    target.attributes.emplace(entry.first, new xmlAttribute(*entry.second));
  }
}

void xmlElement::setName(const std::string& name) { valueW = utf8ToWstring(name); }

void xmlElement::clearAttributes() {
  for (auto& entry : attributes) delete entry.second;
  attributes.clear();
}

template <class V>
void xmlElement::setAttributeValue(const std::wstring& name, const V& value) {
  auto found = attributes.find(name);
  if (found != attributes.end()) {
    found->second->setValue(value);
  } else {
    attributes.emplace(name, new xmlAttribute(name, value));
  }
}

void xmlElement::setAttribute(const xmlAttribute& a) {
  setAttributeValue(a.getNameW(), a.getValueW());
}

void xmlElement::setAttribute(const std::wstring& n, const std::wstring& v) {
  setAttributeValue(n, v);
}
void xmlElement::setAttribute(const std::wstring& n, const std::string& v) {
  setAttributeValue(n, v);
}
void xmlElement::setAttribute(const std::wstring& n, int v) { setAttributeValue(n, v); }
void xmlElement::setAttribute(const std::wstring& n, unsigned int v) { setAttributeValue(n, v); }
void xmlElement::setAttribute(const std::wstring& n, float v) { setAttributeValue(n, v); }
void xmlElement::setAttribute(const std::wstring& n, double v) { setAttributeValue(n, v); }
void xmlElement::setAttribute(const std::string& n, const std::wstring& v) {
  setAttributeValue(utf8ToWstring(n), v);
}
void xmlElement::setAttribute(const std::string& n, const std::string& v) {
  setAttributeValue(utf8ToWstring(n), v);
}
void xmlElement::setAttribute(const std::string& n, int v) {
  setAttributeValue(utf8ToWstring(n), v);
}
void xmlElement::setAttribute(const std::string& n, unsigned int v) {
  setAttributeValue(utf8ToWstring(n), v);
}
void xmlElement::setAttribute(const std::string& n, float v) {
  setAttributeValue(utf8ToWstring(n), v);
}
void xmlElement::setAttribute(const std::string& n, double v) {
  setAttributeValue(utf8ToWstring(n), v);
}

bool xmlElement::isAttribute(const std::wstring& name) const { return attributes.count(name) != 0; }
bool xmlElement::isAttribute(const std::string& name) const {
  return isAttribute(utf8ToWstring(name));
}

const xmlAttribute* xmlElement::getAttribute(const std::wstring& name) const {
  auto found = attributes.find(name);
  return found == attributes.end() ? nullptr : found->second;
}

xmlAttribute* xmlElement::getAttribute(const std::wstring& name) {
  return const_cast<xmlAttribute*>(static_cast<const xmlElement*>(this)->getAttribute(name));
}

const xmlAttribute* xmlElement::getAttribute(const std::string& name) const {
  return getAttribute(utf8ToWstring(name));
}

xmlAttribute* xmlElement::getAttribute(const std::string& name) {
  return getAttribute(utf8ToWstring(name));
}

const xmlAttribute* xmlElement::getAttribute(int index) const {
  if (index < 0 || index >= getAttributesCount()) return nullptr;
  auto it = attributes.begin();
  std::advance(it, index);
  return it->second;
}

xmlAttribute* xmlElement::getAttribute(int index) {
  return const_cast<xmlAttribute*>(static_cast<const xmlElement*>(this)->getAttribute(index));
}

const std::string& xmlElement::getAttributeValue(const std::wstring& name) {
  attributeResult.clear();
  if (const xmlAttribute* a = getAttribute(name)) attributeResult = a->getValue();
  return attributeResult;
}

const std::string& xmlElement::getAttributeValue(const std::string& name) {
  return getAttributeValue(utf8ToWstring(name));
}

const std::wstring& xmlElement::getAttributeValueW(const std::wstring& name) {
  attributeResultW.clear();
  if (const xmlAttribute* a = getAttribute(name)) attributeResultW = a->getValueW();
  return attributeResultW;
}

const std::wstring& xmlElement::getAttributeValueW(const std::string& name) {
  return getAttributeValueW(utf8ToWstring(name));
}

bool xmlElement::queryIntValue(const std::wstring& n, int& t) const {
  const xmlAttribute* a = getAttribute(n);
  return a && a->queryIntValue(t);
}
bool xmlElement::queryLongValue(const std::wstring& n, long& t) const {
  const xmlAttribute* a = getAttribute(n);
  return a && a->queryLongValue(t);
}
bool xmlElement::queryUnsignedIntValue(const std::wstring& n, unsigned int& t) const {
  const xmlAttribute* a = getAttribute(n);
  return a && a->queryUnsignedIntValue(t);
}
bool xmlElement::queryFloatValue(const std::wstring& n, float& t) const {
  const xmlAttribute* a = getAttribute(n);
  return a && a->queryFloatValue(t);
}
bool xmlElement::queryDoubleValue(const std::wstring& n, double& t) const {
  const xmlAttribute* a = getAttribute(n);
  return a && a->queryDoubleValue(t);
}
bool xmlElement::queryIntValue(const std::string& n, int& t) const {
  return queryIntValue(utf8ToWstring(n), t);
}
bool xmlElement::queryLongValue(const std::string& n, long& t) const {
  return queryLongValue(utf8ToWstring(n), t);
}
bool xmlElement::queryUnsignedIntValue(const std::string& n, unsigned int& t) const {
  return queryUnsignedIntValue(utf8ToWstring(n), t);
}
bool xmlElement::queryFloatValue(const std::string& n, float& t) const {
  return queryFloatValue(utf8ToWstring(n), t);
}
bool xmlElement::queryDoubleValue(const std::string& n, double& t) const {
  return queryDoubleValue(utf8ToWstring(n), t);
}

}  // namespace XML
}  // namespace IO
}  // namespace JEV
