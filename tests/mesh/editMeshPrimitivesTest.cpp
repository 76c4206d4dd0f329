#include <gtest/gtest.h>

#include <cmath>

#include "jev3d/mesh/editMesh.h"
#include "mesh/topologyChecks.h"
#include "support/meshes.h"

using JEV::MESH::editMesh;
using namespace testMeshes;
using namespace topologyChecks;

namespace {

const double PI = 3.14159265358979323846;

// Area of a regular polygon of n corners on a circle of radius r.
double polygonArea(unsigned n, double r) { return 0.5 * n * r * r * std::sin(2 * PI / n); }

// Closed, consistently wound, every face facing away from the origin (convex solids).
void expectOutwardSolid(const editMesh& m, double volume, double tolerance) {
  EXPECT_MESH_VALID(m);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_EQ(borderEdges(m), 0u);
  EXPECT_NEAR(signedVolume(m), volume, tolerance);
}

}  // namespace

TEST(editMeshPrimitives, platonicSolidsAreClosedAndFaceOutward) {
  editMesh m;
  m.makeCube();
  expectOutwardSolid(m, 8.0, 1e-5);
  EXPECT_EQ(liveFaces(m), 6u);
  EXPECT_EQ(liveEdges(m), 12u);
  // the maker sizes vFlag to the edge count, 12, and the rebuild's checkMeshState brings
  // it back to the vertex count
  EXPECT_EQ(m.vertFlags().size(), 8u);
  for (unsigned f = 0; f < 6; ++f) {
    p3 centre;
    for (unsigned i = 0; i < 4; ++i) centre += m.F2VPOS(f, i);
    EXPECT_GT(m.fNor(f) * centre, 0.f) << f;
  }

  m.makeTetrahedron();
  const double tetraEdge = 4.0 / std::sqrt(6.0);
  expectOutwardSolid(m, tetraEdge * tetraEdge * tetraEdge / (6 * std::sqrt(2.0)), 1e-5);
  EXPECT_EQ(liveFaces(m), 4u);

  m.makeOctahedron();
  expectOutwardSolid(m, 4.0 / 3.0, 1e-5);
  EXPECT_EQ(liveFaces(m), 8u);

  m.UV().resize(3);
  m.makeDodecahedron();
  const double a = 4.0 / (std::sqrt(3.0) * (1 + std::sqrt(5.0)));
  expectOutwardSolid(m, (15 + 7 * std::sqrt(5.0)) / 4 * a * a * a, 1e-4);
  EXPECT_EQ(liveFaces(m), 12u);
  EXPECT_EQ(liveEdges(m), 30u);
  EXPECT_EQ(m.uvn(), 0u);
  for (unsigned v = 0; v < m.vn(); ++v) EXPECT_NEAR(m.vPos(v).norm(), 1.f, 1e-5f);
}

TEST(editMeshPrimitives, roundSolidsMatchTheirVolumes) {
  editMesh m;
  m.makeCylinder(16, 3);
  expectOutwardSolid(m, polygonArea(16, 1) * 2, 1e-4);
  EXPECT_EQ(liveFaces(m), 16u * 3u + 2u);

  m.makeCone(24u, 1.5f, 2.f);
  expectOutwardSolid(m, polygonArea(24, 1.5) * 2 / 3, 1e-4);
  m.makeCone(24u, 1.f, 3.f, 0.5f);  // a frustum
  const double a1 = polygonArea(24, 1), a2 = polygonArea(24, 0.5);
  expectOutwardSolid(m, 3.0 / 3 * (a1 + a2 + std::sqrt(a1 * a2)), 1e-4);
  m.makeCone(12, 3, 2);
  expectOutwardSolid(m, polygonArea(12, 1) * 2 / 3, 1e-4);
  EXPECT_EQ(liveFaces(m), 12u * 3u + 12u * 2u);

  m.makeSphere(24, 48);
  expectOutwardSolid(m, 4.0 / 3.0 * PI, 0.03 * 4.0 / 3.0 * PI);
  for (unsigned v = 0; v < m.vn(); ++v) EXPECT_NEAR(m.vPos(v).norm(), 1.f, 1e-5f);

  m.makeTorus(48, 24, 2.f, 0.5f);
  expectOutwardSolid(m, 2 * PI * PI * 2 * 0.25, 0.02 * 2 * PI * PI * 2 * 0.25);
  EXPECT_EQ(liveFaces(m), 48u * 24u);
  m.makeTorus(true, false, true, 12, 6, 2.f, 0.5f);
  EXPECT_TRUE(closedAndOriented(m));
  EXPECT_EQ(m.getSelFn(), 144u);
  m.makeTorus(12, 6, 2.f, 0.5f);
  const double square = signedVolume(m);
  m.makeTorus(p3(1.f, 2.f, 3.f), p3(1.f, 1.f, 0.f), 12, 6, 2.f, 0.5f);
  expectOutwardSolid(m, square, 1e-3);  // moved and turned, not mirrored
}

TEST(editMeshPrimitives, flatMakersFaceTheirNormal) {
  editMesh m;
  m.makeQuad();
  EXPECT_MESH_VALID(m);
  EXPECT_NEAR(totalArea(m), 4.0, 1e-6);
  EXPECT_TRUE(near(m.fNor(0), p3(0.f, 0.f, 1.f)));
  EXPECT_EQ(borderEdges(m), 4u);

  m.makeCircle(p3(1.f, 0.f, 0.f), p3(0.f, 2.f, 0.f), 2.f, 32);
  EXPECT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 1u);
  EXPECT_NEAR(totalArea(m), polygonArea(32, 2), 1e-4);
  EXPECT_TRUE(near(m.fNor(0), p3(0.f, 1.f, 0.f)));
  for (unsigned v = 0; v < m.vn(); ++v)
    EXPECT_NEAR((m.vPos(v) - p3(1.f, 0.f, 0.f)).norm(), 2.f, 1e-5f);

  m.makeCircle(p3(), p3(0.f, 0.f, 1.f), 1.f, 8, false);
  EXPECT_MESH_VALID(m);
  EXPECT_EQ(liveFaces(m), 0u);
  EXPECT_EQ(m.countWireEdges(), 8u);
}

TEST(editMeshSubset, copiesTheListedFacesRenumbered) {
  editMesh m;
  m.makeSphere(8, 12);
  std::vector<unsigned> cap;
  for (unsigned f = 0; f < 12; ++f) cap.push_back(f);  // the northern fan
  editMesh part;
  ASSERT_TRUE(m.subset(&part, cap, {m.vn() - 1}));
  EXPECT_MESH_VALID(part);
  EXPECT_EQ(part.fn(), 12u);
  EXPECT_EQ(part.vn(), 1u + 12u + 1u);
  EXPECT_EQ(borderEdges(part), 12u);
  EXPECT_TRUE(near(part.vPos(0), m.vPos(m.fV(0, 0))));
  EXPECT_TRUE(near(part.vPos(13), p3(0.f, 0.f, -1.f)));
  EXPECT_TRUE(consistentlyOriented(part));
  EXPECT_FALSE(m.subset(nullptr, cap));
  EXPECT_FALSE(m.subset(&m, cap));

  editMesh copy;
  ASSERT_TRUE(copy.clone(&m));
  EXPECT_MESH_VALID(copy);
  EXPECT_EQ(copy.fn(), m.fn());
  EXPECT_EQ(copy.en(), m.en());
  EXPECT_NEAR(signedVolume(copy), signedVolume(m), 1e-9);
  EXPECT_FALSE(copy.clone(nullptr));
  EXPECT_FALSE(copy.clone(&copy));
}
