#include <algorithm>

#include "jev3d/io/internal/largeArray.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/internal/topologyTools.h"

namespace JEV {
namespace MESH {

using MATH::point3;
using namespace INTERNAL;

namespace {

// The faces a step works on: live, at least 3 corners, and selected when asked.
std::vector<uint8_t> stepFaces(const editMesh& m, bool selectedOnly) {
  std::vector<uint8_t> in(m.fn(), 0);
  for (uint32_t f = 0; f < m.fn(); ++f)
    in[f] = !m.isFaceDeleted(f) && m.fVNum(f) >= 3 && (!selectedOnly || m.isFaceSelected(f));
  return in;
}

// The new points of one step. New vertex ids follow the old ones: edge points in edge
// order, then face points in face order.
struct stepPoints {
  std::vector<uint32_t> edgePoint;   // per edge, NO_ID without one
  std::vector<uint32_t> facePoint;   // per face, NO_ID without one
  std::vector<point3<float>> pos;    // of the new vertices, edge points first
  std::vector<point3<float>> moved;  // smooth steps: new positions of the old vertices
};

// Face points where wantFacePoint(corner count) says so; edge points on every edge of a
// face in the set. Smooth steps use the Catmull-Clark rules inside the set; vertices with
// a face outside it, and edge points on its border, stay linear.
template <class W>
stepPoints computeStepPoints(const editMesh& m, const std::vector<uint8_t>& in, bool smooth,
                             W wantFacePoint) {
  const uint32_t nv = m.vn(), ne = m.en(), nf = m.fn();
  stepPoints s;
  s.facePoint.assign(nf, NO_ID);
  s.edgePoint.assign(ne, NO_ID);
  std::vector<point3<float>> centre(smooth ? nf : 0);
  std::vector<point3<float>> faceAt;
  for (uint32_t f = 0; f < nf; ++f) {
    if (!in[f]) continue;
    const point3<float> c = faceCentroid(m, f);
    if (smooth) centre[f] = c;
    if (wantFacePoint(m.fVNum(f))) {
      s.facePoint[f] = uint32_t(faceAt.size());
      faceAt.push_back(c);
    }
  }

  s.pos.reserve(ne + faceAt.size());
  for (uint32_t e = 0; e < ne; ++e) {
    const uint32_t num = m.eFNum(e);
    if (num == 0 || m.edgeIsDeleted(e)) continue;
    const uint32_t base = m.E2EFBASE(e);
    // faces deleted since the last rebuild may still be listed: only live ones count
    uint32_t inside = 0, live = 0;
    point3<float> centres;
    for (uint32_t k = 0; k < num; ++k) {
      const uint32_t f = m.EF(base + k).faceId;
      if (f >= nf || m.isFaceDeleted(f)) continue;
      ++live;
      if (!in[f]) continue;
      ++inside;
      if (smooth) centres += centre[f];
    }
    if (inside == 0) continue;
    const point3<float>& a = m.vPos(m.eV(e, 0));
    const point3<float>& b = m.vPos(m.eV(e, 1));
    s.edgePoint[e] = uint32_t(s.pos.size());
    if (smooth && live == 2 && inside == 2) {
      s.pos.push_back((a + b + centres) * 0.25f);
    } else {
      s.pos.push_back((a + b) * 0.5f);
    }
  }
  const uint32_t edgePoints = uint32_t(s.pos.size());
  for (uint32_t& id : s.facePoint)
    if (id != NO_ID) id += edgePoints;
  s.pos.insert(s.pos.end(), faceAt.begin(), faceAt.end());
  if (!smooth) return s;

  // vertex rule, accumulated over the faces and the edges
  struct acc {
    point3<float> faces, ends, borderEnds;
    uint32_t facesIn = 0, facesAll = 0, valence = 0, border = 0;
  };
  std::vector<acc> at(nv);
  for (uint32_t f = 0; f < nf; ++f) {
    if (m.isFaceDeleted(f)) continue;
    const uint32_t n = m.fVNum(f);
    for (uint32_t i = 0; i < n; ++i) {
      const uint32_t v = m.fV(f, i);
      if (v >= nv) continue;
      ++at[v].facesAll;
      if (!in[f]) continue;
      ++at[v].facesIn;
      at[v].faces += centre[f];
    }
  }
  for (uint32_t e = 0; e < ne; ++e) {
    const uint32_t num = m.eFNum(e);
    if (num == 0 || m.edgeIsDeleted(e)) continue;
    const uint32_t a = m.eV(e, 0), b = m.eV(e, 1);
    const uint32_t live = liveFacesOnEdge(m, e);
    if (a >= nv || b >= nv || live == 0) continue;
    ++at[a].valence, ++at[b].valence;
    at[a].ends += m.vPos(b), at[b].ends += m.vPos(a);
    if (live != 2) {
      ++at[a].border, ++at[b].border;
      at[a].borderEnds += m.vPos(b), at[b].borderEnds += m.vPos(a);
    }
  }
  s.moved.resize(nv);
  for (uint32_t v = 0; v < nv; ++v) {
    const point3<float>& p = m.vPos(v);
    const acc& r = at[v];
    s.moved[v] = p;
    if (r.facesIn == 0 || r.facesIn != r.facesAll || r.valence == 0) continue;
    if (r.border == 0) {
      // (F + 2R + (n - 3) P) / n, with R the mean edge midpoint, regrouped
      const float n = float(r.valence);
      s.moved[v] =
          p * ((n - 2.f) / n) + r.faces * (1.f / (float(r.facesIn) * n)) + r.ends * (1.f / (n * n));
    } else {
      // every boundary vertex, a corner where several borders meet included
      s.moved[v] = p * 0.75f + r.borderEnds * 0.125f;
    }
  }
  return s;
}

// Appends the new vertices of a step, with the normal of the nearest old one left to the
// closing normals.
void appendStepVertices(editMesh& m, const stepPoints& s) {
  std::vector<editMesh::vert>& vs = m.vertStore();
  IO::reserveLarge(vs, vs.size() + s.pos.size());
  for (const point3<float>& p : s.pos) {
    editMesh::vert r;
    r.pos = p;
    vs.push_back(r);
  }
  m.checkMeshState();
}

// The faces selected before a step, so that their pieces can be selected on the new
// geometry; the rest of the selection (vertices, edges) is cleared by the step.
struct selectionMemo {
  std::vector<uint32_t> faces;  // old face ids
  explicit selectionMemo(editMesh& m) {
    for (uint32_t f = 0; f < m.fn(); ++f)
      if (!m.isFaceDeleted(f) && m.isFaceSelected(f)) faces.push_back(f);
    m.clearGeomSelectionState();
  }
  // Old face f became f and the pieceCount[f] - 1 faces from pieceBase[f] on.
  void restore(editMesh& m, const std::vector<uint32_t>& pieceBase,
               const std::vector<uint32_t>& pieceCount) {
    for (uint32_t f : faces) {
      m.selectFace(f);
      for (uint32_t k = 1; k < pieceCount[f]; ++k) m.selectFace(pieceBase[f] + k - 1);
    }
  }
};

// Writes the pieces of one face with the face makers: the first piece repoints the face
// itself (its old corners stay behind as dead entries), further pieces are new faces at
// the end of the store with their corners at the end of FV.
class pieceWriter {
 public:
  pieceWriter(editMesh& m, uint32_t f) : m(m), f(f) {}
  void tri(uint32_t a, uint32_t b, uint32_t c) { m.makeTriFace(next(), a, b, c); }
  void quad(uint32_t a, uint32_t b, uint32_t c, uint32_t d) { m.makeQuadFace(next(), a, b, c, d); }

