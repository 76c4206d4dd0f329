// The algorithms' forms on editable nodes: each must change the node's mesh exactly as the
// core call changes a copy of it, and tell the node what to draw anew.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "algo/smoothing/smoothingMeshes.h"
#include "jev3d/algo/measurement/distance.h"
#include "jev3d/algo/measurement/intersectionComputation.h"
#include "jev3d/algo/measurement/signedDistanceComputation.h"
#include "jev3d/algo/measurement/solidIntersection.h"
#include "jev3d/algo/measurement/volumeDistance.h"
#include "jev3d/algo/smoothing/localSmoothingFunctor.h"
#include "jev3d/editing/editMeshNode.h"
#include "jev3d/editing/nodeHoleFilling.h"
#include "jev3d/editing/nodeRemeshing.h"
#include "jev3d/editing/nodeSmoothing.h"
#include "jev3d/editing/sculptUndoRedoRecord.h"
#include "jev3d/editing/undoRedoStack.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "jev3d/renderer/renderingContext.h"
#include "meshStores.h"
#include "support/meshes.h"
#include "support/recordingRenderer.h"

using JEV::MESH::editMesh;
using JEV::MESH::editMeshInterface;
using JEV::MESH::meshInterface;
using JEV::MESH::EDITING::editMeshNode;
using JEV::RENDERING::renderingContext;
using p3 = JEV::MATH::point3<float>;
using m4 = JEV::MATH::matrix4<float>;
namespace ALGO = JEV::MESH::ALGO;
namespace SMOOTHING = JEV::MESH::ALGO::SMOOTHING;
namespace HOLEFILLING = JEV::MESH::ALGO::HOLEFILLING;
namespace REMESHING = JEV::MESH::ALGO::REMESHING;
namespace MEASUREMENT = JEV::MESH::ALGO::MEASUREMENT;

namespace {

// A node drawn through the recording renderer, so that its render cache exists.
struct drawnNode {
  recordingRenderer device;
  renderingContext rc{&device, nullptr};
  editMeshNode node;
  editMesh& mesh() { return node.getEditMesh(); }
  void frame() { node.render(&rc); }
  unsigned faceChunksBuilt() const { return node.getRenderCacheCounts().faceChunks; }
};

// The closing sequence of a mesh written through the neutral interface.
void rebuild(editMesh& m) {
  m.checkMeshState();
  m.computeEdges(true);
  m.computeVE();
  m.computeNormalizedNormals();
}

bool sameGeometry(const editMesh& a, const editMesh& b) {
  return a.fn() == b.fn() && meshStores::sameBytes(a.vertStore(), b.vertStore());
}

struct nodeForms : ::testing::Test, drawnNode {
  // Draws a frame, copies the mesh, runs the forward on the node and the core call on the
  // copy: the stores must agree, the mesh must have changed and be consistent, and the
  // next frame must build the face chunks again.
  template <class Forward, class Core>
  void expectForward(Forward forward, Core core) {
    frame();
    ASSERT_TRUE(mesh().smoothFaceRenderStateValid);
    editMesh copy = mesh();
    const editMesh before = mesh();
    const unsigned built = faceChunksBuilt();
    forward(node);
    core(copy);
    meshStores::expectSameMesh(mesh(), copy);
    EXPECT_FALSE(sameGeometry(before, mesh()));
    EXPECT_FALSE(mesh().smoothFaceRenderStateValid);
    EXPECT_MESH_VALID(mesh());
    frame();
    EXPECT_GT(faceChunksBuilt(), built);
  }
};

}  // namespace

TEST_F(nodeForms, smoothingForwardsMatchTheCoreAndRebuildTheCache) {
  smoothingMeshes::makeNoisySphere(mesh(), 12, 16, 0.05f);
  expectForward([](editMeshNode& n) { SMOOTHING::computeLaplacianSmooth(n, 3, false, nullptr); },
                [](editMesh& m) { SMOOTHING::computeLaplacianSmooth(m, 3, false, nullptr); });
  expectForward([](editMeshNode& n) { ALGO::computeLaplacianSmooth(n, 2, true, nullptr); },
                [](editMesh& m) { ALGO::computeLaplacianSmooth(m, 2, true, nullptr); });
  expectForward([](editMeshNode& n) { SMOOTHING::computeCurvatureTangentialSmooth(n, 3, false); },
                [](editMesh& m) { SMOOTHING::computeCurvatureTangentialSmooth(m, 3, false); });
  expectForward(
      [](editMeshNode& n) {
        SMOOTHING::computeTwoStep(&n, &n, 60.f, 2, 3, 3, false, false, nullptr);
      },
      [](editMesh& m) { SMOOTHING::computeTwoStep(&m, &m, 60.f, 2, 3, 3, false, false, nullptr); });
  expectForward([](editMeshNode& n) { n.taubinSmoothing(4); },
                [](editMesh& m) { editMeshInterface(m).taubinSmoothing(4); });
  // The node keeps unit normals, where a plain interface Laplacian would clear them.
  for (unsigned v = 0; v < mesh().vn(); ++v) EXPECT_NEAR(mesh().vNor(v).norm(), 1.f, 1e-4f);
}

