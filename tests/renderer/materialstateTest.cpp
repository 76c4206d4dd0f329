// The material state written to XML and read back.
#include "jev3d/renderer/renderstate/materialstate.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "jev3d/io/xml/xmlDocument.h"
#include "jev3d/io/xml/xmlElement.h"
#include "support/tempDir.h"

using namespace JEV::RENDERING::RENDERSTATE;
using namespace JEV::IO::XML;
using JEV::CORE::color;

namespace {

void expectSameMaterial(const materialstate& a, const materialstate& b) {
  EXPECT_EQ(a.frontEmissive.cV(), b.frontEmissive.cV());
  EXPECT_EQ(a.frontAmbient.cV(), b.frontAmbient.cV());
  EXPECT_EQ(a.frontDiffuse.cV(), b.frontDiffuse.cV());
  EXPECT_EQ(a.frontSpecular.cV(), b.frontSpecular.cV());
  EXPECT_EQ(a.frontShininess.cV(), b.frontShininess.cV());
  EXPECT_EQ(a.backEmissive.cV(), b.backEmissive.cV());
  EXPECT_EQ(a.backAmbient.cV(), b.backAmbient.cV());
  EXPECT_EQ(a.backDiffuse.cV(), b.backDiffuse.cV());
  EXPECT_EQ(a.backSpecular.cV(), b.backSpecular.cV());
  EXPECT_EQ(a.backShininess.cV(), b.backShininess.cV());
}

materialstate sample() {
  return materialstate(color(1, 2, 3, 4), color(10, 20, 30, 40), color(255, 128, 0, 200),
                       color(7, 8, 9, 255), 11.264f, color(0, 0, 0, 0), color(5, 5, 5, 5),
                       color(99, 98, 97, 96), color(250, 251, 252, 253), 76.8f);
}

// Reads `text` as a file's contents and hands the element named `name` to the state.
bool openFromText(const tempDir& dir, const std::string& text, materialstate& m) {
  const std::string file = dir.file("material.xml");
  std::ofstream(file) << text;
  xmlDocument doc;
  if (!doc.readFromFile(file)) return false;
  xmlNode* element = doc.findNode(std::string("Material"));
  if (!element || element->getType() != XML_ELEMENT) return false;
  return m.openFromXML(static_cast<xmlElement&>(*element));
}

}  // namespace

TEST(materialstateXml, writtenToAFileAndReadBackEqual) {
  tempDir dir;
  const materialstate saved = sample();
  xmlDocument doc;
  saved.saveToXML(&doc, L"Material");
  ASSERT_TRUE(doc.writeToFile(dir.file("m.xml")));

  xmlDocument read;
  ASSERT_TRUE(read.readFromFile(dir.file("m.xml")));
  xmlNode* element = read.findNode(std::wstring(L"Material"));
  ASSERT_NE(element, nullptr);
  materialstate loaded;
  ASSERT_TRUE(loaded.openFromXML(static_cast<xmlElement&>(*element)));
  expectSameMaterial(saved, loaded);
}

TEST(materialstateXml, keysAreTheDocumentedOnes) {
  xmlDocument doc;
  sample().saveToXML(&doc, L"Mat");
  auto* element = static_cast<xmlElement*>(doc.findNode(std::wstring(L"Mat")));
  ASSERT_NE(element, nullptr);
  EXPECT_TRUE(element->isAttribute(std::wstring(L"FrontShininess")));
  EXPECT_TRUE(element->isAttribute(std::wstring(L"BackShininess")));
  const wchar_t* names[] = {L"FrontEmissive", L"FrontAmbient", L"FrontDiffuse", L"FrontSpecular",
                            L"BackEmissive",  L"BackAmbient",  L"BackDiffuse",  L"BackSpecular"};
  ASSERT_EQ(element->getChildCount(), 8);
  for (int i = 0; i < 8; ++i) {
    auto* c = static_cast<xmlElement*>(element->getChild(i));
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->getValueW(), names[i]);
  }
  auto* diffuse = static_cast<xmlElement*>(element->findNode(std::wstring(L"FrontDiffuse")));
  int red = -1, green = -1, blue = -1, alpha = -1;
  EXPECT_TRUE(diffuse->queryIntValue(std::wstring(L"Red"), red));
  EXPECT_TRUE(diffuse->queryIntValue(std::wstring(L"Green"), green));
  EXPECT_TRUE(diffuse->queryIntValue(std::wstring(L"Blue"), blue));
  EXPECT_TRUE(diffuse->queryIntValue(std::wstring(L"Alpha"), alpha));
  EXPECT_EQ(red, 255);
  EXPECT_EQ(green, 128);
  EXPECT_EQ(blue, 0);
  EXPECT_EQ(alpha, 200);
}

TEST(materialstateXml, missingValuesKeepTheirs) {
  tempDir dir;
  materialstate m = sample();
  ASSERT_TRUE(
      openFromText(dir, "<Material BackShininess=\"3.5\"><FrontDiffuse Red=\"1\"/></Material>", m));
  EXPECT_EQ(m.frontDiffuse.cV(), color(1, 128, 0, 200));
  EXPECT_EQ(m.backShininess.cV(), 3.5f);
  EXPECT_EQ(m.frontShininess.cV(), 11.264f);
  EXPECT_EQ(m.backSpecular.cV(), color(250, 251, 252, 253));
}

TEST(materialstateXml, malformedMaterialFailsAndChangesNothing) {
  tempDir dir;
  const materialstate original = sample();
  const char* bad[] = {
      // not well-formed
      "<Material FrontShininess=\"2\"><FrontDiffuse Red=\"1\"",
      "<Material><FrontDiffuse Red=\"1\"></Material>",
      // channels out of range or not integers
      "<Material><FrontDiffuse Red=\"256\"/></Material>",
      "<Material><BackAmbient Alpha=\"-1\"/></Material>",
      "<Material><FrontSpecular Green=\"12.5\"/></Material>",
      "<Material><FrontSpecular Blue=\"blue\"/></Material>",
      "<Material><FrontSpecular Red=\"99999999999999999999\"/></Material>",
      // shininess that is no finite number
      "<Material FrontShininess=\"shiny\"/>",
      "<Material BackShininess=\"1e99\"/>",
      "<Material BackShininess=\"nan\"/>",
      "<Material FrontShininess=\"4 4\"/>",
      // a valid colour after a bad one must not be taken either
      "<Material><FrontEmissive Red=\"300\"/><BackDiffuse Red=\"1\"/></Material>",
  };
  for (const char* text : bad) {
    materialstate m = sample();
    EXPECT_FALSE(openFromText(dir, text, m)) << text;
    expectSameMaterial(original, m);
  }
}
