#pragma once

// Rewrites the corners of every face in one pass, for operations that replace each face
// by pieces (subdivision, triangulation). Not installed.

#include <cstdint>
#include <vector>

#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/internal/topologyTools.h"

namespace JEV {
namespace MESH {
namespace INTERNAL {

// Faces are visited in id order. The first piece of face f keeps the id f, further pieces
// are appended to the face store with f's normal; a face that is not visited keeps its
// corners (copied, so deleted faces stay in range). FV is rebuilt without dead entries.
// Read a face's corners before its first piece: the piece repoints the face.
class faceStoreRebuild {
 public:
  faceStoreRebuild(editMesh& m, size_t cornerHint);

  void beginFace(uint32_t f) {
    copyUpTo(f);
    current = f;
    firstPiece = true;
  }
  // One piece of the current face: n corners.
  void piece(const uint32_t* ids, uint32_t n) {
    uint32_t g = current;
    if (!firstPiece) g = newFace();
    firstPiece = false;
    editMesh::face& r = m.F(g);
    r.fvBase = uint32_t(fv.size());
    r.fvNum = n;
    for (uint32_t i = 0; i < n; ++i) fv.push_back(cornerRecord(g, ids[i]));
  }
  void piece(uint32_t a, uint32_t b, uint32_t c) {
    const uint32_t ids[3] = {a, b, c};
    piece(ids, 3);
  }
  void piece(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    const uint32_t ids[4] = {a, b, c, d};
    piece(ids, 4);
  }
  // Swaps the new corners in; delFvn becomes the corners of deleted faces.
  void finish();

 private:
  void copyUpTo(uint32_t f);
  uint32_t newFace();

  editMesh& m;
  std::vector<editMesh::faceWEdgeRecord> fv;
  uint32_t oldFn;
  uint32_t copied = 0;  // old faces below this id have been written
  uint32_t current = 0;
  bool firstPiece = false;
};

}  // namespace INTERNAL
}  // namespace MESH
}  // namespace JEV
