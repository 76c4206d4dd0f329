#include "jev3d/mesh/internal/faceStoreRebuild.h"

#include "jev3d/io/internal/largeArray.h"

namespace JEV {
namespace MESH {
namespace INTERNAL {

faceStoreRebuild::faceStoreRebuild(editMesh& m, size_t cornerHint) : m(m), oldFn(m.fn()) {
  IO::reserveLarge(fv, cornerHint);
}

void faceStoreRebuild::copyUpTo(uint32_t f) {
  const std::vector<editMesh::faceWEdgeRecord>& old = m.fvRecords();
  for (; copied < f; ++copied) {
    editMesh::face& r = m.F(copied);
    const uint32_t base = uint32_t(fv.size());
    for (uint32_t i = 0; i < r.fvNum; ++i)
      fv.push_back(cornerRecord(copied, old[r.fvBase + i].vertId));
    r.fvBase = base;
  }
  if (copied == f) ++copied;  // f itself is written by its pieces
}

uint32_t faceStoreRebuild::newFace() {
  editMesh::face r;
  r.normal = m.F(current).normal;
  r.chunkId = m.F(current).chunkId;
  m.faceStore().push_back(r);
  return m.fn() - 1;
}

void faceStoreRebuild::finish() {
  copyUpTo(oldFn);
  m.fvRecords().swap(fv);
  std::vector<editMesh::faceWEdgeRecord>().swap(fv);
  m.checkMeshState();
  unsigned int dead = 0;
  for (uint32_t f = 0; f < m.fn(); ++f)
    if (m.isFaceDeleted(f)) dead += m.fVNum(f);
  m.setDelFvn(dead);
}

}  // namespace INTERNAL
}  // namespace MESH
}  // namespace JEV
