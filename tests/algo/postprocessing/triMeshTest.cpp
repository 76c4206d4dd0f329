// triMesh building, filters, smoothing, selection, queries and transforms on generated
// meshes whose answers are known.

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "algo/postprocessing/triMeshSupport.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/editMeshInterface.h"

using namespace triMeshChecks;
using JEV::MATH::axisAlignedBox3;
using JEV::MATH::capsule3;
using JEV::MATH::matrix4;
using JEV::MATH::plane3;
using JEV::MATH::ray3;
using JEV::MATH::sphere3;

namespace {

// n x n cells of side s in the z = 0 plane from the origin, each split along a diagonal.
void makeGrid(triMesh& m, unsigned n, float s) {
  m.clear();
  for (unsigned j = 0; j <= n; ++j)
    for (unsigned i = 0; i <= n; ++i) m.addVertex(p3(float(i) * s, float(j) * s, 0.f));
  for (unsigned j = 0; j < n; ++j)
    for (unsigned i = 0; i < n; ++i) {
      const unsigned a = j * (n + 1) + i, b = a + 1, c = a + n + 2, d = a + n + 1;
      m.addFace(a, b, c);
      m.addFace(a, c, d);
    }
}

}  // namespace

TEST(triMeshPrimitives, ClosedAndTurnedOutward) {
  triMesh m;
  m.makeCube(2.f);
  EXPECT_EQ(m.fn(), 12u);
  EXPECT_NEAR(volume(m), 8.0, 1e-5);
  EXPECT_EQ(borderVertices(m), 0u);
  m.makeSphere(1.f, 24, 48);
  EXPECT_NEAR(volume(m), 4.0 / 3.0 * 3.14159265, 0.05);
  EXPECT_EQ(borderVertices(m), 0u);
  m.makeCylinder(1.f, 2.f, 64);
  EXPECT_NEAR(volume(m), 2 * 3.14159265, 0.02);
  EXPECT_EQ(borderVertices(m), 0u);
  m.makeCone(1.f, 3.f, 64);
  EXPECT_NEAR(volume(m), 3.14159265, 0.01);
  EXPECT_EQ(borderVertices(m), 0u);
  m.makeQuad(2.f);
  EXPECT_EQ(borderVertices(m), 4u);
  m.computeVertexFaceNormalizedNormals(true);
  EXPECT_EQ(m.fNor(0), p3(0, 0, 1));
}

TEST(triMeshBuilding, MergesPartsAndImportsPolygons) {
  triMesh a, b;
  a.makeCube();
  b.makeSphere(0.5f, 6, 8);
  triMesh both;
  both.buildFrom(std::vector<triMesh*>{&a, &b});
  EXPECT_EQ(both.vn(), a.vn() + b.vn());
  EXPECT_EQ(both.fn(), a.fn() + b.fn());
  EXPECT_NEAR(volume(both), volume(a) + volume(b), 1e-5);
  std::vector<unsigned> piece, sizes;
  EXPECT_EQ(both.getIsolatePieces(piece, sizes), 2u);
  // A mesh added to itself doubles, and so does one built from itself twice.
  triMesh twice = a;
  twice.add(twice);
  EXPECT_EQ(twice.fn(), 2 * a.fn());
  triMesh built = a;
  built.buildFrom(std::vector<triMesh*>{&built, &built});
  EXPECT_EQ(built.fn(), 2 * a.fn());
  EXPECT_NEAR(volume(twice), 2 * volume(a), 1e-5);
  // An edit mesh with a deleted face and quads comes in as triangles.
  JEV::MESH::editMesh e;
  e.makeCube();
  e.checkMeshState();
  e.deleteFace(2);
  JEV::MESH::editMeshInterface view(e);
  triMesh fromEdit;
  fromEdit.importFrom(view);
  EXPECT_EQ(fromEdit.fn(), 10u);
  EXPECT_EQ(borderVertices(fromEdit), 4u);
  // Subsets renumber in order of first use.
  triMesh part;
  a.subset({3, 99, 0}, part);  // 99 is out of range and skipped
  EXPECT_EQ(part.fn(), 2u);
  EXPECT_EQ(part.fV0(0), 0u);
  a.selectFace(5);
  a.subsetFromSelectedFace(part);
  EXPECT_EQ(part.fn(), 1u);
  EXPECT_EQ(part.vn(), 3u);
}

