#include "jev3d/io/xml/xmlNode.h"

#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace IO {
namespace XML {

xmlNode::~xmlNode() {
  // Children go in order, as if the front child were deleted until none is left; the list
  // is emptied first so that each death does not shift the rest of it.
  const linkerList children = std::move(slaves);
  slaves.clear();
  for (xmlLinker* child : children) delete child;
}

xmlNode* xmlNode::findNode(const std::wstring& name) {
  return const_cast<xmlNode*>(static_cast<const xmlNode*>(this)->findNode(name));
}

const xmlNode* xmlNode::findNode(const std::wstring& name) const {
  for (const xmlLinker* child : slaves) {
    const auto* node = dynamic_cast<const xmlNode*>(child);
    if (node && node->getValueW() == name) return node;
  }
  return nullptr;
}

xmlNode* xmlNode::findNode(const std::string& name) { return findNode(utf8ToWstring(name)); }

const xmlNode* xmlNode::findNode(const std::string& name) const {
  return findNode(utf8ToWstring(name));
}

const std::string& xmlNode::getValue() const {
  value = wstringToUtf8(getValueW());
  return value;
}

xmlNode* xmlNode::getChild(int index) {
  return const_cast<xmlNode*>(static_cast<const xmlNode*>(this)->getChild(index));
}

const xmlNode* xmlNode::getChild(int index) const {
  if (index < 0 || index >= getChildCount()) return nullptr;
  return dynamic_cast<const xmlNode*>(slaves[static_cast<size_t>(index)]);
}

}  // namespace XML
}  // namespace IO
}  // namespace JEV
