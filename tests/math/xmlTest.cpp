#include "jev3d/io/xml/xmlDocument.h"
#include "jev3d/io/xml/xmlElement.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/math/point2.h"
#include "jev3d/math/point3.h"
#include "jev3d/math/point4.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <string>

#include "jev3d/io/xml/stringConversion.h"
#include "support/tempDir.h"

using namespace JEV::MATH;
using JEV::IO::XML::xmlDocument;
using JEV::IO::XML::xmlElement;

TEST(mathXml, pointsWriteAttributesOfANewElementAndReadThemBack) {
  xmlDocument doc;
  ASSERT_TRUE(point3f(1.5f, -2.25f, 8.0f).saveToXML(&doc, "POSITION", "X", "Y", "Z"));
  ASSERT_TRUE(point2i(3, -4).saveToXMLW(&doc, L"SIZE", L"W", L"H"));
  ASSERT_TRUE(point4d(0.125, 2, 3, 4).saveToXML(&doc, "COLOR", "R", "G", "B", "A"));
  const auto* e = static_cast<const xmlElement*>(doc.findNode("POSITION"));
  ASSERT_NE(e, nullptr);
  float y = 0;
  EXPECT_TRUE(e->queryFloatValue("Y", y));
  EXPECT_EQ(y, -2.25f);

  // Through text, as a file would carry it.
  xmlDocument read;
  read.readFrom(doc.writeTo());
  point3f p;
  EXPECT_TRUE(p.openFromXML(&read, "POSITION", "X", "Y", "Z"));
  EXPECT_EQ(p, point3f(1.5f, -2.25f, 8.0f));
  point2i s;
  EXPECT_TRUE(s.openFromXMLW(&read, L"SIZE", L"W", L"H"));
  EXPECT_EQ(s, point2i(3, -4));
  point4d c;
  EXPECT_TRUE(c.openFromXML(&read, "COLOR", "R", "G", "B", "A"));
  EXPECT_EQ(c, point4d(0.125, 2, 3, 4));

  // An absent element is a failure; an absent attribute leaves its component alone.
  point3f q(7, 7, 7);
  EXPECT_FALSE(q.openFromXML(&read, "MISSING", "X", "Y", "Z"));
  EXPECT_EQ(q, point3f(7, 7, 7));
  EXPECT_TRUE(q.openFromXML(&read, "POSITION", "X", "NOT_Y", "Z"));
  EXPECT_EQ(q, point3f(1.5f, 7, 8.0f));
  EXPECT_FALSE(q.saveToXML(static_cast<JEV::IO::XML::xmlNode*>(nullptr), "P", "X", "Y", "Z"));
  EXPECT_FALSE(
      q.openFromXML(static_cast<const JEV::IO::XML::xmlNode*>(nullptr), "P", "X", "Y", "Z"));
}

TEST(mathXml, filesRoundTripInBothWidths) {
  tempDir dir;
  const point3d p(0.1, -1e-5, 12345.5);
  ASSERT_TRUE(p.saveToXML(dir.file("p.xml"), "POINT", "x", "y", "z"));
  point3d back;
  ASSERT_TRUE(back.openFromXML(dir.file("p.xml"), "POINT", "x", "y", "z"));
  EXPECT_NEAR((back - p).norm(), 0.0, 1e-12);
  const std::wstring wide = JEV::IO::XML::utf8ToWstring(dir.file("w\xc3\xa9.xml"));
  ASSERT_TRUE(point2f(0.5f, 0.25f).saveToXMLW(wide, L"P\u00c9", L"u", L"v"));
  point2f w;
  ASSERT_TRUE(w.openFromXMLW(wide, L"P\u00c9", L"u", L"v"));
  EXPECT_EQ(w, point2f(0.5f, 0.25f));
  EXPECT_FALSE(back.openFromXML(dir.file("absent.xml"), "POINT", "x", "y", "z"));
  std::ofstream(dir.file("bad.xml")) << "<POINT x=\"1\" y=";
  EXPECT_FALSE(back.openFromXML(dir.file("bad.xml"), "POINT", "x", "y", "z"));
}

TEST(mathXml, matrixNamesTheSixteenElementsInOrder) {
  std::array<std::string, 16> names;
  for (int i = 0; i < 16; ++i) names[i] = "M" + std::to_string(i);
  matrix4d m = matrix4d::getScale(0.5, 2, 4) * matrix4d::getTranslate(1, 2, 3);
  tempDir dir;
  ASSERT_TRUE(m.saveToXML(dir.file("m.xml"), "TRANSFORM", names));
  xmlDocument doc;
  ASSERT_TRUE(doc.readFromFile(dir.file("m.xml")));
  auto* e = static_cast<xmlElement*>(doc.findNode("TRANSFORM"));
  ASSERT_NE(e, nullptr);
  double v = 0;
  EXPECT_TRUE(e->queryDoubleValue("M13", v));
  EXPECT_EQ(v, 2.0);  // the translation's y, element 13
  matrix4d back(true);
  ASSERT_TRUE(back.openFromXML(dir.file("m.xml"), "TRANSFORM", names));
  EXPECT_EQ(back, m);
  std::array<std::wstring, 16> wide;
  for (int i = 0; i < 16; ++i) wide[i] = L"E" + std::to_wstring(i);
  ASSERT_TRUE(m.saveToXMLW(&doc, L"WIDE", wide));
  matrix4f f(true);
  ASSERT_TRUE(f.openFromXMLW(&doc, L"WIDE", wide));
  EXPECT_EQ(f(3, 2), 3.0f);
  EXPECT_EQ(f(0, 0), 0.5f);
}
