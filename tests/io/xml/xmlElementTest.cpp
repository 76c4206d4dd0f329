#include "jev3d/io/xml/xmlElement.h"

#include <gtest/gtest.h>

#include <string>

#include "jev3d/io/xml/xmlComment.h"
#include "jev3d/io/xml/xmlDocument.h"
#include "jev3d/io/xml/xmlText.h"

using namespace JEV::IO::XML;

TEST(xmlElementTest, AttributesAreKeptInNameOrderWhateverTheSettingOrder) {
  xmlElement e("WIDGET");
  e.setAttribute("WIDTH", 10);
  e.setAttribute("X", 3);
  e.setAttribute("CAPTION", "ok");
  ASSERT_EQ(e.getAttributesCount(), 3);
  EXPECT_EQ(e.getAttribute(0)->getName(), "CAPTION");
  EXPECT_EQ(e.getAttribute(1)->getName(), "WIDTH");
  EXPECT_EQ(e.getAttribute(2)->getName(), "X");
  EXPECT_EQ(e.getAttribute(3), nullptr);
  EXPECT_EQ(e.getAttribute(-1), nullptr);

  xmlDocument doc;
  e.connect(&doc);
  EXPECT_EQ(doc.writeTo(), "<WIDGET CAPTION=\"ok\" WIDTH=\"10\" X=\"3\" />");
}

TEST(xmlElementTest, SettingAnAttributeTwiceKeepsOneWithTheLastValue) {
  xmlElement e(L"E");
  e.setAttribute(L"A", L"first");
  e.setAttribute(xmlAttribute(L"A", 2));
  EXPECT_EQ(e.getAttributesCount(), 1);
  EXPECT_EQ(e.getAttributeValueW(L"A"), L"2");
}

TEST(xmlElementTest, NumbersBecomeTextWithTheirFormats) {
  xmlElement e("E");
  e.setAttribute("I", -12);
  e.setAttribute("U", 4000000000u);
  e.setAttribute("F", 0.1f);
  e.setAttribute("F3", 1.0f / 3.0f);
  e.setAttribute("FBIG", 123456789.0f);
  e.setAttribute("D3", 1.0 / 3.0);
  e.setAttribute("D", 0.1);
  EXPECT_EQ(e.getAttributeValue("I"), "-12");
  EXPECT_EQ(e.getAttributeValue("U"), "4000000000");
  EXPECT_EQ(e.getAttributeValue("F"), "0.1");
  EXPECT_EQ(e.getAttributeValue("F3"), "0.3333333");
  EXPECT_EQ(e.getAttributeValue("FBIG"), "1.234568e+08");
  EXPECT_EQ(e.getAttributeValue("D3"), "0.3333333333333333");
  EXPECT_EQ(e.getAttributeValue("D"), "0.1");
}

TEST(xmlElementTest, IntegerQueriesAreStrictAndFloatQueriesLenient) {
  xmlElement e("E");
  e.setAttribute("PLAIN", "12");
  e.setAttribute("BLANKS", " 7 ");
  e.setAttribute("TRAILING", "12abc");
  e.setAttribute("WORD", "abc");
  e.setAttribute("REAL", "2.5");

  int i = -1;
  EXPECT_TRUE(e.queryIntValue("PLAIN", i));
  EXPECT_EQ(i, 12);
  EXPECT_TRUE(e.queryIntValue("BLANKS", i));
  EXPECT_EQ(i, 7);
  i = -1;
  EXPECT_FALSE(e.queryIntValue("TRAILING", i));
  EXPECT_EQ(i, -1) << "a failed integer query leaves the target";
  EXPECT_FALSE(e.queryIntValue("REAL", i));
  EXPECT_EQ(i, -1);
  long l = -1;
  EXPECT_FALSE(e.queryLongValue("TRAILING", l));
  EXPECT_TRUE(e.queryLongValue("PLAIN", l));
  EXPECT_EQ(l, 12);
  unsigned u = 5;
  EXPECT_FALSE(e.queryUnsignedIntValue("WORD", u));
  EXPECT_EQ(u, 5u);
  EXPECT_TRUE(e.queryUnsignedIntValue(L"PLAIN", u));
  EXPECT_EQ(u, 12u);

  float f = -1;
  EXPECT_TRUE(e.queryFloatValue("REAL", f));
  EXPECT_EQ(f, 2.5f);
  EXPECT_TRUE(e.queryFloatValue("TRAILING", f));
  EXPECT_EQ(f, 12.0f);
  EXPECT_TRUE(e.queryFloatValue("WORD", f)) << "a text with no number is not reported";
  double d = -1;
  EXPECT_TRUE(e.queryDoubleValue("WORD", d));

  // A missing attribute is the one failure of every query, and leaves the target.
  f = 9;
  d = 9;
  i = 9;
  EXPECT_FALSE(e.queryFloatValue("MISSING", f));
  EXPECT_FALSE(e.queryDoubleValue("MISSING", d));
  EXPECT_FALSE(e.queryIntValue("MISSING", i));
  EXPECT_EQ(f, 9.0f);
  EXPECT_EQ(d, 9.0);
  EXPECT_EQ(i, 9);
}

