#pragma once

#include <string>

#include "jev3d/io/xml/xmlNode.h"

namespace JEV {
namespace IO {
namespace XML {

// Character data inside an element; its value is the text.
class xmlText : public xmlNode {
 public:
  xmlText() : xmlText(std::wstring()) {}
  explicit xmlText(const std::wstring& text);
  explicit xmlText(const std::string& text);

  // Links a copy of this text as the last child of `parent`, or before or after
  // `sibling`, and returns the copy; null, with nothing made, when the link fails.
  xmlText* connect(xmlLinker* parent, bool follow = false) override {
    return connectCopy(*this, parent, nullptr, place::BACK, follow);
  }
  xmlText* connectBefore(xmlLinker* parent, xmlLinker* sibling, bool follow = false) override {
    return connectCopy(*this, parent, sibling, place::BEFORE, follow);
  }
  xmlText* connectAfter(xmlLinker* parent, xmlLinker* sibling, bool follow = false) override {
    return connectCopy(*this, parent, sibling, place::AFTER, follow);
  }
  void setText(const std::wstring& text) { valueW = text; }
  void setText(const std::string& text);
  // Copies this node's own content into `target`; not the children.
  virtual void cloneTo(xmlText& target) const { target.valueW = valueW; }
};

}  // namespace XML
}  // namespace IO
}  // namespace JEV
