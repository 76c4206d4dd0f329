#include "jev3d/editing/undoRedoStack.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/editing/undoRedoRecord.h"
#include "jev3d/math/matrix4.h"
#include "meshStores.h"
#include "support/meshes.h"

using JEV::MESH::editMesh;
using JEV::SYSTEM::makeDelegate;
using JEV::SYSTEM::undoRedoRecord;
using JEV::SYSTEM::undoRedoRecordBase;
using JEV::SYSTEM::undoRedoStack;

namespace {

// Writes snapshots back into a mesh, as an application's undo delegate does.
struct meshRestorer {
  editMesh* target;
  void restore(editMesh& saved) { *target = saved; }
};

// A record of a given weight that logs its calls and its destruction.
struct loggedRecord : undoRedoRecordBase {
  loggedRecord(std::vector<std::string>& l, std::string n, unsigned bytes)
      : log(l), name(std::move(n)), weight(bytes) {}
  ~loggedRecord() override { log.push_back("delete " + name); }
  void undo() override { log.push_back("undo " + name); }
  void redo() override { log.push_back("redo " + name); }
  unsigned int getNumBytes() const override { return weight; }
  bool matches(void* arg) const override {
    return arg == static_cast<const void*>(&name) || arg == tag;
  }
  std::vector<std::string>& log;
  std::string name;
  unsigned weight;
  void* tag = nullptr;
};

struct disposer {
  std::vector<undoRedoRecordBase*> got;
  void take(undoRedoRecordBase* r) { got.push_back(r); }
};

undoRedoRecord<editMesh>* snapshot(const editMesh& m, meshRestorer& r) {
  auto d = makeDelegate(&r, &meshRestorer::restore);
  return new undoRedoRecord<editMesh>(m, d, d);
}

}  // namespace

TEST(undoRedoStack, undoAndRedoOfATopologyEditRestoreEveryStore) {
  editMesh m;
  testMeshes::makeGrid(m, 4, 3, true);
  testMeshes::finishMesh(m);
  m.selectFace(5);
  m.selectFace(6);
  meshRestorer restorer{&m};
  undoRedoStack stack(1u << 30);
  stack.push(snapshot(m, restorer));
  const editMesh before = m;

  m.extrudeRegion();
  m.computeNormalizedNormals();
  ASSERT_MESH_VALID(m);
  stack.push(snapshot(m, restorer));
  const editMesh after = m;
  ASSERT_NE(after.fn(), before.fn());

  ASSERT_TRUE(stack.undo());
  editMesh expectBefore = before;
  meshStores::expectSameMesh(m, expectBefore);
  EXPECT_MESH_VALID(m);
  EXPECT_EQ(stack.undoSize.cV(), 1u);
  EXPECT_EQ(stack.redoSize.cV(), 1u);

  ASSERT_TRUE(stack.redo());
  editMesh expectAfter = after;
  meshStores::expectSameMesh(m, expectAfter);
  EXPECT_MESH_VALID(m);

  // After redo, undo returns to the same state again.
  ASSERT_TRUE(stack.undo());
  meshStores::expectSameMesh(m, expectBefore);
}

TEST(undoRedoStack, snapshotAndCommandUndoDiffer) {
  std::vector<std::string> log;
  undoRedoStack stack(1000);
  stack.push(new loggedRecord(log, "a", 1));
  EXPECT_FALSE(stack.undo());
  EXPECT_EQ(stack.getUndoSize(), 1u);
  EXPECT_EQ(stack.undoSize.cV(), 1u);
  EXPECT_TRUE(log.empty());
  EXPECT_TRUE(stack.undoLast());
  EXPECT_EQ(stack.getUndoSize(), 0u);
  EXPECT_EQ(stack.getRedoSize(), 1u);
  EXPECT_EQ(log, std::vector<std::string>{"undo a"});
  EXPECT_FALSE(stack.undoLast());

  log.clear();
  EXPECT_TRUE(stack.redo());
  stack.push(new loggedRecord(log, "b", 1));
  stack.push(new loggedRecord(log, "c", 1));
  // Snapshot undo: c leaves for redo, b (the state before c) is put back.
  EXPECT_TRUE(stack.undo());
  EXPECT_EQ(log, (std::vector<std::string>{"redo a", "undo b"}));
  EXPECT_EQ(stack.top()->getNumBytes(), 1u);
  EXPECT_EQ(stack.getTotalBytes(), 3u);
}

