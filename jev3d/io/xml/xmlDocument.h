#pragma once

#include <string>

#include "jev3d/io/xml/xmlNode.h"

namespace JEV {
namespace IO {
namespace XML {

// The root of a tree, which reads and writes XML text and files (UTF-8). Reading adds
// the nodes read to what the document holds: it does not clear it first.
class xmlDocument : public xmlNode {
 public:
  xmlDocument();

  // Reads a file and appends its nodes. False when the file cannot be read or is not
  // well-formed (nothing is added then), or nests deeper than the reader allows.
  bool readFromFile(const std::wstring& name);
  bool readFromFile(const std::string& name);
  // Writes the tree to a file, indented. False when the file cannot be written.
  bool writeToFile(const std::wstring& name) const;
  bool writeToFile(const std::string& name) const;
  // Parses `text` and appends what the parser could build, even from a text that is not
  // well-formed; false only for a text that nests deeper than the reader allows.
  bool readFrom(const std::wstring& text);
  bool readFrom(const std::string& text);
  // As readFrom, but as strict as the file form: false, with nothing added, for a text that
  // is not well-formed (a cut-off document, say) or nests too deep.
  bool readFromStrict(const std::wstring& text);
  // The tree as compact text; the reference is to a result string of this document,
  // overwritten by the next call.
  const std::string& writeTo() const;
  const std::wstring& writeToW() const;

 private:
  mutable std::wstring printedW;
  mutable std::string printed;
};

}  // namespace XML
}  // namespace IO
}  // namespace JEV
