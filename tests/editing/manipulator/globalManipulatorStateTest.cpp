#include "jev3d/editing/manipulator/globalManipulatorState.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include "jev3d/editing/undoRedoRecordGlobalManipulatorState.h"
#include "jev3d/editing/undoRedoStack.h"
#include "jev3d/io/xml/xmlDocument.h"
#include "jev3d/io/xml/xmlElement.h"
#include "support/tempDir.h"

using JEV::IO::XML::XML_ELEMENT;
using JEV::IO::XML::xmlDocument;
using JEV::IO::XML::xmlElement;
using JEV::IO::XML::xmlNode;
using JEV::MESH::EDITING::MANIPULATOR::globalManipulatorState;
using p3 = JEV::MATH::point3<float>;
using stateRecord = JEV::SYSTEM::undoRedoRecord<globalManipulatorState>;
using groupRecord = JEV::SYSTEM::undoRedoRecord<std::vector<std::vector<globalManipulatorState>>>;

namespace {

// A cage moved, turned and stretched from the unit cube, with awkward float values.
globalManipulatorState sample() {
  globalManipulatorState s;
  s.rigidTranslate(p3(0.1f, -2.3f, 1e-7f));
  s.makeReference();
  s.rotateAboutLocalYAxis(0.7f);
  s.scaleWrtLocalXAxis(3.3f);
  s.translateWrtLocalZAxis(1.f / 3.f);
  return s;
}

// A document holding the state below the element "State", read back from `text`.
bool openFromText(const tempDir& dir, const std::string& text, globalManipulatorState& s) {
  const std::string file = dir.file("state.xml");
  std::ofstream(file) << text;
  xmlDocument doc;
  if (!doc.readFromFile(file)) return false;
  xmlNode* element = doc.findNode(std::string("State"));
  if (!element || element->getType() != XML_ELEMENT) return false;
  return s.openFromXML(static_cast<xmlElement&>(*element));
}

std::string points(int count, const char* x = "0.5") {
  std::string out;
  for (int i = 0; i < count; ++i) out += std::string("<POINT3 X=\"") + x + "\" Y=\"1\" Z=\"-2\"/>";
  return out;
}

// Keeps the value a record's delegate put back.
struct restorer {
  globalManipulatorState current;
  void put(globalManipulatorState& s) { current = s; }
};

}  // namespace

TEST(globalManipulatorState, startsAsTheUnitCubeCentredOnTheOrigin) {
  const globalManipulatorState s;
  std::vector<p3> cube;
  globalManipulatorState::makeUnitCube(cube);
  const std::vector<p3> expected = {p3(-.5f, -.5f, .5f),  p3(.5f, -.5f, .5f), p3(.5f, -.5f, -.5f),
                                    p3(-.5f, -.5f, -.5f), p3(-.5f, .5f, .5f), p3(.5f, .5f, .5f),
                                    p3(.5f, .5f, -.5f),   p3(-.5f, .5f, -.5f)};
  EXPECT_EQ(cube, expected);
  EXPECT_EQ(s.getShape(), expected);
  EXPECT_EQ(s.getReferenceShape(), expected);
  EXPECT_EQ(s.getCenter(), p3());
  p3 axes[3];
  s.getShapeAxes(axes);
  EXPECT_EQ(axes[0], p3(1, 0, 0));
  EXPECT_EQ(axes[1], p3(0, 1, 0));
  EXPECT_EQ(axes[2], p3(0, 0, 1));
  EXPECT_EQ(s.getShapeTransform(), JEV::MATH::matrix4<float>());
}

TEST(globalManipulatorState, changesMoveTheCurrentShapeAndTheTransformFollows) {
  globalManipulatorState s;
  s.translateWrtLocalXAxis(2.f);
  EXPECT_EQ(s.getCenter(), p3(2, 0, 0));
  EXPECT_EQ(s.getReferenceCenter(), p3());
  s.scaleWrtLocalYAxis(3.f);
  p3 axes[3];
  s.getShapeAxes(axes);
  EXPECT_NEAR(axes[1].norm(), 3.f, 1e-6f);
  EXPECT_NEAR(axes[0].norm(), 1.f, 1e-6f);
  EXPECT_EQ(s.getCenter(), p3(2, 0, 0)) << "scaled about the centre";
  s.rotateAboutLocalZAxis(float(M_PI / 2));
  s.getNormalizedShapeAxes(axes);
  EXPECT_LT((axes[0] - p3(0, 1, 0)).norm(), 1e-6f);
  // The shape transform maps every reference corner onto its current corner.
  const auto m = s.getShapeTransform();
  for (size_t i = 0; i < 8; ++i)
    EXPECT_LT((s.getReferenceShape()[i] * m - s.getShape()[i]).norm(), 1e-5f) << i;
  p3 angles, move, scale;
  s.getCurrentEulerTransform(angles, move, scale);
  EXPECT_NEAR(angles.z, float(M_PI / 2), 1e-5f);
  EXPECT_NEAR(angles.x, 0.f, 1e-5f);
  EXPECT_NEAR(angles.y, 0.f, 1e-5f);
  EXPECT_LT((move - p3(2, 0, 0)).norm(), 1e-6f);
  EXPECT_NEAR(scale.y, 3.f, 1e-5f);
  EXPECT_NEAR(scale.x, 1.f, 1e-5f);
  s.resetToReference();
  EXPECT_EQ(s, globalManipulatorState());
}

