#include "jev3d/algo/measurement/volumeDistance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "jev3d/algo/measurement/distance.h"
#include "jev3d/math/mathBase.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "support/meshes.h"
#include "support/recordingCallBack.h"

namespace {

using JEV::MESH::editMesh;
using JEV::MESH::editMeshInterface;
using JEV::MESH::ALGO::MEASUREMENT::volumeDistance;
using m4 = JEV::MATH::matrix4<float>;
constexpr float MAX_T = JEV::MATH::mathBase<float>::MAX_T();

struct sphereModel {
  explicit sphereModel(float r) : view(mesh) {
    testMeshes::makeSphere(mesh, 16, 32);
    for (unsigned v = 0; v < mesh.vn(); ++v) mesh.vPos(v) *= r;
    testMeshes::finishMesh(mesh);
  }
  editMesh mesh;
  editMeshInterface view;
};

// Progress is whole: 1.0 first, 100 last, never going back.
void expectFullProgress(const recordingCallBack& cb) {
  ASSERT_GE(cb.values.size(), 2u);
  EXPECT_EQ(cb.values.front(), 1.0f);
  EXPECT_EQ(cb.values.back(), 100.0f);
  EXPECT_TRUE(std::is_sorted(cb.values.begin(), cb.values.end()));
}

TEST(volumeDistance, volumesThenTestsThenColours) {
  sphereModel a(1.0f), b(1.0f), c(0.5f);
  volumeDistance vd;
  vd.setResolution(32);
  vd.addModel(0, 0, &a.view, m4::IDENTITY());
  vd.addModel(1, 0, &b.view, m4::getTranslate(1.5f, 0, 0));
  vd.addModel(1, 1, &c.view, m4::getTranslate(-3, 0, 0));
  EXPECT_FALSE(vd.updateTest());  // no volume yet

  recordingCallBack volumes;
  ASSERT_TRUE(vd.updateVolume(&volumes));
  ASSERT_TRUE(vd.getEvtVolumeDone().wait(60000));
  vd.wait();
  EXPECT_FALSE(vd.isThreadVolumeIsRunning());
  EXPECT_TRUE(vd.isVolumeValid());
  expectFullProgress(volumes);
  ASSERT_FALSE(vd.getModel(0, 0)->voxels.isEmpty());

  recordingCallBack tests;
  ASSERT_TRUE(vd.updateTest(&tests));
  ASSERT_TRUE(vd.getEvtTestDone().wait(60000));
  vd.wait();
  EXPECT_TRUE(vd.isTestValid());
  expectFullProgress(tests);
  // a's vertex at x = 1 lies 0.5 inside b; its vertex at x = -1 is nearest to c, 1.5 away
  // (c spans x from -3.5 to -2.5).
  const auto& da = vd.getModel(0, 0)->distances;
  ASSERT_EQ(da.size(), a.mesh.vn());
  float deepest = MAX_T;
  for (unsigned v = 0; v < a.mesh.vn(); ++v) deepest = std::min(deepest, da[v]);
  EXPECT_NEAR(deepest, -0.5f, 0.03f);
  // b and c are in one group: never tested against each other.
  for (float d : vd.getModel(1, 1)->distances) EXPECT_TRUE(d == MAX_T || d > 1.0f);

  ASSERT_TRUE(vd.updateColor());
  EXPECT_TRUE(vd.isColorValid());
  ASSERT_TRUE(a.mesh.hasVC());
  unsigned deepestVertex = 0;
  for (unsigned v = 0; v < a.mesh.vn(); ++v)
    if (da[v] < da[deepestVertex]) deepestVertex = v;
  EXPECT_EQ(a.mesh.vCol(deepestVertex), JEV::MESH::ALGO::MEASUREMENT::distance::getBandColors()[0]);

  // Moving a model keeps its volume and makes the tests stale.
  const auto* voxelsBefore = vd.getModel(1, 0)->voxels.cpt.distances.data();
  vd.updateTransform(1, 0, m4::getTranslate(10, 0, 0));
  EXPECT_TRUE(vd.isVolumeValid());
  EXPECT_FALSE(vd.isTestValid());
  EXPECT_FALSE(vd.isColorValid());
  EXPECT_FALSE(vd.updateColor());
  ASSERT_TRUE(vd.updateTest());
  ASSERT_TRUE(vd.getEvtTestDone().wait(60000));
  vd.wait();
  EXPECT_EQ(vd.getModel(1, 0)->voxels.cpt.distances.data(), voxelsBefore);
  for (float d : vd.getModel(0, 0)->distances) EXPECT_GT(d, 0.0f);

  // An edited mesh needs its volume again.
  vd.update(0, 0);
  EXPECT_FALSE(vd.isVolumeValid());
  EXPECT_FALSE(vd.updateTest());
}

TEST(volumeDistance, skippedPairsStayOutUntilCleared) {
  sphereModel a(1.0f), b(1.0f);
  volumeDistance vd;
  vd.setResolution(24);
  vd.addModel(0, 0, &a.view, m4::IDENTITY());
  vd.addModel(1, 0, &b.view, m4::getTranslate(1.0f, 0, 0));
  ASSERT_TRUE(vd.updateVolume());
  vd.getEvtVolumeDone().wait(60000);
  vd.wait();
  vd.addSkipTest(1, 0, 0, 0);
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(vd.updateTest());
    vd.getEvtTestDone().wait(60000);
    vd.wait();
    EXPECT_TRUE(vd.isTestValid());
    for (float d : vd.getModel(0, 0)->distances) EXPECT_EQ(d, MAX_T);
  }
  vd.clearSkipTest();
  ASSERT_TRUE(vd.updateTest());
  vd.getEvtTestDone().wait(60000);
  vd.wait();
  const auto& da = vd.getModel(0, 0)->distances;
  EXPECT_LT(*std::min_element(da.begin(), da.end()), 0.0f);
}

