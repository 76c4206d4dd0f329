#include "jev3d/editing/undoRedoRecordEditMeshFaceFlags.h"

#include "jev3d/editing/editMeshNode.h"

namespace JEV {
namespace SYSTEM {

editMeshFaceFlagsRecord editMeshFaceFlagsRecord::capture(MESH::EDITING::editMeshNode* node) {
  MESH::editMesh& m = node->getEditMesh();
  editMeshFaceFlagsRecord r;
  r.fFlag = m.faceFlags();
  r.selVn = m.getSelVn();
  r.selFn = m.getSelFn();
  r.selFvn = m.getSelFvn();
  r.selEn = m.getSelEn();
  r.delFn = m.getDelFn();
  r.selVertSum = m.getSelVertSum();
  r.selVertNor = m.getSelVertNor();
  r.node = node;
  return r;
}

void undoRedoRecordEditMeshFaceFlags::restore() {
  for (const editMeshFaceFlagsRecord& r : records) {
    if (!r.node) continue;
    MESH::editMesh& m = r.node->getEditMesh();
    m.replaceAllFaceFlags(r.fFlag);
    m.setSelVn(r.selVn);
    m.setSelFn(r.selFn);
    m.setSelFvn(r.selFvn);
    m.setSelEn(r.selEn);
    m.setDelFn(r.delFn);
    m.setSelVertSum(r.selVertSum);
    m.setSelVertNor(r.selVertNor);
    if (!m.invalidationGuard.cV()) {
      m.vertexRenderStateValid = false;
      m.edgeRenderStateValid = false;
      m.flatFaceRenderStateValid = false;
      m.smoothFaceRenderStateValid = false;
      m.selectionRenderStateValid = false;
    }
  }
}

void undoRedoRecordEditMeshFaceFlags::undo() {
  if (hasTarget(undoDelegate))
    undoRedoRecord::undo();
  else
    restore();
}

void undoRedoRecordEditMeshFaceFlags::redo() {
  if (hasTarget(redoDelegate))
    undoRedoRecord::redo();
  else
    restore();
}

unsigned int undoRedoRecordEditMeshFaceFlags::getNumBytes() const {
  unsigned int n = 24;
  for (const editMeshFaceFlagsRecord& r : records) n += unsigned(r.fFlag.size()) + 76;
  return n;
}

bool undoRedoRecordEditMeshFaceFlags::matches(void* arg) const {
  for (const editMeshFaceFlagsRecord& r : records)
    if (static_cast<void*>(r.node) == arg) return true;
  return false;
}

}  // namespace SYSTEM
}  // namespace JEV
