// The working mesh: adjacency on generated meshes, conversion both ways, and face-face and
// vertex-face adjacency checked against the edit mesh's edges on every shared scan.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "jev3d/algo/internal/workMesh.h"
#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/io/ply/ioPly.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "support/dataFiles.h"
#include "support/meshes.h"

using JEV::MESH::ALGO::workMesh;
using namespace testMeshes;

namespace {

// The faces reached by walking the FF ring of edge i of f, f included.
std::set<unsigned> ringOf(const workMesh& w, unsigned f, unsigned i) {
  std::set<unsigned> out{f};
  unsigned g = f, j = i;
  for (unsigned steps = 0; steps < 100 && !w.isBorder(g, j); ++steps) {
    const unsigned ng = w.ffFace(g, j), nj = w.ffEdge(g, j);
    g = ng, j = nj;
    if (g == f && j == i) break;
    out.insert(g);
  }
  return out;
}

// Compares the working mesh of a triangulated edit mesh with the edit mesh's own edges:
// for every side, the FF ring holds exactly the faces on that edge; for every vertex, the
// VF list holds exactly the faces around it. Returns the number of sides checked.
unsigned compareWithEdges(editMesh& m) {
  workMesh w;
  w.fromEditMesh(m);
  EXPECT_EQ(w.fn(), liveFaces(m));
  w.updateTopology();
  unsigned sides = 0;
  for (unsigned f = 0; f < w.fn(); ++f) {
    EXPECT_EQ(w.sourceFace[f], f);
    for (unsigned i = 0; i < 3; ++i) {
      const unsigned a = w.V(f, i), b = w.V(f, (i + 1) % 3);
      if (a == b) continue;
      const unsigned e = m.findSharedEdgeFromVertices(a, b);
      if (e == m.getMaxValue()) {
        ADD_FAILURE() << "no edge " << a << "-" << b;
        continue;
      }
      std::set<unsigned> onEdge;
      for (unsigned k = 0; k < m.eFNum(e); ++k) onEdge.insert(m.eF(e, k));
      EXPECT_EQ(ringOf(w, f, i), onEdge) << "face " << f << " side " << i;
      EXPECT_EQ(w.isBorder(f, i), onEdge.size() == 1);
      EXPECT_EQ(bool(w.fFlag[f] & (workMesh::BORDER0 << i)), onEdge.size() == 1);
      ++sides;
    }
  }
  for (unsigned v = 0; v < m.vn(); ++v) {
    const std::vector<unsigned>& around = m.getAdiacentFaces(v);
    std::set<unsigned> expected(around.begin(), around.end()), got;
    for (unsigned k = 0; k < w.vfNum(v); ++k) {
      got.insert(w.vfFace(v, k));
      EXPECT_EQ(w.V(w.vfFace(v, k), w.vfCorner(v, k)), v);
    }
    EXPECT_EQ(got, expected) << "vertex " << v;
  }
  return sides;
}

}  // namespace

TEST(workMeshTopology, GridHasItsBorderAndSymmetricNeighbours) {
  editMesh m;
  makeGrid(m, 4, 3, false);
  finishMesh(m);
  workMesh w;
  w.fromEditMesh(m);
  w.updateTopology();
  ASSERT_EQ(w.fn(), 24u);
  unsigned border = 0;
  for (unsigned f = 0; f < w.fn(); ++f)
    for (unsigned i = 0; i < 3; ++i) {
      if (w.isBorder(f, i)) {
        ++border;
        continue;
      }
      const unsigned g = w.ffFace(f, i), j = w.ffEdge(f, i);
      EXPECT_EQ(w.ffFace(g, j), f);
      EXPECT_EQ(w.ffEdge(g, j), i);
      EXPECT_EQ(w.V(g, j), w.V(f, (i + 1) % 3));  // neighbours run the edge the other way
    }
  EXPECT_EQ(border, 2u * (4 + 3));
  unsigned borderVerts = 0;
  for (unsigned v = 0; v < w.vn(); ++v) borderVerts += bool(w.vFlag[v] & workMesh::BORDER);
  EXPECT_EQ(borderVerts, 2u * (4 + 3));
  EXPECT_EQ(w.vfNum(0), 2u);  // corner (0, 0) carries both triangles of its cell
}

TEST(workMeshTopology, DeletedFacesLeaveAHoleAndCompactionRenumbers) {
  editMesh m;
  makeSphere(m, 6, 8);
  finishMesh(m);
  workMesh w;
  w.fromEditMesh(m);
  w.updateTopology();
  for (unsigned f = 0; f < w.fn(); ++f)
    for (unsigned i = 0; i < 3; ++i) EXPECT_FALSE(w.isBorder(f, i));
  w.deleteFace(10);
  w.updateTopology();
  unsigned border = 0;
  for (unsigned f = 0; f < w.fn(); ++f)
    if (!w.isFaceDeleted(f))
      for (unsigned i = 0; i < 3; ++i) border += w.isBorder(f, i);
  EXPECT_EQ(border, 3u);
  const unsigned faces = w.fn();
  w.compact(true);
  EXPECT_EQ(w.fn(), faces - 1);
  EXPECT_EQ(w.vn(), m.vn());  // every vertex still has a face
  w.updateTopology();
  border = 0;
  for (unsigned f = 0; f < w.fn(); ++f)
    for (unsigned i = 0; i < 3; ++i) border += w.isBorder(f, i);
  EXPECT_EQ(border, 3u);
}

