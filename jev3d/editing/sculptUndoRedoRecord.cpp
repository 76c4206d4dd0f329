#include "jev3d/editing/sculptUndoRedoRecord.h"

#include <algorithm>

#include "jev3d/editing/editMeshNode.h"
#include "jev3d/editing/internal/nodeEdits.h"

namespace JEV {
namespace SYSTEM {

using p3 = MATH::point3<float>;

namespace {

bool samePoint(const p3& a, const p3& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

}  // namespace

sculptUndoRedoRecord::sculptUndoRedoRecord(MESH::EDITING::editMeshNode* n,
                                           const std::vector<p3>& positionsBefore)
    : node(n) {
  if (!node) return;
  const MESH::editMesh& m = node->getEditMesh();
  const unsigned int count = std::min(m.vn(), unsigned(positionsBefore.size()));
  for (unsigned int v = 0; v < count; ++v)
    if (!samePoint(positionsBefore[v], m.vPos(v))) {
      vertices.push_back(v);
      before.push_back(positionsBefore[v]);
      after.push_back(m.vPos(v));
    }
}

sculptUndoRedoRecord::sculptUndoRedoRecord(MESH::EDITING::editMeshNode* n,
                                           const std::vector<unsigned int>& listed,
                                           const std::vector<p3>& positionsBefore)
    : node(n) {
  if (!node) return;
  const MESH::editMesh& m = node->getEditMesh();
  for (size_t i = 0; i < listed.size() && i < positionsBefore.size(); ++i) {
    if (listed[i] >= m.vn()) continue;
    vertices.push_back(listed[i]);
    before.push_back(positionsBefore[i]);
    after.push_back(m.vPos(listed[i]));
  }
}

void sculptUndoRedoRecord::restore(const std::vector<p3>& positions) {
  if (!node) return;
  MESH::editMesh& m = node->getEditMesh();
  for (size_t i = 0; i < vertices.size(); ++i)
    if (vertices[i] < m.vn()) m.vPos(vertices[i]) = positions[i];
  MESH::EDITING::INTERNAL::verticesMoved(*node, vertices);
}

void sculptUndoRedoRecord::undo() {
  if (hasTarget(undoDelegate))
    undoDelegate->invoke(this);
  else
    restore(before);
}

void sculptUndoRedoRecord::redo() {
  if (hasTarget(redoDelegate))
    redoDelegate->invoke(this);
  else
    restore(after);
}

unsigned int sculptUndoRedoRecord::getNumBytes() const {
  return 24 + unsigned(vertices.size()) * unsigned(sizeof(unsigned int) + 2 * sizeof(p3));
}

bool sculptUndoRedoRecord::matches(void* arg) const { return static_cast<void*>(node) == arg; }

}  // namespace SYSTEM
}  // namespace JEV
