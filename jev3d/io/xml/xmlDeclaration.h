#pragma once

#include <string>

#include "jev3d/io/xml/xmlNode.h"

namespace JEV {
namespace IO {
namespace XML {

// The `<?xml ...?>` declaration. Whatever its encoding says, files are written in UTF-8.
class xmlDeclaration : public xmlNode {
 public:
  xmlDeclaration() : xmlDeclaration(std::wstring(), std::wstring(), std::wstring()) {}
  xmlDeclaration(const std::wstring& version, const std::wstring& encoding,
                 const std::wstring& standAlone);
  xmlDeclaration(const std::string& version, const std::string& encoding,
                 const std::string& standAlone);

  // Links a copy of this declaration as the last child of `parent`, or before or after
  // `sibling`, and returns the copy; null, with nothing made, when the link fails.
  xmlDeclaration* connect(xmlLinker* parent, bool follow = false) override {
    return connectCopy(*this, parent, nullptr, place::BACK, follow);
  }
  xmlDeclaration* connectBefore(xmlLinker* parent, xmlLinker* sibling,
                                bool follow = false) override {
    return connectCopy(*this, parent, sibling, place::BEFORE, follow);
  }
  xmlDeclaration* connectAfter(xmlLinker* parent, xmlLinker* sibling,
                               bool follow = false) override {
    return connectCopy(*this, parent, sibling, place::AFTER, follow);
  }
  void setVersion(const std::wstring& v) { version = v; }
  void setEncoding(const std::wstring& e) { encoding = e; }
  void setStandAlone(const std::wstring& s) { standAlone = s; }
  void setVersion(const std::string& v);
  void setEncoding(const std::string& e);
  void setStandAlone(const std::string& s);
  const std::wstring& getVersion() const { return version; }
  const std::wstring& getEncoding() const { return encoding; }
  const std::wstring& getStandAlone() const { return standAlone; }

  // Copies this node's own content into `target`; not the children.
  virtual void cloneTo(xmlDeclaration& target) const;

 private:
  std::wstring version;
  std::wstring encoding;
  std::wstring standAlone;
};

}  // namespace XML
}  // namespace IO
}  // namespace JEV