TEST_F(nodeForms, holeFillingForwardsMatchTheCoreAndRebuildTheCache) {
  auto holedGrid = [](editMesh& m) {
    m.clear(false);
    testMeshes::makeGrid(m, 6, 6, false, {{1, 1}, {4, 4}});
    testMeshes::finishMesh(m);
  };
  holedGrid(mesh());
  expectForward(
      [](editMeshNode& n) {
        ALGO::computeHoleFillingParams params;
        EXPECT_EQ(HOLEFILLING::computeTriangulateHole(n, params), ALGO::HOLE_FILLING_DONE);
      },
      [](editMesh& m) {
        ALGO::computeHoleFillingParams params;
        HOLEFILLING::computeTriangulateHole(m, params);
      });

  holedGrid(mesh());
  expectForward(
      [](editMeshNode& n) {
        HOLEFILLING::loopList loops;
        ASSERT_TRUE(HOLEFILLING::trivialHoleFilling(n, loops));
        ASSERT_EQ(loops.size(), 3u);
        EXPECT_EQ(HOLEFILLING::discardPolyFacesGreaterThan(loops, 4), 1u);
        EXPECT_EQ(HOLEFILLING::checkStartingLoopOrientation(n, loops.back()),
                  ALGO::HOLE_FILLING_DONE);
        EXPECT_EQ(HOLEFILLING::addPolyFaces(n, loops), 2u);
      },
      [](editMesh& m) {
        HOLEFILLING::loopList loops;
        HOLEFILLING::trivialHoleFilling(m, loops);
        HOLEFILLING::discardPolyFacesGreaterThan(loops, 4);
        HOLEFILLING::checkStartingLoopOrientation(m, loops.back());
        HOLEFILLING::addPolyFaces(m, loops);
      });

  // The general path writes through the interface; the node is rebuilt as its contract asks.
  holedGrid(mesh());
  expectForward(
      [](editMeshNode& n) {
        const meshInterface& source = n;
        EXPECT_TRUE(ALGO::computeHoleFilling(source, 4, n, true));
      },
      [](editMesh& m) {
        editMeshInterface view(m);
        ALGO::computeHoleFilling(view, 4, view, true);
        rebuild(m);
      });
  EXPECT_EQ(testMeshes::borderEdges(mesh()), 24u);  // only the outer border is left

  holedGrid(mesh());
  expectForward(
      [](editMeshNode& n) {
        const meshInterface& source = n;
        EXPECT_TRUE(ALGO::computeTessellateHole(source, n));
      },
      [](editMesh& m) {
        editMeshInterface view(m);
        ALGO::computeTessellateHole(view, view);
        rebuild(m);
      });
  EXPECT_EQ(testMeshes::borderEdges(mesh()), 0u);
}

TEST_F(nodeForms, theNodesOwnHoleFillingClosesAnOpenCone) {
  testMeshes::makeOpenCone(mesh(), 16);
  testMeshes::finishMesh(mesh());
  frame();
  ASSERT_EQ(testMeshes::borderEdges(mesh()), 16u);
  EXPECT_TRUE(node.holeFilling(0, true));
  EXPECT_EQ(testMeshes::borderEdges(mesh()), 0u);
  EXPECT_MESH_VALID(mesh());
  // A flat base under the apex: a third of the 16-gon's area.
  const double base = 8.0 * std::sin(2.0 * 3.14159265358979 / 16.0);
  EXPECT_NEAR(testMeshes::signedVolume(mesh()), base / 3.0, 1e-4);
  EXPECT_FALSE(mesh().smoothFaceRenderStateValid);
}

