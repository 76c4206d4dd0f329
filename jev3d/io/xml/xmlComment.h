#pragma once

#include <string>

#include "jev3d/io/xml/xmlNode.h"

namespace JEV {
namespace IO {
namespace XML {

// A comment; its value is the comment's text.
class xmlComment : public xmlNode {
 public:
  xmlComment() : xmlComment(std::wstring()) {}
  explicit xmlComment(const std::wstring& text);
  explicit xmlComment(const std::string& text);

  // Links a copy of this comment as the last child of `parent`, or before or after
  // `sibling`, and returns the copy; null, with nothing made, when the link fails.
  xmlComment* connect(xmlLinker* parent, bool follow = false) override {
    return connectCopy(*this, parent, nullptr, place::BACK, follow);
  }
  xmlComment* connectBefore(xmlLinker* parent, xmlLinker* sibling, bool follow = false) override {
    return connectCopy(*this, parent, sibling, place::BEFORE, follow);
  }
  xmlComment* connectAfter(xmlLinker* parent, xmlLinker* sibling, bool follow = false) override {
    return connectCopy(*this, parent, sibling, place::AFTER, follow);
  }
  // Copies this node's own content into `target`; not the children.
  virtual void cloneTo(xmlComment& target) const { target.valueW = valueW; }
};

}  // namespace XML
}  // namespace IO
}  // namespace JEV