TEST(xmlElementTest, MissingAttributeValueIsEmptyAndResultsShareOneString) {
  xmlElement e("E");
  e.setAttribute("A", "alpha");
  e.setAttribute("B", "beta");
  EXPECT_TRUE(e.isAttribute("A"));
  EXPECT_FALSE(e.isAttribute("C"));
  const std::string& first = e.getAttributeValue("A");
  const std::string& second = e.getAttributeValue("B");
  EXPECT_EQ(&first, &second);
  EXPECT_EQ(first, "beta");
  EXPECT_EQ(e.getAttributeValue("C"), "");
  EXPECT_EQ(e.getAttributeValueW(L"C"), L"");
}

TEST(xmlElementTest, ConnectLinksACopyAndReturnsIt) {
  xmlDocument doc;
  xmlElement* root;
  {
    xmlElement local("ROOT");
    local.setAttribute("K", 1);
    root = local.connect(&doc);
    ASSERT_NE(root, nullptr);
    EXPECT_NE(root, &local);
    EXPECT_FALSE(local.isConnected());
    EXPECT_EQ(root->getValue(), "ROOT");
    EXPECT_EQ(root->getAttributeValue("K"), "1");

    // A child of the local element is not in the tree.
    xmlElement stray("STRAY");
    stray.connect(&local);
    EXPECT_EQ(local.getChildCount(), 1);
    EXPECT_EQ(root->getChildCount(), 0);
  }  // the local and its own copy of STRAY die here; the tree keeps the copies

  xmlElement("FIRST").connect(root);
  xmlElement* last = xmlElement("LAST").connect(root);
  xmlComment("between").connectBefore(root, last);
  xmlText("after").connectAfter(root, last);
  ASSERT_EQ(root->getChildCount(), 4);
  EXPECT_EQ(root->getChild(0)->getValue(), "FIRST");
  EXPECT_EQ(root->getChild(1)->getType(), XML_COMMENT);
  EXPECT_EQ(root->getChild(2), last);
  EXPECT_EQ(root->getChild(3)->getValue(), "after");
  EXPECT_EQ(doc.getChildCount(), 1);

  EXPECT_EQ(xmlElement("X").connect(nullptr), nullptr);
  xmlElement notAChild("N");
  EXPECT_EQ(xmlElement("X").connectAfter(root, &notAChild), nullptr);
  EXPECT_EQ(root->getChildCount(), 4);
}

TEST(xmlElementTest, FindNodeLooksAtDirectChildrenOnly) {
  xmlDocument doc;
  xmlElement* a = xmlElement("A").connect(&doc);
  xmlElement("B").connect(a);
  xmlComment("A").connect(&doc);
  EXPECT_EQ(doc.findNode("A"), a) << "the first match wins, of any kind";
  EXPECT_EQ(doc.findNode(L"B"), nullptr);
  EXPECT_NE(a->findNode("B"), nullptr);
  EXPECT_EQ(static_cast<const xmlDocument&>(doc).findNode("A"), a);
}
