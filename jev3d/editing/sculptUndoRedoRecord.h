#pragma once

#include <vector>

#include "jev3d/editing/undoRedoRecordBase.h"
#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
namespace EDITING {
class editMeshNode;
}
}  // namespace MESH
namespace SYSTEM {

// The vertex positions that one sculpt stroke changed on a node: their ids, with the
// positions before and after the stroke. Without delegate targets, undo writes the
// positions before back and redo those after; either way the normals around the
// vertices are recomputed and the node's render data goes stale. With a target, the
// delegate gets the record. It records a command: take it back with
// undoRedoStack::undoLast.
class sculptUndoRedoRecord : public undoRedoRecordBase {
 public:
  // The stroke is done: `before` holds a position for each vertex of the node's mesh as
  // it was when the stroke began; the vertices whose position differs now are recorded.
  sculptUndoRedoRecord(MESH::EDITING::editMeshNode* node,
                       const std::vector<MATH::point3<float>>& before);
  // The same for the listed vertices only, before[i] being the position of vertices[i]
  // (ids out of range are left out).
  sculptUndoRedoRecord(MESH::EDITING::editMeshNode* node, const std::vector<unsigned int>& vertices,
                       const std::vector<MATH::point3<float>>& before);

  void undo() override;
  void redo() override;
  // 24, plus 28 a vertex: its id and two positions.
  unsigned int getNumBytes() const override;
  // True for the node `arg`.
  bool matches(void* arg) const override;

  MESH::EDITING::editMeshNode* getNode() const { return node; }
  const std::vector<unsigned int>& getVertices() const { return vertices; }
  const std::vector<MATH::point3<float>>& getBefore() const { return before; }
  const std::vector<MATH::point3<float>>& getAfter() const { return after; }

 private:
  void restore(const std::vector<MATH::point3<float>>& positions);

  MESH::EDITING::editMeshNode* node;
  std::vector<unsigned int> vertices;
  std::vector<MATH::point3<float>> before, after;
};

}  // namespace SYSTEM
}  // namespace JEV