TEST_F(nodeForms, edgeFlipsAndStressTestsMatchTheCore) {
  testMeshes::makeGrid(mesh(), 8, 8, false);
  testMeshes::finishMesh(mesh());
  const editMeshNode& constNode = node;
  const unsigned planned = REMESHING::edgeFlip::computeEdgeFlipping(constNode, {}, 4);
  EXPECT_GT(planned, 0u);
  unsigned flips = 0;
  expectForward(
      [&](editMeshNode& n) { flips = REMESHING::edgeFlip::computeEdgeFlipping(n, {}, 4); },
      [](editMesh& m) { REMESHING::edgeFlip::computeEdgeFlipping(m, {}, 4); });
  EXPECT_EQ(flips, planned);

  frame();
  REMESHING::computeEVEFStressTest(node, 2);
  EXPECT_FALSE(mesh().edgeRenderStateValid);
  EXPECT_MESH_VALID(mesh());
  frame();
  REMESHING::computeEVEFOptiStressTest(node, 2);
  EXPECT_FALSE(mesh().edgeRenderStateValid);
  EXPECT_MESH_VALID(mesh());
}

TEST(nodeRemeshing, resultNodesMatchTheCoreAndDrawAnew) {
  drawnNode source, result;
  testMeshes::makeSphere(source.mesh(), 10, 16);
  source.mesh().checkMeshState();
  source.mesh().triangulate();
  testMeshes::finishMesh(source.mesh());
  testMeshes::makeCube(result.mesh());
  testMeshes::finishMesh(result.mesh());

  auto expectResult = [&](auto forward, auto core) {
    result.frame();
    ASSERT_TRUE(result.mesh().smoothFaceRenderStateValid);
    editMesh expected;
    const unsigned built = result.faceChunksBuilt();
    forward();
    core(expected);
    meshStores::expectSameMesh(result.mesh(), expected);
    EXPECT_FALSE(result.mesh().smoothFaceRenderStateValid);
    EXPECT_MESH_VALID(result.mesh());
    result.frame();
    EXPECT_GT(result.faceChunksBuilt(), built);
  };

  std::vector<unsigned> faces;
  for (unsigned f = 0; f < source.mesh().fn(); ++f) faces.push_back(f);
  REMESHING::attributeList none, out, outCore;
  expectResult(
      [&] {
        EXPECT_GT(REMESHING::computeIsotropicMeshRefinement(source.node, none, faces, result.node,
                                                            out, 0.25f),
                  0u);
      },
      [&](editMesh& m) {
        REMESHING::computeIsotropicMeshRefinement(source.mesh(), none, faces, m, outCore, 0.25f);
      });
  REMESHING::isotropicMeshParams params;
  expectResult(
      [&] {
        EXPECT_GT(REMESHING::computeIsotropicMeshRefinement(source.node, {}, none, faces,
                                                            result.node, out, params),
                  0u);
      },
      [&](editMesh& m) {
        REMESHING::computeIsotropicMeshRefinement(source.mesh(), {}, none, faces, m, outCore,
                                                  params);
      });

  const p3 down(0.f, 0.f, -1.f);
  expectResult(
      [&] { EXPECT_TRUE(REMESHING::projectGridOnMesh(source.node, down, 0.2f, result.node)); },
      [&](editMesh& m) { REMESHING::projectGridOnMesh(source.mesh(), down, 0.2f, m); });

  // A sphere pushed into another: the vertices inside it go to its surface.
  drawnNode other;
  testMeshes::makeSphere(other.mesh(), 10, 16);
  for (unsigned v = 0; v < other.mesh().vn(); ++v) other.mesh().vPos(v).x += 1.5f;
  testMeshes::finishMesh(other.mesh());
  unsigned moved = 0;
  expectResult(
      [&] { moved = REMESHING::intersectionsRemoval(source.node, other.node, result.node); },
      [&](editMesh& m) { REMESHING::intersectionsRemoval(source.mesh(), other.mesh(), m); });
  EXPECT_GT(moved, 0u);

  REMESHING::volumeDescriptor volume;
  std::vector<p3> points;
  std::vector<int> triangles;
  MEASUREMENT::VOXEL::intersectionComputation::editMeshToPointTri(source.node, points, triangles);
  ASSERT_TRUE(
      MEASUREMENT::VOXEL::intersectionComputation::convertToVolume(points, triangles, 16, volume));
  std::vector<unsigned char> byNode, byMesh;
  volume.isPointInside(other.node, byNode);
  volume.isPointInside(other.mesh(), byMesh);
  EXPECT_EQ(byNode, byMesh);
  EXPECT_NE(std::count(byNode.begin(), byNode.end(), 1), 0);
}