TEST(triMeshFilters, WeldDegenerateAndDuplicateFaces) {
  triMesh m;
  makeGrid(m, 3, 1.f);
  // Split every face into its own three vertices: a soup of the same grid.
  triMesh soup;
  for (unsigned f = 0; f < m.fn(); ++f) {
    const unsigned a = soup.addVertex(m.vPos(f, 0)), b = soup.addVertex(m.vPos(f, 1)),
                   c = soup.addVertex(m.vPos(f, 2));
    soup.addFace(a, b, c);
  }
  EXPECT_EQ(soup.removeDuplicateVertices(), soup.vn() - 16u);
  EXPECT_EQ(soup.vn(), 16u);
  for (unsigned f = 0; f < m.fn(); ++f)
    for (unsigned i = 0; i < 3; ++i) EXPECT_EQ(soup.vPos(f, i), m.vPos(f, i));
  // -0 and 0 are different positions to an exact weld.
  triMesh signs;
  signs.addVertex(p3(0.f, 0, 0)), signs.addVertex(p3(-0.f, 0, 0));
  EXPECT_EQ(signs.removeDuplicateVertices(), 0u);
  // Repeated corners, a corner out of range, the same face three ways round.
  m.addFace(0, 0, 1), m.addFace(2, 3, 3), m.addFace(1, 2, 1000);
  EXPECT_EQ(m.removeDegenerateFace(), 3u);
  m.addFace(m.fV1(0), m.fV2(0), m.fV0(0));
  m.addFace(m.fV0(0), m.fV2(0), m.fV1(0));
  EXPECT_EQ(m.removeDuplicateFaces(), 2u);
  EXPECT_EQ(m.fn(), 18u);
  // Unreferenced vertices go, and the faces follow their new ids.
  m.addVertex(p3(5, 5, 5));
  const p3 last = m.vPos(m.fV2(17));
  EXPECT_EQ(m.removeUnReferenceVertex(), 1u);
  EXPECT_EQ(m.vPos(m.fV2(17)), last);
}

TEST(triMeshFilters, RemoveFaceCompactsWithFlagsAndNormals) {
  triMesh m;
  makeGrid(m, 2, 1.f);
  m.computeVertexFaceNormalizedNormals(true);
  m.selectFace(5);
  const unsigned last[3] = {m.fV0(7), m.fV1(7), m.fV2(7)};
  EXPECT_EQ(m.removeFace({1, 0, 1}), 2u);  // a short mark list keeps the rest
  ASSERT_EQ(m.fn(), 6u);
  EXPECT_TRUE(m.isFaceSelected(3));
  EXPECT_EQ(m.getSelectedFaceCount(), 1u);
  EXPECT_TRUE(m.hasFN());
  EXPECT_EQ(m.fV0(5), last[0]);
  EXPECT_EQ(m.fV1(5), last[1]);
  EXPECT_EQ(m.fV2(5), last[2]);
  EXPECT_FALSE(m.hasFF());
  // Built adjacency is carried through the remap table, rings included.
  for (unsigned k = 0; k < 3; ++k) {
    m.addVertex(p3(0.5f, 0.5f, 1.f + float(k)));
    m.addFace(m.fV0(0), m.fV1(0), m.vn() - 1);  // three more faces on face 0's first edge
  }
  m.computeFaceFaceTopology();
  std::vector<unsigned> remap;
  EXPECT_EQ(m.removeFace({0, 1, 0, 1, 0, 0, 0, 1}, remap), 3u);
  EXPECT_EQ(remap[0], 0u);
  EXPECT_EQ(remap[1], triMesh::NONE);
  EXPECT_EQ(remap[2], 1u);
  ASSERT_TRUE(m.hasFF());
  std::vector<unsigned> carried;
  for (unsigned f = 0; f < m.fn(); ++f)
    for (unsigned i = 0; i < 3; ++i) carried.push_back(m.f2f(f, i));
  m.computeFaceFaceTopology();
  for (unsigned f = 0; f < m.fn(); ++f)
    for (unsigned i = 0; i < 3; ++i) EXPECT_EQ(carried[3 * f + i], m.f2f(f, i)) << f << " " << i;
}