TEST(workMeshTopology, NonManifoldEdgeRingsThroughAllItsFaces) {
  editMesh m;
  makeFan(m, 5);
  finishMesh(m);
  EXPECT_GT(compareWithEdges(m), 0u);
}

TEST(workMeshConversion, RoundTripKeepsGeometrySelectionAndDropsDeleted) {
  editMesh m;
  makeSphere(m, 8, 10);  // quads in the middle become two triangles each
  finishMesh(m);
  m.selectFace(12);
  m.deleteFace(3);
  const double volume = signedVolume(m);
  workMesh w;
  w.fromEditMesh(m, true);
  unsigned selected = 0;
  for (unsigned f = 0; f < w.fn(); ++f) {
    if (!w.isFaceSelected(f)) continue;
    ++selected;
    EXPECT_EQ(w.sourceFace[f], 12u);
  }
  EXPECT_EQ(selected, 2u);
  ASSERT_TRUE(w.hasNormals());
  editMesh back;
  w.toEditMesh(back);
  EXPECT_MESH_VALID(back);
  EXPECT_NEAR(signedVolume(back), volume, 1e-5);
  EXPECT_EQ(borderEdges(back), 3u);  // the deleted triangle at the pole left its hole
  // A deleted vertex is dropped and the rest renumbered.
  w.deleteVertex(0);
  for (unsigned f = 0; f < w.fn(); ++f)
    for (unsigned i = 0; i < 3; ++i)
      if (w.V(f, i) == 0) w.deleteFace(f);
  w.toEditMesh(back);
  EXPECT_EQ(back.vn(), m.vn() - 1);
  EXPECT_MESH_VALID(back);
}

TEST(workMeshConversion, NormalsAreAreaWeightedAndLockedVerticesKeepTheirs) {
  editMesh m;
  makeOpenCone(m, 12);
  finishMesh(m);
  workMesh w;
  w.fromEditMesh(m);
  w.nor[0] = JEV::MATH::point3<float>(7, 7, 7);
  w.vFlag[0] |= workMesh::LOCKED;
  w.computeFaceNormals();
  w.computeVertexNormals();
  EXPECT_EQ(w.nor[0], JEV::MATH::point3<float>(7, 7, 7));
  for (unsigned v = 1; v < w.vn(); ++v) EXPECT_NEAR(w.nor[v].norm(), 1.f, 1e-5f);
  for (unsigned f = 0; f < w.fn(); ++f) EXPECT_GT(w.fNor[f].z, 0.f);  // outward and up
}

TEST(workMeshScans, AdjacencyMatchesTheEditMeshOnEveryScan) {
  JEV3D_REQUIRE_DATA("ply");
  unsigned files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(dataFile("ply"))) {
    JEV::IO::PLY::plyPolygonMesh p;
    if (!JEV::IO::PLY::ioPly::readPlyPolygonsFromFile(entry.path().string(), p)) continue;
    if (p.cornerCounts.empty()) continue;
    SCOPED_TRACE(entry.path().filename().string());
    editMesh m;
    for (const p3& q : p.positions) m.addVertex(q);
    size_t at = 0;
    for (unsigned n : p.cornerCounts) {
      m.addFace(&p.corners[at], n);
      at += n;
    }
    m.checkMeshState();
    m.triangulate();
    ASSERT_MESH_VALID(m);
    EXPECT_EQ(compareWithEdges(m) > 0, true);
    ++files;
  }
  EXPECT_GE(files, 10u);
}

TEST(workMeshConversion, HandedTrianglesReachBothKindsOfTargetAlike) {
  // Four vertices, the third deleted; of the triangles handed over, one on the deleted
  // vertex, one past the vertices and those past maxFaces stay out.
  workMesh w;
  for (unsigned k = 0; k < 4; ++k) w.addVertex(p3(float(k), float(k * k % 3), 0.f));
  w.deleteVertex(2);
  auto pieces = [](auto emit) {
    emit(0u, 1u, 3u);
    emit(0u, 2u, 3u);
    emit(1u, 3u, 9u);
    emit(3u, 1u, 0u);
    emit(1u, 0u, 3u);  // the third whole one, past maxFaces = 2
  };
  editMesh edited;
  JEV::MESH::editMeshInterface editedView(edited);
  w.toMeshWith(editedView, 2, pieces);
  JEV::MESH::POSTPROCESSING::triMesh scan;
  w.toMeshWith(scan, 2, pieces);
  EXPECT_EQ(edited.vn(), 3u);
  ASSERT_EQ(edited.fn(), 2u);
  EXPECT_EQ(edited.vPos(2), p3(3.f, 0.f, 0.f));  // vertex 3 renumbered past the gap
  const unsigned expected[2][3] = {{0, 1, 2}, {2, 1, 0}};
  for (unsigned f = 0; f < 2; ++f)
    for (unsigned i = 0; i < 3; ++i) EXPECT_EQ(edited.fV(f, i), expected[f][i]);
  // The editable mesh's records are what its building calls would have left.
  finishMesh(edited);
  EXPECT_MESH_VALID(edited);
  EXPECT_EQ(liveEdges(edited), 3u);
  ASSERT_EQ(scan.vn(), 3u);
  ASSERT_EQ(scan.fn(), 2u);
  for (unsigned f = 0; f < 2; ++f)
    for (unsigned i = 0; i < 3; ++i) EXPECT_EQ(scan.fV(f, i), expected[f][i]);
}