 private:
  uint32_t next() {
    if (first) {
      first = false;
      return f;
    }
    const uint32_t g = m.addFace();
    m.fNor(g) = m.fNor(f);
    return g;
  }
  editMesh& m;
  uint32_t f;
  bool first = true;
};

// Reserves room for the faces and corners a step appends.
void reserveStep(editMesh& m, size_t faces, size_t corners) {
  IO::reserveLarge(m.faceStore(), m.fn() + faces);
  IO::reserveLarge(m.fvRecords(), m.fvn() + corners);
}

// One subdivision step into quads (Catmull-Clark or linear) over the faces of the set.
void quadStep(editMesh& m, bool selectedOnly, bool smooth, bool keepWire, SYSTEM::callBack* cb) {
  report(cb, 1.f);
  m.checkMeshState();
  if (m.fn() == 0 || m.vn() == 0) {
    report(cb, 100.f);
    return;
  }
  ensureAdjacency(m);
  const std::vector<uint8_t> in = stepFaces(m, selectedOnly);
  const stepPoints s = computeStepPoints(m, in, smooth, [](uint32_t) { return true; });
  const std::vector<uint32_t> sides = sideEdges(m);
  report(cb, 30.f);

  selectionMemo memo(m);
  const uint32_t nv = m.vn(), nf = m.fn();
  size_t corners = 0, pieces = 0;
  for (uint32_t f = 0; f < nf; ++f) {
    if (m.isFaceDeleted(f)) continue;
    corners += in[f] ? 4 * m.fVNum(f) : 2 * m.fVNum(f);
    pieces += in[f] ? m.fVNum(f) - 1 : 0;
  }
  reserveStep(m, pieces, corners);
  appendStepVertices(m, s);
  auto edgePointOfSide = [&](uint32_t k) -> uint32_t {
    const uint32_t e = sides[k];
    if (e != NO_ID && s.edgePoint[e] != NO_ID) return nv + s.edgePoint[e];
    return NO_ID;
  };

  std::vector<uint32_t> pieceBase(nf, 0), pieceCount(nf, 1);
  std::vector<uint32_t> ring;
  for (uint32_t f = 0; f < nf; ++f) {
    if (m.isFaceDeleted(f)) continue;
    // read the corners first: the first piece repoints the face
    const uint32_t n = m.fVNum(f), base = m.F2FVBASE(f);
    if (in[f]) {
      // corners and the points of the sides after them
      ring.clear();
      for (uint32_t i = 0; i < n; ++i) {
        ring.push_back(m.FV(base + i));
        uint32_t p = edgePointOfSide(base + i);
        if (p == NO_ID) {  // a side no edge names: give it a point of its own
          p = m.addVertex((m.vPos(m.FV(base + i)) + m.vPos(m.FV(base + (i + 1) % n))) * 0.5f);
        }
        ring.push_back(p);
      }
      const uint32_t centre = nv + s.facePoint[f];
      pieceBase[f] = m.fn();
      pieceCount[f] = n;
      pieceWriter out(m, f);
      for (uint32_t i = 0; i < n; ++i)
        out.quad(ring[(2 * i + 2 * n - 1) % (2 * n)], ring[2 * i], ring[2 * i + 1], centre);
      continue;
    }
    // a face outside the set takes the points on its sides as corners
    bool touched = false;
    for (uint32_t i = 0; i < n && !touched; ++i) touched = edgePointOfSide(base + i) != NO_ID;
    if (!touched) continue;
    ring.clear();
    for (uint32_t i = 0; i < n; ++i) {
      ring.push_back(m.FV(base + i));
      const uint32_t p = edgePointOfSide(base + i);
      if (p != NO_ID) ring.push_back(p);
    }
    m.makePolyFace(f, ring);
  }
  m.checkMeshState();
  if (smooth)
    for (uint32_t v = 0; v < nv; ++v) m.vPos(v) = s.moved[v];
  report(cb, 70.f);

  m.computeEdges(keepWire);
  m.computeVE();
  m.computeNormalizedFaceNormals();
  m.computeNormalizedVertexNormals();
  m.invalidateRenderData();
  m.updateBBox();
  memo.restore(m, pieceBase, pieceCount);
  report(cb, 100.f);
}

}  // namespace

void editMesh::catmullClarkSubdivideVE(bool keepWire, SYSTEM::callBack* cb) {
  quadStep(*this, false, true, keepWire, cb);
}

void editMesh::catmullClarkSubdivideSelected(bool keepWire, SYSTEM::callBack* cb) {
  quadStep(*this, true, true, keepWire, cb);
}

void editMesh::refine(bool keepWire, SYSTEM::callBack* cb) {
  quadStep(*this, false, false, keepWire, cb);
}

void editMesh::refineSelected(bool keepWire, SYSTEM::callBack* cb) {
  quadStep(*this, true, false, keepWire, cb);
}

void editMesh::midpointTriangulate(bool selectedOnly, bool centreVertex, SYSTEM::callBack* cb) {
  report(cb, 1.f);
  checkMeshState();
  if (fn() == 0 || vn() == 0) {
    report(cb, 100.f);
    return;
  }
  ensureAdjacency(*this);
  const std::vector<uint8_t> in = stepFaces(*this, selectedOnly);
  const stepPoints s =
      computeStepPoints(*this, in, false, [&](uint32_t k) { return centreVertex && k > 3; });
  const std::vector<uint32_t> sides = sideEdges(*this);
  report(cb, 30.f);

  selectionMemo memo(*this);
  const uint32_t nv = vn(), nf = fn();
  size_t corners = 0, pieces = 0;
  for (uint32_t f = 0; f < nf; ++f) {
    if (isFaceDeleted(f)) continue;
    corners += in[f] ? 6 * fVNum(f) + 3 : 2 * fVNum(f);
    pieces += in[f] ? 2 * fVNum(f) : 0;
  }
  reserveStep(*this, pieces, corners);
  appendStepVertices(*this, s);
  auto pointOfSide = [&](uint32_t k) -> uint32_t {
    const uint32_t e = sides[k];
    if (e != NO_ID && s.edgePoint[e] != NO_ID) return nv + s.edgePoint[e];
    return NO_ID;
  };

  std::vector<uint32_t> pieceBase(nf, 0), pieceCount(nf, 1);
  std::vector<uint32_t> c, mid, ring;
  for (uint32_t f = 0; f < nf; ++f) {
    if (isFaceDeleted(f)) continue;
    const uint32_t n = fVNum(f), base = F2FVBASE(f);
    c.clear();
    mid.clear();
    for (uint32_t i = 0; i < n; ++i) {
      c.push_back(FV(base + i));
      uint32_t p = pointOfSide(base + i);
      if (p == NO_ID && in[f])
        p = addVertex((vPos(FV(base + i)) + vPos(FV(base + (i + 1) % n))) * 0.5f);
      mid.push_back(p);
    }
    if (!in[f]) {
      if (std::all_of(mid.begin(), mid.end(), [](uint32_t p) { return p == NO_ID; })) continue;
      ring.clear();
      for (uint32_t i = 0; i < n; ++i) {
        ring.push_back(c[i]);
        if (mid[i] != NO_ID) ring.push_back(mid[i]);
      }
      makePolyFace(f, ring);
      continue;
    }
    pieceBase[f] = fn();
    pieceWriter out(*this, f);
    // the corner triangles, then the polygon of the midpoints
    for (uint32_t i = 0; i < n; ++i) out.tri(c[i], mid[i], mid[(i + n - 1) % n]);
    uint32_t made = n;
    if (n == 3) {
      out.tri(mid[0], mid[1], mid[2]);
      made += 1;
    } else if (s.facePoint[f] != NO_ID) {
      const uint32_t centre = nv + s.facePoint[f];
      for (uint32_t i = 0; i < n; ++i) out.tri(mid[i], mid[(i + 1) % n], centre);
      made += n;
    } else {
      for (uint32_t i = 1; i + 1 < n; ++i) out.tri(mid[0], mid[i], mid[i + 1]);
      made += n - 2;
    }
    pieceCount[f] = made;
  }
  report(cb, 70.f);
  closeTopologyEdit(*this);
  memo.restore(*this, pieceBase, pieceCount);
  report(cb, 100.f);
}

void editMesh::triangulate(SYSTEM::callBack* cb) {
  report(cb, 1.f);
  checkMeshState();
  uint32_t tris = 0;
  for (uint32_t f = 0; f < fn(); ++f)
    if (!isFaceDeleted(f) && fVNum(f) >= 3) tris += fVNum(f) - 2;
  std::vector<face> faces;
  std::vector<faceWEdgeRecord> corners;
  std::vector<unsigned char> flags;
  IO::reserveLarge(faces, tris);
  IO::reserveLarge(corners, size_t(tris) * 3);
  flags.reserve(tris);
  constexpr unsigned char KEEP = uint8_t(FACE_STATE_T::SELECTED);
  for (uint32_t f = 0; f < fn(); ++f) {
    const uint32_t n = fVNum(f);
    if (isFaceDeleted(f) || n < 3) continue;
    const face& src = fStore[f];
    const faceWEdgeRecord* fv = fvStore.data() + src.fvBase;
    for (uint32_t i = 1; i + 1 < n; ++i) {
      const uint32_t g = uint32_t(faces.size());
      face r = src;
      r.fvBase = uint32_t(corners.size());
      r.fvNum = 3;
      faces.push_back(r);
      flags.push_back(fFlag[f] & KEEP);
      corners.push_back(cornerRecord(g, fv[0].vertId));
      corners.push_back(cornerRecord(g, fv[i].vertId));
      corners.push_back(cornerRecord(g, fv[i + 1].vertId));
    }
  }
  report(cb, 40.f);
  fStore.swap(faces);
  fvStore.swap(corners);
  fFlag.swap(flags);
  faceColors.clear();
  delFn = delFvn = 0;
  maxSelFaceSize = selFn ? 3 : 0;
  recountSelection(*this);
  computeEVEF();
  report(cb, 70.f);
  computeVE();
  computeBBox();
  invalidateRenderData();
  report(cb, 100.f);
}

void editMesh::updateCatmullClarkFromMesh(const editMesh* base) {
  if (!base || base == this || !base->isEVEFValid()) return;
  const std::vector<uint8_t> in = stepFaces(*base, false);
  const stepPoints s = computeStepPoints(*base, in, true, [](uint32_t) { return true; });
  const uint32_t nv = base->vn();
  if (vn() != nv + s.pos.size()) return;
  for (uint32_t v = 0; v < nv; ++v) vPos(v) = s.moved[v];
  for (size_t k = 0; k < s.pos.size(); ++k) vPos(nv + uint32_t(k)) = s.pos[k];
  computeNormalizedFaceNormals();
  computeNormalizedVertexNormals();
  updateSelVertPosNorSum();
  invalidateRenderData();
  updateBBox();
}

}  // namespace MESH
}  // namespace JEV
