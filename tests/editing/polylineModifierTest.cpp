// The polyline editor driven by the mouse on a sphere, its undo, and the polyline manager
// with its file; no window.
#include <gtest/gtest.h>

#include <string>

#include "jev3d/editing/modifier/polylineControlPointPositionModifier.h"
#include "jev3d/editing/modifier/polylineControlPointPositionModifierManager.h"
#include "jev3d/editing/undoRedoStack.h"
#include "jev3d/gui/widget.h"
#include "jev3d/mesh/aabbtreeEditMeshFaceWrap.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "support/fileBytes.h"
#include "support/meshes.h"
#include "support/tempDir.h"

using namespace JEV::MESH::EDITING;
using JEV::MESH::editMesh;
using JEV::MESH::editMeshInterface;
using point3f = JEV::MATH::point3<float>;
using ray3f = JEV::MATH::ray3<float>;
using cpoint = polylineDescriptor::polylineControlPoint;
using manager = polylineControlPointPositionModifierManager;

namespace {

// A ray from in front of the sphere (the viewer at z = -5) through (x, y).
ray3f towards(float x, float y) { return ray3f(point3f(x, y, -5.f), point3f(0.f, 0.f, 1.f)); }

struct editorFixture : ::testing::Test {
  void SetUp() override {
    testMeshes::makeSphere(mesh, 16, 24);
    testMeshes::finishMesh(mesh);
    curve.meshes.push_back(&view);
    editor.setUndoRedoStack(&stack);
    editor.set(&curve);
  }
  // Presses and releases on the surface under (x, y).
  void click(float x, float y) {
    editor.mouseDown(0, 0, towards(x, y));
    editor.mouseUp(0, 0, towards(x, y));
  }
  // The surface point under (x, y).
  point3f under(float x, float y) {
    point3f hit;
    unsigned int face = 0, m = 0;
    EXPECT_TRUE(editor.rayIntersect(towards(x, y), hit, face, m));
    return hit;
  }

  editMesh mesh;
  editMeshInterface view{mesh};
  polylineDescriptor curve;
  JEV::SYSTEM::undoRedoStack stack{1u << 20};
  polylineControlPointPositionModifier editor;
};

}  // namespace

TEST_F(editorFixture, aPolylineShowsFromTwoPointsOnAlongItsControlPoints) {
  EXPECT_TRUE(editor.getPolylineNode()->disabled.cV());
  click(0.f, 0.f);
  ASSERT_EQ(curve.controlPoints.size(), 1u);
  EXPECT_EQ(editor.getSmartInsertionResult(), SMART_INSERTION_FIRST);
  // One point displays nothing.
  EXPECT_TRUE(editor.getPolylineNode()->disabled.cV());
  EXPECT_TRUE(editor.getSplineNode()->disabled.cV());
  click(0.5f, 0.1f);
  ASSERT_EQ(curve.controlPoints.size(), 2u);
  EXPECT_FALSE(editor.getPolylineNode()->disabled.cV());
  EXPECT_FALSE(editor.getSplineNode()->disabled.cV());
  // The line drawn runs through both points and lies on the surface between them.
  const auto& drawn = editor.getPolylineNode()->getPoints();
  ASSERT_GT(drawn.size(), 10u);
  EXPECT_EQ(drawn.front(), curve.controlPoints[0].pos);
  EXPECT_EQ(drawn.back(), curve.controlPoints[1].pos);
  JEV::MATH::closestPointHit onSurface;
  for (const point3f& p : drawn) {
    ASSERT_TRUE(mesh.getFABBTree()->closestPoint(p, 1.f, onSurface));
    EXPECT_LT(onSurface.squaredDistance, 1e-10f);
  }
  EXPECT_LT(editor.getPolylineNode()->computeLenght(),
            (drawn.back() - drawn.front()).norm() * 1.05f);
  EXPECT_GT(editor.getPolylineNode()->computeLenght(), (drawn.back() - drawn.front()).norm());
  // Straight chords when draping is off.
  editor.drapeLength = 0.f;
  editor.updatePolyline(false);
  ASSERT_EQ(editor.getPolylineNode()->getPoints().size(), 2u);
  const auto& spline = editor.getSplineNode()->getPoints();
  ASSERT_GT(spline.size(), 2u);
  EXPECT_LT((spline.front() - curve.controlPoints[0].pos).norm(), 1e-6f);
  EXPECT_LT((spline.back() - curve.controlPoints[1].pos).norm(), 1e-6f);
  // The clicked points lie on the front of the sphere, on the faces they name.
  for (const cpoint& cp : curve.controlPoints) {
    EXPECT_LT(cp.pos.z, -0.8f);
    EXPECT_TRUE(mesh.isFaceValid(cp.F));
  }
  EXPECT_TRUE(editor.isControlPointValid(1));
  EXPECT_FALSE(editor.isControlPointValid(2));
}

