// The analysis surface: its diagnostic texts, derived data, strips, range grids and the
// feature-size sample.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <sstream>

#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/algo/postprocessing/triSurface.h"
#include "jev3d/mesh/editMeshInterface.h"

using JEV::MESH::POSTPROCESSING::triMesh;
using JEV::MESH::POSTPROCESSING::triSurface;
using p3 = JEV::MATH::point3<float>;

namespace {

// n x n cells of side s, two triangles each, with its diagnostics in out.
void makeGrid(triSurface& t, int n, float s, std::ostringstream& out) {
  t.diagnostics = &out;
  for (int j = 0; j <= n; ++j)
    for (int i = 0; i <= n; ++i) t.vertices.emplace_back(float(i) * s, float(j) * s, 0.f);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      const int a = j * (n + 1) + i, b = a + 1, c = a + n + 2, d = a + n + 1;
      t.faces.push_back({a, b, c});
      t.faces.push_back({a, c, d});
    }
}

// t made from a sphere of triMesh, which is returned, with its diagnostics in out.
triMesh sphereSurface(triSurface& t, float radius, unsigned rings, unsigned segments,
                      std::ostringstream& out) {
  triMesh sphere;
  sphere.makeSphere(radius, rings, segments);
  t.fromMesh(sphere);
  t.diagnostics = &out;
  return sphere;
}

// Faces as a set, each rotated to start at its smallest corner.
std::set<triSurface::face> canonical(const std::vector<triSurface::face>& faces) {
  std::set<triSurface::face> s;
  for (triSurface::face f : faces) {
    std::rotate(f.begin(), std::min_element(f.begin(), f.end()), f.end());
    s.insert(f);
  }
  return s;
}

}  // namespace

TEST(triSurfaceFeatureSize, RegularGridGivesItsSpacing) {
  std::ostringstream out;
  triSurface t;
  makeGrid(t, 20, 0.5f, out);
  triSurface::setRandomState(12345);
  EXPECT_FLOAT_EQ(t.featureSize(), 0.5f);
  // 333 draws of the generator, none more.
  unsigned int state = 12345;
  for (int k = 0; k < 333; ++k) state = state * 1664525u + 1013904223u;
  EXPECT_EQ(triSurface::getRandomState(), state);
  // A small mesh draws F / 2 faces.
  triSurface small;
  makeGrid(small, 2, 1.f, out);  // 8 faces
  triSurface::setRandomState(7);
  small.featureSize();
  state = 7;
  for (int k = 0; k < 4; ++k) state = state * 1664525u + 1013904223u;
  EXPECT_EQ(triSurface::getRandomState(), state);
  triSurface empty;
  EXPECT_EQ(empty.featureSize(), 0.f);
  EXPECT_EQ(out.str(), "");  // no step ran
}

TEST(triSurfaceSteps, WriteTheirTextsOnceAndOnlyWhenAbsent) {
  std::ostringstream out;
  triSurface t;
  makeGrid(t, 1, 1.f, out);
  t.needBoundingSphere();
  EXPECT_EQ(out.str(),
            "Computing bounding sphere... Done.\n  center = (0.5, 0.5, 0), radius = 0.707107\n");
  out.str("");
  t.needBoundingSphere();
  EXPECT_EQ(out.str(), "");
  t.needAcrossEdge();
  EXPECT_EQ(out.str(),
            "Finding vertex to triangle maps... Done.\nFinding across-edge maps... Done.\n");
  EXPECT_EQ(t.acrossEdge[0][1], 1);  // opposite corner b: the diagonal a-c
  EXPECT_EQ(t.acrossEdge[1][2], 0);  // opposite corner d: the same diagonal
  EXPECT_EQ(t.acrossEdge[0][0], -1);
  out.str("");
  t.needDCurv();
  EXPECT_EQ(
      out.str(),
      "Computing normals... Done.\nComputing curvatures... Done.\nComputing dcurv... Done.\n");
  out.str("");
  t.needPointAreas();
  EXPECT_EQ(out.str(), "Computing point areas... Done.\n");
  float area = 0;
  for (float a : t.pointAreas) area += a;
  EXPECT_FLOAT_EQ(area, 1.f);
  out.str("");
  t.removeFaces({false, false});
  EXPECT_EQ(out.str(), "Removing faces... None removed.\n");
  out.str("");
  t.removeFaces({true});
  EXPECT_EQ(out.str(), "Removing faces... 1 faces removed... Done.\n");
  EXPECT_EQ(t.faces.size(), 1u);
  out.str("");
  t.subdivide();
  EXPECT_EQ(out.str(), "Subdividing mesh... Done.\n");
  EXPECT_EQ(t.faces.size(), 4u);
  EXPECT_EQ(t.vertices.size(), 7u);  // three midpoints added
}

