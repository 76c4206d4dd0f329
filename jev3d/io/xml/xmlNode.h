#pragma once

#include <cstdint>
#include <string>

#include "jev3d/fields/linkerBase.h"

namespace JEV {
namespace IO {
namespace XML {

using xmlLinker = SYSTEM::linkerBase<SYSTEM::dummyLinkerType>;

// Kinds of node. These numbers are the layer's own, not the parser's.
enum XML_NODE_TYPE : int32_t {
  XML_DOCUMENT = 0,
  XML_ELEMENT = 1,
  XML_COMMENT = 2,
  XML_TEXT = 3,
  XML_DECLARATION = 4,
  XML_NODE = 5
};

// A node of a wide-string XML tree. A child is a slave of its parent, in document order,
// and a node owns its children: destroying it destroys them. Nodes are added to a tree
// by the `connect` of the concrete classes, which link a heap copy and return it.
class xmlNode : public xmlLinker {
 public:
  xmlNode() = default;
  ~xmlNode() override;
  xmlNode(const xmlNode&) = delete;
  xmlNode& operator=(const xmlNode&) = delete;

  // The first direct child whose value equals `name` exactly, of any kind, or null.
  xmlNode* findNode(const std::wstring& name);
  const xmlNode* findNode(const std::wstring& name) const;
  xmlNode* findNode(const std::string& name);
  const xmlNode* findNode(const std::string& name) const;

  virtual XML_NODE_TYPE getType() const { return type; }
  // The node's text: an element's name, a comment's or a text's content.
  virtual const std::wstring& getValueW() const { return valueW; }
  // The same in UTF-8; the reference stays valid until the next call.
  virtual const std::string& getValue() const;

  // Direct children in order; getChild is null for an index out of range or a child
  // that is not a node of this layer.
  int getChildCount() const { return static_cast<int>(slaves.size()); }
  xmlNode* getChild(int index);
  const xmlNode* getChild(int index) const;

 protected:
  // The connect rule of every concrete node class N: connecting does not link the object
  // it is called on, it links a heap copy made by N::cloneTo (children are not copied)
  // and returns the copy; null, with nothing made, when the link fails. So a node may be
  // built on the stack and connected, and children go below the returned pointer.
  template <class N>
  static N* connectCopy(const N& self, xmlLinker* parent, xmlLinker* sibling, place where,
                        bool follow) {
    if (!parent || (where != place::BACK && !sibling)) return nullptr;
    N* copy = new N();
    self.cloneTo(*copy);
    if (!copy->connectAt(parent, sibling, where, follow)) {
      delete copy;
      return nullptr;
    }
    return copy;
  }

  mutable std::string value;
  std::wstring valueW;
  XML_NODE_TYPE type = XML_NODE;
};

}  // namespace XML
}  // namespace IO
}  // namespace JEV
