// The whole output of the subdivision group is pinned bit for bit: every vertex, normal,
// colour and face of the target, in order, for Loop, midpoint and butterfly steps on a
// closed mesh, an open one with holes and deleted elements, a mesh of polygons with a
// non-manifold edge, and the shared bunny. Both kinds of target are pinned (the editable
// mesh and the scan mesh), as the copy in and the write out may take a different road
// for each; a faster step must leave these checksums as they are.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "algo/holefilling/pinnedOutput.h"
#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/algo/remeshing/subdivision.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "support/dataFiles.h"
#include "support/meshes.h"

using namespace JEV::MESH;
using namespace JEV::MESH::ALGO::REMESHING;
using JEV::MESH::POSTPROCESSING::triMesh;
using pinnedOutput::meshHash;
using testMeshes::p3;

namespace {

// The checksums of one source through every step of the group, in this order.
struct stepHashes {
  uint64_t loop, midpoint, midpointSelectedKeepBorder, butterfly, butterflySelected;
};

// Runs every step from source into target and checks the target each time.
stepHashes runSteps(const meshInterface& source, meshInterface& target, float length) {
  stepHashes h{};
  EXPECT_TRUE(computeSubdivLoop(&source, &target));
  h.loop = meshHash(target);
  EXPECT_TRUE(computeMidpoint(&source, &target, length, 3, false, false));
  h.midpoint = meshHash(target);
  EXPECT_TRUE(computeMidpoint(&source, &target, length, 3, true, true));
  h.midpointSelectedKeepBorder = meshHash(target);
  EXPECT_TRUE(computeButterfly(&source, &target, length, 2, false));
  h.butterfly = meshHash(target);
  EXPECT_TRUE(computeButterfly(&source, &target, length, 2, true));
  h.butterflySelected = meshHash(target);
  return h;
}

void expectHashes(const stepHashes& got, const stepHashes& pinned) {
  EXPECT_EQ(got.loop, pinned.loop);
  EXPECT_EQ(got.midpoint, pinned.midpoint);
  EXPECT_EQ(got.midpointSelectedKeepBorder, pinned.midpointSelectedKeepBorder);
  EXPECT_EQ(got.butterfly, pinned.butterfly);
  EXPECT_EQ(got.butterflySelected, pinned.butterflySelected);
}

// An uneven height on every vertex, so that no weight of a scheme multiplies a zero.
void bend(editMesh& m) {
  for (unsigned v = 0; v < m.vn(); ++v) {
    p3& p = m.vPos(v);
    p.z += 0.3f * std::sin(1.7f * p.x + 0.4f) * std::cos(1.3f * p.y - 0.2f);
  }
}

// Every third face selected.
void selectSome(editMesh& m) {
  for (unsigned f = 0; f < m.fn(); f += 3)
    if (!m.isFaceDeleted(f)) m.selectFace(f);
}

// The editable mesh into an editable target, then the same mesh as a scan mesh (with
// vertex colours) into a scan target.
void checkBothTargets(editMesh& source, float length, const stepHashes& editPinned,
                      const stepHashes& scanPinned) {
  editMeshInterface in(source);
  editMesh out;
  editMeshInterface to(out);
  expectHashes(runSteps(in, to, length), editPinned);

  triMesh scan;
  in.copyTo(scan);
  for (unsigned f = 0; f < scan.fn(); f += 3) scan.selectFace(f);
  scan.setVertexColor(JEV::CORE::color(10, 20, 30, 40));
  triMesh scanOut;
  expectHashes(runSteps(scan, scanOut, length), scanPinned);
}

}  // namespace

TEST(SubdivisionOutput, AClosedSphereSubdividesBitForBit) {
  editMesh sphere;
  testMeshes::makeSphere(sphere, 10, 16);
  sphere.triangulate();
  testMeshes::finishMesh(sphere);
  selectSome(sphere);
  checkBothTargets(sphere, 0.2f,
                   {12254668404024468178u, 11020959169544951184u, 2108490128504165317u,
                    2943274526990989312u, 16286479302219361872u},
                   {11522555549080264254u, 11992179339638612982u, 10139029542206245715u,
                    409440145460805137u, 5980453171017785340u});
}

