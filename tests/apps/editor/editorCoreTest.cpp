// The editor's classes without a window: the edits on meshes, the document's history and
// the job runner.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <thread>

#include "jev3d/editing/editMeshNode.h"
#include "jobRunner.h"
#include "meshDocument.h"
#include "meshEdits.h"
#include "support/meshes.h"
#include "support/recordingCallBack.h"
#include "support/tempDir.h"

using namespace EDITOR;
using JEV::MESH::editMesh;
using JEV::MESH::EDITING::editMeshNode;
using p3 = JEV::MATH::point3<float>;

namespace {

editMesh cube() {
  editMesh m;
  testMeshes::makeCube(m);
  testMeshes::finishMesh(m);
  m.computeBBox();
  return m;
}

editMesh sphere(unsigned rings = 16, unsigned segments = 24) {
  editMesh m;
  testMeshes::makeSphere(m, rings, segments);
  testMeshes::finishMesh(m);
  m.computeBBox();
  return m;
}

bool run(meshEdit edit, editMesh& m, std::string& message, const editMesh& reference = editMesh()) {
  return edit(m, reference, nullptr, message);
}

// The largest distance of a live vertex from the unit sphere.
double offSphere(const editMesh& m) {
  double worst = 0;
  for (unsigned v = 0; v < m.vn(); ++v)
    if (!m.isVertDeleted(v)) worst = std::max(worst, std::abs(double(m.vPos(v).norm()) - 1.0));
  return worst;
}

}  // namespace

TEST(editorEdits, extrudeRaisesTheSelectedFaceOutward) {
  editMesh m = cube();
  m.selectFace(1);  // z = 1
  std::string message;
  ASSERT_TRUE(run(extrudeSelection, m, message));
  EXPECT_MESH_VALID(m);
  EXPECT_EQ(testMeshes::liveFaces(m), 10u);     // four walls added
  EXPECT_GT(testMeshes::signedVolume(m), 1.2);  // half an edge up: 1.5
  EXPECT_EQ(message, "Extruded 1 faces");
  editMesh none = cube();
  EXPECT_FALSE(run(extrudeSelection, none, message));
  EXPECT_EQ(message, "Extrude: select faces first");
}

TEST(editorEdits, loopCutSplitsTheRingThroughTheSelectedFace) {
  editMesh m = cube();
  m.selectFace(1);
  std::string message;
  ASSERT_TRUE(run(loopCutSelection, m, message));
  EXPECT_MESH_VALID(m);
  EXPECT_EQ(testMeshes::liveFaces(m), 10u);  // four quads of the ring, each cut in two
  EXPECT_NEAR(testMeshes::signedVolume(m), 1.0, 1e-5);
  editMesh none = cube();
  EXPECT_FALSE(run(loopCutSelection, none, message));
}

TEST(editorEdits, subdivideTriangulateAndMirrorKeepTheMeshConsistent) {
  std::string message;
  editMesh m = cube();
  ASSERT_TRUE(run(subdivideMesh, m, message));
  EXPECT_MESH_VALID(m);
  EXPECT_EQ(testMeshes::liveFaces(m), 24u);
  EXPECT_GT(testMeshes::signedVolume(m), 0.3);
  EXPECT_LT(testMeshes::signedVolume(m), 1.0);  // the corners are rounded off

  editMesh t = cube();
  ASSERT_TRUE(run(triangulateMesh, t, message));
  EXPECT_MESH_VALID(t);
  EXPECT_EQ(testMeshes::liveFaces(t), 12u);
  EXPECT_NEAR(testMeshes::signedVolume(t), 1.0, 1e-5);

  editMesh r = cube();
  r.selectFace(5);  // x = 1
  ASSERT_TRUE(run(mirrorAcrossSelection, r, message));
  EXPECT_MESH_VALID(r);
  EXPECT_EQ(testMeshes::liveFaces(r), 12u);
  EXPECT_NEAR(testMeshes::signedVolume(r), 2.0, 1e-4);  // both halves face outward
  r.computeBBox();
  EXPECT_NEAR(r.getBBoxMax().x, 2.f, 1e-5f);
  editMesh none = cube();
  EXPECT_FALSE(run(mirrorAcrossSelection, none, message));
}

