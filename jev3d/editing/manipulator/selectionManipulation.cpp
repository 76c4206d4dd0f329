#include "jev3d/editing/manipulator/selectionManipulation.h"

#include "jev3d/editing/editMeshNode.h"
#include "jev3d/editing/manipulator/manipulator.h"
#include "jev3d/editing/undoRedoRecord.h"
#include "jev3d/editing/undoRedoStack.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MANIPULATOR {
namespace {

using p3 = MATH::point3<float>;
using p4 = MATH::point4<float>;
using matrix4f = MATH::matrix4<float>;

}  // namespace

selectionManipulation::selectionManipulation(manipulator* m, editMeshNode* n,
                                             SYSTEM::undoRedoStack* s)
    : manip(m), node(n), stack(s) {
  manip->afterDragStepDelegate = SYSTEM::makeDelegate(this, &selectionManipulation::onDragStep);
  manip->afterDragEndDelegate = SYSTEM::makeDelegate(this, &selectionManipulation::onDragEnd);
}

selectionManipulation::~selectionManipulation() {
  manip->afterDragStepDelegate = SYSTEM::sharedPointer<SYSTEM::delegate>();
  manip->afterDragEndDelegate = SYSTEM::sharedPointer<SYSTEM::delegate>();
}

void selectionManipulation::placeOnSelection() {
  const editMesh& m = node->getEditMesh();
  if (m.getSelVn() == 0) return;
  manip->placeAt(m.getSelVertBarycenter() * node->getTransformMatrix());
}

void selectionManipulation::onDragStep(manipulator*) {
  editMesh& m = node->getEditMesh();
  const matrix4f delta = manip->getStepTransform();
  if (delta == matrix4f::IDENTITY() || m.getSelVn() == 0) return;
  if (before.empty()) {
    // The first step of a drag: keep what it starts from.
    std::vector<bool> moved(m.vn(), false);
    for (unsigned v = 0; v < m.vn(); ++v) {
      if (m.isVertDeleted(v) || !m.isVertSelected(v)) continue;
      moved[v] = true;
      const p3& p = m.vPos(v);
      before.emplace_back(p.x, p.y, p.z, float(v));
    }
    faces.clear();
    for (unsigned f = 0; f < m.fn(); ++f) {
      if (m.isFaceDeleted(f)) continue;
      for (unsigned i = 0; i < m.fVNum(f); ++i) {
        const unsigned v = m.fV(f, i);
        if (v < moved.size() && moved[v]) {
          faces.push_back(f);
          break;
        }
      }
    }
  }
  // The step is in the parent's space; the mesh's points sit under the node's matrix.
  const matrix4f& placed = node->getTransformMatrix();
  m.transformSelectedVertices(placed * delta * placed.getInverse());
  node->updateFaces(faces);
}

void selectionManipulation::onDragEnd(manipulator*) {
  if (before.empty()) return;
  const editMesh& m = node->getEditMesh();
  std::vector<p4> record = before;
  for (const p4& b : before) {
    const p3& p = m.vPos(unsigned(b.w));
    record.emplace_back(p.x, p.y, p.z, b.w);
  }
  before.clear();
  stack->push(new SYSTEM::undoRedoRecord<std::vector<p4>>(
      std::move(record), SYSTEM::makeDelegate(this, &selectionManipulation::onUndo),
      SYSTEM::makeDelegate(this, &selectionManipulation::onRedo)));
}

void selectionManipulation::onUndo(std::vector<p4>& record) { apply(record, 0, record.size() / 2); }

void selectionManipulation::onRedo(std::vector<p4>& record) {
  apply(record, record.size() / 2, record.size() / 2);
}

void selectionManipulation::apply(const std::vector<p4>& positions, size_t first, size_t count) {
  editMesh& m = node->getEditMesh();
  std::vector<bool> moved(m.vn(), false);
  for (size_t i = first; i < first + count; ++i) {
    const p4& p = positions[i];
    const unsigned v = unsigned(p.w);
    // The mesh may have shrunk since the record was made.
    if (v >= m.vn()) continue;
    m.vPos(v) = p3(p.x, p.y, p.z);
    moved[v] = true;
  }
  std::vector<unsigned> touched;
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f)) continue;
    for (unsigned i = 0; i < m.fVNum(f); ++i)
      if (m.fV(f, i) < moved.size() && moved[m.fV(f, i)]) {
        touched.push_back(f);
        break;
      }
  }
  node->updateFaces(touched);
  if (m.isVEValid() && m.isEVEFValid())
    for (unsigned v = 0; v < m.vn(); ++v)
      if (moved[v]) m.computeNormalizedVertexNormal(v);
  m.updateSelVertPosSum();
  placeOnSelection();
}

}  // namespace MANIPULATOR
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
