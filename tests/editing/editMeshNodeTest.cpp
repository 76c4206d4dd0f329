#include "jev3d/editing/editMeshNode.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "jev3d/editing/undoRedoRecordEditMeshFaceFlags.h"
#include "jev3d/editing/undoRedoStack.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/transformStack.h"
#include "jev3d/renderer/vertexDeclaration.h"
#include "support/dataFiles.h"
#include "support/meshes.h"
#include "support/recordingRenderer.h"
#include "support/tempDir.h"

using JEV::MESH::editMesh;
using JEV::MESH::EDITING::editMeshNode;
using JEV::RENDERING::renderingContext;
using JEV::RENDERING::vertexDeclaration;
using p3 = JEV::MATH::point3<float>;
using strings = std::vector<std::string>;

namespace {

constexpr uint32_t WIRE = editMeshNode::WIREFRAME_DRAWING;
constexpr uint32_t POINTS = editMeshNode::POINT_DRAWING;

struct nodeFixture : ::testing::Test {
  recordingRenderer device;
  renderingContext rc{&device, nullptr};
  editMeshNode node;
  void SetUp() override {
    testMeshes::makeSphere(node.getEditMesh(), 12, 16);
    testMeshes::finishMesh(node.getEditMesh());
  }
  // The draw calls of the last frame: "renderGeometry <mode> <first> <count>".
  strings frame() {
    device.clearLog();
    node.render(&rc);
    return device.only("renderGeometry");
  }
  // Vertices the last frame drew as triangles.
  unsigned int drawnSoup() const {
    unsigned int n = 0;
    for (const std::string& c : device.only("renderGeometry 3"))
      n += std::stoul(c.substr(c.rfind(' ') + 1));
    return n;
  }
  unsigned int triangles() const {
    unsigned int n = 0;
    const editMesh& m = node.getEditMesh();
    for (unsigned f = 0; f < m.fn(); ++f) n += m.isFaceDeleted(f) ? 0 : m.getTriangleNumFace(f);
    return n;
  }
};

// A child that notes, in the device log, that the walk reached it.
class probeNode : public JEV::SG::node {
 public:
  explicit probeNode(recordingRenderer& d) : device(d) {}
  void render(renderingContext* rc) override {
    device.calls.push_back("child");
    JEV::SG::node::render(rc);
  }
  void update(renderingContext* rc, JEV::SYSTEM::updateContext* uc) override {
    seenDepth = rc->getTransformStack()->getDepth();
    seenX = rc->getTransformStack()->getCurrentMatrix()[12];
    JEV::SG::node::update(rc, uc);
  }
  recordingRenderer& device;
  int seenDepth = -1;
  float seenX = 0.f;
};

}  // namespace

TEST_F(nodeFixture, displayModeBitsFollowTheModeAndTheStoredChoices) {
  editMesh& m = node.getEditMesh();
  EXPECT_EQ(node.getDisplayMode(), JEV::MESH::EDITING::EDIT_MESH_DISPLAY_OBJECT);
  node.enableEdgeModeDisplay();
  EXPECT_EQ(node.getRenderFlags(), WIRE);
  EXPECT_FALSE(m.edgeRenderStateValid);
  // Face mode with both choices off leaves both bits clear.
  node.enableFaceModeDisplay();
  EXPECT_EQ(node.getRenderFlags(), 0u);
  node.enableVertexModeDisplay();
  EXPECT_EQ(node.getRenderFlags(), POINTS);
  EXPECT_TRUE(m.pointDrawing);
  EXPECT_FALSE(m.wireframeDrawing);

  // A choice made in a mode is kept for that mode.
  node.enableFaceModeDisplay();
  node.enableWireframeDisplay(true);
  EXPECT_TRUE(node.faceModeWireframe);
  node.enablePointDisplay(true);
  EXPECT_TRUE(node.faceModePoints);
  node.enableEdgeModeDisplay();
  EXPECT_EQ(node.getRenderFlags(), WIRE);
  node.enablePointDisplay(true);
  EXPECT_TRUE(node.edgeModePoints);
  node.enableFaceModeDisplay();
  EXPECT_EQ(node.getRenderFlags(), WIRE | POINTS);
  node.vertexModeWireframe = true;
  node.enableVertexModeDisplay();
  EXPECT_EQ(node.getRenderFlags(), WIRE | POINTS);
  node.enableEdgeModeDisplay();
  EXPECT_EQ(node.getRenderFlags(), WIRE | POINTS);

  // Turning points on from off clears the point cache's validity.
  node.enablePointDisplay(false);
  m.vertexRenderStateValid = true;
  node.enablePointDisplay(true);
  EXPECT_FALSE(m.vertexRenderStateValid);
}