TEST(triMeshFilters, ConfidenceKeepsWhatFacesTheScanner) {
  triMesh m;
  m.makeSphere(1.f, 20, 40);
  const unsigned all = m.fn();
  EXPECT_EQ(m.removeFacesByConfidence(p3(0, 0, 1), 180.f), 0u);
  EXPECT_EQ(m.fn(), all);
  const unsigned removed = m.removeFacesByConfidence(p3(0, 0, 2), 90.f);
  // The back half goes: the band of faces on the equator is split by its tilt.
  EXPECT_EQ(removed, all / 2);
  for (unsigned f = 0; f < m.fn(); ++f) EXPECT_GE(m.fNor(f).z, 0.f);
  EXPECT_GT(borderVertices(m), 0u);
}

TEST(triMeshFilters, AreaRotaryTableCropAndRangeMap) {
  triMesh m;
  makeGrid(m, 4, 1.f);  // 32 triangles of area 0.5
  m.addVertex(p3(0, 0, 1)), m.addVertex(p3(3, 0, 1)), m.addVertex(p3(0, 3, 1));
  m.addFace(25, 26, 27);  // one of area 4.5
  EXPECT_EQ(m.removeFaceOutOfRangeArea(0.1f, 1.f), 1u);
  EXPECT_EQ(m.removeFaceOutOfRangeArea(0.6f, 1.f), 32u);
  makeGrid(m, 4, 1.f);
  // A table at (2, 2, -1) turning about z, radius 1.2: centroids farther off go, and so
  // does everything when the table is moved above the grid.
  const unsigned removed =
      m.removeFacesOutsideRotaryTable(p3(2, 2, -1), p3(0, 0, 1), 1.2f, matrix4<float>());
  EXPECT_EQ(m.fn() + removed, 32u);
  for (unsigned f = 0; f < m.fn(); ++f) {
    const p3 c = (m.vPos(f, 0) + m.vPos(f, 1) + m.vPos(f, 2)) * (1.f / 3.f);
    EXPECT_LE((c - p3(2, 2, 0)).norm(), 1.2f);
  }
  EXPECT_GT(m.fn(), 0u);
  matrix4<float> down;
  down.setTranslate(0, 0, -5);
  const unsigned left = m.fn();
  EXPECT_EQ(m.removeFacesOutsideRotaryTable(p3(2, 2, -1), p3(0, 0, 1), 9.f, down), left);
  EXPECT_EQ(m.fn(), 0u);
  makeGrid(m, 4, 1.f);
  EXPECT_EQ(m.crop(0, 2.f), 16u);
  for (unsigned f = 0; f < m.fn(); ++f)
    for (unsigned i = 0; i < 3; ++i) EXPECT_LE(m.vPos(f, i).x, 2.f);
  EXPECT_EQ(m.crop(7, 0.f), 0u);
  // A range map of 5 x 5 vertices with one spike: the six faces around it go.
  makeGrid(m, 4, 1.f);
  m.vPos(12).z = 10.f;
  unsigned removedFaces = 0, kept = 0, total = 0;
  EXPECT_FALSE(m.filterRangeMap(removedFaces, kept, total, 4, 5, 2.f));
  ASSERT_TRUE(m.filterRangeMap(removedFaces, kept, total, 5, 5, 2.f));
  EXPECT_EQ(total, 32u);
  EXPECT_EQ(removedFaces, 6u);
  EXPECT_EQ(kept, 26u);
  EXPECT_EQ(m.vCol(4).r, 0);     // a corner off the diagonals: the smallest value
  EXPECT_EQ(m.vCol(0).r, 63);    // a diagonal's end: (2 - 1) / 4 · 255
  EXPECT_EQ(m.vCol(12).r, 255);  // the spike saturates
}

