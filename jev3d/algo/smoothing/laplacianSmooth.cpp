#include "jev3d/algo/smoothing/laplacianSmooth.h"

#include <algorithm>
#include <cstdint>

#include "jev3d/algo/smoothing/internal/laplacianPass.h"
#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace SMOOTHING {

namespace {

// The stores of an editMesh as the passes read them.
struct editMeshAccess {
  editMesh& m;
  unsigned int vn() const { return m.vn(); }
  unsigned int fn() const { return m.fn(); }
  bool faceDeleted(unsigned int f) const { return m.isFaceDeleted(f); }
  unsigned int corners(unsigned int f) const { return m.fVNum(f); }
  unsigned int corner(unsigned int f, unsigned int i) const { return m.fV(f, i); }
  MATH::point3<float>& pos(unsigned int v) const { return m.vPos(v); }
};

// The flag stores as long as their elements, so the deleted tests have bytes to read.
void ensureFlags(editMesh& m) {
  if (m.faceFlags().size() < m.fn()) m.computeFaceFlags();
  if (m.vertFlags().size() < m.vn()) m.computeVertexFlags();
  if (m.edgeFlags().size() < m.en()) m.computeEdgeFlags();
}

// The ends of every side that only one live face has: from the edges when they are
// current, else by counting the face sides.
std::vector<unsigned char> borderVertices(const editMesh& m) {
  std::vector<unsigned char> border(m.vn(), 0);
  auto mark = [&](unsigned int v) {
    if (v < border.size()) border[v] = 1;
  };
  if (m.isEVEFValid()) {
    for (unsigned int e = 0; e < m.en(); ++e)
      if (!m.edgeIsDeleted(e) && m.isEdgeBorder(e)) mark(m.eV(e, 0)), mark(m.eV(e, 1));
    return border;
  }
  std::vector<uint64_t> sides;
  sides.reserve(m.fvn());
  for (unsigned int f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f)) continue;
    const unsigned int k = m.fVNum(f);
    for (unsigned int j = 0; j < k; ++j) {
      const unsigned int a = m.fV(f, j), b = m.fV(f, (j + 1) % k);
      sides.push_back(uint64_t(std::min(a, b)) << 32 | std::max(a, b));
    }
  }
  std::sort(sides.begin(), sides.end());
  for (size_t i = 0; i < sides.size();) {
    size_t j = i + 1;
    while (j < sides.size() && sides[j] == sides[i]) ++j;
    if (j - i == 1) mark(unsigned(sides[i] >> 32)), mark(unsigned(sides[i] & 0xFFFFFFFFu));
    i = j;
  }
  return border;
}

}  // namespace

void computeLaplacianSmooth(editMesh& mesh, laplacianDescriptor& descriptor, SYSTEM::callBack* cb) {
  ensureFlags(mesh);
  descriptor.clear();
  INTERNAL::fillDescriptor(editMeshAccess{mesh}, descriptor, cb);
}

void computeLaplacianSmooth(editMesh& mesh, unsigned int iterations, bool smoothBorder,
                            SYSTEM::callBack* cb) {
  if (cb) cb->setValue(0.f);
  ensureFlags(mesh);
  const std::vector<unsigned char> pinned =
      smoothBorder ? std::vector<unsigned char>() : borderVertices(mesh);
  INTERNAL::packedMesh packed(editMeshAccess{mesh});
  packed.iterate(iterations, pinned, cb);
  for (unsigned int v = 0; v < mesh.vn(); ++v) mesh.vPos(v) = packed.pos(v);
  // The kernel's equivalents of dropping the box, the normals and the spatial indexes:
  // its normals are stored data, so they are recomputed rather than left stale.
  mesh.updateBBox();
  mesh.computeNormalizedNormals();
  mesh.invalidateRenderData();
  if (cb) cb->setValue(100.f);
}

}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