TEST_F(nodeFixture, faceModeBringsTheWireInLineAndGhostsItAtTheFrame) {
  editMesh& m = node.getEditMesh();
  node.enableFaceModeDisplay();
  // Something turned the wire on behind the node's back: the frame brings it back.
  m.wireframeDrawing = true;
  frame();
  EXPECT_FALSE(m.wireframeDrawing);
  EXPECT_EQ(node.getRenderFlags() & WIRE, 0u);
  EXPECT_TRUE(m.edgesAreColoredWithGhostColor());
  node.enableEdgeModeDisplay();
  frame();
  EXPECT_TRUE(m.edgesAreColoredWithDefaultColor());
  node.enableObjectModeDisplay();
  node.color = JEV::CORE::color::fromU32(0xFF112233u);
  frame();
  EXPECT_EQ(m.edgeColor, JEV::CORE::color::fromU32(0xFF112233u));
  EXPECT_EQ(m.currentEdgeColor, m.edgeColor);
}

TEST_F(nodeFixture, aFrameDrawsInTheFixedOrderAndCreatesTheMutex) {
  probeNode child(device);
  child.connect(&node, false);
  JEV::MATH::matrix4<float> placed;
  placed[12] = 5.f;
  node.setTransformMatrix(placed);
  node.enableEdgeModeDisplay();
  node.enablePointDisplay(true);
  EXPECT_FALSE(node.hasRenderMutex());
  device.clearLog();
  node.render(&rc);
  EXPECT_TRUE(node.hasRenderMutex());

  // Transform and states, the surface, the wire, the points, the states and transform
  // popped, then the child.
  strings order;
  for (const std::string& c : device.calls) {
    if (c.rfind("setTransformState", 0) == 0) order.push_back("transform");
    if (c.rfind("setCullState", 0) == 0) order.push_back("cull");
    if (c.rfind("renderGeometry", 0) == 0) order.push_back(c.substr(0, 16));
    if (c == "child") order.push_back("child");
  }
  const strings expected = {"transform",        "cull", "renderGeometry 3", "renderGeometry 1",
                            "renderGeometry 0", "cull", "transform",        "child"};
  order.erase(std::unique(order.begin(), order.end()), order.end());
  EXPECT_EQ(order, expected);
  // The node's matrix reached the device.
  EXPECT_EQ(device.only("setTransformState").front().find("setTransformState 1,0,0,0"), 0u);

  // The whole surface is drawn once: triangle soups of three vertices a triangle.
  EXPECT_EQ(drawnSoup(), 3 * triangles());
}

TEST_F(nodeFixture, updatePutsTheTransformUnderTheChildren) {
  probeNode child(device);
  child.connect(&node, false);
  JEV::MATH::matrix4<float> placed;
  placed[12] = 2.5f;
  node.setTransformMatrix(placed);
  node.update(&rc, nullptr);
  EXPECT_EQ(child.seenDepth, 1);
  EXPECT_FLOAT_EQ(child.seenX, 2.5f);
  EXPECT_EQ(rc.getTransformStack()->getDepth(), 0);
}