TEST(triSurfaceSteps, StripsRoundTripToTheSameFaces) {
  std::ostringstream out;
  triSurface t;
  makeGrid(t, 6, 1.f, out);
  const auto before = canonical(t.faces);
  t.needTStrips();
  const std::string text = out.str();
  ASSERT_EQ(text.rfind("Finding vertex to triangle maps... Done.\nFinding across-edge maps... "
                       "Done.\nBuilding triangle strips... Done.\n  ",
                       0),
            0u);
  int strips = 0;
  double avg = 0;
  ASSERT_EQ(std::sscanf(text.c_str() + text.find("Done.\n  ", text.find("strips...")),
                        "Done.\n  %d strips (Avg. length %lf)", &strips, &avg),
            2);
  EXPECT_EQ(strips, int(std::count(t.tstrips.begin(), t.tstrips.end(), -1)));
  EXPECT_LT(strips, 72);  // strips join faces
  t.faces.clear();
  out.str("");
  t.needFaces();
  EXPECT_EQ(out.str(), "Unpacking triangle strips... Done.\n  72 triangles\n");
  EXPECT_EQ(canonical(t.faces), before);
}

TEST(triSurfaceSteps, RangeGridTriangulatesAndWarnsOnThinNormals) {
  std::ostringstream out;
  triSurface t;
  t.diagnostics = &out;
  for (int j = 0; j < 3; ++j)
    for (int i = 0; i < 3; ++i) t.vertices.emplace_back(float(i), float(j), 0.f);
  t.grid = {0, 1, 2, 3, 4, 5, 6, 7, -1};
  t.gridWidth = 3, t.gridHeight = 3;
  t.needNormals();  // on the grid itself: corners have two neighbours
  EXPECT_EQ(out.str(),
            "Computing normals... Warning: not enough points for vertex 0\n"
            "Warning: not enough points for vertex 2\nWarning: not enough points for vertex 5\n"
            "Warning: not enough points for vertex 6\nWarning: not enough points for vertex 7\n"
            "Done.\n");
  EXPECT_EQ(t.normals[4], p3(0, 0, 1));
  EXPECT_EQ(t.normals[1], p3(0, 0, 1));
  out.str("");
  t.needFaces();
  EXPECT_EQ(out.str(), "Triangulating... 7 faces.\n");  // three full cells, one of three
  // A grid whose size does not match its dimensions is left alone.
  triSurface bad;
  bad.diagnostics = &out;
  bad.grid = {0, 1};
  bad.gridWidth = 5, bad.gridHeight = 5;
  bad.needFaces();
  EXPECT_TRUE(bad.faces.empty());
}

TEST(triSurfaceSteps, SphereCurvatureAndMeshRoundTrip) {
  std::ostringstream out;
  triSurface t;
  const triMesh sphere = sphereSurface(t, 2.f, 24, 48, out);
  ASSERT_EQ(t.faces.size(), sphere.fn());
  t.needCurvatures();
  // 1/r, within the umbrella estimate's error on the thin triangles near the poles.
  for (size_t v = 48; v < t.vertices.size() - 48; ++v) EXPECT_NEAR(t.curvature[v], 0.5f, 0.06f);
  triMesh back;
  t.toMesh(back);
  EXPECT_EQ(back.getFaces(), sphere.getFaces());
  EXPECT_EQ(back.getVertices(), sphere.getVertices());
  EXPECT_TRUE(back.hasVN());
}

TEST(triSurfaceBadData, FacesOutOfRangeAreSkippedByEveryStep) {
  std::ostringstream out;
  triSurface t;
  makeGrid(t, 3, 1.f, out);
  t.faces.push_back({0, 1, 99});
  t.faces.push_back({-5, 1, 2});
  t.needAcrossEdge();
  t.needDCurv();
  t.needPointAreas();
  t.needBoundingSphere();
  t.needTStrips();
  triSurface::setRandomState(1);
  EXPECT_FLOAT_EQ(t.featureSize(), 1.f);
  t.subdivide();
  EXPECT_EQ(t.faces.size(), 4u * 18u);
  triMesh back;
  t.toMesh(back);
  EXPECT_EQ(back.fn(), 72u);
  // Strips naming vertices that do not exist unpack to nothing.
  triSurface s;
  s.diagnostics = &out;
  s.vertices.resize(3);
  s.tstrips = {0, 1, 2, 7, -1, 5, 6, 8, -1};
  s.needFaces();
  EXPECT_EQ(s.faces.size(), 1u);
}

