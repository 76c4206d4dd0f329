#include "jev3d/mesh/internal/topologyTools.h"

#include <algorithm>

#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace INTERNAL {

void closeTopologyEdit(editMesh& m) {
  m.checkMeshState();
  // computeEdges(true) saves the wire edges, rebuilds and appends them again.
  m.computeEdges(true);
  m.computeVE();
  m.computeNormalizedFaceNormals();
  m.computeNormalizedVertexNormals();
  m.invalidateRenderData();
  m.updateBBox();
}

void ensureAdjacency(editMesh& m) {
  m.checkMeshState();
  if (!m.isEVEFValid()) m.computeEdges(true);
  if (!m.isVEValid()) m.computeVE();
}

std::vector<uint32_t> sideEdges(const editMesh& m) {
  std::vector<uint32_t> side(m.fvn(), NO_ID);
  const uint32_t nf = m.fn();
  bool wideFaces = false;
  for (uint32_t e = 0; e < m.en(); ++e) {
    if (m.edgeIsDeleted(e)) continue;
    const uint32_t base = m.E2EFBASE(e), num = m.eFNum(e);
    for (uint32_t k = 0; k < num; ++k) {
      const editMesh::edgeFaceRecord r = m.EF(base + k);
      const uint32_t f = r.faceId;
      if (f >= nf || m.isFaceDeleted(f)) continue;
      const uint32_t n = m.fVNum(f);
      if (n > 64) {  // the corner index has 6 bits: look these sides up instead
        wideFaces = true;
        continue;
      }
      if (r.corner >= n) continue;
      side[m.F2FVBASE(f) + (r.corner + n - 1) % n] = e;
    }
  }
  if (!wideFaces || !m.hasVE()) return side;
  for (uint32_t f = 0; f < nf; ++f) {
    const uint32_t n = m.fVNum(f);
    if (n <= 64 || m.isFaceDeleted(f)) continue;
    for (uint32_t i = 0; i < n; ++i) {
      const uint32_t e = m.findSharedEdgeFromVertices(m.fV(f, i), m.fV(f, (i + 1) % n));
      if (e != m.getMaxValue()) side[m.f2vi(f, i)] = e;
    }
  }
  return side;
}

unsigned int liveFacesOnEdge(const editMesh& m, unsigned int e, unsigned int* first) {
  unsigned int live = 0;
  for (unsigned int k = 0; k < m.eFNum(e); ++k) {
    const unsigned int f = m.eF(e, k);
    if (f >= m.fn() || m.isFaceDeleted(f)) continue;
    if (live++ == 0 && first) *first = k;
  }
  return live;
}

std::vector<unsigned int> resolveFaceList(const editMesh& m, const std::vector<unsigned int>& ids) {
  std::vector<unsigned int> out;
  if (ids.empty()) {
    for (unsigned int f = 0; f < m.fn(); ++f)
      if (!m.isFaceDeleted(f) && m.isFaceSelected(f)) out.push_back(f);
    return out;
  }
  for (unsigned int f : ids)
    if (m.isFaceValid(f)) out.push_back(f);
  std::sort(out.begin(), out.end());
  out.erase(std::unique(out.begin(), out.end()), out.end());
  return out;
}

void recountSelection(editMesh& m) {
  m.checkMeshState();
  unsigned int sf = 0, sfv = 0, se = 0, sv = 0;
  for (unsigned int f = 0; f < m.fn(); ++f)
    if (!m.isFaceDeleted(f) && m.isFaceSelected(f)) ++sf, sfv += m.fVNum(f);
  for (unsigned int e = 0; e < m.en(); ++e)
    if (!m.edgeIsDeleted(e) && m.isEdgeSelected(e)) ++se;
  for (unsigned int v = 0; v < m.vn(); ++v)
    if (!m.isVertDeleted(v) && m.isVertSelected(v)) ++sv;
  m.setSelFn(sf);
  m.setSelFvn(sfv);
  m.setSelEn(se);
  m.setSelVn(sv);
  m.updateSelVertPosNorSum();
}

MATH::point3<float> faceCentroid(const editMesh& m, unsigned int f) {
  MATH::point3<float> c;
  const unsigned int n = m.fVNum(f);
  if (n == 0) return c;
  for (unsigned int i = 0; i < n; ++i) c += m.F2VPOS(f, i);
  return c * (1.0f / float(n));
}

void report(SYSTEM::callBack* cb, float percent) {
  if (cb) cb->setValue(percent);
}

}  // namespace INTERNAL
}  // namespace MESH
}  // namespace JEV