TEST_F(nodeFixture, theMeshSplitsIntoChunksOfBoundedVertexCount) {
  editMesh& m = node.getEditMesh();
  m.chunkVertexLimit = 120;
  const strings draws = frame();
  ASSERT_GT(draws.size(), 3u);
  unsigned int drawn = 0;
  for (const std::string& c : draws) {
    const unsigned int n = std::stoul(c.substr(c.rfind(' ') + 1));
    EXPECT_LE(n, 120u);
    drawn += n;
  }
  EXPECT_EQ(drawn, 3 * triangles());
  EXPECT_EQ(m.renderChunks.size(), draws.size());
  EXPECT_EQ(node.getRenderCacheCounts().faceChunks, draws.size());
  // A second frame with nothing changed builds nothing.
  device.clearLog();
  node.render(&rc);
  EXPECT_EQ(device.count("cacheVertexBufferElement"), 0);
}

TEST_F(nodeFixture, selectingAFaceRewritesOnlyTheColoursOfItsChunk) {
  editMesh& m = node.getEditMesh();
  m.chunkVertexLimit = 120;
  frame();
  const auto before = node.getRenderCacheCounts();
  node.selectFace(40);
  device.clearLog();
  node.render(&rc);
  const auto after = node.getRenderCacheCounts();
  EXPECT_EQ(after.faceChunks, before.faceChunks);
  EXPECT_EQ(after.colorChunks, before.colorChunks + 1);
  const strings cached = device.only("cacheVertexBufferElement");
  ASSERT_EQ(cached.size(), 1u);
  EXPECT_EQ(cached[0].find("cacheVertexBufferElement " + std::to_string(vertexDeclaration::COLOR)),
            0u);

  // A selection made on the mesh directly recolours every chunk, still without positions.
  m.selectFace(3);
  m.invalidateSelectedFaceFlags();
  node.render(&rc);
  EXPECT_EQ(node.getRenderCacheCounts().faceChunks, before.faceChunks);
  EXPECT_EQ(node.getRenderCacheCounts().colorChunks, after.colorChunks + m.renderChunks.size());
  // Moving vertices rebuilds positions.
  node.updateFaces({0});
  node.render(&rc);
  EXPECT_EQ(node.getRenderCacheCounts().faceChunks, before.faceChunks * 2);
}

TEST_F(nodeFixture, discardAskedFromAnotherThreadRunsOnTheDrawingThread) {
  frame();
  std::thread([&] { node.needDiscardRenderChunks(); }).join();
  device.clearLog();
  node.render(&rc);
  EXPECT_GT(device.count("discardVertexBuffer"), 0);
  EXPECT_FALSE(node.getEditMesh().renderChunksDiscardPending);
  // And the chunks were made again for the frame.
  EXPECT_GT(device.count("renderGeometry 3"), 0);
}

TEST_F(nodeFixture, discardFromAnotherThreadWhileFramesDraw) {
  node.getEditMesh().chunkVertexLimit = 200;
  node.enableEdgeModeDisplay();
  std::atomic<bool> drawing{true};
  std::thread other([&] {
    while (drawing.load()) {
      node.discard();
      node.invalidateRenderData();
      std::this_thread::yield();
    }
  });
  for (int i = 0; i < 200; ++i) {
    device.clearLog();
    node.render(&rc);
  }
  drawing = false;
  other.join();
  // The last frame drew the whole surface, whatever the other thread did before it.
  device.clearLog();
  node.render(&rc);
  EXPECT_EQ(drawnSoup(), 3 * triangles());
}