TEST(globalManipulatorState, comparesAndBlendsCornerByCorner) {
  const globalManipulatorState a;
  globalManipulatorState b;
  b.rigidTranslate(p3(4, 0, 0));
  EXPECT_NE(a, b);
  const globalManipulatorState half = globalManipulatorState::lerp(a, b, 0.5f);
  EXPECT_EQ(half.getCenter(), p3(2, 0, 0));
  EXPECT_EQ(globalManipulatorState::lerp(a, b, 0.f), a);
  EXPECT_FALSE(b.setShape(std::vector<p3>(7)));
  EXPECT_EQ(b.getCenter(), p3(4, 0, 0));
}

TEST(globalManipulatorStateXml, writtenToAFileAndReadBackEqual) {
  tempDir dir;
  const globalManipulatorState saved = sample();
  xmlDocument doc;
  xmlElement root(std::wstring(L"State"));
  xmlElement* element = root.connect(&doc);
  ASSERT_NE(element, nullptr);
  saved.saveToXML(element);
  ASSERT_EQ(element->getChildCount(), 2);
  const auto* reference = static_cast<const xmlElement*>(element->getChild(0));
  EXPECT_EQ(reference->getValueW(), L"ReferenceManipShape");
  EXPECT_EQ(element->getChild(1)->getValueW(), L"ManipShape");
  ASSERT_EQ(reference->getChildCount(), 8);
  const auto* corner = static_cast<const xmlElement*>(reference->getChild(0));
  EXPECT_EQ(corner->getValueW(), L"POINT3");
  for (const char* key : {"X", "Y", "Z"}) EXPECT_TRUE(corner->isAttribute(std::string(key)));
  ASSERT_TRUE(doc.writeToFile(dir.file("state.xml")));

  xmlDocument read;
  ASSERT_TRUE(read.readFromFile(dir.file("state.xml")));
  xmlNode* node = read.findNode(std::wstring(L"State"));
  ASSERT_NE(node, nullptr);
  globalManipulatorState loaded;
  ASSERT_TRUE(loaded.openFromXML(static_cast<xmlElement&>(*node)));
  EXPECT_EQ(loaded, saved) << "every float reads back bit for bit";
}

TEST(globalManipulatorStateXml, aBadDocumentFailsAndLeavesTheStateAsItWas) {
  tempDir dir;
  const globalManipulatorState before = sample();
  const std::string good = "<ManipShape>" + points(8) + "</ManipShape>";
  const std::string goodReference = "<ReferenceManipShape>" + points(8) + "</ReferenceManipShape>";
  const std::vector<std::string> bad = {
      "<State>" + good + "</State>",
      "<State>" + goodReference + "</State>",
      "<State><ReferenceManipShape>" + points(7) + "</ReferenceManipShape>" + good + "</State>",
      "<State><ReferenceManipShape>" + points(9) + "</ReferenceManipShape>" + good + "</State>",
      "<State>" + goodReference + "<ManipShape>" + points(8, "abc") + "</ManipShape></State>",
      "<State>" + goodReference + "<ManipShape>" + points(8, "1e99") + "</ManipShape></State>",
      "<State>" + goodReference + "<ManipShape>" + points(8, "nan") + "</ManipShape></State>",
      "<State>" + goodReference + "<ManipShape>" + points(8, "2x") + "</ManipShape></State>",
      "<State>" + goodReference + "<ManipShape><POINT3 X=\"1\" Y=\"2\"/>" + points(7) +
          "</ManipShape></State>"};
  for (const std::string& text : bad) {
    globalManipulatorState s = before;
    EXPECT_FALSE(openFromText(dir, text, s)) << text;
    EXPECT_EQ(s, before) << text;
  }
  globalManipulatorState s = before;
  ASSERT_TRUE(
      openFromText(dir, "<State>" + goodReference + "<!-- kept -->" + good + "</State>", s));
  EXPECT_EQ(s.getShape()[3], p3(0.5f, 1, -2));
}

TEST(globalManipulatorStateUndo, recordsPutTheSavedStateBackThroughTheStack) {
  restorer target;
  auto undo = JEV::SYSTEM::makeDelegate(&target, &restorer::put);
  JEV::SYSTEM::undoRedoStack stack(1u << 16);
  // The state before the first drag, then after two drags: snapshots, as undo expects.
  globalManipulatorState s;
  stack.push(new stateRecord(s, undo, undo));
  s.rigidTranslate(p3(1, 0, 0));
  stack.push(new stateRecord(s, undo, undo));
  const globalManipulatorState afterFirst = s;
  s.rotateAboutLocalXAxis(0.5f);
  stack.push(new stateRecord(s, undo, undo));
  ASSERT_TRUE(stack.undo());
  EXPECT_EQ(target.current, afterFirst);
  ASSERT_TRUE(stack.undo());
  EXPECT_EQ(target.current, globalManipulatorState());
  EXPECT_FALSE(stack.undo());
  ASSERT_TRUE(stack.redo());
  EXPECT_EQ(target.current, afterFirst);
  // A record weighs the state and its sixteen corners.
  const stateRecord one(s);
  EXPECT_EQ(one.getNumBytes(), unsigned(sizeof(globalManipulatorState) + 16 * sizeof(p3)));
}

TEST(globalManipulatorStateUndo, groupRecordsKeepEveryStateOfEveryGroup) {
  std::vector<std::vector<globalManipulatorState>> groups(2);
  groups[0].resize(3);
  groups[1].push_back(sample());
  const groupRecord record(groups);
  EXPECT_EQ(record.getRecord()[1][0], sample());
  const unsigned perState = unsigned(sizeof(globalManipulatorState) + 16 * sizeof(p3));
  EXPECT_EQ(record.getNumBytes(), unsigned(3 * sizeof(groups) + 4 * perState));
}
