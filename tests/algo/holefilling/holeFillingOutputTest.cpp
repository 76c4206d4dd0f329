// The whole output of the triangulating fill is pinned bit for bit: every vertex,
// normal, colour and face of the target, in order, on generated holes and on the shared
// bunny. The copy into the work surface, its edge set, normals and feature size and the
// write back are all on this path, so a faster build of any of them must leave these
// checksums as they are. The feature-size sampler is seeded before each call, as its
// state is shared by the whole process.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "jev3d/algo/holefilling/computeHoleFilling.h"
#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/algo/postprocessing/triSurface.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "pinnedOutput.h"
#include "support/dataFiles.h"
#include "support/meshes.h"

using namespace JEV::MESH;
using namespace JEV::MESH::ALGO;
using pinnedOutput::byteHash;
using pinnedOutput::meshHash;
using pinnedOutput::sphereBand;
using POSTPROCESSING::triMesh;
using POSTPROCESSING::triSurface;
using testMeshes::p3;

namespace {

using loopList = std::vector<std::vector<unsigned>>;

uint64_t fillHash(const meshInterface& source, meshInterface& target, const loopList& loops = {}) {
  triSurface::setRandomState(20261125u);
  testing::internal::CaptureStdout();
  const bool ok = computeHoleFilling(source, 0, target, true, loops);
  testing::internal::GetCapturedStdout();
  EXPECT_TRUE(ok);
  return meshHash(target);
}

// The loops of a mesh and a checksum of them in order.
uint64_t loopHash(const meshInterface& m, loopList& loops) {
  std::vector<std::pair<unsigned, unsigned>> ends;
  testing::internal::CaptureStdout();
  EXPECT_TRUE(computeHoleFillingFindHole(m, {}, loops, ends));
  testing::internal::GetCapturedStdout();
  byteHash h;
  for (const auto& l : loops) {
    h.add(unsigned(l.size()));
    for (unsigned v : l) h.add(v);
  }
  return h.h;
}

}  // namespace

TEST(HoleFillingOutput, TheBandsLoopsFillBitForBit) {
  // 2,000 segments around and 24 rows over 10 degrees: long thin cells.
  triMesh band = sphereBand(2000, 24, 18.0);
  loopList loops;
  EXPECT_EQ(loopHash(band, loops), 6415617957738105077u);
  ASSERT_EQ(loops.size(), 2u);
  // The upper rim alone, as given loops; then every loop as traced, with normals and
  // colours on the source.
  triMesh target;
  EXPECT_EQ(fillHash(band, target, {loops[1]}), 693844315219768242u);
  EXPECT_EQ(target.fn(), band.fn() + 1998);
  band.computeVertexFaceNormalizedNormals(true);
  band.setVertexColor(JEV::CORE::color(10, 20, 30, 40));
  EXPECT_EQ(fillHash(band, target), 3623538124579258567u);
  EXPECT_EQ(target.fn(), band.fn() + 2 * 1998);
  // Colours of new vertices stay at the array's default; old ones are carried.
  EXPECT_EQ(target.vCol(0).r, 10);
}

TEST(HoleFillingOutput, ACappedSphereOnTheEditableMeshFillsBitForBit) {
  editMesh sphere, capped;
  testMeshes::makeSphere(sphere, 24, 48);
  sphere.triangulate();
  std::vector<unsigned> keep;
  for (unsigned f = 0; f < sphere.fn(); ++f) {
    p3 c;
    for (unsigned i = 0; i < 3; ++i) c += sphere.vPos(sphere.fV(f, i));
    if (c.z / 3.f <= 0.6f && std::fabs(c.x) > 0.05f) keep.push_back(f);
  }
  sphere.subset(&capped, keep);
  testMeshes::finishMesh(capped);
  // A deleted vertex and face in the middle: the copy renumbers around them.
  capped.deleteFace(capped.fn() / 2);
  capped.deleteVertex(capped.fV(capped.fn() / 3, 0));
  testMeshes::finishMesh(capped);
  editMeshInterface in(capped);
  editMesh out;
  editMeshInterface to(out);
  EXPECT_EQ(fillHash(in, to), 8795843467783438837u);
}

TEST(HoleFillingOutput, TheBunnysHolesFillBitForBit) {
  JEV3D_REQUIRE_DATA("ply/stanford_bun_zipper.ply");
  triMesh bunny;
  ASSERT_TRUE(bunny.readPlyFromFile(dataFile("ply/stanford_bun_zipper.ply")));
  loopList loops;
  EXPECT_EQ(loopHash(bunny, loops), 2631182808172359523u);
  triMesh target;
  EXPECT_EQ(fillHash(bunny, target, loops), 12925015195275317707u);
  EXPECT_EQ(fillHash(bunny, target), 12925015195275317707u);
  bunny.computeVertexFaceNormalizedNormals(true);
  EXPECT_EQ(fillHash(bunny, target), 3245456921918715715u);
  // Through the editable mesh as well.
  editMesh mesh;
  editMeshInterface meshIn(mesh);
  bunny.copyTo(meshIn);
  testMeshes::finishMesh(mesh);
  editMesh out;
  editMeshInterface to(out);
  EXPECT_EQ(fillHash(meshIn, to), 3245456921918715715u);
}