TEST_F(nodeFixture, faceFlagRecordsRestoreTheSelection) {
  editMesh& m = node.getEditMesh();
  node.selectFace(1);
  node.selectFace(2);
  JEV::SYSTEM::undoRedoStack stack(1u << 20);
  auto snapshot = [&] {
    return new JEV::SYSTEM::undoRedoRecordEditMeshFaceFlags(
        {JEV::SYSTEM::editMeshFaceFlagsRecord::capture(&node)});
  };
  stack.push(snapshot());
  const std::vector<unsigned char> flags = m.faceFlags();
  const unsigned selVn = m.getSelVn();
  const p3 sum = m.getSelVertSum();
  m.deselectAllFaces();
  node.selectFace(30);
  stack.push(snapshot());
  EXPECT_EQ(stack.top()->getNumBytes(), 24u + m.fn() + 76u);
  frame();
  ASSERT_TRUE(stack.undo());
  EXPECT_EQ(m.faceFlags(), flags);
  EXPECT_EQ(m.getSelFn(), 2u);
  EXPECT_EQ(m.getSelVn(), selVn);
  EXPECT_EQ(m.getSelVertSum(), sum);
  EXPECT_FALSE(m.selectionRenderStateValid);
  ASSERT_TRUE(stack.redo());
  EXPECT_TRUE(m.isFaceSelected(30));
  EXPECT_EQ(m.getSelFn(), 1u);
  // A node going away takes its records with it.
  EXPECT_EQ(stack.eraseIfCondition(&node), 2u);
}

TEST_F(nodeFixture, copyAndCloneAreDeepAndKeepTheDisplayChoices) {
  node.enableEdgeModeDisplay();
  node.enablePointDisplay(true);
  node.setName("part");
  frame();
  std::unique_ptr<editMeshNode> copy(node.clone());
  EXPECT_EQ(copy->getName(), L"part");
  EXPECT_EQ(copy->getRenderFlags(), node.getRenderFlags());
  EXPECT_TRUE(copy->edgeModePoints);
  EXPECT_TRUE(copy->getEditMesh().renderChunks.empty());
  EXPECT_EQ(copy->getEditMesh().fn(), node.getEditMesh().fn());
  copy->getEditMesh().vPos(0) = p3(9.f, 9.f, 9.f);
  EXPECT_NE(node.getEditMesh().vPos(0).x, 9.f);
  EXPECT_EQ(copy->getEditMesh().checkInvariants(), "");
  // The copy is also a mesh interface over its own mesh.
  JEV::MESH::meshInterface& asMesh = *copy;
  EXPECT_EQ(asMesh.vPos(0).x, 9.f);
}

TEST_F(nodeFixture, picksTheFaceUnderARayThroughThePlacedNode) {
  JEV::MATH::matrix4<float> placed;
  placed[12] = 10.f;
  node.setTransformMatrix(placed);
  JEV::MATH::rayHit hit;
  p3 point;
  ASSERT_TRUE(node.getRayIntersect(p3(10.f, 0.f, 5.f), p3(0.f, 0.f, -1.f), hit, point));
  EXPECT_NEAR(point.x, 10.f, 1e-4);
  EXPECT_NEAR(point.z, 1.f, 0.05);
  EXPECT_LT(hit.face, node.getEditMesh().fn());
  EXPECT_FALSE(node.getRayIntersect(p3(0.f, 0.f, 5.f), p3(0.f, 0.f, -1.f), hit, point));
}

