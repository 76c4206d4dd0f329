#include "jev3d/io/xml/xmlDocument.h"

#include <tinyxml.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/io/xml/xmlComment.h"
#include "jev3d/io/xml/xmlDeclaration.h"
#include "jev3d/io/xml/xmlElement.h"
#include "jev3d/io/xml/xmlText.h"

namespace JEV {
namespace IO {
namespace XML {

namespace {

// The parser, the copies and the destructors all recurse once per level: a hostile file
// nested deeper than this is refused before it can exhaust the stack.
constexpr int MAX_DEPTH = 2000;

// Highest element nesting of `text`, counted roughly (comments, CDATA, declarations and
// quoted attribute values are skipped); enough to tell a sane file from a hostile one.
int nestingDepth(const std::string& text) {
  int depth = 0;
  int deepest = 0;
  const size_t n = text.size();
  auto skipPast = [&](size_t from, const char* end) {
    const size_t at = text.find(end, from);
    return at == std::string::npos ? n : at + std::char_traits<char>::length(end);
  };
  for (size_t i = 0; i < n;) {
    if (text[i] != '<') {
      ++i;
    } else if (text.compare(i, 4, "<!--") == 0) {
      i = skipPast(i + 4, "-->");
    } else if (text.compare(i, 9, "<![CDATA[") == 0) {
      i = skipPast(i + 9, "]]>");
    } else if (i + 1 < n && (text[i + 1] == '!' || text[i + 1] == '?')) {
      i = skipPast(i + 2, ">");
    } else if (i + 1 < n && text[i + 1] == '/') {
      --depth;
      i = skipPast(i + 2, ">");
    } else {
      // An opening tag: find its end outside quotes and see whether it closes itself.
      char quote = 0;
      size_t j = i + 1;
      for (; j < n; ++j) {
        const char c = text[j];
        if (quote) {
          if (c == quote) quote = 0;
        } else if (c == '"' || c == '\'') {
          quote = c;
        } else if (c == '>') {
          break;
        }
      }
      if (j >= n || text[j - 1] != '/') deepest = std::max(deepest, ++depth);
      i = j + 1;
    }
  }
  return deepest;
}

bool tooDeep(const std::string& text) {
  if (nestingDepth(text) <= MAX_DEPTH) return false;
  std::cerr << "XML refused: elements nest deeper than " << MAX_DEPTH << " levels\n";
  return true;
}

void copyOut(const xmlNode& from, TiXmlNode& to) {
  for (int i = 0; i < from.getChildCount(); ++i) {
    const xmlNode* node = from.getChild(i);
    if (!node) continue;
    switch (node->getType()) {
      case XML_ELEMENT: {
        const auto& element = static_cast<const xmlElement&>(*node);
        auto* out = new TiXmlElement(wstringToUtf8(element.getValueW()));
        for (int a = 0; a < element.getAttributesCount(); ++a) {
          const xmlAttribute* attribute = element.getAttribute(a);
          out->SetAttribute(wstringToUtf8(attribute->getNameW()),
                            wstringToUtf8(attribute->getValueW()));
        }
        to.LinkEndChild(out);
        copyOut(element, *out);
        break;
      }
      case XML_COMMENT: {
        auto* out = new TiXmlComment();
        out->SetValue(wstringToUtf8(node->getValueW()));
        to.LinkEndChild(out);
        break;
      }
      case XML_TEXT:
        to.LinkEndChild(new TiXmlText(wstringToUtf8(node->getValueW())));
        break;
      case XML_DECLARATION: {
        const auto& declaration = static_cast<const xmlDeclaration&>(*node);
        to.LinkEndChild(new TiXmlDeclaration(wstringToUtf8(declaration.getVersion()),
                                             wstringToUtf8(declaration.getEncoding()),
                                             wstringToUtf8(declaration.getStandAlone())));
        break;
      }
      default:
        break;
    }
  }
}

std::wstring wide(const char* utf8) { return utf8ToWstring(utf8 ? utf8 : ""); }

// Nodes are built as locals and connected, so the tree holds the connected copies.
void copyIn(const TiXmlNode& from, xmlNode& to) {
  for (const TiXmlNode* node = from.FirstChild(); node; node = node->NextSibling()) {
    switch (node->Type()) {
      case TiXmlNode::TINYXML_ELEMENT: {
        xmlElement local(wide(node->Value()));
        for (const TiXmlAttribute* a = node->ToElement()->FirstAttribute(); a; a = a->Next()) {
          local.setAttribute(wide(a->Name()), wide(a->Value()));
        }
        if (xmlElement* added = local.connect(&to)) copyIn(*node, *added);
        break;
      }
      case TiXmlNode::TINYXML_COMMENT:
        xmlComment(wide(node->Value())).connect(&to);
        break;
      case TiXmlNode::TINYXML_TEXT:
        xmlText(wide(node->Value())).connect(&to);
        break;
      case TiXmlNode::TINYXML_DECLARATION: {
        const TiXmlDeclaration* d = node->ToDeclaration();
        xmlDeclaration(wide(d->Version()), wide(d->Encoding()), wide(d->Standalone())).connect(&to);
        break;
      }
      default:
        break;
    }
  }
}

}  // namespace

xmlDocument::xmlDocument() { type = XML_DOCUMENT; }

bool xmlDocument::readFromFile(const std::wstring& name) {
  const std::string path = wstringToUtf8(name);
  {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (tooDeep(text)) return false;
  }
  TiXmlDocument parsed;
  if (!parsed.LoadFile(path)) return false;
  copyIn(parsed, *this);
  return true;
}

bool xmlDocument::readFromFile(const std::string& name) {
  return readFromFile(utf8ToWstring(name));
}

bool xmlDocument::writeToFile(const std::wstring& name) const {
  TiXmlDocument out;
  copyOut(*this, out);
  return out.SaveFile(wstringToUtf8(name));
}

bool xmlDocument::writeToFile(const std::string& name) const {
  return writeToFile(utf8ToWstring(name));
}

bool xmlDocument::readFrom(const std::wstring& text) {
  const std::string narrow = wstringToUtf8(text);
  if (tooDeep(narrow)) return false;
  TiXmlDocument parsed;
  parsed.Parse(narrow.c_str());
  copyIn(parsed, *this);
  return true;
}

bool xmlDocument::readFrom(const std::string& text) { return readFrom(utf8ToWstring(text)); }

bool xmlDocument::readFromStrict(const std::wstring& text) {
  const std::string narrow = wstringToUtf8(text);
  if (tooDeep(narrow)) return false;
  TiXmlDocument parsed;
  parsed.Parse(narrow.c_str());
  if (parsed.Error()) return false;
  copyIn(parsed, *this);
  return true;
}

const std::string& xmlDocument::writeTo() const {
  printed.clear();
  printedW.clear();
  TiXmlDocument out;
  copyOut(*this, out);
  std::ostringstream stream;
  stream << out;
  printed = stream.str();
  return printed;
}

const std::wstring& xmlDocument::writeToW() const {
  printedW = utf8ToWstring(writeTo());
  return printedW;
}

}  // namespace XML
}  // namespace IO
}  // namespace JEV