TEST(triMeshFilters, NonManifoldEdgesAndVertices) {
  triMesh m;
  m.addVertex(p3(0, 0, 0)), m.addVertex(p3(1, 0, 0));
  for (unsigned k = 0; k < 5; ++k) {
    const float t = float(k) * 1.2566371f;
    m.addVertex(p3(0.5f, std::cos(t), std::sin(t)));
    m.addFace(0, 1, 2 + k);
  }
  m.computeFaceFaceTopology();
  EXPECT_EQ(m.f2fNum(0), 1u);
  // The ring passes through all five faces.
  unsigned f = 0, steps = 0;
  do {
    f = m.f2f(f, 0);
    ++steps;
  } while (f != 0 && steps < 10);
  EXPECT_EQ(steps, 5u);
  EXPECT_EQ(m.removeNotManifoldFlagFaces(), 3u);
  EXPECT_EQ(m.fn(), 2u);
  // A bow tie: two fans at vertex 0; the first of the largest stays.
  triMesh bow;
  bow.addVertex(p3(0, 0, 0));
  bow.addVertex(p3(1, 0, 0)), bow.addVertex(p3(1, 1, 0)), bow.addVertex(p3(0, 1, 0));
  bow.addVertex(p3(-1, 0, 0)), bow.addVertex(p3(-1, -1, 0));
  bow.addFace(0, 1, 2), bow.addFace(0, 2, 3), bow.addFace(0, 4, 5);
  EXPECT_EQ(bow.removeNotManifoldVertices(), 1u);
  EXPECT_EQ(bow.fn(), 2u);
  EXPECT_EQ(bow.fV2(1), 3u);
}

TEST(triMeshFilters, IsolatedPiecesBySize) {
  triMesh big, small, speck;
  big.makeSphere(1.f, 10, 12);
  small.makeCube();
  speck.makeQuad();
  triMesh all;
  all.buildFrom(std::vector<triMesh>{small, big, speck});
  const unsigned bigFaces = big.fn();
  EXPECT_EQ(all.selectIsolatePieces(13), 14u);
  EXPECT_EQ(all.removeIsolatePieces(3), 2u);
  EXPECT_EQ(all.fn(), bigFaces + 12u);
  EXPECT_EQ(all.removeMinorIsolatePieces(), 12u);
  EXPECT_EQ(all.fn(), bigFaces);
  EXPECT_NEAR(volume(all), volume(big), 1e-5);
  EXPECT_EQ(all.removeMinorIsolatePieces(), 0u);
}

TEST(triMeshFilters, DecimationKeepsAClosedSurfaceNearTheShape) {
  triMesh m;
  m.makeSphere(1.f, 30, 60);
  const double v0 = volume(m);
  const unsigned before = m.fn();
  const unsigned removed = m.decimate(800);
  EXPECT_EQ(before - removed, m.fn());
  EXPECT_LE(m.fn(), 800u);
  EXPECT_GT(m.fn(), 400u);
  EXPECT_EQ(borderVertices(m), 0u);
  EXPECT_NEAR(volume(m), v0, 0.05 * v0);
  EXPECT_EQ(m.removeDegenerateFace(), 0u);
  EXPECT_EQ(m.removeNotManifoldFlagFaces(), 0u);
}

TEST(triMeshSmoothing, HcShrinksLessThanLaplacianAndBothCalmNoise) {
  triMesh noisy;
  noisy.makeSphere(1.f, 20, 40);
  std::mt19937 rng(5);
  std::uniform_real_distribution<float> jitter(-0.03f, 0.03f);
  for (p3& p : noisy.getVertices()) p += p3(jitter(rng), jitter(rng), jitter(rng));
  auto roughness = [](const triMesh& m) {
    double r = 0;
    for (const p3& p : m.getVertices()) r += std::abs(p.norm() - 1.0);
    return r / m.vn();
  };
  triMesh plain = noisy, hc = noisy;
  plain.laplacianSmoothing(10);
  hc.hCLaplacianSmoothing(10);
  const double v = volume(noisy);
  EXPECT_LT(volume(plain), v);
  EXPECT_GT(volume(hc), volume(plain));
  EXPECT_LT(std::abs(volume(hc) - v), std::abs(volume(plain) - v));
  // HC keeps its distance to the sphere below the noise's.
  EXPECT_LT(roughness(hc), roughness(noisy));
  // Border vertices stay unless asked.
  triMesh grid;
  makeGrid(grid, 4, 1.f);
  grid.vPos(0).z = 1.f;
  grid.vPos(12).z = 1.f;
  grid.laplacianSmoothing(3);
  EXPECT_EQ(grid.vPos(0).z, 1.f);
  EXPECT_LT(grid.vPos(12).z, 1.f);
  grid.laplacianSmoothing(3, true);
  EXPECT_LT(grid.vPos(0).z, 1.f);
}

