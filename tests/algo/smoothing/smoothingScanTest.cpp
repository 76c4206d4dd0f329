// Every scheme on a real scan (holes, isolated vertices), through the scan mesh where the
// filter takes any mesh and through an editable copy where it takes an editMesh.

#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <vector>

#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/algo/smoothing/bilateralSmooth.h"
#include "jev3d/algo/smoothing/curvatureTangentialSmooth.h"
#include "jev3d/algo/smoothing/laplacianSmooth.h"
#include "jev3d/algo/smoothing/localSmoothingFunctor.h"
#include "jev3d/algo/smoothing/twoStepSmooth.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "smoothingMeshes.h"
#include "support/dataFiles.h"
#include "support/meshes.h"

namespace {

using JEV::MESH::editMesh;
using JEV::MESH::POSTPROCESSING::triMesh;
using namespace JEV::MESH::ALGO::SMOOTHING;
using testMeshes::p3;
using namespace smoothingMeshes;

const char* const BUNNY = "ply/stanford_bun_zipper.ply";

bool finite(const p3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

// Vertices used by at least one face.
std::vector<unsigned char> usedVertices(const JEV::MESH::meshInterface& m) {
  std::vector<unsigned char> used(m.vn(), 0);
  for (unsigned f = 0; f < m.fn(); ++f)
    for (unsigned i = 0; i < m.f2vNum(f); ++i) used[m.fV(f, i)] = 1;
  return used;
}

TEST(smoothingScanTest, LaplacianOnTheScanMeshHoldsTheHolesRims) {
  JEV3D_REQUIRE_DATA(BUNNY);
  triMesh bunny;
  ASSERT_TRUE(bunny.readFromFile(dataFile(BUNNY)));
  std::vector<unsigned char> border;
  bunny.markBorderVertex(border);
  std::vector<p3> before(bunny.vn());
  for (unsigned v = 0; v < bunny.vn(); ++v) before[v] = bunny.vPos(v);
  computeLaplacianSmooth(bunny, 3, false, nullptr);
  unsigned rim = 0, moved = 0;
  for (unsigned v = 0; v < bunny.vn(); ++v) {
    ASSERT_TRUE(finite(bunny.vPos(v))) << v;
    if (border[v]) {
      ++rim;
      EXPECT_TRUE(same(bunny.vPos(v), before[v])) << v;
    } else {
      moved += !same(bunny.vPos(v), before[v]);
    }
  }
  EXPECT_GT(rim, 50u);
  EXPECT_GT(moved, 30000u);
}

TEST(smoothingScanTest, BilateralAndTwoStepOnTheScanMesh) {
  JEV3D_REQUIRE_DATA(BUNNY);
  triMesh bunny;
  ASSERT_TRUE(bunny.readFromFile(dataFile(BUNNY)));
  std::vector<p3> result;
  testing::internal::CaptureStdout();
  computeBilateralSmooth(bunny, 0.5f, 0.5f, result, nullptr);
  testing::internal::GetCapturedStdout();
  ASSERT_EQ(result.size(), bunny.vn());
  for (const p3& p : result) ASSERT_TRUE(finite(p));

  triMesh out;
  computeTwoStep(&bunny, &out, 60.f, 2, 3, 3, true, false, nullptr);
  ASSERT_EQ(out.vn(), bunny.vn());
  ASSERT_EQ(out.fn(), bunny.fn());
  // Vertices of no face divide by a count of 0, as the filter says; the rest are fine.
  const std::vector<unsigned char> used = usedVertices(bunny);
  unsigned lone = 0;
  for (unsigned v = 0; v < out.vn(); ++v) {
    if (used[v]) {
      ASSERT_TRUE(finite(out.vPos(v))) << v;
    } else {
      ++lone;
      EXPECT_TRUE(std::isnan(out.vPos(v).x)) << v;
    }
  }
  EXPECT_GT(lone, 1000u);
}

TEST(smoothingScanTest, EditableFormsKeepTheMeshConsistent) {
  JEV3D_REQUIRE_DATA(BUNNY);
  triMesh bunny;
  ASSERT_TRUE(bunny.readFromFile(dataFile(BUNNY)));
  editMesh m;
  JEV::MESH::editMeshInterface view(m);
  bunny.copyTo(view);
  finish(m);

  computeCurvatureTangentialSmooth(m, 2, false);
  EXPECT_MESH_VALID(m);
  for (unsigned v = 0; v < m.vn(); ++v) ASSERT_TRUE(finite(m.vPos(v))) << v;

  std::vector<unsigned> centres;
  for (unsigned v = 0; v < m.vn(); v += 997) centres.push_back(v);
  std::vector<unsigned char> modified;
  localSmoothingFunctor(3).localSmoothing(m, centres, 0.01f, modified);
  unsigned touched = 0;
  for (unsigned v = 0; v < m.vn(); ++v) {
    ASSERT_TRUE(finite(m.vPos(v))) << v;
    touched += modified[v];
  }
  EXPECT_GT(touched, centres.size());
  EXPECT_MESH_VALID(m);
}

}  // namespace
