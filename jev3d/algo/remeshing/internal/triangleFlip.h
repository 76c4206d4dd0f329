#pragma once

namespace JEV {
namespace MESH {
class editMesh;
namespace ALGO {
namespace REMESHING {
namespace INTERNAL {

// The quad around edge e of an editMesh with edges and VE: its two faces (triangles),
// e running a -> b in f0 and b -> a in f1, and the far corners c (in f0) and d (in f1).
struct edgeQuad {
  unsigned int f0, f1, a, b, c, d;
};

// False unless e is live with exactly two live triangles on it that run it both ways.
bool findEdgeQuad(const editMesh& mesh, unsigned int e, edgeQuad& q);

// Turns e into the diagonal c-d of its quad, in place: faces, EF and VE are patched so
// that edge ids, flags and selection survive; the two faces get unit normals.
void flipEdgeInPlace(editMesh& mesh, unsigned int e, const edgeQuad& q);

}  // namespace INTERNAL
}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