TEST(triSurfaceMesh, AScanMeshCopiesInAndOutAsAnyOtherMesh) {
  // A scan mesh with normals and two faces naming vertices it does not have.
  triMesh scan;
  scan.makeSphere(1.f, 8, 12);
  scan.computeVertexFaceNormalizedNormals(true);
  scan.getFaces().insert(scan.getFaces().end(), {0, 1, 999, 2, 3, 4});
  // The same through the editable mesh's interface, which copyTo leaves without the
  // bad face.
  JEV::MESH::editMesh edit;
  JEV::MESH::editMeshInterface editView(edit);
  scan.copyTo(editView);
  triSurface fromScan, fromEdit;
  fromScan.fromMesh(scan);
  fromEdit.fromMesh(editView);
  EXPECT_EQ(fromScan.vertices, fromEdit.vertices);
  EXPECT_EQ(fromScan.normals, fromEdit.normals);
  EXPECT_EQ(fromScan.faces, fromEdit.faces);
  ASSERT_EQ(fromScan.faces.size(), scan.fn() - 1);
  EXPECT_EQ(fromScan.faces.back(), (triSurface::face{2, 3, 4}));

  // Written back, a scan target and an editable one get the same arrays; a face out of
  // range is left out of both.
  fromScan.faces.push_back({0, 1, -3});
  triMesh scanBack;
  scanBack.makeCube();
  scanBack.computeFaceFaceTopology();
  fromScan.toMesh(scanBack);
  JEV::MESH::editMesh editBack;
  JEV::MESH::editMeshInterface editBackView(editBack);
  fromScan.toMesh(editBackView);
  ASSERT_EQ(scanBack.vn(), editBack.vn());
  ASSERT_EQ(scanBack.fn(), scan.fn() - 1);
  ASSERT_EQ(editBack.fn(), scanBack.fn());
  for (unsigned v = 0; v < scanBack.vn(); ++v) {
    EXPECT_EQ(scanBack.vPos(v), editBack.vPos(v));
    EXPECT_EQ(scanBack.vNor(v), editBack.vNor(v));
  }
  for (unsigned f = 0; f < scanBack.fn(); ++f)
    for (unsigned i = 0; i < 3; ++i) EXPECT_EQ(scanBack.fV(f, i), editBack.fV(f, i));
  // Nothing derived from the cube's faces outlives the copy.
  EXPECT_FALSE(scanBack.hasFF());
  EXPECT_FALSE(scanBack.hasVC());
}

TEST(triSurfaceSteps, NormalsOfSomeVerticesAreTheirsAmongAllBitForBit) {
  std::ostringstream out;
  triSurface t;
  sphereSurface(t, 1.5f, 10, 16, out);
  // A lifted vertex makes the normals differ from the radial ones; a bad face is skipped.
  t.vertices[20] = t.vertices[20] * 1.3f;
  t.faces.push_back({0, 5, 1000});
  std::vector<unsigned char> wanted(t.vertices.size(), 0);
  for (size_t v = 0; v < wanted.size(); v += 4) wanted[v] = 1;
  wanted[20] = 1;
  std::vector<p3> some;
  std::vector<triSurface::face> met{{7, 7, 7}};
  t.normalsOf(wanted, some, &met);
  EXPECT_EQ(out.str(), "Computing normals... Done.\n");
  // The faces met are those with a wanted corner, in order; the bad one is not among them.
  std::vector<triSurface::face> expected;
  for (const auto& f : t.faces)
    if (f[2] < 1000 && (wanted[size_t(f[0])] || wanted[size_t(f[1])] || wanted[size_t(f[2])]))
      expected.push_back(f);
  EXPECT_EQ(met, expected);
  EXPECT_LT(met.size(), t.faces.size());
  t.needNormals();
  ASSERT_EQ(some.size(), t.normals.size());
  for (size_t v = 0; v < some.size(); ++v) {
    if (wanted[v]) {
      EXPECT_EQ(std::memcmp(&some[v], &t.normals[v], sizeof(p3)), 0) << "vertex " << v;
    } else {
      EXPECT_EQ(some[v], p3()) << "vertex " << v;
    }
  }
  EXPECT_NEAR(some[20].norm(), 1.f, 1e-6f);
}