// Cancels the run as soon as the first job reports.
class cancellingCallBack : public recordingCallBack {
 public:
  explicit cancellingCallBack(volumeDistance& v) : target(v) {}
  bool setValue(float percent) override {
    if (percent > 1.0f && percent < 100.0f) target.cancel();
    return recordingCallBack::setValue(percent);
  }
  volumeDistance& target;
};

TEST(volumeDistance, cancelLeavesTheVolumesStaleAndARerunFinishes) {
  std::vector<std::unique_ptr<sphereModel>> spheres;
  volumeDistance vd;
  vd.setResolution(48);
  for (unsigned i = 0; i < 8; ++i) {
    spheres.push_back(std::make_unique<sphereModel>(1.0f));
    vd.addModel(i % 2, i / 2, &spheres.back()->view, m4::getTranslate(3.0f * float(i), 0, 0));
  }
  cancellingCallBack cb(vd);
  ASSERT_TRUE(vd.updateVolume(&cb));
  EXPECT_FALSE(vd.updateVolume());  // one worker at a time
  ASSERT_TRUE(vd.getEvtVolumeDone().wait(60000));
  vd.wait();
  EXPECT_FALSE(vd.isVolumeValid());
  EXPECT_EQ(cb.values.back(), 100.0f);
  unsigned computed = 0;
  for (unsigned i = 0; i < 8; ++i) computed += vd.getModel(i % 2, i / 2)->volumeValid;
  EXPECT_LT(computed, 8u);

  recordingCallBack again;
  ASSERT_TRUE(vd.updateVolume(&again));
  vd.getEvtVolumeDone().wait(60000);
  vd.wait();
  EXPECT_TRUE(vd.isVolumeValid());
  expectFullProgress(again);
}