TEST(undoRedoStack, pushAfterUndoDropsTheRedoHistory) {
  std::vector<std::string> log;
  undoRedoStack stack(1000);
  stack.push(new loggedRecord(log, "a", 10));
  stack.push(new loggedRecord(log, "b", 20));
  ASSERT_TRUE(stack.undo());
  EXPECT_EQ(stack.redoSize.cV(), 1u);
  stack.push(new loggedRecord(log, "c", 5));
  EXPECT_EQ(stack.getRedoSize(), 0u);
  EXPECT_EQ(stack.redoSize.cV(), 0u);
  EXPECT_FALSE(stack.redo());
  EXPECT_EQ(log.back(), "delete b");
  EXPECT_EQ(stack.getTotalBytes(), 15u);
}

TEST(undoRedoStack, theByteLimitEvictsFromTheFrontThroughTheDiscardDelegate) {
  std::vector<std::string> log;
  disposer bin;
  undoRedoStack stack(100);
  stack.discardDelegate = makeDelegate(&bin, &disposer::take);
  auto* a = new loggedRecord(log, "a", 40);
  auto* b = new loggedRecord(log, "b", 40);
  stack.push(a);
  stack.push(b);
  EXPECT_TRUE(bin.got.empty());
  stack.push(new loggedRecord(log, "c", 40));
  // 120 > 100: the oldest goes, handed to the delegate, which owns it now.
  ASSERT_EQ(bin.got.size(), 1u);
  EXPECT_EQ(bin.got[0], a);
  EXPECT_EQ(stack.getUndoFront(), b);
  EXPECT_EQ(stack.getTotalBytes(), 80u);
  EXPECT_EQ(stack.undoSize.cV(), 2u);
  EXPECT_TRUE(log.empty());  // nothing deleted by the stack itself

  // A record larger than the limit drains everything, itself included.
  stack.push(new loggedRecord(log, "huge", 500));
  EXPECT_EQ(stack.getUndoSize(), 0u);
  EXPECT_EQ(bin.got.size(), 4u);
  EXPECT_EQ(stack.getTotalBytes(), 0u);
  for (auto* r : bin.got) delete r;
}

TEST(undoRedoStack, aZeroLimitLeavesNothingAfterEachPush) {
  std::vector<std::string> log;
  undoRedoStack stack(0);
  for (int i = 0; i < 3; ++i) {
    stack.push(new loggedRecord(log, "r" + std::to_string(i), 1));
    EXPECT_EQ(stack.getUndoSize(), 0u);
    EXPECT_EQ(stack.undoSize.cV(), 0u);
  }
  EXPECT_EQ(log, (std::vector<std::string>{"delete r0", "delete r1", "delete r2"}));
}

TEST(undoRedoStack, eraseAndEraseIfCondition) {
  std::vector<std::string> log;
  undoRedoStack stack(1000);
  int owner = 0;
  auto* a = new loggedRecord(log, "a", 1);
  auto* b = new loggedRecord(log, "b", 2);
  auto* c = new loggedRecord(log, "c", 4);
  a->tag = &owner;
  c->tag = &owner;
  stack.push(a);
  stack.push(b);
  stack.push(c);
  ASSERT_TRUE(stack.undo());  // c in redo
  EXPECT_EQ(stack.eraseIfCondition(&owner), 2u);
  EXPECT_EQ(stack.getUndoSize(), 1u);
  EXPECT_EQ(stack.getRedoSize(), 0u);
  EXPECT_EQ(stack.getTotalBytes(), 2u);
  EXPECT_TRUE(stack.erase(b));
  EXPECT_FALSE(stack.erase(b));
  EXPECT_EQ(stack.undoSize.cV(), 0u);
  EXPECT_EQ(log, (std::vector<std::string>{"undo b", "delete a", "delete c", "delete b"}));
}