TEST_F(editorFixture, smartInsertionPutsAPointAtTheNearerEndOrIntoTheNearestSegment) {
  unsigned int face = 0;
  EXPECT_EQ(editor.addControlPoint(point3f(0, 0, 0), face, 0), SMART_INSERTION_FIRST);
  EXPECT_EQ(editor.addControlPoint(point3f(1, 0, 0), face, 0), SMART_INSERTION_APPEND);
  EXPECT_EQ(editor.addControlPoint(point3f(2, 0, 0), face, 0), SMART_INSERTION_APPEND);
  EXPECT_EQ(editor.addControlPoint(point3f(1.5f, 0.1f, 0), face, 0), SMART_INSERTION_BETWEEN);
  EXPECT_EQ(curve.controlPoints[2].pos, point3f(1.5f, 0.1f, 0));
  EXPECT_EQ(curve.CurrCP.cV(), 2);
  EXPECT_EQ(editor.addControlPoint(point3f(-0.5f, 0.2f, 0), face, 0), SMART_INSERTION_PREPEND);
  EXPECT_EQ(curve.controlPoints[0].pos, point3f(-0.5f, 0.2f, 0));
  EXPECT_EQ(editor.addControlPoint(point3f(3, 1, 0), face, 0), SMART_INSERTION_APPEND);
  EXPECT_EQ(editor.getSmartInsertionResult(), SMART_INSERTION_APPEND);
  EXPECT_EQ(curve.controlPoints.back().pos, point3f(3, 1, 0));
  // Without smart insertion a point goes at the end; with no such mesh it is refused.
  EXPECT_EQ(editor.addControlPoint(point3f(1, 0.01f, 0), face, 0, false), SMART_INSERTION_APPEND);
  EXPECT_EQ(curve.controlPoints.back().pos, point3f(1, 0.01f, 0));
  EXPECT_EQ(editor.addControlPoint(point3f(1, 0, 0), face, 3), SMART_INSERTION_NONE);
  EXPECT_EQ(curve.controlPoints.size(), 7u);

  ASSERT_TRUE(editor.moveToNewIndex(6, 0));
  EXPECT_EQ(curve.controlPoints[0].pos, point3f(1, 0.01f, 0));
  ASSERT_TRUE(editor.removeControlPoint(0));
  EXPECT_EQ(curve.controlPoints.size(), 6u);
  EXPECT_EQ(curve.CurrCP.cV(), -1);
  EXPECT_FALSE(editor.removeControlPoint(6));
  EXPECT_EQ(editor.findNearSegment(point3f(1.2f, 0.0f, 0), 0.2f), 2);
  EXPECT_EQ(editor.closestPoint3(point3f(2.1f, 0, 0), 0.2f), 4);
  EXPECT_EQ(editor.closestPoint3(point3f(9, 9, 9), 0.2f), -1);
}

TEST_F(editorFixture, undoAndRedoTakeInsertionsAndMovesBackAndForth) {
  click(0.f, 0.f);
  click(0.4f, 0.f);
  const polylineDescriptor twoPoints = curve;
  // Drag the second point up.
  const point3f second = curve.controlPoints[1].pos;
  editor.mouseDown(0, 0, towards(second.x, second.y));
  EXPECT_EQ(editor.dragCount.cV(), 1);
  EXPECT_FALSE(editor.moved.cV());
  editor.mouseMotion(0, 0, towards(0.4f, 0.2f));
  editor.mouseMotion(0, 0, towards(0.4f, 0.3f));
  EXPECT_TRUE(editor.moved.cV());
  EXPECT_EQ(editor.dragCount.cV(), 3);
  editor.mouseUp(0, 0, towards(0.4f, 0.3f));
  EXPECT_EQ(editor.dragCount.cV(), 0);
  ASSERT_EQ(curve.controlPoints.size(), 2u);
  const point3f target = under(0.4f, 0.3f);
  EXPECT_LT((curve.controlPoints[1].pos - target).norm(), 1e-6f);
  EXPECT_EQ(editor.getPolylineNode()->getPoints().back(), curve.controlPoints[1].pos);
  const polylineDescriptor moved = curve;

  ASSERT_TRUE(stack.undo());
  EXPECT_EQ(curve, twoPoints);
  EXPECT_EQ(editor.getPolylineNode()->getPoints().back(), second);
  ASSERT_TRUE(stack.undo());
  EXPECT_EQ(curve.controlPoints.size(), 1u);
  EXPECT_TRUE(editor.getPolylineNode()->disabled.cV());
  ASSERT_TRUE(stack.undo());
  EXPECT_TRUE(curve.controlPoints.empty());
  EXPECT_FALSE(stack.undo());
  ASSERT_TRUE(stack.redo());
  ASSERT_TRUE(stack.redo());
  EXPECT_EQ(curve, twoPoints);
  ASSERT_TRUE(stack.redo());
  EXPECT_EQ(curve, moved);
  // The meshes stay the editor's own through every step.
  ASSERT_EQ(curve.meshes.size(), 1u);
  EXPECT_EQ(curve.meshes[0], &view);
}