TEST(editorEdits, smoothingMovesOnlyTheSelectionWhenThereIsOne) {
  // A flat grid with bumps: smoothing flattens it and leaves its border where it was.
  editMesh noisy;
  testMeshes::makeGrid(noisy, 12, 12, false);
  for (unsigned v = 0; v < noisy.vn(); ++v) noisy.vPos(v).z = 0.2f * float((v * 7919) % 5) / 5.f;
  testMeshes::finishMesh(noisy);
  auto roughness = [](const editMesh& m) {
    double sum = 0, mean = 0;
    for (unsigned v = 0; v < m.vn(); ++v) mean += m.vPos(v).z;
    mean /= m.vn();
    for (unsigned v = 0; v < m.vn(); ++v) sum += std::abs(m.vPos(v).z - mean);
    return sum / m.vn();
  };
  std::string message;
  editMesh all = noisy;
  ASSERT_TRUE(run(smoothMesh, all, message));
  EXPECT_MESH_VALID(all);
  EXPECT_EQ(message, "Smoothed the surface");
  EXPECT_LT(roughness(all), roughness(noisy) / 2);
  EXPECT_EQ(std::memcmp(&all.vPos(0), &noisy.vPos(0), sizeof(p3)), 0) << "a border corner stays";

  editMesh some = noisy;
  for (unsigned f = 100; f < 120; ++f) some.selectFace(f);
  ASSERT_TRUE(run(smoothMesh, some, message));
  EXPECT_MESH_VALID(some);
  unsigned moved = 0;
  for (unsigned v = 0; v < some.vn(); ++v) {
    const bool same = std::memcmp(&some.vPos(v), &noisy.vPos(v), sizeof(p3)) == 0;
    if (!some.isVertSelected(v)) {
      EXPECT_TRUE(same) << v;
    }
    moved += !same;
  }
  EXPECT_GT(moved, 0u);
}

TEST(editorEdits, fillHolesClosesEveryLoopAndSaysHowMany) {
  editMesh m = sphere();
  for (unsigned f : {40u, 120u}) m.deleteFace(f);
  testMeshes::finishMesh(m);
  std::string message;
  ASSERT_TRUE(run(fillHoles, m, message));
  EXPECT_MESH_VALID(m);
  EXPECT_EQ(testMeshes::borderEdges(m), 0u);
  EXPECT_EQ(message, "Holes filled: 2 of 2");
  EXPECT_FALSE(run(fillHoles, m, message));
  EXPECT_EQ(message, "Fill holes: the mesh has no hole");
}

TEST(editorEdits, remeshAndDecimateStayOnTheSurface) {
  std::string message;
  editMesh r = sphere(24, 32);
  ASSERT_TRUE(run(remeshMesh, r, message));
  EXPECT_MESH_VALID(r);
  EXPECT_EQ(testMeshes::borderEdges(r), 0u);
  EXPECT_LT(offSphere(r), 0.02);

  editMesh d = sphere(24, 32);
  editMesh triangles = d;
  ASSERT_TRUE(run(triangulateMesh, triangles, message));
  ASSERT_TRUE(run(decimateMesh, d, message));
  EXPECT_MESH_VALID(d);
  EXPECT_NEAR(double(testMeshes::liveFaces(d)), testMeshes::liveFaces(triangles) / 2.0, 4.0);
  EXPECT_LT(offSphere(d), 0.05);
}

TEST(editorEdits, distanceColoursShowWhereTheSurfaceMoved) {
  const editMesh reference = sphere();
  editMesh m = reference;
  const unsigned pushed = 50;
  m.vPos(pushed) = m.vPos(pushed) * 1.2f;
  std::string message;
  ASSERT_TRUE(run(colourByDistance, m, message, reference));
  EXPECT_TRUE(m.hasVC());
  EXPECT_EQ(m.colorDisplayState, JEV::MESH::MESH_COLOR_VERTEX);
  EXPECT_NE(message.find("Distance to the opened mesh"), std::string::npos);
  // The pushed vertex takes the far band's colour; one far from it the near one.
  EXPECT_NE(m.vCol(pushed), m.vCol(0));
  editMesh lone = reference;
  EXPECT_FALSE(run(colourByDistance, lone, message, editMesh()));
}

