// The controller's project files: the colour table and the widget tree in XML.
#include <fstream>
#include <iterator>
#include <unordered_set>

#include "jev3d/gui/canvas.h"
#include "jev3d/gui/guiController.h"
#include "jev3d/gui/internal/projectXml.h"
#include "jev3d/gui/item.h"
#include "jev3d/gui/menu.h"
#include "jev3d/gui/widget.h"
#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/io/xml/xmlDocument.h"
#include "jev3d/io/xml/xmlElement.h"
#include "jev3d/resources/internal/defaultArchive.h"
#include "jev3d/resources/internal/zipReader.h"

namespace JEV {
namespace GUI {

using IO::XML::xmlDocument;
using IO::XML::xmlElement;
using IO::XML::xmlNode;

namespace {

xmlElement* childElement(xmlNode& node, int index) {
  xmlNode* child = node.getChild(index);
  if (!child || child->getType() != IO::XML::XML_ELEMENT) return nullptr;
  return static_cast<xmlElement*>(child);
}

// The first element of that name among the document's top nodes.
xmlElement* findRoot(xmlDocument& doc) {
  for (int i = 0; i < doc.getChildCount(); ++i) {
    xmlElement* e = childElement(doc, i);
    if (e && e->getValueW() == PROJECT::ROOT_NAME) return e;
  }
  return nullptr;
}

int depthOf(const widget* w) {
  int depth = 0;
  for (; w; w = w->getParent()) ++depth;
  return depth;
}

// The text of a file of the built-in archive, or false with `error` set.
bool readArchiveFile(const std::wstring& name, std::wstring& text, std::wstring& error) {
  CORE::INTERNAL::zipReader zip(CORE::INTERNAL::defaultArchiveData(),
                                CORE::INTERNAL::defaultArchiveSize());
  std::vector<unsigned char> bytes;
  if (!zip.read(IO::XML::wstringToUtf8(name), bytes)) {
    error = L"resource \"" + name + L"\" not found: " + IO::XML::utf8ToWstring(zip.error());
    return false;
  }
  text = IO::XML::utf8ToWstring(std::string(bytes.begin(), bytes.end()));
  return true;
}

bool readFileText(const std::wstring& path, std::wstring& text, std::wstring& error) {
  std::ifstream in(IO::XML::wstringToUtf8(path), std::ios::binary);
  if (!in) {
    error = L"cannot open \"" + path + L"\"";
    return false;
  }
  text = IO::XML::utf8ToWstring(
      std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>()));
  return true;
}

}  // namespace

bool guiController::failProject(const std::wstring& message) {
  if (projectError.empty()) projectError = message;
  return false;
}

// --- colour table ------------------------------------------------------------------------

void guiController::saveColorTableToXmlElement(xmlElement& parent) const {
  xmlElement* table = xmlElement(L"COLOR_CLASS").connect(&parent);
  if (!table) return;
  auto write = [&](int cls) {
    for (int i = 0; i < 4; ++i) {
      const auto c = static_cast<WIDGET_CLASS_COLOR>(cls);
      PROJECT::saveColor(colorTable.getColor(c, i),
                         guiColorTable::getClassName(c) + L"_" + std::to_wstring(i), *table);
    }
  };
  write(WCC_TEXT);
  for (int cls = 0; cls < WCC_COUNT; ++cls) write(cls);
}

bool guiController::openColorTableFromXmlElement(xmlElement& element) {
  for (int n = 0; n < element.getChildCount(); ++n) {
    xmlElement* e = childElement(element, n);
    if (!e) continue;
    for (int cls = 0; cls < WCC_COUNT; ++cls) {
      const auto c = static_cast<WIDGET_CLASS_COLOR>(cls);
      for (int i = 0; i < 4; ++i) {
        if (e->getValueW() != guiColorTable::getClassName(c) + L"_" + std::to_wstring(i)) continue;
        CORE::color read = colorTable.getColor(c, i);
        PROJECT::openColor(*e, read);
        setColor(c, read, i);
      }
    }
  }
  return true;
}

bool guiController::openColorTableFromXmlProject(xmlElement* root) {
  if (!root) return false;
  for (int n = 0; n < root->getChildCount(); ++n) {
    xmlElement* e = childElement(*root, n);
    if (e && e->getValueW() == L"COLOR_CLASS") return openColorTableFromXmlElement(*e);
  }
  return false;
}

bool guiController::openColorTableFromString(const std::wstring& text) {
  xmlDocument doc;
  if (!doc.readFromStrict(text)) return false;
  return openColorTableFromXmlProject(findRoot(doc));
}

bool guiController::openColorTableFromFile(const std::wstring& path) {
  std::wstring text, error;
  return readFileText(path, text, error) && openColorTableFromString(text);
}

bool guiController::openColorTableFromResource(const std::wstring& resource,
                                               const std::wstring& type) {
  std::wstring text, error;
  return type == L"ZIP" && readArchiveFile(resource, text, error) && openColorTableFromString(text);
}

bool guiController::saveColorTableToFile(const std::wstring& path) const {
  xmlDocument doc;
  saveColorTableToXmlElement(*PROJECT::startDocument(doc));
  return doc.writeToFile(path);
}

// --- projects ----------------------------------------------------------------------------

bool guiController::saveToFile(const std::wstring& path) const { return saveToFile(path, desktop); }

bool guiController::saveToFile(const std::wstring& path, const widget* root) const {
  xmlDocument doc;
  xmlElement* projectRoot = PROJECT::startDocument(doc);
  saveColorTableToXmlElement(*projectRoot);
  if (root) root->saveChilds(*projectRoot);
  return doc.writeToFile(path);
}

bool guiController::openWidgetFromXML(xmlElement& e, widget* parent, widget::pendingList& pending,
                                      const std::wstring& prefix) {
  const std::wstring& rawId = e.getAttributeValueW(L"WIDGET_ID");
  if (!e.isAttribute(L"WIDGET_CLASS") || rawId.empty()) return true;  // skipped
  const std::wstring id = prefix + rawId;
  int cls = 0;
  if (!e.queryIntValue(L"WIDGET_CLASS", cls)) {
    return failProject(L"widget \"" + id + L"\": WIDGET_CLASS \"" +
                       e.getAttributeValueW(L"WIDGET_CLASS") + L"\" is not a number");
  }
  // The layer's own limit bounds the document; this one bounds the widget tree, whose
  // every level costs a stack frame here and in the widget walks.
  if (depthOf(parent) > MAX_PROJECT_DEPTH) {
    return failProject(L"widget \"" + id + L"\": widgets nest deeper than " +
                       std::to_wstring(MAX_PROJECT_DEPTH) + L" levels");
  }
  // A taken id drops the element and its subtree.
  if (isValid(id)) return true;
  // A canvas made without a parent would stand alone: name the desktop.
  widget* w = add(static_cast<WIDGET_CLASS>(cls), id, parent ? parent : desktop);
  if (!w) {
    return failProject(L"widget \"" + id + L"\": unknown widget class " + std::to_wstring(cls));
  }
  // An item under a menu is one of its items, laid out and heard by it.
  if (cls == WC_ITEM && parent && parent->getClass() == WC_MENU) {
    static_cast<menu*>(parent)->addItem(static_cast<item*>(w));
  }
  return w->openFromXML(this, e, pending, prefix);
}

bool guiController::openFromString(const std::wstring& text, widget* parent,
                                   const std::wstring& prefix, bool skipColors) {
  projectError.clear();
  xmlDocument doc;
  if (!doc.readFromStrict(text)) {
    return failProject(L"the project is not well-formed XML (cut short or nested too deep)");
  }
  xmlElement* root = findRoot(doc);
  if (!root) return failProject(L"the document has no JEV_GUI_PROJECT root");

  // Kept so that a failed read can put everything back.
  const guiColorTable colorsBefore = colorTable;
  std::unordered_set<const widget*> before;
  for (int i = 0; i < widgets.getEntryCount(); ++i) before.insert(widgets.getEntry(i).get());
  widget::pendingList pending;
  bool ok = true;
  for (int n = 0; ok && n < root->getChildCount(); ++n) {
    xmlElement* e = childElement(*root, n);
    if (!e) continue;
    const std::wstring& name = e->getValueW();
    if (name == L"COLOR_CLASS") {
      if (!skipColors) openColorTableFromXmlElement(*e);
    } else if (name == L"WIDGET") {
      ok = openWidgetFromXML(*e, parent, pending, prefix);
    }
    // "MAIN_WINDOW" of older files, and anything else, is passed over.
  }
  if (!ok) {
    // Everything the read made, the parts controls made for themselves (some of them on
    // the desktop) too; newest first, as children come after their parents.
    for (int i = widgets.getEntryCount() - 1; i >= 0; --i) {
      widget* w = widgets.getEntry(i).get();
      if (!before.count(w)) eraseNow(w);
    }
    for (int cls = 0; cls < WCC_COUNT; ++cls) {
      for (int i = 0; i < 4; ++i) {
        const auto c = static_cast<WIDGET_CLASS_COLOR>(cls);
        if (colorTable.getColor(c, i) != colorsBefore.getColor(c, i)) {
          setColor(c, colorsBefore.getColor(c, i), i);
        }
      }
    }
    return false;
  }
  // Items name their sub-menus and tree parents; a name no widget of that class bears is
  // passed over.
  for (const auto& [w, targetName] : pending) {
    widget* target = getWidget(targetName);
    if (!target || w->getClass() != WC_ITEM) continue;
    auto* it = static_cast<item*>(w);
    if (target->getClass() == WC_MENU) it->setSubMenu(static_cast<menu*>(target));
    if (target->getClass() == WC_ITEM && target != w) it->treeParent = static_cast<item*>(target);
  }
  refresh();
  return true;
}

bool guiController::openFromFile(const std::wstring& path, widget* parent,
                                 const std::wstring& prefix, bool skipColors) {
  std::wstring text;
  projectError.clear();
  if (!readFileText(path, text, projectError)) return false;
  return openFromString(text, parent, prefix, skipColors);
}

bool guiController::openFromFile(const std::string& path, widget* parent,
                                 const std::wstring& prefix, bool skipColors) {
  return openFromFile(IO::XML::utf8ToWstring(path), parent, prefix, skipColors);
}

bool guiController::openFromResource(const std::wstring& resource, const std::wstring& type,
                                     widget* parent, const std::wstring& prefix, bool skipColors) {
  std::wstring text;
  projectError.clear();
  if (type != L"ZIP") return failProject(L"no resources of type \"" + type + L"\"");
  if (!readArchiveFile(resource, text, projectError)) return false;
  return openFromString(text, parent, prefix, skipColors);
}

}  // namespace GUI
}  // namespace JEV
