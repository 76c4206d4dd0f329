#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "jev3d/mesh/editMesh.h"
#include "support/meshes.h"

using JEV::MESH::editMesh;
using namespace testMeshes;

namespace {

// Edges as a plain map would find them: ids in order of first appearance over the live
// faces, each with its (face, next corner) list, capped the way the packed record is.
struct oracleEdge {
  unsigned a, b;
  std::vector<std::pair<unsigned, unsigned>> faces;
  size_t uses = 0;  // before the cap
};

std::vector<oracleEdge> oracleEdges(const editMesh& m) {
  std::vector<oracleEdge> out;
  std::map<std::pair<unsigned, unsigned>, unsigned> ids;
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f)) continue;
    const unsigned n = m.fVNum(f);
    for (unsigned i = 0; i < n; ++i) {
      unsigned a = m.fV(f, i), b = m.fV(f, (i + 1) % n);
      if (a > b) std::swap(a, b);
      auto it = ids.find({a, b});
      if (it == ids.end()) {
        it = ids.emplace(std::make_pair(a, b), unsigned(out.size())).first;
        out.push_back({a, b, {}});
      }
      out[it->second].faces.emplace_back(f, ((i + 1) % n) & 63u);
    }
  }
  for (oracleEdge& e : out) {
    e.uses = e.faces.size();
    e.faces.resize(e.faces.size() % 64);
  }
  return out;
}

// A soup of polygons of 1 to 7 corners over few vertices, so that edges are shared by
// many faces, with repeated corners and some faces deleted.
void randomSoup(editMesh& m, std::mt19937& rng, unsigned vertices, unsigned faces) {
  for (unsigned v = 0; v < vertices; ++v)
    m.addVertex(float(rng() % 100), float(rng() % 100), float(rng() % 100));
  std::vector<unsigned> ids;
  for (unsigned f = 0; f < faces; ++f) {
    ids.resize(1 + rng() % 7);
    for (unsigned& id : ids) id = rng() % vertices;
    m.addPolyFace(ids);
  }
  for (unsigned f = 0; f < faces; ++f)
    if (rng() % 5 == 0) m.deleteFace(f);
  // some faces rewritten: their old corners stay behind in FV
  for (unsigned f = 0; f < faces; f += 7) m.makeTriFace(f, rng() % vertices, 0, 1);
}

}  // namespace

TEST(editMeshOracle, rebuildMatchesAMapOnRandomSoups) {
  std::mt19937 rng(20261122);
  int overfull = 0;
  for (int round = 0; round < 40; ++round) {
    editMesh m;
    // every fourth soup crowds more than 63 faces onto some edges
    if (round % 4 == 0) {
      randomSoup(m, rng, 3, 400);
    } else {
      randomSoup(m, rng, 5 + rng() % 40, 1 + rng() % 300);
    }
    ASSERT_TRUE(m.computeEVEF());
    m.computeVE();
    const std::vector<oracleEdge> expected = oracleEdges(m);
    ASSERT_EQ(m.en(), expected.size());
    for (unsigned e = 0; e < m.en(); ++e) {
      ASSERT_EQ(m.eV(e, 0), expected[e].a);
      ASSERT_EQ(m.eV(e, 1), expected[e].b);
      ASSERT_EQ(m.eFNum(e), expected[e].faces.size()) << "edge " << e;
      for (unsigned k = 0; k < m.eFNum(e); ++k) {
        EXPECT_EQ(m.eF(e, k), expected[e].faces[k].first);
        EXPECT_EQ(m.E2F(e, k).corner, expected[e].faces[k].second);
      }
    }
    // VE: each vertex lists exactly the edges at it, in edge order
    std::vector<std::vector<unsigned>> ve(m.vn());
    for (unsigned e = 0; e < m.en(); ++e) {
      ve[m.eV(e, 0)].push_back(e);
      ve[m.eV(e, 1)].push_back(e);
    }
    for (unsigned v = 0; v < m.vn(); ++v) {
      std::vector<unsigned> got(m.vENum(v));
      if (!got.empty()) m.getVE(v, got.data());
      ASSERT_EQ(got, ve[v]);
    }
    // an edge past 63 faces breaks the invariants, and the check says so
    size_t most = 0;
    for (const oracleEdge& e : expected) most = std::max(most, e.uses);
    if (most > 63) {
      ++overfull;
      EXPECT_NE(m.checkInvariants(), "");
      continue;
    }
    ASSERT_MESH_VALID(m);
    // deleting faces one by one keeps EF exact
    for (unsigned f = 0; f < m.fn(); f += 3) {
      m.deleteFaceUpdatingEdges(f);
      ASSERT_MESH_VALID(m);
    }
    m.deleteWireEdgesGuarded();
    m.deleteUnreferencedVertices();
    ASSERT_MESH_VALID(m);
  }
  EXPECT_GE(overfull, 10);  // and the others checked clean through their deletions
  EXPECT_LE(overfull, 20);
}