TEST(editorDocument, undoAndRedoGiveBackTheStoresExactly) {
  editMeshNode node;
  meshDocument doc(node);
  const editMesh opened = cube();
  doc.adopt(opened, "cube.ply");
  EXPECT_EQ(doc.getRevision(), 1u);

  doc.beginSelection();
  node.selectFace(1);
  doc.endSelection("Click selection");
  doc.beginSelection();
  doc.endSelection("Nothing");  // no change: no step
  EXPECT_EQ(doc.undoCount(), 1u);

  editMesh edited = doc.mesh();
  std::string message;
  ASSERT_TRUE(extrudeSelection(edited, opened, nullptr, message));
  doc.commit(edited, "Extrude");
  EXPECT_EQ(testMeshes::liveFaces(doc.mesh()), 10u);

  std::string label;
  ASSERT_TRUE(doc.undo(label));
  EXPECT_EQ(label, "Extrude");
  EXPECT_EQ(testMeshes::liveFaces(doc.mesh()), 6u);
  EXPECT_EQ(doc.mesh().getSelFn(), 1u);
  ASSERT_TRUE(doc.undo(label));
  EXPECT_EQ(label, "Click selection");
  EXPECT_EQ(doc.mesh().faceFlags(), editMesh(opened).faceFlags());
  EXPECT_EQ(doc.mesh().getSelFn(), 0u);
  EXPECT_EQ(doc.mesh().getSelVn(), 0u);
  EXPECT_MESH_VALID(doc.mesh());
  EXPECT_FALSE(doc.undo(label));

  ASSERT_TRUE(doc.redo(label));
  EXPECT_EQ(label, "Click selection");
  ASSERT_TRUE(doc.redo(label));
  EXPECT_EQ(label, "Extrude");
  EXPECT_EQ(testMeshes::liveFaces(doc.mesh()), 10u);
  EXPECT_MESH_VALID(doc.mesh());
  EXPECT_FALSE(doc.redo(label));

  doc.adopt(opened, "again.ply");  // a new file starts a new history
  EXPECT_EQ(doc.undoCount(), 0u);
  EXPECT_EQ(doc.redoCount(), 0u);
}

TEST(editorDocument, readAndSaveRefuseWhatTheyCannotDo) {
  tempDir dir;
  editMesh out;
  std::string error;
  EXPECT_FALSE(meshDocument::read(dir.file("none.ply"), out, error));
  EXPECT_NE(error.find("no such file"), std::string::npos);
  {
    // A binary header promising ten facets, followed by one.
    std::string bytes(80, ' ');
    const std::uint32_t count = 10;
    bytes.append(reinterpret_cast<const char*>(&count), 4);
    bytes.append(50, '\0');
    std::ofstream(dir.file("cut.stl"), std::ios::binary) << bytes;
  }
  EXPECT_FALSE(meshDocument::read(dir.file("cut.stl"), out, error));
  // Too short to be binary, it reads as text that holds no facet: refused either way.
  EXPECT_NE(error.find("cut.stl: holds no faces"), std::string::npos) << error;

  editMeshNode node;
  meshDocument doc(node);
  doc.adopt(cube(), "cube.ply");
  EXPECT_FALSE(doc.save(dir.file("cube.obj"), error));
  EXPECT_NE(error.find("save as .ply or .stl"), std::string::npos);
  EXPECT_FALSE(doc.save(dir.file("no/such/folder/cube.ply"), error));
  ASSERT_TRUE(doc.save(dir.file("cube.stl"), error));
  ASSERT_TRUE(meshDocument::read(dir.file("cube.stl"), out, error)) << error;
  EXPECT_EQ(out.vn(), 8u);
  EXPECT_EQ(testMeshes::liveFaces(out), 12u);  // STL keeps triangles
  EXPECT_EQ(doc.getPath(), dir.file("cube.stl"));
}

TEST(editorJobs, aJobReportsItsEndOnceAndACancelledOneNever) {
  jobRunner jobs;
  bool ok = false;
  std::string said;
  int ends = 0;
  ASSERT_TRUE(jobs.start(
      "work",
      [](JEV::SYSTEM::callBack* cb, std::string& message) {
        cb->setValue(50.f);
        message = "done";
        return true;
      },
      [&](bool good, const std::string& message) {
        ok = good;
        said = message;
        ++ends;
      }));
  EXPECT_TRUE(jobs.isBusy());
  EXPECT_FALSE(jobs.start(
      "second", [](JEV::SYSTEM::callBack*, std::string&) { return true; },
      [](bool, const std::string&) {}));
  while (!jobs.poll()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_FALSE(jobs.isBusy());
  EXPECT_TRUE(ok);
  EXPECT_EQ(said, "done");
  EXPECT_EQ(ends, 1);
  EXPECT_FALSE(jobs.poll());

  std::atomic<bool> release{false};
  ASSERT_TRUE(jobs.start(
      "slow",
      [&](JEV::SYSTEM::callBack* cb, std::string&) {
        cb->setValue(30.f);
        while (!release) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return true;
      },
      [&](bool, const std::string&) { ++ends; }));
  while (jobs.progress() < 30.f) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_FLOAT_EQ(jobs.progress(), 30.f);
  EXPECT_TRUE(jobs.cancel());
  EXPECT_FALSE(jobs.isBusy());
  EXPECT_FALSE(jobs.cancel());
  release = true;
  for (int i = 0; i < 100; ++i) {
    jobs.poll();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  EXPECT_EQ(ends, 1) << "an abandoned job's end is never delivered";
}
