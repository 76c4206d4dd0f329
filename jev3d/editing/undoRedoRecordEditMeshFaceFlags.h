#pragma once

#include <cstdint>
#include <vector>

#include "jev3d/editing/undoRedoRecord.h"
#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
namespace EDITING {
class editMeshNode;
}
}  // namespace MESH
namespace SYSTEM {

// The face selection of one mesh: its face flag bytes, counters and selection sums.
struct editMeshFaceFlagsRecord {
  std::vector<unsigned char> fFlag;
  uint32_t selVn = 0, selFn = 0, selFvn = 0, selEn = 0, delFn = 0;
  MATH::point3<float> selVertSum, selVertNor;
  MESH::EDITING::editMeshNode* node = nullptr;

  // What `node` holds now.
  static editMeshFaceFlagsRecord capture(MESH::EDITING::editMeshNode* node);
};

// The face selection of one or more meshes. Without delegate targets, undo and redo
// write each saved selection back into its node's mesh and, unless the mesh's
// invalidationGuard reads true, mark its render data stale. The value of the base is
// left empty: the selections are in `records`.
class undoRedoRecordEditMeshFaceFlags : public undoRedoRecord<editMeshFaceFlagsRecord> {
 public:
  undoRedoRecordEditMeshFaceFlags() = default;
  explicit undoRedoRecordEditMeshFaceFlags(std::vector<editMeshFaceFlagsRecord> r)
      : records(std::move(r)) {}

  void undo() override;
  void redo() override;
  // 24 plus, for each selection, its flag bytes and 76.
  unsigned int getNumBytes() const override;
  // True for a record holding a selection of the node `arg`.
  bool matches(void* arg) const override;

  std::vector<editMeshFaceFlagsRecord> records;

 private:
  void restore();
};

}  // namespace SYSTEM
}  // namespace JEV