TEST(editMeshNodePicking, windowRectanglesAndPixelsSelectWhatTheyCover) {
  recordingRenderer device;  // identity camera, viewport 320 x 240
  renderingContext rc{&device, nullptr};
  editMeshNode node;
  testMeshes::makeGrid(node.getEditMesh(), 4, 3, true);
  testMeshes::finishMesh(node.getEditMesh());
  JEV::MATH::matrix4<float> placed = JEV::MATH::matrix4<float>::getScale(0.4f, 0.4f, 0.4f);
  placed[12] = -0.8f;
  placed[13] = -0.5f;
  node.setTransformMatrix(placed);
  // Face centres lie at x -0.6, -0.2, 0.2, 0.6 and y -0.3, 0.1, 0.5: the upper right
  // quarter of the window holds four of them.
  EXPECT_EQ(node.selectFaceWithRect2D(&rc, 320, 240, 160, 120), 4u);
  for (unsigned f : {6u, 7u, 10u, 11u}) EXPECT_TRUE(node.getEditMesh().isFaceSelected(f)) << f;
  EXPECT_EQ(node.getSelFn(), 4u);
  EXPECT_EQ(node.selectFaceWithRect2D(&rc, 160, 120, 320, 240, false), 4u);
  EXPECT_EQ(node.getSelFn(), 0u);
  EXPECT_EQ(node.getEditMesh().checkInvariants(), "");
  // Vertices at x -0.8 .. 0.8 by 0.4 and y -0.5 .. 0.7 by 0.4: x 0.4, 0.8 and y 0.3, 0.7.
  EXPECT_EQ(node.selectVertWithRect2D(&rc, 161, 121, 320, 240), 4u);
  EXPECT_EQ(node.getEditMesh().getSelVn(), 4u);

  // The pixel over the centre of face 11 (x 0.6, y 0.5).
  JEV::MATH::rayHit hit;
  p3 point;
  ASSERT_TRUE(node.pickRay(&rc, 256, 180, hit, point));
  EXPECT_EQ(hit.face, 11u);
  EXPECT_NEAR(point.x, 0.6f, 1e-3);
  EXPECT_FALSE(node.pickRay(&rc, 5, 235, hit, point));
}