TEST(nodeMeasurement, distanceColoursRewriteColoursOnlyAndShowThem) {
  drawnNode a, b;
  testMeshes::makeSphere(a.mesh(), 12, 16);
  testMeshes::finishMesh(a.mesh());
  testMeshes::makeSphere(b.mesh(), 12, 16);
  for (unsigned v = 0; v < b.mesh().vn(); ++v) b.mesh().vPos(v).x += 0.5f;
  testMeshes::finishMesh(b.mesh());
  a.frame();
  const unsigned faceChunks = a.faceChunksBuilt();
  const unsigned colorChunks = a.node.getRenderCacheCounts().colorChunks;
  ASSERT_GT(faceChunks, 0u);

  MEASUREMENT::distance d;
  d.addModel(&a.node);
  d.addModel(&b.node);
  ASSERT_TRUE(d.updateDistance(0, 1));
  d.updateColor();
  const editMesh& m = a.mesh();
  EXPECT_TRUE(m.smoothFaceRenderStateValid);
  EXPECT_FALSE(m.selectionRenderStateValid);
  EXPECT_EQ(m.colorDisplayState, JEV::MESH::MESH_COLOR_VERTEX);
  float lo, hi;
  d.getMinMaxValue(lo, hi);
  ASSERT_LT(lo, hi);
  for (unsigned v = 0; v < m.vn(); ++v)
    EXPECT_EQ(m.vCol(v), MEASUREMENT::distance::getColor(lo, hi, d.getModelDistPerVert(0)[v]));

  a.frame();
  EXPECT_EQ(a.faceChunksBuilt(), faceChunks);
  EXPECT_EQ(a.node.getRenderCacheCounts().colorChunks, colorChunks + faceChunks);
}

TEST(nodeMeasurement, volumeDistanceColoursNodesWithoutRebuildingTheirGeometry) {
  drawnNode a, b;
  testMeshes::makeSphere(a.mesh(), 12, 16);
  testMeshes::finishMesh(a.mesh());
  testMeshes::makeSphere(b.mesh(), 12, 16);
  testMeshes::finishMesh(b.mesh());
  a.frame();
  const unsigned faceChunks = a.faceChunksBuilt();

  MEASUREMENT::volumeDistance vd;
  vd.setResolution(24);
  vd.addModel(0, 0, &a.node, m4::IDENTITY());
  vd.addModel(1, 0, &b.node, m4::getTranslate(0.5f, 0.f, 0.f));
  ASSERT_TRUE(vd.updateVolume());
  vd.wait();
  ASSERT_TRUE(vd.updateTest());
  vd.wait();
  ASSERT_TRUE(vd.updateColor());
  EXPECT_TRUE(a.mesh().smoothFaceRenderStateValid);
  EXPECT_FALSE(a.mesh().selectionRenderStateValid);
  EXPECT_EQ(a.mesh().colorDisplayState, JEV::MESH::MESH_COLOR_VERTEX);
  a.frame();
  EXPECT_EQ(a.faceChunksBuilt(), faceChunks);
}

TEST(nodeMeasurement, solidAndSignedDistanceFormsTakeNodes) {
  drawnNode a, b;
  testMeshes::makeSphere(a.mesh(), 12, 16);
  testMeshes::finishMesh(a.mesh());
  testMeshes::makeSphere(b.mesh(), 12, 16);
  testMeshes::finishMesh(b.mesh());

  MEASUREMENT::solidIntersection solids;
  EXPECT_EQ(solids.addModelToTest(a.node, m4::IDENTITY(), false), 0u);
  EXPECT_EQ(solids.addModelToTest(b.node, m4::getTranslate(1.f, 0.f, 0.f), false), 1u);
  ASSERT_TRUE(solids.test(nullptr, 24));
  EXPECT_TRUE(solids.getModel(0).intersects);
  EXPECT_TRUE(meshStores::sameBytes(smoothingMeshes::positions(solids.getModel(0).mesh),
                                    smoothingMeshes::positions(a.mesh())));

  // The node's own placement stands in for the mesh's matrix.
  MEASUREMENT::VOXEL::voxelModel model;
  ASSERT_TRUE(MEASUREMENT::VOXEL::intersectionComputation::prepare(a.node, 32, model));
  const m4 placed = m4::getTranslate(0.3f, 0.f, 0.f);
  b.node.setTransformMatrix(placed);
  std::vector<float> byNode, byMatrix;
  ASSERT_TRUE(
      MEASUREMENT::signedDistanceComputation::compute(model, m4::IDENTITY(), b.node, byNode));
  const meshInterface& plain = b.node;
  ASSERT_TRUE(MEASUREMENT::signedDistanceComputation::compute(model, m4::IDENTITY(), plain, placed,
                                                              byMatrix));
  EXPECT_EQ(byNode, byMatrix);
  std::vector<float> unplaced;
  MEASUREMENT::signedDistanceComputation::compute(model, m4::IDENTITY(), plain, m4::IDENTITY(),
                                                  unplaced);
  EXPECT_NE(byNode, unplaced);
}

