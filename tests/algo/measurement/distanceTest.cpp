#include "jev3d/algo/measurement/distance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/math/mathBase.h"
#include "jev3d/math/triangleQueries.h"
#include "jev3d/math/triangleTree.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "support/dataFiles.h"
#include "support/meshes.h"
#include "support/recordingCallBack.h"

namespace {

using JEV::CORE::color;
using JEV::MESH::editMesh;
using JEV::MESH::editMeshInterface;
using JEV::MESH::ALGO::MEASUREMENT::distance;
using p3 = JEV::MATH::point3<float>;
constexpr float MAX_T = JEV::MATH::mathBase<float>::MAX_T();

// A closed sphere of radius r about c, fine enough that its faces lie within 2e-3·r of the
// true sphere.
void makeSphere(editMesh& m, float r, const p3& c) {
  testMeshes::makeSphere(m, 64, 128);
  for (unsigned v = 0; v < m.vn(); ++v) m.vPos(v) = m.vPos(v) * r + c;
  testMeshes::finishMesh(m);
}

// Distance of p to the true sphere, negative inside.
float sphereDistance(const p3& p, float r, const p3& c) { return (p - c).norm() - r; }

// Signed distances of points to b by its normals, with the closest points and faces.
struct signedMeasure {
  std::vector<float> d;
  std::vector<p3> closest;
  std::vector<unsigned> faces;
};
signedMeasure measureSigned(const std::vector<p3>& points, editMeshInterface& b) {
  signedMeasure m;
  EXPECT_TRUE(distance::computeSignedDistance(points, &b, true, MAX_T, m.d, m.closest, m.faces));
  return m;
}

TEST(distance, signsInsideAndOutsideSphere) {
  editMesh sphere;
  makeSphere(sphere, 1.0f, p3(0, 0, 0));
  editMeshInterface b(sphere);
  std::mt19937 rng(7);
  std::uniform_real_distribution<float> u(-1.f, 1.f);
  std::vector<p3> points;
  while (points.size() < 400) {
    p3 dir(u(rng), u(rng), u(rng));
    if (dir.squaredNorm() < 1e-2f || dir.squaredNorm() > 1.f) continue;
    dir.normalize();
    // Radii from 0.3 to 1.7, none close enough to the surface to flip on its facets.
    const float radius = 0.3f + 1.4f * float(points.size() % 20) / 19.f;
    if (std::fabs(radius - 1.f) < 0.02f) continue;
    points.push_back(dir * radius);
  }
  const signedMeasure m = measureSigned(points, b);
  ASSERT_EQ(m.d.size(), points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    const float expected = sphereDistance(points[i], 1.f, p3(0, 0, 0));
    EXPECT_EQ(m.d[i] < 0, expected < 0) << i;
    EXPECT_NEAR(m.d[i], expected, 3e-3f) << i;
    EXPECT_NEAR((m.closest[i] - points[i]).norm(), std::fabs(m.d[i]), 1e-5f);
    EXPECT_LT(m.faces[i], sphere.fn());
  }
  // Without normals the same sizes come back unsigned.
  std::vector<float> unsignedD;
  ASSERT_TRUE(distance::computeSignedDistance(points, &b, false, MAX_T, unsignedD));
  for (std::size_t i = 0; i < points.size(); ++i) EXPECT_FLOAT_EQ(unsignedD[i], std::fabs(m.d[i]));
}

TEST(distance, signsInsideAndOutsideCube) {
  editMesh cube;
  testMeshes::makeCube(cube);
  testMeshes::finishMesh(cube);
  editMeshInterface b(cube);
  // Inside, outside beside faces, beyond edges and beyond corners.
  const std::vector<std::pair<p3, float>> cases = {{p3(0.5f, 0.5f, 0.5f), -0.5f},
                                                   {p3(0.9f, 0.5f, 0.5f), -0.1f},
                                                   {p3(0.5f, 0.05f, 0.5f), -0.05f},
                                                   {p3(0.2f, 0.3f, 0.1f), -0.1f},
                                                   {p3(2.0f, 0.5f, 0.5f), 1.0f},
                                                   {p3(0.5f, 0.5f, -0.25f), 0.25f},
                                                   {p3(1.5f, 1.5f, 0.5f), std::sqrt(0.5f)},
                                                   {p3(-1.f, -1.f, -1.f), std::sqrt(3.f)},
                                                   {p3(0.5f, -0.5f, 1.5f), std::sqrt(0.5f)}};
  std::vector<p3> points;
  for (const auto& c : cases) points.push_back(c.first);
  std::vector<float> d;
  ASSERT_TRUE(distance::computeSignedDistance(points, &b, true, MAX_T, d));
  for (std::size_t i = 0; i < cases.size(); ++i) EXPECT_NEAR(d[i], cases[i].second, 1e-5f) << i;
}

TEST(distance, offsetSpheresMatchClosedForm) {
  // The vertices of a sphere about the origin against a sphere of radius 0.8 about
  // (0.5, 0, 0): some of a's vertices lie inside b, most outside.
  editMesh sa, sb;
  makeSphere(sa, 1.0f, p3(0, 0, 0));
  makeSphere(sb, 0.8f, p3(0.5f, 0, 0));
  editMeshInterface a(sa), b(sb);
  std::vector<float> d;
  std::vector<p3> closest;
  std::vector<unsigned> faces;
  recordingCallBack cb;
  ASSERT_TRUE(distance::computeSignedDistance(&a, &b, true, MAX_T, d, closest, faces, &cb));
  ASSERT_EQ(d.size(), sa.vn());
  unsigned inside = 0;
  for (unsigned v = 0; v < sa.vn(); ++v) {
    const float expected = sphereDistance(sa.vPos(v), 0.8f, p3(0.5f, 0, 0));
    inside += expected < -0.01f;
    EXPECT_NEAR(d[v], expected, 2e-3f) << v;
  }
  EXPECT_GT(inside, 100u);
  ASSERT_GE(cb.values.size(), 3u);
  EXPECT_EQ(cb.values.front(), 1.0f);
  EXPECT_EQ(cb.values.back(), 100.0f);
  EXPECT_TRUE(std::is_sorted(cb.values.begin(), cb.values.end()));

  // The unsigned forms agree with the sizes.
  std::vector<float> plain, plainClosest;
  ASSERT_TRUE(distance::computeDistance(&a, &b, MAX_T, plain));
  std::vector<p3> closest2;
  std::vector<unsigned> faces2;
  ASSERT_TRUE(distance::computeClosestPoint(&a, &b, MAX_T, plainClosest, closest2, faces2));
  for (unsigned v = 0; v < sa.vn(); ++v) {
    EXPECT_FLOAT_EQ(plain[v], std::fabs(d[v]));
    EXPECT_FLOAT_EQ(plainClosest[v], plain[v]);
    EXPECT_EQ(closest2[v], closest[v]);
    EXPECT_EQ(faces2[v], faces[v]);
  }
}

TEST(distance, vertexOnSurfaceIsZeroAndOutside) {
  editMesh sphere;
  makeSphere(sphere, 1.0f, p3(0, 0, 0));
  editMeshInterface b(sphere);
  std::vector<float> d;
  ASSERT_TRUE(distance::computeSignedDistance(&b, &b, true, MAX_T, d));
  for (float x : d) {
    EXPECT_EQ(x, 0.0f);
    EXPECT_FALSE(std::signbit(x));
  }
  // A point inside a face, pushed by nothing.
  const p3 centre = (sphere.vPos(sphere.fV(200, 0)) + sphere.vPos(sphere.fV(200, 1)) +
                     sphere.vPos(sphere.fV(200, 2))) *
                    (1.f / 3.f);
  std::vector<p3> closest;
  std::vector<unsigned> faces;
  ASSERT_TRUE(
      distance::computeSignedDistance(std::vector<p3>{centre}, &b, true, MAX_T, d, closest, faces));
  EXPECT_LT(std::fabs(d[0]), 1e-6f);
  EXPECT_FALSE(std::signbit(d[0]) && d[0] != 0.0f);
}

TEST(distance, beyondMaxDistanceKeepsMaxT) {
  editMesh sphere;
  makeSphere(sphere, 1.0f, p3(0, 0, 0));
  editMeshInterface b(sphere);
  const std::vector<p3> points = {p3(0, 0, 3.0f), p3(0, 0, 1.5f), p3(6, 0, 0)};
  std::vector<float> d;
  std::vector<p3> closest;
  std::vector<unsigned> faces;
  ASSERT_TRUE(distance::computeSignedDistance(points, &b, true, 1.0f, d, closest, faces));
  EXPECT_EQ(d[0], MAX_T);
  EXPECT_EQ(closest[0], p3(MAX_T, MAX_T, MAX_T));
  EXPECT_EQ(faces[0], 0xFFFFFFFFu);
  EXPECT_NEAR(d[1], 0.5f, 1e-3f);
  EXPECT_EQ(d[2], MAX_T);
}

TEST(distance, deletedVerticesAndNullMeshes) {
  editMesh sa, sb;
  makeSphere(sa, 1.0f, p3(0, 0, 0));
  makeSphere(sb, 0.5f, p3(0, 0, 0));
  editMeshInterface a(sa), b(sb);
  std::vector<float> d;
  EXPECT_FALSE(distance::computeDistance(nullptr, &b, MAX_T, d));
  EXPECT_FALSE(distance::computeDistance(&a, nullptr, MAX_T, d));
  EXPECT_FALSE(distance::computeSignedDistance(std::vector<p3>{}, nullptr, true, MAX_T, d));
  sa.deleteVertex(0);
  ASSERT_TRUE(distance::computeSignedDistance(&a, &b, true, MAX_T, d));
  EXPECT_EQ(d[0], MAX_T);
  EXPECT_NEAR(d[1], 0.5f, 2e-3f);
  // An empty surface finds nothing.
  editMesh empty;
  editMeshInterface e(empty);
  ASSERT_TRUE(distance::computeDistance(&a, &e, MAX_T, d));
  EXPECT_TRUE(std::all_of(d.begin(), d.end(), [](float x) { return x == MAX_T; }));
}

// The search from one point to the next must give exactly what a fresh search gives,
// whatever order the points come in, in runs on several threads.
TEST(distance, walkingSearchEqualsFreshSearch) {
  editMesh sb;
  testMeshes::makeSphere(sb, 24, 48);
  for (unsigned v = 0; v < sb.vn(); ++v) sb.vPos(v) *= p3(1.f, 0.6f, 0.3f);
  testMeshes::finishMesh(sb);
  editMeshInterface b(sb);
  std::mt19937 rng(3);
  std::uniform_real_distribution<float> u(-1.5f, 1.5f);
  std::vector<p3> points(60000);
  for (auto& p : points) p = p3(u(rng), u(rng), u(rng));
  // Half in a walk of small steps, half scattered.
  for (std::size_t i = 1; i < points.size() / 2; ++i)
    points[i] = points[i - 1] + p3(u(rng), u(rng), u(rng)) * 0.02f;
  std::vector<p3> positions(sb.vn());
  for (unsigned v = 0; v < sb.vn(); ++v) positions[v] = sb.vPos(v);
  std::vector<unsigned> tris;
  for (unsigned f = 0; f < sb.fn(); ++f)
    for (unsigned i = 1; i + 1 < sb.fVNum(f); ++i)
      tris.insert(tris.end(), {sb.fV(f, 0), sb.fV(f, i), sb.fV(f, i + 1)});
  JEV::MATH::triangleTree tree;
  tree.build(positions.data(), positions.size(), tris.data(), tris.size() / 3);
  std::vector<float> d;
  ASSERT_TRUE(distance::computeSignedDistance(points, &b, false, MAX_T, d));
  for (std::size_t i = 0; i < points.size(); ++i) {
    JEV::MATH::closestPointHit hit;
    ASSERT_TRUE(tree.closestPoint(points[i], MAX_T, hit));
    EXPECT_FLOAT_EQ(d[i], std::sqrt(hit.squaredDistance)) << i;
  }
}

TEST(distance, signedDistanceOfAScanWalkEqualsBruteForce) {
  // Points in scan order on a surface offset from b, inside and outside, as a second scan
  // of the same object gives them: each query starts from the triangle found last.
  editMesh sb;
  testMeshes::makeSphere(sb, 20, 40);
  testMeshes::finishMesh(sb);
  editMeshInterface b(sb);
  std::mt19937 rng(17);
  std::uniform_real_distribution<float> jitter(-0.01f, 0.01f);
  std::vector<p3> points;
  for (int i = 0; i < 60; ++i) {
    for (int j = 0; j < 80; ++j) {
      const float polar = 3.14159265f * (float(i) + 0.5f) / 60.f,
                  around = 6.2831853f * float(j) / 80.f;
      const float radius = (i / 10) % 2 == 0 ? 1.04f : 0.95f;
      points.push_back(p3(std::sin(polar) * std::cos(around), std::sin(polar) * std::sin(around),
                          std::cos(polar)) *
                           radius +
                       p3(jitter(rng), jitter(rng), jitter(rng)));
    }
  }
  const signedMeasure m = measureSigned(points, b);
  ASSERT_EQ(m.d.size(), points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    float best = MAX_T;
    for (unsigned f = 0; f < sb.fn(); ++f) {
      for (unsigned k = 1; k + 1 < sb.fVNum(f); ++k) {
        float u, v;
        const p3 q = JEV::MATH::closestPointOnTriangle(
            points[i], sb.vPos(sb.fV(f, 0)), sb.vPos(sb.fV(f, k)), sb.vPos(sb.fV(f, k + 1)), u, v);
        best = std::min(best, (q - points[i]).squaredNorm());
      }
    }
    EXPECT_EQ(std::fabs(m.d[i]), std::sqrt(best)) << i;
    EXPECT_EQ((m.closest[i] - points[i]).squaredNorm(), best) << i;
    ASSERT_LT(m.faces[i], sb.fn());
    // Inside the sphere the sign is negative, outside positive.
    EXPECT_EQ(m.d[i] < 0.f, points[i].norm() < 1.f) << i;
  }
}

TEST(distance, maxDistanceIsLargestVertexDistance) {
  editMesh sa, sb;
  makeSphere(sa, 1.2f, p3(0.1f, 0, 0));
  makeSphere(sb, 1.0f, p3(0, 0, 0));
  editMeshInterface a(sa), b(sb);
  float hausdorff = 0;
  recordingCallBack cb;
  ASSERT_TRUE(distance::computeMaxDistance(&a, &b, hausdorff, &cb));
  std::vector<float> d;
  ASSERT_TRUE(distance::computeDistance(&a, &b, MAX_T, d));
  EXPECT_EQ(hausdorff, *std::max_element(d.begin(), d.end()));
  EXPECT_NEAR(hausdorff, 0.3f, 3e-3f);
  EXPECT_EQ(cb.values.front(), 1.0f);
  EXPECT_EQ(cb.values.back(), 100.0f);
  editMesh empty;
  editMeshInterface e(empty);
  EXPECT_FALSE(distance::computeMaxDistance(&e, &b, hausdorff));
  ASSERT_TRUE(distance::computeMaxDistance(&a, &e, hausdorff));
  EXPECT_EQ(hausdorff, MAX_T);
}

TEST(distance, maxDistanceBetweenRealScans) {
  JEV3D_REQUIRE_DATA("ply/stanford_bun_zipper.ply");
  using JEV::MESH::POSTPROCESSING::triMesh;
  triMesh fine, coarse;
  ASSERT_TRUE(fine.readPlyFromFile(dataFile("ply/stanford_bun_zipper.ply")));
  ASSERT_TRUE(coarse.readPlyFromFile(dataFile("ply/stanford_bun_zipper_res4.ply")));
  for (auto [a, b] : {std::make_pair(&fine, &coarse), std::make_pair(&coarse, &fine)}) {
    float hausdorff = 0;
    ASSERT_TRUE(distance::computeMaxDistance(a, b, hausdorff));
    std::vector<float> d;
    ASSERT_TRUE(distance::computeDistance(a, b, MAX_T, d));
    float largest = 0;
    for (unsigned v = 0; v < a->vn(); ++v)
      if (!a->isVertDeleted(v)) largest = std::max(largest, d[v]);
    EXPECT_EQ(hausdorff, largest);
    EXPECT_GT(hausdorff, 0.f);
    EXPECT_LT(hausdorff, 0.05f);
  }
}

TEST(distance, colorBands) {
  const color* bands = distance::getBandColors();
  // Five bands of width 1 over [0, 5]: each boundary opens the next band.
  EXPECT_EQ(distance::getColor(0, 5, -3.f), bands[0]);
  EXPECT_EQ(distance::getColor(0, 5, 0.5f), bands[0]);
  EXPECT_EQ(distance::getColor(0, 5, 1.0f), bands[1]);
  EXPECT_EQ(distance::getColor(0, 5, 2.5f), bands[2]);
  EXPECT_EQ(distance::getColor(0, 5, 3.99f), bands[3]);
  EXPECT_EQ(distance::getColor(0, 5, 4.0f), bands[4]);
  EXPECT_EQ(distance::getColor(0, 5, 50.f), bands[4]);
  EXPECT_EQ(distance::getColor(-1, 1, -0.5f), bands[1]);
  EXPECT_EQ(distance::getColor(0, 5, MAX_T), distance::getNoValueColor());
  for (int i = 0; i < 5; ++i)
    for (int j = i + 1; j < 5; ++j) EXPECT_NE(bands[i], bands[j]);
}

TEST(distance, serviceSkipsPairsWithFarBoxes) {
  editMesh sa, sb, sc;
  makeSphere(sa, 1.0f, p3(0, 0, 0));
  makeSphere(sb, 1.0f, p3(10, 0, 0));
  makeSphere(sc, 0.5f, p3(0.2f, 0, 0));
  editMeshInterface a(sa), b(sb), c(sc);
  distance service;
  const unsigned ia = service.addModel(&a), ib = service.addModel(&b), ic = service.addModel(&c);
  service.setMaxDistance(1.0f);

  recordingCallBack skipped;
  EXPECT_FALSE(service.updateDistance(ia, ib, &skipped));
  EXPECT_EQ(skipped.values, (std::vector<float>{1.0f, 100.0f}));
  const auto& da = service.getModelDistPerVert(ia);
  ASSERT_EQ(da.size(), sa.vn());
  EXPECT_TRUE(std::all_of(da.begin(), da.end(), [](float x) { return x == MAX_T; }));

  recordingCallBack measured;
  EXPECT_TRUE(service.updateDistance(ia, ic, &measured));
  EXPECT_GT(measured.values.size(), 2u);
  for (unsigned v = 0; v < sa.vn(); ++v)
    EXPECT_NEAR(da[v], sphereDistance(sa.vPos(v), 0.5f, p3(0.2f, 0, 0)), 2e-3f);
  float lo, hi;
  service.getMinMaxValue(lo, hi);
  EXPECT_NEAR(lo, 0.3f, 2e-3f);
  EXPECT_NEAR(hi, 0.7f, 2e-3f);

  // Inside a: negative distances.
  EXPECT_TRUE(service.updateDistance(ic, ia));
  service.getMinMaxValue(lo, hi);
  EXPECT_NEAR(lo, -0.7f, 2e-3f);

  // With a far limit the far pair is measured, and a keeps its nearer distances.
  service.setMaxDistance(MAX_T);
  EXPECT_TRUE(service.updateDistance(ia, ib));
  for (unsigned v = 0; v < sa.vn(); ++v) EXPECT_LT(da[v], 0.71f);

  service.updateColor();
  ASSERT_TRUE(sa.hasVC());
  for (unsigned v = 0; v < sa.vn(); ++v) EXPECT_EQ(sa.vCol(v), distance::getColor(lo, hi, da[v]));
  // b was never measured against anything within reach: no value anywhere.
  for (unsigned v = 0; v < sb.vn(); ++v) EXPECT_EQ(sb.vCol(v), distance::getNoValueColor());

  service.resetDistance();
  EXPECT_TRUE(std::all_of(da.begin(), da.end(), [](float x) { return x == MAX_T; }));
  service.getMinMaxValue(lo, hi);
  EXPECT_EQ(lo, MAX_T);
  EXPECT_EQ(hi, -MAX_T);

  // A moved model is measured against its new place.
  sc.translate(p3(-0.2f, 0, 0));
  service.updateModel(ic);
  EXPECT_TRUE(service.updateDistance(ia, ic));
  for (unsigned v = 0; v < sa.vn(); ++v) EXPECT_NEAR(da[v], 0.5f, 2e-3f);
}

TEST(distance, solidIntersectionOfTheModels) {
  editMesh sa, sb, sc;
  makeSphere(sa, 1.0f, p3(0, 0, 0));
  makeSphere(sb, 0.5f, p3(1.2f, 0, 0));
  makeSphere(sc, 0.5f, p3(5, 0, 0));
  editMeshInterface a(sa), b(sb), c(sc);
  distance service;
  service.addModel(&a);
  service.addModel(&b);
  service.addModel(&c);
  recordingCallBack cb;
  EXPECT_TRUE(service.computeSolidIntersection(&cb, 32));
  EXPECT_EQ(cb.values.back(), 100.0f);
  // b pokes 0.3 into a: b's vertex at x = 0.7 lies 0.3 inside a, a's at x = 1 lies 0.3
  // inside b.
  const auto& db = service.getModelDistPerVert(1);
  EXPECT_NEAR(*std::min_element(db.begin(), db.end()), -0.3f, 0.02f);
  const auto& da = service.getModelDistPerVert(0);
  EXPECT_NEAR(*std::min_element(da.begin(), da.end()), -0.3f, 0.02f);
  for (float d : service.getModelDistPerVert(2)) EXPECT_EQ(d, 0.0f);
  float lo, hi;
  service.getMinMaxValue(lo, hi);
  EXPECT_NEAR(lo, -0.3f, 0.02f);
  EXPECT_EQ(hi, 0.0f);

  distance apart;
  apart.addModel(&a);
  apart.addModel(&c);
  EXPECT_FALSE(apart.computeSolidIntersection(nullptr, 32));
}

}  // namespace