TEST(triMeshSelection, ShapesRectangleInvertAndErase) {
  triMesh m;
  makeGrid(m, 10, 1.f);  // 200 triangles over [0, 10]^2
  m.selectFacesWithAxisAlignedBox(axisAlignedBox3<float>(p3(-1, -1, -1), p3(0.5f, 0.5f, 1)));
  EXPECT_EQ(m.getSelectedFaceCount(), 2u);
  m.deselectAllFaces();
  m.selectFacesWithSphere(sphere3<float>(p3(5, 5, 0), 0.1f));  // a shared corner: six faces
  EXPECT_EQ(m.getSelectedFaceCount(), 6u);
  m.deselectAllFaces();
  m.selectFacesWithCapsule(capsule3<float>(p3(0.5f, 0.2f, 0), p3(9.5f, 0.2f, 0), 0.1f));
  // The bottom row's lower triangles, and its upper ones but the first, which lies more
  // than 0.1 from the axis's start.
  EXPECT_EQ(m.getSelectedFaceCount(), 19u);
  m.deselectAllFaces();
  matrix4<float> toNdc;  // [0, 10] -> [-1, 1]
  toNdc(0, 0) = toNdc(1, 1) = 0.2f;
  toNdc(3, 0) = toNdc(3, 1) = -1.f;
  m.selectFacesWithRect(toNdc, -1.f, -1.f, 0.f, 0.f);  // the lower left quarter
  EXPECT_EQ(m.getSelectedFaceCount(), 50u);
  m.invertSelectedFaces();
  EXPECT_EQ(m.getSelectedFaceCount(), 150u);
  EXPECT_EQ(m.eraseSelectedFaces(), 150u);
  EXPECT_EQ(m.fn(), 50u);
  EXPECT_EQ(m.getSelectedFaceCount(), 0u);
  m.selectAllFaces();
  EXPECT_EQ(m.getSelectedFaceCount(), 50u);
}

TEST(triMeshQueries, RayPlaneBackFaceAndTheFaceIndex) {
  triMesh m;
  m.makeSphere(1.f, 16, 32);
  unsigned face = 0;
  p3 hit;
  const ray3<float> ray(p3(0.1f, 0.05f, 5), p3(0, 0, -1));
  ASSERT_TRUE(m.getRayIntersect(ray, face, hit));
  EXPECT_NEAR(hit.z, 1.f, 0.02f);
  EXPECT_FALSE(m.getRayIntersect(ray3<float>(p3(3, 0, 5), p3(0, 0, -1)), face, hit));
  m.computeFABBTree();
  ASSERT_TRUE(m.hasFaceSpatial());
  unsigned treeFace = 0;
  p3 treeHit;
  ASSERT_TRUE(m.getRayIntersect(ray, treeFace, treeHit));
  EXPECT_EQ(treeFace, face);
  EXPECT_NEAR((treeHit - hit).norm(), 0.f, 1e-5f);
  m.computeVABBTree();
  ASSERT_TRUE(m.hasVertexSpatial());
  unsigned nearest = 0;
  float d2 = 0;
  ASSERT_TRUE(m.getVertexSpatial()->nearest(p3(0, 0, 3), 100.f, nearest, d2));
  EXPECT_EQ(nearest, 0u);  // the north pole
  // Any change of the faces drops the indexes.
  m.reverseFaceOrder();
  EXPECT_FALSE(m.hasFaceSpatial());
  EXPECT_FALSE(m.hasVertexSpatial());
  EXPECT_LT(volume(m), 0.0);
  m.reverseFaceOrder();
  std::vector<p3> segments;
  const unsigned n =
      m.getPlaneIntersect(plane3<float>::fromPointNormal(p3(0, 0, 0.05f), p3(0, 0, 1)), segments);
  EXPECT_EQ(n, 64u);  // the band next to the equator: two triangles a segment
  for (const p3& p : segments) EXPECT_NEAR(p.z, 0.05f, 1e-5f);
  m.computeVertexFaceNormalizedNormals(true);
  EXPECT_TRUE(m.isABackFace(0, p3(0, 0, 1)));  // north cap seen from below
  EXPECT_FALSE(m.isABackFace(0, p3(0, 0, -1)));
}