TEST(sculptUndoRedoRecord, aStrokeUndoesAndRedoesExactly) {
  drawnNode n;
  smoothingMeshes::makeNoisySphere(n.mesh(), 12, 16, 0.05f);
  n.frame();
  const editMesh original = n.mesh();
  const std::vector<p3> before = smoothingMeshes::positions(n.mesh());
  std::vector<unsigned char> modified;
  SMOOTHING::localSmoothingFunctor(2).localSmoothing(n.node, {20, 40}, 0.6f, modified);
  // The brush on the node leaves its normals as a full recomputation would, and the cache
  // stale.
  EXPECT_FALSE(n.mesh().smoothFaceRenderStateValid);
  editMesh recomputed = n.mesh();
  recomputed.computeNormalizedNormals();
  for (unsigned v = 0; v < n.mesh().vn(); ++v)
    EXPECT_LT((n.mesh().vNor(v) - recomputed.vNor(v)).norm(), 1e-5f) << v;
  auto* record = new JEV::SYSTEM::sculptUndoRedoRecord(&n.node, before);
  const std::vector<p3> after = smoothingMeshes::positions(n.mesh());
  unsigned movedCount = 0;
  for (unsigned v = 0; v < n.mesh().vn(); ++v)
    movedCount += !smoothingMeshes::same(before[v], after[v]);
  ASSERT_GT(movedCount, 0u);
  EXPECT_EQ(record->getVertices().size(), movedCount);
  EXPECT_EQ(record->getNumBytes(), 24u + 28u * movedCount);
  for (unsigned v : record->getVertices()) EXPECT_EQ(modified[v], 1u);
  EXPECT_TRUE(record->matches(&n.node));

  JEV::SYSTEM::undoRedoStack stack(1u << 20);
  stack.push(record);
  n.frame();
  ASSERT_TRUE(stack.undoLast());
  EXPECT_TRUE(meshStores::sameBytes(smoothingMeshes::positions(n.mesh()), before));
  for (unsigned v = 0; v < n.mesh().vn(); ++v)
    EXPECT_LT((n.mesh().vNor(v) - original.vNor(v)).norm(), 1e-5f) << v;
  EXPECT_FALSE(n.mesh().smoothFaceRenderStateValid);
  n.frame();
  ASSERT_TRUE(stack.redo());
  EXPECT_TRUE(meshStores::sameBytes(smoothingMeshes::positions(n.mesh()), after));
  EXPECT_FALSE(n.mesh().smoothFaceRenderStateValid);
  EXPECT_MESH_VALID(n.mesh());
  EXPECT_EQ(stack.eraseIfCondition(&n.node), 1u);
}

TEST(sculptUndoRedoRecord, aForwardedSmoothingIsUndoneToTheSameStores) {
  drawnNode n;
  smoothingMeshes::makeNoisySphere(n.mesh(), 12, 16, 0.05f);
  n.mesh().computeNormalizedNormals();
  editMesh original = n.mesh();
  const std::vector<p3> before = smoothingMeshes::positions(n.mesh());
  SMOOTHING::computeLaplacianSmooth(n.node, 4, false, nullptr);
  JEV::SYSTEM::undoRedoStack stack(1u << 20);
  stack.push(new JEV::SYSTEM::sculptUndoRedoRecord(&n.node, before));
  ASSERT_TRUE(stack.undoLast());
  editMesh& m = n.mesh();
  // Every vertex moved, so the normals were recomputed over the whole mesh as before.
  meshStores::expectSameMesh(m, original);
  EXPECT_MESH_VALID(m);
}
