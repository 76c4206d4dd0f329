#include "jev3d/io/xml/xmlDocument.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/io/xml/xmlComment.h"
#include "jev3d/io/xml/xmlDeclaration.h"
#include "jev3d/io/xml/xmlElement.h"
#include "jev3d/io/xml/xmlText.h"
#include "support/tempDir.h"

using namespace JEV::IO::XML;

namespace {

std::string fileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

void writeBytes(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

// Compares two trees node by node: kinds, values, attributes, declarations.
void expectSameTree(const xmlNode& a, const xmlNode& b) {
  ASSERT_EQ(a.getType(), b.getType());
  EXPECT_EQ(a.getValueW(), b.getValueW());
  if (a.getType() == XML_ELEMENT) {
    const auto& ea = static_cast<const xmlElement&>(a);
    const auto& eb = static_cast<const xmlElement&>(b);
    ASSERT_EQ(ea.getAttributesCount(), eb.getAttributesCount());
    for (int i = 0; i < ea.getAttributesCount(); ++i) {
      EXPECT_EQ(ea.getAttribute(i)->getNameW(), eb.getAttribute(i)->getNameW());
      EXPECT_EQ(ea.getAttribute(i)->getValueW(), eb.getAttribute(i)->getValueW());
    }
  }
  if (a.getType() == XML_DECLARATION) {
    const auto& da = static_cast<const xmlDeclaration&>(a);
    const auto& db = static_cast<const xmlDeclaration&>(b);
    EXPECT_EQ(da.getVersion(), db.getVersion());
    EXPECT_EQ(da.getEncoding(), db.getEncoding());
    EXPECT_EQ(da.getStandAlone(), db.getStandAlone());
  }
  ASSERT_EQ(a.getChildCount(), b.getChildCount());
  for (int i = 0; i < a.getChildCount(); ++i) {
    ASSERT_NE(a.getChild(i), nullptr);
    ASSERT_NE(b.getChild(i), nullptr);
    expectSameTree(*a.getChild(i), *b.getChild(i));
  }
}

int countNodes(const xmlNode& n) {
  int count = 1;
  for (int i = 0; i < n.getChildCount(); ++i) count += countNodes(*n.getChild(i));
  return count;
}

// A small project-like tree with non-ASCII text in names, values and content.
void buildSample(xmlDocument& doc) {
  xmlDeclaration("1.0", "UTF-8", "").connect(&doc);
  xmlComment(" window state ").connect(&doc);
  xmlElement root(L"MAIN_WINDOW");
  root.setAttribute(L"WIDTH", 800);
  root.setAttribute(L"X", -4);
  root.setAttribute(L"CAPTION", std::wstring(L"caf") + wchar_t(0xE9) + wchar_t(0x4E2D));
  root.setAttribute(L"SCALE", 0.25f);
  xmlElement* r = root.connect(&doc);
  xmlElement panel(L"PANEL");
  panel.setAttribute("NAME", "left & <right>");
  xmlElement* p = panel.connect(r);
  xmlText(std::wstring(L"na") + wchar_t(0xEF) + L"ve text").connect(p);
  xmlElement(L"EMPTY").connect(r);
}

}  // namespace

TEST(xmlDocumentTest, FileRoundTripKeepsTheTree) {
  tempDir dir;
  xmlDocument written;
  buildSample(written);
  ASSERT_TRUE(written.writeToFile(dir.file("sample.xml")));

  const std::string bytes = fileBytes(dir.file("sample.xml"));
  EXPECT_NE(bytes.find("caf\xC3\xA9\xE4\xB8\xAD"), std::string::npos) << "written as UTF-8";
  EXPECT_NE(bytes.find("CAPTION=\"caf\xC3\xA9\xE4\xB8\xAD\" SCALE=\"0.25\" WIDTH=\"800\" X=\"-4\""),
            std::string::npos)
      << "attributes by name";
  EXPECT_NE(bytes.find("left &amp; &lt;right&gt;"), std::string::npos);

  xmlDocument read;
  ASSERT_TRUE(read.readFromFile(dir.file("sample.xml")));
  expectSameTree(written, read);
  const auto* root = static_cast<const xmlElement*>(read.findNode("MAIN_WINDOW"));
  ASSERT_NE(root, nullptr);
  int width = 0;
  float scale = 0;
  EXPECT_TRUE(root->queryIntValue("WIDTH", width));
  EXPECT_TRUE(root->queryFloatValue("SCALE", scale));
  EXPECT_EQ(width, 800);
  EXPECT_EQ(scale, 0.25f);
}

TEST(xmlDocumentTest, TextRoundTripAndWideForm) {
  xmlDocument written;
  buildSample(written);
  const std::string text = written.writeTo();
  EXPECT_EQ(written.writeToW(), utf8ToWstring(text));
  xmlDocument read;
  EXPECT_TRUE(read.readFrom(text));
  expectSameTree(written, read);
  xmlDocument readWide;
  EXPECT_TRUE(readWide.readFrom(written.writeToW()));
  expectSameTree(written, readWide);
}

TEST(xmlDocumentTest, UnitE9IsWrittenAsTwoBytesAndReadBack) {
  tempDir dir;
  xmlDocument doc;
  xmlElement e(L"E");
  e.setAttribute(L"V", std::wstring(1, 0xE9));
  xmlElement* added = e.connect(&doc);
  xmlText(std::wstring(1, 0xD800)).connect(added);
  ASSERT_TRUE(doc.writeToFile(dir.file("e9.xml")));
  const std::string bytes = fileBytes(dir.file("e9.xml"));
  EXPECT_NE(bytes.find("V=\"\xC3\xA9\""), std::string::npos);
  EXPECT_NE(bytes.find(">\xED\xA0\x80<"), std::string::npos) << "a lone surrogate half";

  xmlDocument read;
  ASSERT_TRUE(read.readFromFile(dir.file("e9.xml")));
  auto* readE = static_cast<xmlElement*>(read.findNode(L"E"));
  ASSERT_NE(readE, nullptr);
  EXPECT_EQ(readE->getAttributeValueW(L"V"), std::wstring(1, 0xE9));
  ASSERT_EQ(readE->getChildCount(), 1);
  EXPECT_EQ(readE->getChild(0)->getValueW(), std::wstring(1, 0xD800));
}

TEST(xmlDocumentTest, ReadingAddsToWhatTheDocumentHolds) {
  tempDir dir;
  xmlDocument written;
  buildSample(written);
  ASSERT_TRUE(written.writeToFile(dir.file("twice.xml")));
  xmlDocument doc;
  ASSERT_TRUE(doc.readFromFile(dir.file("twice.xml")));
  const int once = countNodes(doc) - 1;
  const int topOnce = doc.getChildCount();
  ASSERT_TRUE(doc.readFromFile(dir.file("twice.xml")));
  EXPECT_EQ(countNodes(doc) - 1, 2 * once);
  EXPECT_EQ(doc.getChildCount(), 2 * topOnce);
  expectSameTree(*doc.getChild(0), *doc.getChild(topOnce));
}

TEST(xmlDocumentTest, MalformedTextGivesWhatTheParserBuilt) {
  xmlDocument doc;
  EXPECT_TRUE(doc.readFrom(std::string("<A K=\"1\"><B/><C>text</C><D attr=")));
  const auto* a = static_cast<const xmlElement*>(doc.findNode("A"));
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->getAttribute("K")->getValue(), "1");
  EXPECT_NE(a->findNode("B"), nullptr);