TEST(volumeDistance, idsAndLookups) {
  sphereModel a(1.0f), b(1.0f);
  editMesh empty;
  editMeshInterface emptyView(empty);
  volumeDistance vd;
  vd.setResolution(16);
  vd.addModel(7, 2, &a.view, m4::IDENTITY());
  vd.addModel(3, 5, &b.view, m4::IDENTITY());
  vd.addModel(3, 9, &emptyView, m4::IDENTITY());
  EXPECT_EQ(vd.getUniqueId(3, 5), 0);
  EXPECT_EQ(vd.getUniqueId(3, 9), 1);
  EXPECT_EQ(vd.getUniqueId(7, 2), 2);
  EXPECT_EQ(vd.getUniqueId(1, 1), 255);
  uint64_t g = 0, m = 0;
  ASSERT_TRUE(vd.getIndexFromUniqueId(2, g, m));
  EXPECT_EQ(g, 7u);
  EXPECT_EQ(m, 2u);
  EXPECT_FALSE(vd.getIndexFromUniqueId(3, g, m));
  ASSERT_TRUE(vd.find(&b.view, g, m));
  EXPECT_EQ(g, 3u);
  EXPECT_EQ(m, 5u);
  EXPECT_FALSE(vd.find(nullptr, g, m));

  // The empty mesh gets an empty record and does not hold the others back.
  ASSERT_TRUE(vd.updateVolume());
  vd.getEvtVolumeDone().wait(60000);
  vd.wait();
  EXPECT_TRUE(vd.isVolumeValid());
  EXPECT_TRUE(vd.getModel(3, 9)->voxels.isEmpty());
  ASSERT_TRUE(vd.updateTest());
  vd.getEvtTestDone().wait(60000);
  vd.wait();
  EXPECT_TRUE(vd.isTestValid());

  vd.clear();
  EXPECT_EQ(vd.getModel(7, 2), nullptr);
}

}  // namespace

namespace {

// The voxel volume of a model: inside voxels and half the surface ones.
double voxelVolume(const volumeDistance::modelData& m) {
  using namespace JEV::MESH::ALGO::REMESHING;
  const volumeDescriptor& v = m.voxels.volume;
  double cells = 0;
  for (uint64_t i = 0; i < v.voxelCount(); ++i)
    cells += v.voxels[i] == VOXEL_INSIDE ? 1.0 : v.voxels[i] == VOXEL_ON_SURFACE ? 0.5 : 0.0;
  return cells * v.scale * v.scale * v.scale;
}

}  // namespace

TEST(volumeDistance, anOpenScanIsClosedBeforeItIsVoxelised) {
  sphereModel closed(1.0f), open(1.0f);
  // The top cap (three rings of faces) cut off: one loop of 32 vertices.
  for (unsigned f = 0; f < 3 * 32; ++f) open.mesh.deleteFace(f);
  testMeshes::finishMesh(open.mesh);
  ASSERT_GT(testMeshes::borderEdges(open.mesh), 0u);

  // The small sphere at the centre must lie inside the open model as inside a closed one.
  sphereModel small(0.3f);
  volumeDistance vd;
  vd.setResolution(48);
  vd.addModel(0, 0, &closed.view, m4::IDENTITY());
  vd.addModel(0, 1, &small.view, m4::IDENTITY());
  vd.addModel(1, 0, &open.view, m4::IDENTITY());
  ASSERT_TRUE(vd.updateVolume());
  vd.wait();
  ASSERT_TRUE(vd.isVolumeValid());
  const volumeDistance::modelData& c = *vd.getModel(0, 0);
  const volumeDistance::modelData& o = *vd.getModel(1, 0);
  const double closedVolume = voxelVolume(c), openVolume = voxelVolume(o);
  EXPECT_NEAR(closedVolume, testMeshes::signedVolume(closed.mesh), 0.05 * closedVolume);
  EXPECT_NEAR(openVolume, closedVolume, 0.03 * closedVolume);
  // The source stays open; the patch's own vertices stand for no source vertex.
  EXPECT_GT(testMeshes::borderEdges(open.mesh), 0u);
  EXPECT_EQ(testMeshes::borderEdges(o.clone), 0u);
  ASSERT_EQ(o.sourceOf.size(), o.clone.vn());
  EXPECT_GT(o.clone.vn(), open.mesh.vn());
  for (unsigned v = open.mesh.vn(); v < o.clone.vn(); ++v) EXPECT_EQ(o.sourceOf[v], 0xFFFFFFFFu);

  ASSERT_TRUE(vd.updateTest());
  vd.wait();
  ASSERT_TRUE(vd.isTestValid());
  const std::vector<float>& d = vd.getModel(0, 1)->distances;
  ASSERT_EQ(d.size(), small.mesh.vn());
  // Inside, by 0.7 from the sphere and a little less below the flat patch.
  for (unsigned v = 0; v < d.size(); ++v) {
    EXPECT_LT(d[v], -0.5f) << v;
    EXPECT_GT(d[v], -0.75f) << v;
  }
}
