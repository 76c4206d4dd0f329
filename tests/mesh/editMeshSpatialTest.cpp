#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <set>
#include <vector>

#include "jev3d/math/triangleQueries.h"
#include "jev3d/mesh/aabbtreeEditMeshFaceWrap.h"
#include "jev3d/mesh/aabbtreeEditMeshVertWrap.h"
#include "jev3d/mesh/editMesh.h"
#include "support/meshes.h"

using JEV::MATH::closestPointHit;
using JEV::MATH::rayHit;
using JEV::MESH::editMesh;
using namespace testMeshes;

namespace {

constexpr float unbounded = std::numeric_limits<float>::max();

// A sphere of triangles and quads with jittered vertices and a few faces deleted.
void makeRoughSphere(editMesh& m, std::mt19937& rng) {
  makeSphere(m, 14, 20);
  std::uniform_real_distribution<float> jitter(-0.02f, 0.02f);
  for (unsigned v = 0; v < m.vn(); ++v)
    m.vPos(v) = m.vPos(v) + p3(jitter(rng), jitter(rng), jitter(rng));
  finishMesh(m);
  for (unsigned f = 0; f < m.fn(); f += 17) m.deleteFace(f);
}

// Squared distance from p to face f, over its fan.
float faceDistance(const editMesh& m, unsigned f, const p3& p) {
  float best = unbounded;
  for (unsigned t = 0; t < m.getTriangleNumFace(f); ++t) {
    unsigned a, b, c;
    m.getTriangle(f, t, a, b, c);
    float u, v;
    const p3 q = JEV::MATH::closestPointOnTriangle(p, m.vPos(a), m.vPos(b), m.vPos(c), u, v);
    best = std::min(best, (p - q).squaredNorm());
  }
  return best;
}

// Live faces met by the ray, each once.
std::set<unsigned> facesOnRay(const editMesh& m, const p3& o, const p3& d) {
  std::set<unsigned> faces;
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f)) continue;
    for (unsigned t = 0; t < m.getTriangleNumFace(f); ++t) {
      unsigned a, b, c;
      m.getTriangle(f, t, a, b, c);
      float tHit, u, v;
      if (JEV::MATH::intersectRayTriangle(o, d, m.vPos(a), m.vPos(b), m.vPos(c), unbounded, tHit, u,
                                          v)) {
        faces.insert(f);
      }
    }
  }
  return faces;
}

}  // namespace

TEST(editMeshSpatial, faceTreeClosestPointsEqualBruteForceOverLiveFaces) {
  std::mt19937 rng(3);
  editMesh m;
  makeRoughSphere(m, rng);
  m.computeFABBTree(m.fn() / 16);  // the leaf size a polyline asks for; clamped inside
  const auto* tree = m.getFABBTree();
  ASSERT_NE(tree, nullptr);
  std::uniform_real_distribution<float> around(-1.5f, 1.5f);
  for (int q = 0; q < 400; ++q) {
    const p3 p(around(rng), around(rng), around(rng));
    float expected = unbounded;
    for (unsigned f = 0; f < m.fn(); ++f) {
      if (!m.isFaceDeleted(f)) expected = std::min(expected, faceDistance(m, f, p));
    }
    closestPointHit hit;
    ASSERT_TRUE(tree->closestPoint(p, unbounded, hit));
    EXPECT_EQ(hit.squaredDistance, expected);
    ASSERT_LT(hit.face, m.fn());
    EXPECT_FALSE(m.isFaceDeleted(hit.face));
    EXPECT_EQ(faceDistance(m, hit.face, p), expected);
    // The fan triangle and its weights give the point back.
    ASSERT_LT(hit.triangle, m.getTriangleNumFace(hit.face));
    unsigned a, b, c;
    m.getTriangle(hit.face, hit.triangle, a, b, c);
    const p3 fromWeights =
        m.vPos(a) + (m.vPos(b) - m.vPos(a)) * hit.u + (m.vPos(c) - m.vPos(a)) * hit.v;
    EXPECT_NEAR((fromWeights - hit.point).squaredNorm(), 0.0f, 1e-10f);
    // Within a bound just below the answer there is nothing.
    closestPointHit none;
    EXPECT_FALSE(tree->closestPoint(p, expected * 0.999f, none));
  }
}