TEST(SubdivisionOutput, AnOpenGridWithHolesAndDeletedElementsSubdividesBitForBit) {
  editMesh grid;
  testMeshes::makeGrid(grid, 7, 6, false, {{2, 2}, {3, 2}, {5, 4}});
  bend(grid);
  testMeshes::finishMesh(grid);
  // A deleted face and a deleted vertex in the middle: the copy renumbers around them.
  grid.deleteFace(grid.fn() / 2);
  grid.deleteVertex(grid.fV(grid.fn() / 3, 0));
  testMeshes::finishMesh(grid);
  selectSome(grid);
  checkBothTargets(grid, 0.6f,
                   {12302621153333826330u, 2041255166988892105u, 17689953576538917598u,
                    13775099193102600029u, 13852691468837879451u},
                   {6036094789818839068u, 17402835192954330647u, 872508621775590670u,
                    1992598753481101819u, 1468235830851860202u});
}

TEST(SubdivisionOutput, PolygonsAndANonManifoldEdgeSubdivideBitForBit) {
  // Quads of a cube, a bent quad grid, four triangles on one edge, and faces of one and
  // two corners, which every step leaves out.
  editMesh m;
  testMeshes::makeCube(m);
  const unsigned gridStart = m.vn();
  testMeshes::makeGrid(m, 3, 2, true);
  for (unsigned v = gridStart; v < m.vn(); ++v) m.vPos(v) += p3(2.f, 0.f, 0.f);
  bend(m);
  testMeshes::makeFan(m, 4);
  testMeshes::makeDegenerateFaces(m);
  testMeshes::finishMesh(m);
  selectSome(m);
  checkBothTargets(m, 0.3f,
                   {1269017881363626076u, 14139947593029510720u, 2954570280582497436u,
                    3025720950202758902u, 7291157186793881408u},
                   {435754990753015599u, 3572738395618527903u, 464462609064169382u,
                    10454609134895341565u, 2300975027488798354u});
}

TEST(SubdivisionOutput, TheBunnySubdividesBitForBit) {
  JEV3D_REQUIRE_DATA("ply/stanford_bun_zipper.ply");
  triMesh bunny;
  ASSERT_TRUE(bunny.readPlyFromFile(dataFile("ply/stanford_bun_zipper.ply")));
  for (unsigned f = 0; f < bunny.fn(); f += 3) bunny.selectFace(f);
  triMesh out;
  expectHashes(runSteps(bunny, out, 0.002f),
               {5586524096635699164u, 16585841157652370717u, 12042917939720701202u,
                4188468876325137823u, 16468174230713204647u});
  // Through the editable mesh as well.
  editMesh mesh;
  editMeshInterface meshIn(mesh);
  bunny.copyTo(meshIn);
  testMeshes::finishMesh(mesh);
  selectSome(mesh);
  editMesh result;
  editMeshInterface to(result);
  expectHashes(runSteps(meshIn, to, 0.002f),
               {16566892497237693513u, 6463368036952535510u, 7711251655910992816u,
                9165622224961091021u, 516075373485839818u});
}

TEST(SubdivisionOutput, FacesOnADeletedVertexAreLeftOutAsIfDeleted) {
  // Before its edges are built, deleting a vertex leaves its faces live: every step
  // must then drop them, exactly as if they had been deleted too.
  auto build = [](editMesh& m) {
    testMeshes::makeGrid(m, 5, 4, false);
    bend(m);
    m.checkMeshState();
  };
  const unsigned inner = 2 * 6 + 2;  // vertex (2, 2), on six triangles
  editMesh dangling, clean;
  build(dangling);
  dangling.deleteVertex(inner);
  build(clean);
  unsigned onInner = 0;
  for (unsigned f = 0; f < clean.fn(); ++f)
    for (unsigned i = 0; i < 3; ++i)
      if (clean.fV(f, i) == inner) clean.deleteFace(f), ++onInner;
  EXPECT_EQ(onInner, 6u);
  clean.deleteVertex(inner);
  ASSERT_TRUE(dangling.isVertDeleted(inner));
  ASSERT_FALSE(dangling.isFaceDeleted(0));
  for (editMesh* m : {&dangling, &clean}) testMeshes::finishMesh(*m);
  editMeshInterface danglingIn(dangling), cleanIn(clean);
  editMesh outA, outB;
  editMeshInterface toA(outA), toB(outB);
  const stepHashes a = runSteps(danglingIn, toA, 0.4f), b = runSteps(cleanIn, toB, 0.4f);
  expectHashes(a, b);
  // The last step (no face selected, so nothing split) gives a sound mesh: the grid's
  // rim of 18 edges and the six round the vertex.
  testMeshes::finishMesh(outA);
  EXPECT_MESH_VALID(outA);
  EXPECT_EQ(testMeshes::borderEdges(outA), 18u + 6u);
  EXPECT_EQ(outA.vn(), 6u * 5u - 1u);
}