  xmlDocument garbage;
  EXPECT_TRUE(garbage.readFrom(std::string("\x01\xFF<<>>&&;<!--")));
  EXPECT_TRUE(garbage.readFrom(std::string()));
}

TEST(xmlDocumentTest, StrictReadRefusesMalformedTextAndAddsNothing) {
  xmlDocument doc;
  xmlElement("KEEP").connect(&doc);
  EXPECT_FALSE(doc.readFromStrict(L"<A K=\"1\"><B/><C>text</C><D attr="));
  EXPECT_FALSE(doc.readFromStrict(L"<A><B></A>"));
  EXPECT_FALSE(doc.readFromStrict(L""));
  std::wstring deep;
  for (int i = 0; i < 3000; ++i) deep += L"<a>";
  for (int i = 0; i < 3000; ++i) deep += L"</a>";
  EXPECT_FALSE(doc.readFromStrict(deep));
  EXPECT_EQ(doc.getChildCount(), 1);
  ASSERT_TRUE(doc.readFromStrict(L"<A K=\"1\"><B/></A>"));
  EXPECT_EQ(doc.getChildCount(), 2);
  EXPECT_NE(doc.findNode("A"), nullptr);
}

TEST(xmlDocumentTest, BadFilesFailWithoutChangingTheDocument) {
  tempDir dir;
  xmlDocument doc;
  xmlElement("KEEP").connect(&doc);
  EXPECT_FALSE(doc.readFromFile(dir.file("missing.xml")));
  writeBytes(dir.file("broken.xml"), "<A><B></A>");
  EXPECT_FALSE(doc.readFromFile(dir.file("broken.xml")));
  writeBytes(dir.file("empty.xml"), "");
  EXPECT_FALSE(doc.readFromFile(dir.file("empty.xml")));
  EXPECT_EQ(doc.getChildCount(), 1);
  EXPECT_FALSE(doc.writeToFile(dir.file("no/such/folder/x.xml")));
}

TEST(xmlDocumentTest, HostileNestingIsRefusedInsteadOfExhaustingTheStack) {
  std::string deep;
  for (int i = 0; i < 200000; ++i) deep += "<a>";
  xmlDocument doc;
  EXPECT_FALSE(doc.readFrom(deep));
  EXPECT_EQ(doc.getChildCount(), 0);
  tempDir dir;
  writeBytes(dir.file("deep.xml"), deep);
  EXPECT_FALSE(doc.readFromFile(dir.file("deep.xml")));

  // Self-closing tags, comments and quoted '>' do not count as nesting.
  std::string wide = "<r>";
  for (int i = 0; i < 5000; ++i) wide += "<e v=\"a>b\"/><!-- <x> -->";
  wide += "</r>";
  EXPECT_TRUE(doc.readFrom(wide));
  ASSERT_EQ(doc.getChildCount(), 1);
  EXPECT_EQ(doc.getChild(0)->getChildCount(), 10000);
}