TEST(editMeshSpatial, faceTreeRaysMeetTheFacesBruteForceMeets) {
  std::mt19937 rng(8);
  editMesh m;
  makeRoughSphere(m, rng);
  m.computeFABBTree(4);
  const auto* tree = m.getFABBTree();
  ASSERT_NE(tree, nullptr);
  std::normal_distribution<float> normal;
  std::vector<rayHit> hits;
  int met = 0;
  for (int q = 0; q < 300; ++q) {
    const p3 o = p3(normal(rng), normal(rng), normal(rng)).normalize() * 3.0f;
    const p3 d = p3(normal(rng), normal(rng), normal(rng)) * 0.3f - o;
    const std::set<unsigned> expected = facesOnRay(m, o, d);
    tree->allHits(o, d, unbounded, hits);
    std::set<unsigned> found;
    for (std::size_t i = 0; i < hits.size(); ++i) {
      found.insert(hits[i].face);
      if (i > 0) {
        EXPECT_LE(hits[i - 1].t, hits[i].t);
      }
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(found.size(), hits.size());  // every face once
    rayHit first;
    ASSERT_EQ(tree->firstHit(o, d, unbounded, first), !expected.empty());
    if (expected.empty()) continue;
    ++met;
    EXPECT_EQ(first.t, hits.front().t);
    EXPECT_LT(first.triangle, m.getTriangleNumFace(first.face));
  }
  EXPECT_GT(met, 200);
}

TEST(editMeshSpatial, vertexTreeSkipsDeletedVertices) {
  std::mt19937 rng(21);
  editMesh m;
  makeGrid(m, 30, 30);
  addIsolatedVertices(m, 5);
  finishMesh(m);
  for (unsigned v = 0; v < m.vn(); v += 7) m.deleteVertex(v);
  m.computeVABBTree(8);
  const auto* tree = m.getVABBTree();
  ASSERT_NE(tree, nullptr);
  EXPECT_EQ(tree->size(), m.vn() - m.getDelVn());
  std::uniform_real_distribution<float> around(-2.0f, 32.0f), radii(0.0f, 3.0f);
  std::vector<unsigned> ids;
  for (int q = 0; q < 300; ++q) {
    const p3 p(around(rng), around(rng), around(rng) * 0.1f);
    float best = unbounded;
    std::vector<unsigned> expected;
    const float radius = radii(rng);
    for (unsigned v = 0; v < m.vn(); ++v) {
      if (m.isVertDeleted(v)) continue;
      const float d = (m.vPos(v) - p).squaredNorm();
      best = std::min(best, d);
      if (d <= radius * radius) expected.push_back(v);
    }
    unsigned id = 0;
    float d = 0.0f;
    ASSERT_TRUE(tree->nearest(p, unbounded, id, d));
    EXPECT_EQ(d, best);
    EXPECT_FALSE(m.isVertDeleted(id));
    tree->withinRadius(p, radius, ids);
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(ids, expected);
  }
}

TEST(editMeshSpatial, editsMakeTheIndexesStale) {
  editMesh m;
  makeCube(m);
  finishMesh(m);
  EXPECT_FALSE(m.isSpatialIndexingValid());
  EXPECT_EQ(m.getFABBTree(), nullptr);
  EXPECT_EQ(m.getVABBTree(), nullptr);
  auto rebuild = [&] {
    m.computeFABBTree(4);
    m.computeVABBTree(4);
    ASSERT_TRUE(m.isSpatialIndexingValid());
  };
  rebuild();
  ASSERT_NE(m.getFABBTree(), nullptr);
  EXPECT_EQ(m.getFABBTree()->size(), 12u);  // six quads, two triangles each
  EXPECT_EQ(m.getVABBTree()->size(), 8u);

  // A copy starts without indexes; the original keeps its own.
  const editMesh copy = m;
  EXPECT_FALSE(copy.isSpatialIndexingValid());
  EXPECT_TRUE(m.isSpatialIndexingValid());

  m.deleteFace(0);
  EXPECT_FALSE(m.isSpatialIndexingValid());
  EXPECT_EQ(m.getFABBTree(), nullptr);
  rebuild();
  closestPointHit hit;
  ASSERT_TRUE(m.getFABBTree()->closestPoint(p3(0.5f, 0.5f, -1.0f), unbounded, hit));
  EXPECT_NE(hit.face, 0u);  // the deleted bottom is gone: the nearest is a side's edge
  EXPECT_EQ(hit.squaredDistance, 1.25f);

  // Moved vertices count once updateBBox reports them, whoever recomputes the box.
  m.vPos(0) = p3(-1.0f, -1.0f, -1.0f);
  m.updateBBox();
  m.computeBBox();
  EXPECT_FALSE(m.isSpatialIndexingValid());
  rebuild();

  m.addVertex(5.0f, 5.0f, 5.0f);
  EXPECT_EQ(m.getVABBTree(), nullptr);
  rebuild();
  unsigned v = 0;
  float d = 0.0f;
  ASSERT_TRUE(m.getVABBTree()->nearest(p3(5.0f, 5.0f, 4.0f), unbounded, v, d));
  EXPECT_EQ(v, 8u);

  m.compactFaces();
  EXPECT_EQ(m.getFABBTree(), nullptr);
  EXPECT_TRUE(m.checkInvariants().empty()) << m.checkInvariants();
}

TEST(editMeshSpatial, emptyAndDegenerateMeshes) {
  editMesh empty;
  empty.computeFABBTree(4);
  empty.computeVABBTree(4);
  ASSERT_TRUE(empty.isSpatialIndexingValid());
  closestPointHit hit;
  rayHit ray;
  unsigned v;
  float d;
  EXPECT_FALSE(empty.getFABBTree()->closestPoint(p3(0, 0, 0), unbounded, hit));
  EXPECT_FALSE(empty.getFABBTree()->firstHit(p3(0, 0, 0), p3(0, 0, 1), unbounded, ray));
  EXPECT_FALSE(empty.getVABBTree()->nearest(p3(0, 0, 0), unbounded, v, d));

  // Faces of one and two corners make no triangle; the third face is found, and a face
  // with all corners on one point is indexed without harm.
  editMesh m;
  makeDegenerateFaces(m);
  const unsigned same = m.addVertex(9.0f, 9.0f, 9.0f);
  m.addTriFace(same, same, same);
  finishMesh(m);
  m.computeFABBTree(1);
  ASSERT_NE(m.getFABBTree(), nullptr);
  EXPECT_EQ(m.getFABBTree()->size(), 2u);
  ASSERT_TRUE(m.getFABBTree()->closestPoint(p3(4.0f, 0.5f, 1.0f), unbounded, hit));
  EXPECT_EQ(hit.face, 2u);
  ASSERT_TRUE(m.getFABBTree()->closestPoint(p3(9.0f, 9.0f, 10.0f), unbounded, hit));
  EXPECT_EQ(hit.face, 3u);
  EXPECT_EQ(hit.squaredDistance, 1.0f);
}
