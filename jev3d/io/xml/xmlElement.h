#pragma once

#include <map>
#include <string>

#include "jev3d/io/xml/xmlAttribute.h"
#include "jev3d/io/xml/xmlNode.h"

namespace JEV {
namespace IO {
namespace XML {

// An element: a name, attributes kept in order of name (so a written file always lists
// them so), and child nodes.
//
// connect does not link this object: it links a copy (name and attributes, no children)
// and returns it. Build a node anywhere, even on the stack, connect it, and add its
// children to the returned pointer.
class xmlElement : public xmlNode {
 public:
  xmlElement() : xmlElement(std::wstring()) {}
  explicit xmlElement(const std::wstring& name);
  explicit xmlElement(const std::string& name);
  ~xmlElement() override;

  // Links a copy of this element (name and attributes) as the last child of `parent`, or before or
  // after `sibling`, and returns the copy; null, with nothing made, when the link fails.
  xmlElement* connect(xmlLinker* parent, bool follow = false) override {
    return connectCopy(*this, parent, nullptr, place::BACK, follow);
  }
  xmlElement* connectBefore(xmlLinker* parent, xmlLinker* sibling, bool follow = false) override {
    return connectCopy(*this, parent, sibling, place::BEFORE, follow);
  }
  xmlElement* connectAfter(xmlLinker* parent, xmlLinker* sibling, bool follow = false) override {
    return connectCopy(*this, parent, sibling, place::AFTER, follow);
  }
  // Copies the name and attributes into `target`, replacing its own; not the children.
  virtual void cloneTo(xmlElement& target) const;

  void setName(const std::wstring& name) { valueW = name; }
  void setName(const std::string& name);

  // Replaces the value of the attribute of that name, or adds one.
  void setAttribute(const xmlAttribute& attribute);
  void setAttribute(const std::wstring& name, const std::wstring& value);
  void setAttribute(const std::wstring& name, const std::string& value);
  void setAttribute(const std::wstring& name, int value);
  void setAttribute(const std::wstring& name, unsigned int value);
  void setAttribute(const std::wstring& name, float value);
  void setAttribute(const std::wstring& name, double value);
  void setAttribute(const std::string& name, const std::wstring& value);
  void setAttribute(const std::string& name, const std::string& value);
  void setAttribute(const std::string& name, int value);
  void setAttribute(const std::string& name, unsigned int value);
  void setAttribute(const std::string& name, float value);
  void setAttribute(const std::string& name, double value);

  bool isAttribute(const std::wstring& name) const;
  bool isAttribute(const std::string& name) const;
  // The attribute of that name, or at that position in name order; null if none.
  xmlAttribute* getAttribute(const std::wstring& name);
  const xmlAttribute* getAttribute(const std::wstring& name) const;
  xmlAttribute* getAttribute(const std::string& name);
  const xmlAttribute* getAttribute(const std::string& name) const;
  xmlAttribute* getAttribute(int index);
  const xmlAttribute* getAttribute(int index) const;
  int getAttributesCount() const { return static_cast<int>(attributes.size()); }

  // The attribute's value, or an empty string when it is missing. The reference is to
  // one result string of this element, overwritten by the next such call.
  const std::string& getAttributeValue(const std::wstring& name);
  const std::string& getAttributeValue(const std::string& name);
  const std::wstring& getAttributeValueW(const std::wstring& name);
  const std::wstring& getAttributeValueW(const std::string& name);

  // False, with `target` unchanged, when the attribute is missing; otherwise the
  // attribute's own query (strict for integers, lenient for floats).
  bool queryIntValue(const std::wstring& name, int& target) const;
  bool queryLongValue(const std::wstring& name, long& target) const;
  bool queryUnsignedIntValue(const std::wstring& name, unsigned int& target) const;
  bool queryFloatValue(const std::wstring& name, float& target) const;
  bool queryDoubleValue(const std::wstring& name, double& target) const;
  bool queryIntValue(const std::string& name, int& target) const;
  bool queryLongValue(const std::string& name, long& target) const;
  bool queryUnsignedIntValue(const std::string& name, unsigned int& target) const;
  bool queryFloatValue(const std::string& name, float& target) const;
  bool queryDoubleValue(const std::string& name, double& target) const;

 private:
  void clearAttributes();
  template <class V>
  void setAttributeValue(const std::wstring& name, const V& value);

  std::map<std::wstring, xmlAttribute*> attributes;
  std::string attributeResult;
  std::wstring attributeResultW;
};

}  // namespace XML
}  // namespace IO
}  // namespace JEV