TEST(editMeshNodeFiles, em2KeepsTheMeshAndRefusesAWrongVersionOrATruncatedFile) {
  tempDir dir;
  editMeshNode node, back;
  testMeshes::makeGrid(node.getEditMesh(), 3, 2, true);
  testMeshes::finishMesh(node.getEditMesh());
  node.selectFace(2);
  const std::string path = dir.file("grid.em2");
  ASSERT_TRUE(node.save(path));
  ASSERT_TRUE(back.load(path));
  const editMesh &a = node.getEditMesh(), &b = back.getEditMesh();
  EXPECT_EQ(b.checkInvariants(), "");
  ASSERT_EQ(a.vn(), b.vn());
  ASSERT_EQ(a.fn(), b.fn());
  for (unsigned v = 0; v < a.vn(); ++v) EXPECT_EQ(a.vPos(v), b.vPos(v));
  for (unsigned f = 0; f < a.fn(); ++f)
    for (unsigned i = 0; i < a.fVNum(f); ++i) EXPECT_EQ(a.fV(f, i), b.fV(f, i));
  EXPECT_TRUE(b.isFaceSelected(2));
  EXPECT_EQ(b.getSelFn(), 1u);

  std::ifstream in(path, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  auto writeBytes = [&](const std::string& name, const std::string& content) {
    std::ofstream(dir.file(name), std::ios::binary) << content;
    return dir.file(name);
  };
  std::string wrongVersion = bytes;
  wrongVersion[4] = 2;
  editMeshNode untouched;
  testMeshes::makeCube(untouched.getEditMesh());
  EXPECT_FALSE(untouched.load(writeBytes("v2.em2", wrongVersion)));
  for (size_t cut : {size_t(3), size_t(20), bytes.size() / 2, bytes.size() - 1})
    EXPECT_FALSE(untouched.load(writeBytes("cut.em2", bytes.substr(0, cut)))) << cut;
  std::string badCorner = bytes;
  // The first corner id lies after the header, the vertices and the corner counts.
  const size_t firstCorner = 20 + a.vn() * 33 + a.fn() * 4;
  badCorner[firstCorner + 3] = char(0x7F);
  EXPECT_FALSE(untouched.load(writeBytes("corner.em2", badCorner)));
  EXPECT_EQ(untouched.getEditMesh().vn(), 8u);
  EXPECT_FALSE(untouched.load(dir.file("missing.em2")));
  // Any byte of the header, the vertices or the counts overwritten: a load either fails
  // or gives a consistent mesh, never anything else.
  for (size_t at = 0; at < firstCorner + 8; ++at) {
    std::string flipped = bytes;
    flipped[at] = char(~flipped[at]);
    editMeshNode probe;
    if (probe.load(writeBytes("flip.em2", flipped))) {
      EXPECT_EQ(probe.getEditMesh().checkInvariants(), "") << at;
    }
  }
}

TEST(editMeshNodeFiles, plyAndStlRoundTripsKeepAClosedSolid) {
  tempDir dir;
  editMeshNode node;
  ASSERT_TRUE(node.makeMeshFromAxisAlignedBox3f(p3(0.f, 0.f, 0.f), p3(2.f, 1.f, 3.f)));
  EXPECT_NEAR(testMeshes::signedVolume(node.getEditMesh()), 6.0, 1e-5);
  for (const char* name : {"box.ply", "box.stl"}) {
    ASSERT_TRUE(node.save(dir.file(name))) << name;
    editMeshNode back;
    ASSERT_TRUE(back.load(dir.file(name))) << name;
    const editMesh& m = back.getEditMesh();
    EXPECT_EQ(m.checkInvariants(), "") << name;
    EXPECT_EQ(m.vn(), 8u) << name;
    EXPECT_EQ(testMeshes::borderEdges(m), 0u) << name;
    EXPECT_NEAR(testMeshes::signedVolume(m), 6.0, 1e-5) << name;
  }
}

TEST(editMeshNodeFactories, buildWhatTheyNameAndRefuseTooLittle) {
  editMeshNode node;
  EXPECT_FALSE(node.makeMeshFromPolyline({p3(0, 0, 0), p3(1, 0, 0)}));
  ASSERT_TRUE(node.makeMeshFromPolyline({p3(0, 0, 0), p3(1, 0, 0), p3(1, 1, 0), p3(0, 1, 0)}));
  EXPECT_EQ(node.getEditMesh().fn(), 1u);
  EXPECT_EQ(testMeshes::borderEdges(node.getEditMesh()), 4u);
  EXPECT_EQ(node.getEditMesh().checkInvariants(), "");
  ASSERT_TRUE(node.makeMeshFromPoints({p3(0, 0, 0), p3(1, 2, 3)}));
  EXPECT_EQ(node.getEditMesh().vn(), 2u);
  EXPECT_EQ(node.getEditMesh().fn(), 0u);
  EXPECT_FALSE(node.makeMeshFromAxisAlignedBox3f(p3(0, 0, 0), p3(0, 1, 1)));
  ASSERT_TRUE(node.makeMeshFromAxisAlignedBox3f(p3(-1, -1, -1), p3(1, 1, 1)));
  node.reverseFaceOrder();
  EXPECT_NEAR(testMeshes::signedVolume(node.getEditMesh()), -8.0, 1e-5);
  EXPECT_EQ(node.getEditMesh().checkInvariants(), "");

  editMeshNode grid, part;
  testMeshes::makeGrid(grid.getEditMesh(), 3, 3, true);
  testMeshes::finishMesh(grid.getEditMesh());
  EXPECT_FALSE(part.makeMeshFromSelectedVertex(grid));
  grid.selectFace(0);
  grid.selectFace(1);
  ASSERT_TRUE(part.makeMeshFromSelectedVertex(grid));
  EXPECT_EQ(part.getEditMesh().fn(), 2u);
  EXPECT_EQ(part.getEditMesh().vn(), 6u);
  EXPECT_EQ(part.getEditMesh().checkInvariants(), "");
}

TEST(editMeshNodeCleaning, degenerateFacesAndSmallPiecesGo) {
  editMeshNode node;
  editMesh& m = node.getEditMesh();
  testMeshes::makeGrid(m, 4, 4, true);
  const unsigned a = m.addVertex(10.f, 0.f, 0.f), b = m.addVertex(11.f, 0.f, 0.f),
                 c = m.addVertex(10.f, 1.f, 0.f);
  m.addTriFace(a, b, c);  // a piece of one face
  m.addTriFace(0, 0, 1);  // a repeated corner
  testMeshes::finishMesh(m);
  EXPECT_EQ(node.removeDegenerateFace(), 1u);
  EXPECT_EQ(node.getEditMesh().checkInvariants(), "");
  EXPECT_EQ(node.removeIsolatePieces(2), 1u);
  EXPECT_EQ(testMeshes::liveFaces(node.getEditMesh()), 16u);
  EXPECT_EQ(node.getEditMesh().checkInvariants(), "");

  editMeshNode sphere;
  testMeshes::makeSphere(sphere.getEditMesh(), 16, 24);
  testMeshes::finishMesh(sphere.getEditMesh());
  const double volume = testMeshes::signedVolume(sphere.getEditMesh());
  sphere.getEditMesh().triangulate();
  sphere.decimate(200);
  EXPECT_LE(testMeshes::liveFaces(sphere.getEditMesh()), 200u);
  EXPECT_EQ(testMeshes::borderEdges(sphere.getEditMesh()), 0u);
  EXPECT_NEAR(testMeshes::signedVolume(sphere.getEditMesh()), volume, 0.15 * volume);
  EXPECT_EQ(sphere.getEditMesh().checkInvariants(), "");
}

TEST(editMeshNodeScans, aRealScanLoadsDrawsWholeAndKeepsItsFacesThroughEm2) {
  JEV3D_REQUIRE_DATA("ply/stanford_bun_zipper.ply");
  tempDir dir;
  editMeshNode node;
  ASSERT_TRUE(node.load(dataFile("ply/stanford_bun_zipper.ply")));
  const editMesh& m = node.getEditMesh();
  EXPECT_EQ(m.fn(), 69451u);
  EXPECT_EQ(m.checkInvariants(), "");
  recordingRenderer device;
  renderingContext rc{&device, nullptr};
  node.enableEdgeModeDisplay();
  node.render(&rc);
  unsigned int soup = 0, lines = 0;
  for (const std::string& c : device.only("renderGeometry 3"))
    soup += std::stoul(c.substr(c.rfind(' ') + 1));
  for (const std::string& c : device.only("renderGeometry 1"))
    lines += std::stoul(c.substr(c.rfind(' ') + 1));
  EXPECT_EQ(soup, 3 * 69451u);
  EXPECT_EQ(lines, 2 * testMeshes::liveEdges(m));
  EXPECT_GE(m.renderChunks.size(), 3 * 69451u / m.chunkVertexLimit);

  ASSERT_TRUE(node.save(dir.file("bunny.em2")));
  editMeshNode back;
  ASSERT_TRUE(back.load(dir.file("bunny.em2")));
  EXPECT_EQ(back.getEditMesh().fn(), 69451u);
  // Every live vertex comes back, the scan's unused ones too.
  EXPECT_EQ(back.getEditMesh().vn(), m.vn());
  EXPECT_EQ(back.getEditMesh().checkInvariants(), "");
}

TEST(editMeshNodeScans, stlFilesWeldTheirCornersAndBadOnesAreRefused) {
  JEV3D_REQUIRE_DATA("stl/assimp_Spider_binary.stl");
  editMeshNode node;
  ASSERT_TRUE(node.load(dataFile("stl/assimp_Spider_binary.stl")));
  EXPECT_EQ(node.getEditMesh().vn(), 722u);
  EXPECT_EQ(node.getEditMesh().checkInvariants(), "");
  const unsigned faces = node.getEditMesh().fn();
  EXPECT_FALSE(node.load(dataFile("stl/openscad_unparseable.stl")));
  EXPECT_EQ(node.getEditMesh().fn(), faces);
}