TEST_F(editorFixture, hoverNamesThePointUnderTheRayAndOcclusionSeesThroughNothing) {
  click(0.f, 0.f);
  click(0.3f, 0.f);
  editor.mouseMotion(0, 0, towards(0.3f, 0.01f));
  EXPECT_EQ(editor.hoverCP.cV(), 1);
  editor.mouseMotion(0, 0, towards(-0.6f, 0.5f));
  EXPECT_EQ(editor.hoverCP.cV(), -1);
  // The editor does not hear the mouse while disabled.
  editor.enabled = false;
  editor.mouseMotion(0, 0, towards(0.3f, 0.01f));
  EXPECT_EQ(editor.hoverCP.cV(), -1);
  click(0.6f, 0.f);
  EXPECT_EQ(curve.controlPoints.size(), 2u);
  editor.enabled = true;

  const point3f front(0, 0, -5), back(0, 0, 5);
  EXPECT_TRUE(editor.isControlPointVisible(0, front));
  EXPECT_FALSE(editor.isControlPointVisible(0, back));
  EXPECT_TRUE(editor.testLineIntersection(front, back));
  EXPECT_FALSE(editor.testLineIntersection(front, point3f(0, 0, -2)));
}

TEST(polylineManager, schemesAndEdgesReadBackEqualAndBadFilesChangeNothing) {
  manager m;
  polylineDescriptor a, b;
  for (int i = 0; i < 4; ++i) a.controlPoints.emplace_back(point3f(0.1f * i, 1.f / 3, 2), i, 0);
  for (int i = 0; i < 3; ++i) b.controlPoints.emplace_back(point3f(1, 0.7f * i, -1), 10 + i, 0);
  b.CurrCP = 2;
  EXPECT_EQ(m.addNewScheme(a), 0u);
  EXPECT_EQ(m.addNewScheme(b, L"rim"), 1u);
  EXPECT_EQ(m.addNewScheme(b, L"rim"), 2u);
  EXPECT_EQ(m.getSchemes()[0].name, L"Polyline0");
  EXPECT_EQ(m.getSchemes()[2].name, L"Polyline2");
  EXPECT_TRUE(m.addEdge(L"Polyline0", 3, L"rim", 0));
  EXPECT_FALSE(m.addEdge(L"rim", 0, L"Polyline0", 3));  // the same edge the other way
  EXPECT_FALSE(m.addEdge(L"rim", 3, L"Polyline0", 0));  // rim has 3 points
  EXPECT_FALSE(m.addEdge(L"nothing", 0, L"rim", 0));
  EXPECT_FALSE(m.addEdge(L"rim", 1, L"rim", 1));
  EXPECT_TRUE(m.addEdge(L"rim", 1, L"Polyline2", 2));

  tempDir dir;
  ASSERT_TRUE(m.saveToXML(dir.file("set.xml")));
  const std::string text = readBytes(dir.file("set.xml"));
  for (const char* part :
       {"<?xml version=\"1.0\"", "<polylineControlPointPositionModifierManager>", "<Polylines>",
        "<PolylineDescriptor Name=\"rim\">", "<POLYLINE CurrCP=\"2\">", "<Edges>",
        "<Edge From=\"3\" FromName=\"Polyline0\" To=\"0\" ToName=\"rim\""})
    EXPECT_NE(text.find(part), std::string::npos) << part;
  manager back;
  ASSERT_TRUE(back.openFromXML(dir.file("set.xml")));
  EXPECT_EQ(back.getSchemes(), m.getSchemes());
  EXPECT_EQ(back.getEdges(), m.getEdges());

  auto refused = [&](const std::string& content, const std::string& what) {
    writeBytes(dir.file("bad.xml"), content);
    manager target;
    target.addNewScheme(a, L"kept");
    EXPECT_FALSE(target.openFromXML(dir.file("bad.xml"))) << what;
    ASSERT_EQ(target.getSchemes().size(), 1u) << what;
    EXPECT_EQ(target.getSchemes()[0].name, L"kept");
    EXPECT_TRUE(target.getEdges().empty());
  };
  for (size_t cut = 0; cut + 1 < text.size(); cut += 11)
    refused(text.substr(0, cut), "cut at " + std::to_string(cut));
  refused(replacedOnce(text, "ToName=\"rim\"", "ToName=\"gone\""), "edge to an unknown polyline");
  refused(replacedOnce(text, "From=\"3\"", "From=\"30\""), "edge to a point past the end");
  refused(replacedOnce(text, "From=\"3\"", "From=\"-3\""), "negative point");
  refused(replacedOnce(text, "Name=\"Polyline2\"", "Name=\"rim\""), "two polylines of one name");
  refused(replacedOnce(text, "<Edges>", "<Edgez>"), "no edge list");
  refused(replacedOnce(text, "MeshIndex=\"0\"", "MeshIndex=\"x\""), "bad control point");
  // Bytes changed at random: a read either fails and changes nothing, or gives a whole set
  // whose edges all name points there are.
  forEachDamagedCopy(text, dir.file("bad.xml"), 5, 0, 300, [&](const std::string& path) {
    manager target;
    target.addNewScheme(a, L"kept");
    if (!target.openFromXML(path)) {
      ASSERT_EQ(target.getSchemes().size(), 1u);
      EXPECT_EQ(target.getSchemes()[0].name, L"kept");
      return;
    }
    for (const manager::edgeScheme& e : target.getEdges()) {
      const manager::polylineScheme* from = target.findScheme(e.Edge.FromName);
      const manager::polylineScheme* to = target.findScheme(e.Edge.ToName);
      ASSERT_TRUE(from && to);
      EXPECT_LT(e.Edge.From, from->descriptor.controlPoints.size());
      EXPECT_LT(e.Edge.To, to->descriptor.controlPoints.size());
    }
  });
}