TEST(triMeshTransforms, MatrixBoxesColoursAndTheInertRenderHook) {
  triMesh m;
  m.makeCube(2.f);
  m.computeVertexFaceNormalizedNormals(true);
  matrix4<float> s;
  s(0, 0) = 3.f;
  s(3, 2) = 1.f;
  m.transform(s);
  EXPECT_NEAR(volume(m), 24.0, 1e-4);
  EXPECT_EQ(m.getBoxVert().minimum, p3(-3, -1, 0));
  EXPECT_EQ(m.getBoxVert().maximum, p3(3, 1, 2));
  for (unsigned f = 0; f < m.fn(); ++f) EXPECT_NEAR(m.fNor(f).norm(), 1.f, 1e-6f);
  m.world.setTranslate(10, 0, 0);
  m.computedBoundingBoxRef();
  EXPECT_EQ(m.getBoxRef().minimum, p3(7, -1, 0));
  m.setVertexColor(JEV::CORE::color(1, 2, 3, 4));
  EXPECT_TRUE(m.hasVC());
  m.setVertexColorAlpha(200);
  EXPECT_EQ(m.vCol(5), JEV::CORE::color(1, 2, 3, 200));
  EXPECT_FALSE(m.cache());
  EXPECT_FALSE(m.isCached());
  m.discard(), m.draw(), m.render(nullptr), m.updateRenderMatrix();
}

TEST(triMeshBadData, OutOfRangeCornersAndLooseVerticesAreSurvivedEverywhere) {
  // A sphere with two faces pointing past the vertices and three vertices no face uses.
  auto broken = [] {
    triMesh m;
    m.makeSphere(1.f, 8, 10);
    m.addFace(0, 1, 4000000000u);
    m.addFace(7000, 2, 3);
    m.addVertex(p3(9, 9, 9)), m.addVertex(p3(8, 9, 9)), m.addVertex(p3(9, 8, 9));
    return m;
  };
  triMesh m = broken();
  const unsigned good = m.fn() - 2;
  m.computeVertexFaceNormalizedNormals(true);
  m.computeFaceFaceTopology();
  EXPECT_EQ(m.f2fNum(good), 0u);  // a bad face has no neighbours
  std::vector<unsigned> piece, sizes;
  EXPECT_EQ(m.getIsolatePieces(piece, sizes), 3u);  // the sphere and the two bad faces
  m.laplacianSmoothing(2);
  m.hCLaplacianSmoothing(2);
  m.selectFacesWithSphere(JEV::MATH::sphere3<float>(p3(0, 0, 0), 5.f));
  EXPECT_EQ(m.getSelectedFaceCount(), good);
  m.computeFABBTree();
  m.computeVABBTree();
  unsigned face = 0;
  p3 hit;
  EXPECT_TRUE(m.getRayIntersect(ray3<float>(p3(0, 0, 5), p3(0, 0, -1)), face, hit));
  std::vector<p3> segments;
  EXPECT_GT(m.getPlaneIntersect(plane3<float>(p3(0, 0, 1), 0.f), segments), 0u);
  triMesh part;
  m.subset({good, good + 1, 0}, part);
  EXPECT_EQ(part.fn(), 1u);
  triMesh copy;
  copy.importFrom(m);  // bad faces are dropped on the way in
  EXPECT_EQ(copy.fn(), good);
  EXPECT_EQ(m.removeNotManifoldVertices(), 0u);
  EXPECT_EQ(m.removeNotManifoldFlagFaces(), 0u);
  EXPECT_EQ(m.removeDuplicateFaces(), 0u);
  // Filters that measure leave a face they cannot measure to removeDegenerateFace.
  EXPECT_EQ(m.removeFaceOutOfRangeArea(0.f, 100.f), 0u);
  m = broken();
  EXPECT_EQ(m.removeFacesByConfidence(p3(0, 0, 1), 180.f), 0u);
  EXPECT_EQ(m.removeDuplicateVertices(), 0u);
  EXPECT_EQ(m.removeUnReferenceVertex(), 3u);
  EXPECT_EQ(m.removeDegenerateFace(), 2u);
  EXPECT_EQ(borderVertices(m), 0u);
  m = broken();
  EXPECT_GT(m.decimate(40), 0u);
  EXPECT_LE(m.fn(), 40u);
  m = broken();
  m.reverseFaceOrder();
  m.transform(matrix4<float>());
  EXPECT_EQ(m.crop(2, 0.f) + m.fn(), good + 2);
}