TEST(undoRedoRecord, byteCountsOfTheStoredValues) {
  EXPECT_EQ(undoRedoRecord<bool>(true).getNumBytes(), 1u);
  EXPECT_EQ(undoRedoRecord<JEV::MATH::matrix4<float>>().getNumBytes(), 64u);
  std::vector<JEV::MATH::matrix4<float>> three(3);
  EXPECT_EQ(undoRedoRecord<std::vector<JEV::MATH::matrix4<float>>>(three).getNumBytes(),
            sizeof(three) + 3 * 64u);
  std::vector<std::vector<JEV::MATH::matrix4<float>>> groups{three, {}};
  EXPECT_EQ(undoRedoRecord<decltype(groups)>(groups).getNumBytes(),
            sizeof(groups) + 2 * sizeof(three) + 3 * 64u);
  std::vector<JEV::MATH::point4<float>> points(5);
  EXPECT_EQ(undoRedoRecord<decltype(points)>(points).getNumBytes(), sizeof(points) + 5 * 16u);
  editMesh m;
  testMeshes::makeCube(m);
  undoRedoRecord<editMesh> meshRecord(m);
  EXPECT_EQ(meshRecord.getNumBytes(), unsigned(meshRecord.getRecord().memoryUsage()));
  EXPECT_GT(meshRecord.getNumBytes(), 8 * sizeof(editMesh::vert));
  // Scan meshes weigh their vertices and corners.
  using scanMesh = JEV::MESH::POSTPROCESSING::triMesh;
  JEV::SYSTEM::sharedPointer<scanMesh> scan(new scanMesh());
  const unsigned tri[3] = {0, 1, 2};
  for (int i = 0; i < 3; ++i) scan->addVertex(JEV::MATH::point3<float>(float(i), 0.f, 1.f));
  scan->addFace(tri, 3);
  const unsigned one = undoRedoRecord<JEV::SYSTEM::sharedPointer<scanMesh>>(scan).getNumBytes();
  EXPECT_GE(one, sizeof(scan) + 3 * 12u + 12u);
  std::vector<JEV::SYSTEM::sharedPointer<scanMesh>> scans{scan, scan};
  EXPECT_EQ(undoRedoRecord<decltype(scans)>(scans).getNumBytes(), sizeof(scans) + 2 * one);
  // The base record does nothing and weighs nothing.
  undoRedoRecordBase base;
  base.undo();
  EXPECT_EQ(base.getNumBytes(), 0u);
  EXPECT_FALSE(base.matches(nullptr));
}

TEST(undoRedoRecord, undoAndRedoHandTheValueToTheirDelegate) {
  struct sink {
    float got = 0;
    void take(JEV::MATH::matrix4<float>& m) { got = m[12]; }
  } undoSink, redoSink;
  JEV::MATH::matrix4<float> m;
  m[12] = 7.f;
  undoRedoRecord<JEV::MATH::matrix4<float>> r(m, makeDelegate(&undoSink, &decltype(undoSink)::take),
                                              makeDelegate(&redoSink, &decltype(redoSink)::take));
  r.undo();
  EXPECT_EQ(undoSink.got, 7.f);
  EXPECT_EQ(redoSink.got, 0.f);
  r.redo();
  EXPECT_EQ(redoSink.got, 7.f);
  // Without delegates nothing happens.
  undoRedoRecord<bool> plain(true);
  plain.undo();
  EXPECT_TRUE(plain.getRecord());
}