TEST(polylineManager, doubleClicksTieTwoPointsAndUnusedRecordsGo) {
  manager m;
  polylineDescriptor a, b;
  a.controlPoints = {cpoint(point3f(0, 0, 0), 0, 0), cpoint(point3f(1, 0, 0), 0, 0)};
  b.controlPoints = {cpoint(point3f(0, 2, 0), 0, 0), cpoint(point3f(1, 2, 0), 0, 0)};
  m.addNewScheme(a, L"a");
  m.addNewScheme(b, L"b");
  const auto down = [](float x, float y) {
    return ray3f(point3f(x, y, 5.f), point3f(0.f, 0.f, -1.f));
  };
  EXPECT_FALSE(m.onMouseDoubleClick(down(1.01f, 0.f), 0.05f));
  EXPECT_FALSE(m.onMouseDoubleClick(down(5.f, 5.f), 0.05f));  // nothing there: pick forgotten
  EXPECT_FALSE(m.onMouseDoubleClick(down(0.f, 2.f), 0.05f));
  EXPECT_TRUE(m.onMouseDoubleClick(down(1.f, 0.02f), 0.05f));
  ASSERT_EQ(m.getEdges().size(), 1u);
  EXPECT_EQ(m.getEdges()[0].Edge, (manager::edge{L"b", 0, L"a", 1}));

  m.findScheme(L"b")->descriptor.controlPoints.clear();
  m.addNewScheme(polylineDescriptor(), L"empty");
  EXPECT_EQ(m.deleteUnusedPointer(), 3u);  // two empty polylines and the edge to one
  ASSERT_EQ(m.getSchemes().size(), 1u);
  EXPECT_TRUE(m.getEdges().empty());
}

TEST_F(editorFixture, segmentsOfPointsWhoseHandlesAreHiddenAreLeftOut) {
  editor.drapeLength = 0.f;
  for (float x : {0.f, 0.2f, 0.4f, 0.6f}) click(x, 0.f);
  ASSERT_EQ(curve.controlPoints.size(), 4u);
  JEV::GUI::widget shown(L"a", nullptr, nullptr), hidden(L"b", nullptr, nullptr);
  hidden.visible = false;
  for (cpoint& cp : curve.controlPoints) cp.widget = &shown;
  curve.controlPoints[2].widget = &hidden;
  // The handles count only when both switches are on.
  editor.useWidgets = true;
  editor.updatePolyline(false);
  EXPECT_EQ(editor.getPolylineNode()->getVmask(), std::vector<unsigned char>(4, 1));
  editor.widgetsShown = true;
  editor.updatePolyline(false);
  EXPECT_EQ(editor.getPolylineNode()->getVmask(), (std::vector<unsigned char>{1, 1, 0, 1}));
  // Draped, the inner points of the two segments at the hidden point are hidden too.
  editor.drapeLength = 0.05f;
  editor.updatePolyline(false);
  const auto& points = editor.getPolylineNode()->getPoints();
  const auto& mask = editor.getPolylineNode()->getVmask();
  ASSERT_EQ(mask.size(), points.size());
  for (size_t i = 0; i < points.size(); ++i) {
    const bool nearHidden = points[i].x > 0.2f + 1e-3f && points[i].x < 0.6f - 1e-3f;
    EXPECT_EQ(mask[i], nearHidden ? 0 : 1) << i << " at x " << points[i].x;
  }
  for (cpoint& cp : curve.controlPoints) cp.widget = nullptr;
}
