#include <algorithm>
#include <cmath>
#include <map>

#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/internal/topologyTools.h"

namespace JEV {
namespace MESH {

using MATH::point3;
using namespace INTERNAL;

namespace {

enum class regionMode {
  WALLS,   // a quad wall on each border edge
  DETACH,  // nothing joins the region to the rest
  CAPS,    // detach, then close the border loops on both sides
};

// A region face on one of the region's border edges.
struct borderSide {
  uint32_t edge, face, group;
  uint32_t corner;              // of the second end of the face's walk along the edge
  uint32_t a, b;                // the face walks a -> b
  uint32_t a2, b2;              // their copies
  uint32_t copyEdge;            // the edge the face moves to
  uint32_t slot = 0;            // index in the copy's EF of the wall or cap
  bool first = true;            // the first region face of its group on the edge
  bool outside;                 // the edge keeps a live face outside the region's group
  uint32_t keptRecord = NO_ID;  // the face the old edge gets in place of the region face
  uint32_t keptCorner = 0;
};

constexpr unsigned char BORDER_MARK = uint8_t(EDGE_STATE_T::MARK);

// The side of f that walks along edge e: corner of its second end, from the EF record
// where the corner fits in 6 bits, else by looking.
bool sideOfFace(const editMesh& m, uint32_t e, const editMesh::edgeFaceRecord& r, uint32_t& a,
                uint32_t& b, uint32_t& corner) {
  const uint32_t f = r.faceId, n = m.fVNum(f);
  if (n == 0) return false;
  const uint32_t x = m.eV(e, 0), y = m.eV(e, 1);
  auto fits = [&](uint32_t c) {
    const uint32_t p = m.fV(f, (c + n - 1) % n), q = m.fV(f, c);
    if (!((p == x && q == y) || (p == y && q == x))) return false;
    a = p, b = q, corner = c;
    return true;
  };
  if (n <= 64 && r.corner < n && fits(r.corner)) return true;
  for (uint32_t c = 0; c < n; ++c)
    if (fits(c)) return true;
  return false;
}

// Moves the faces of each group onto copies of the group's border vertices. Edges are
// patched in place: an old border edge keeps its id, flags and outside faces, and a copy
// at the end of the store takes the region face. Returns the number of caps made.
unsigned int extrudeGroups(editMesh& m, const std::vector<unsigned int>& faces,
                           const std::vector<uint32_t>& groupOf, regionMode mode, bool eachFace) {
  ensureAdjacency(m);
  const uint32_t maxValue = m.getMaxValue();
  for (unsigned int f : faces)
    for (uint32_t i = 0; i < m.fVNum(f); ++i) m.unsetVertFlag(m.fV(f, i), VERT_STATE_T::SELECTED);

  // interior edges have their two faces in one group; the others are border edges
  auto inGroup = [&](uint32_t f, uint32_t g) {
    return f < m.fn() && !m.isFaceDeleted(f) && groupOf[f] == g;
  };
  std::vector<uint8_t> kind(m.en(), 0);                 // 1 interior, 2 border
  std::vector<std::pair<uint32_t, uint32_t>> interior;  // edge, group
  std::vector<uint32_t> border;
  for (unsigned int f : faces) {
    const uint32_t n = m.fVNum(f);
    for (uint32_t i = 0; i < n; ++i) {
      const uint32_t e = m.findSharedEdgeFromVertices(m.fV(f, i), m.fV(f, (i + 1) % n));
      if (e == maxValue || kind[e]) continue;
      // faces deleted since the last rebuild may still be listed: only live ones count
      bool inner = liveFacesOnEdge(m, e) == 2;
      for (uint32_t k = 0; k < m.eFNum(e) && inner; ++k) {
        const uint32_t g = m.eF(e, k);
        inner = g >= m.fn() || m.isFaceDeleted(g) || inGroup(g, groupOf[f]);
      }
      kind[e] = inner ? 1 : 2;
      if (inner) {
        interior.emplace_back(e, groupOf[f]);
      } else {
        border.push_back(e);
        m.setEdgeFlag(e, BORDER_MARK);
      }
    }
  }
  std::sort(border.begin(), border.end());

  // copies of the border vertices, per group, on first sight
  std::map<uint64_t, uint32_t> copyOf;
  auto key = [](uint32_t v, uint32_t g) { return uint64_t(v) << 32 | g; };
  auto copyVertex = [&](uint32_t v, uint32_t g) {
    const auto it = copyOf.find(key(v, g));
    if (it != copyOf.end()) return it->second;
    const editMesh::vert r = m.V(v);
    const uint32_t c = m.addVertex(r);
    copyOf.emplace(key(v, g), c);
    return c;
  };

  std::vector<borderSide> sides;
  for (uint32_t e : border) {
    for (uint32_t k = 0; k < m.eFNum(e); ++k) {
      const editMesh::edgeFaceRecord r = m.E2F(e, k);
      if (r.faceId >= m.fn() || m.isFaceDeleted(r.faceId) || groupOf[r.faceId] == NO_ID) continue;
      borderSide s;
      s.edge = e;
      s.face = r.faceId;
      s.group = groupOf[r.faceId];
      if (!sideOfFace(m, e, r, s.a, s.b, s.corner)) continue;
      s.outside = false;
      for (uint32_t j = 0; j < m.eFNum(e); ++j) {
        const uint32_t g = m.eF(e, j);
        s.outside = s.outside || (g < m.fn() && !m.isFaceDeleted(g) && !inGroup(g, s.group));
      }
      s.a2 = copyVertex(s.a, s.group);
      s.b2 = copyVertex(s.b, s.group);
      sides.push_back(s);
    }
  }

  // the copied edges, one per border edge and group, with the group's faces on it and a
  // slot for the wall or cap; where several faces of a group meet on a non-manifold edge
  // they stay together on one copy, and only the first of them gets a wall
  const bool secondSlot = mode != regionMode::DETACH;
  std::stable_sort(sides.begin(), sides.end(), [](const borderSide& x, const borderSide& y) {
    return x.edge != y.edge ? x.edge < y.edge : x.group < y.group;
  });
  m.expandEdgeArray(unsigned(sides.size()));
  m.expandEFArray(unsigned(sides.size() * 2));
  for (size_t i = 0; i < sides.size();) {
    size_t j = i + 1;
    while (j < sides.size() && sides[j].edge == sides[i].edge && sides[j].group == sides[i].group)
      ++j;
    const borderSide& s = sides[i];
    const uint32_t v0 = m.eV(s.edge, 0), v1 = m.eV(s.edge, 1);
    editMesh::edge copy(v0 == s.a ? s.a2 : s.b2, v1 == s.b ? s.b2 : s.a2);
    copy.efBase = m.efn();
    copy.efNum = uint32_t(std::min<size_t>(j - i, editMesh::MAX_FACES_ON_EDGE - 1));
    for (size_t k = i; k < j; ++k) {
      if (k - i < copy.efNum) m.efRecords().emplace_back(sides[k].face, sides[k].corner & 63u);
      sides[k].copyEdge = m.en();
      sides[k].slot = copy.efNum;
      sides[k].first = k == i;
    }
    if (secondSlot) m.efRecords().emplace_back(maxValue & (editMesh::EF_LIMIT - 1), 0);
    m.edgeStore().push_back(copy);
    i = j;
  }
  m.checkMeshState();  // the copies start with flag 0: unpinned, unselected

  auto fillSecondSlot = [&](const borderSide& s, uint32_t f, uint32_t corner) {
    editMesh::edge& r = m.E(s.copyEdge);
    m.EF(r.efBase + s.slot) = editMesh::edgeFaceRecord(f, corner & 63u);
    r.efNum = s.slot + 1;
  };

  unsigned int caps = 0;
  const uint32_t firstNewFace = m.fn();
  if (mode == regionMode::WALLS) {
    // wall a b b' a': against the outside along a -> b, against the region along b' -> a'
    std::map<uint32_t, std::vector<editMesh::edgeFaceRecord>> upright;  // copy -> its faces
    for (borderSide& s : sides) {
      if (!s.first) continue;
      const uint32_t w = m.addQuadFace(s.a, s.b, s.b2, s.a2);
      s.keptRecord = w;
      s.keptCorner = 1;
      fillSecondSlot(s, w, 3);
      upright[s.a2].emplace_back(w, 0);
      upright[s.b2].emplace_back(w, 2);
    }
    // The upright edges a-a' of the walls: patching edges in place, nothing else would
    // give the walls' sides an edge and an EF record, and the mesh would be inconsistent
    // until the next rebuild.
    for (const auto& [k, c] : copyOf) {
      const auto it = upright.find(c);
      if (it == upright.end()) continue;
      editMesh::edge r(uint32_t(k >> 32), c);
      r.efBase = m.efn();
      r.efNum = std::min<uint32_t>(uint32_t(it->second.size()), editMesh::MAX_FACES_ON_EDGE);
      for (uint32_t k = 0; k < r.efNum; ++k) m.efRecords().push_back(it->second[k]);
      m.edgeStore().push_back(r);
    }
  } else if (mode == regionMode::CAPS) {
    // border loops, followed along the region's walk from copy to copy
    std::multimap<uint32_t, uint32_t> from;  // a' -> side
    for (uint32_t i = 0; i < sides.size(); ++i) from.emplace(sides[i].a2, i);
    std::vector<uint8_t> used(sides.size(), 0);
    for (uint32_t i = 0; i < sides.size(); ++i) used[i] = !sides[i].first;
    std::vector<uint32_t> loop, ids;
    for (uint32_t start = 0; start < sides.size(); ++start) {
      if (used[start]) continue;
      loop.assign(1, start);
      used[start] = 1;
      bool closed = false;
      for (;;) {
        const uint32_t to = sides[loop.back()].b2;
        if (to == sides[start].a2) {
          closed = true;
          break;
        }
        uint32_t next = NO_ID;
        for (auto [it, end] = from.equal_range(to); it != end; ++it)
          if (!used[it->second]) {
            next = it->second;
            break;
          }
        if (next == NO_ID) break;
        used[next] = 1;
        loop.push_back(next);
      }
      if (!closed || loop.size() < 3) continue;
      const uint32_t n = uint32_t(loop.size());
      // the piece's cap runs against the region: a'_0, a'_(n-1), ..., a'_1
      ids.resize(n);
      for (uint32_t j = 0; j < n; ++j) ids[j] = sides[loop[(n - j) % n]].a2;
      const uint32_t inner = m.addPolyFace(ids);
      ++caps;
      for (uint32_t i = 0; i < n; ++i) fillSecondSlot(sides[loop[i]], inner, (n - i) % n);
      // the hole left behind closes along the region's own walk, where it cut the mesh
      bool cut = true;
      for (uint32_t i : loop) cut = cut && sides[i].outside;
      if (!cut) continue;
      for (uint32_t j = 0; j < n; ++j) ids[j] = sides[loop[j]].a;
      const uint32_t outer = m.addPolyFace(ids);
      ++caps;
      for (uint32_t i = 0; i < n; ++i) {
        sides[loop[i]].keptRecord = outer;
        sides[loop[i]].keptCorner = (i + 1) % n;
      }
    }
  }

  // old border edges: the region face's record becomes the wall or cap, or goes
  for (const borderSide& s : sides) {
    if (s.keptRecord == NO_ID) continue;
    for (uint32_t k = 0; k < m.eFNum(s.edge); ++k) {
      editMesh::edgeFaceRecord& r = m.E2F(s.edge, k);
      if (r.faceId != s.face || r.corner != (s.corner & 63u)) continue;
      r = editMesh::edgeFaceRecord(s.keptRecord, s.keptCorner & 63u);
      break;
    }
  }
  for (const borderSide& s : sides) {
    if (s.keptRecord != NO_ID) continue;
    m.removeIdFromEF(s.face, s.edge);
    if (m.eFNum(s.edge) == 0) m.deleteEdgeGuarded(s.edge, true);
  }
  for (const borderSide& s : sides) {
    const editMesh::edge& r = m.E(s.copyEdge);
    if (secondSlot && s.first && r.efNum <= s.slot) m.setDelEfn(m.getDelEfn() + 1);  // unused
  }

  // the region moves to the copies; interior edges follow their faces
  auto moved = [&](uint32_t v, uint32_t g) {
    const auto it = copyOf.find(key(v, g));
    return it == copyOf.end() ? v : it->second;
  };
  if (!copyOf.empty()) {
    for (unsigned int f : faces)
      for (uint32_t i = 0; i < m.fVNum(f); ++i) m.F2W(f, i).vertId = moved(m.fV(f, i), groupOf[f]);
    for (const auto& [e, g] : interior) {
      m.E(e).v[0] = moved(m.eV(e, 0), g);
      m.E(e).v[1] = moved(m.eV(e, 1), g);
    }
  }
  for (uint32_t e : border) m.unsetEdgeFlag(e, BORDER_MARK);

  m.checkMeshState();
  if (mode == regionMode::WALLS && !eachFace) {
    // The region's corners take the selected bit directly: selVn and the sums are left as
    // they were (the copies coincide with the vertices they replace), and no normal is
    // computed; the caller moves the selection and recomputes them.
    for (unsigned int f : faces)
      for (uint32_t i = 0; i < m.fVNum(f); ++i) m.setVertFlag(m.fV(f, i), VERT_STATE_T::SELECTED);
    m.computeVE(true);
    m.invalidateRenderData();
    m.updateBBox();
    return caps;
  }
  m.computeVE(true);
  for (unsigned int f : faces)
    for (uint32_t i = 0; i < m.fVNum(f); ++i) m.setVertFlag(m.fV(f, i), VERT_STATE_T::SELECTED);
  // an old border vertex stays selected while a selected face outside the region holds it
  for (const auto& entry : copyOf) {
    const uint32_t v = uint32_t(entry.first >> 32);
    for (unsigned int f : m.getAdiacentFaces(v))
      if (m.isFaceSelected(f)) {
        m.setVertFlag(v, VERT_STATE_T::SELECTED);
        break;
      }
  }
  recountSelection(m);
  for (uint32_t f = firstNewFace; f < m.fn(); ++f) m.computeNormalizedFaceNormal(f);
  m.invalidateRenderData();
  m.updateBBox();
  return caps;
}

// One group for the whole list, or one per face.
unsigned int extrudeList(editMesh& m, std::vector<unsigned int>& list, bool eachFace,
                         regionMode mode) {
  m.checkMeshState();
  std::vector<unsigned int> faces = resolveFaceList(m, list);
  if (list.empty()) list = faces;
  // A face of one or two corners has no area to move and no border to raise a wall on:
  // its degenerate walls would duplicate edges.
  faces.erase(
      std::remove_if(faces.begin(), faces.end(), [&](unsigned int f) { return m.fVNum(f) < 3; }),
      faces.end());
  if (faces.empty()) return 0;
  std::vector<uint32_t> groupOf(m.fn(), NO_ID);
  for (unsigned int f : faces) groupOf[f] = eachFace ? f : 0;
  return extrudeGroups(m, faces, groupOf, mode, eachFace);
}

}  // namespace

void editMesh::extrudeRegion() {
  std::vector<unsigned int> none;
  extrudeRegion(none);
}

void editMesh::extrudeRegion(std::vector<unsigned int>& faces) {
  extrudeList(*this, faces, false, regionMode::WALLS);
}

void editMesh::extrudeFaces() {
  std::vector<unsigned int> none;
  extrudeFaces(none);
}

void editMesh::extrudeFaces(std::vector<unsigned int>& faces) {
  extrudeList(*this, faces, true, regionMode::WALLS);
}

void editMesh::extractRegion() {
  std::vector<unsigned int> none;
  extractRegion(none);
}

void editMesh::extractRegion(std::vector<unsigned int>& faces) {
  extrudeList(*this, faces, false, regionMode::DETACH);
}

unsigned int editMesh::extractCappedRegion() {
  std::vector<unsigned int> none;
  return extractCappedRegion(none);
}

unsigned int editMesh::extractCappedRegion(std::vector<unsigned int>& faces) {
  return extrudeList(*this, faces, false, regionMode::CAPS);
}

void editMesh::extrudeEdges(const std::vector<unsigned int>& edges) {
  ensureAdjacency(*this);
  std::vector<unsigned int> list;
  for (unsigned int e : edges)
    if (isEdgeValid(e)) list.push_back(e);
  std::sort(list.begin(), list.end());
  list.erase(std::unique(list.begin(), list.end()), list.end());
  if (list.empty()) return;

  std::map<uint32_t, uint32_t> copyOf;
  auto copyVertex = [&](uint32_t v) {
    const auto it = copyOf.find(v);
    if (it != copyOf.end()) return it->second;
    const vert r = V(v);
    const uint32_t c = addVertex(r);
    copyOf.emplace(v, c);
    return c;
  };
  for (unsigned int e : list) {
    // the quad runs against the edge's first face, continuing that surface
    uint32_t p = eV(e, 0), q = eV(e, 1), corner = 0, slot = 0;
    if (liveFacesOnEdge(*this, e, &slot) > 0) sideOfFace(*this, e, E2F(e, slot), p, q, corner);
    const uint32_t p2 = copyVertex(p), q2 = copyVertex(q);
    addQuadFace(q, p, p2, q2);
  }
  closeTopologyEdit(*this);
  // the copies take the selection, so that moving it pulls the new quads out
  for (const auto& [old, copy] : copyOf) {
    bool held = false;
    for (unsigned int f : getAdiacentFaces(old)) held = held || isFaceSelected(f);
    if (!held) deselectVert(old);
    selectVert(copy);
  }
}

void editMesh::extrudeVertices(const std::vector<unsigned int>& verts) {
  ensureAdjacency(*this);
  std::vector<uint8_t> listed(vn(), 0);
  bool any = false;
  for (unsigned int v : verts)
    if (isVertexValid(v)) listed[v] = 1, any = true;
  if (!any) return;

  // a new vertex a third of the way along each edge from each listed end, one slot per end
  std::vector<uint32_t> slot(size_t(en()) * 2, NO_ID);
  auto ringVertex = [&](uint32_t e, uint32_t v) {
    const uint32_t end = eV(e, 0) == v ? 0 : 1;
    uint32_t& s = slot[size_t(e) * 2 + end];
    if (s == NO_ID) {
      const point3<float> p = vPos(v), q = vPos(eV(e, 1 - end));
      s = addVertex(p * 0.6666667f + q * 0.33333334f, vNor(v));
    }
    return s;
  };
  struct fanTriangle {
    uint32_t apex, out, in;
  };
  std::vector<fanTriangle> fan;
  std::vector<uint32_t> ring;
  const uint32_t nf = fn();
  for (uint32_t f = 0; f < nf; ++f) {
    if (isFaceDeleted(f)) continue;
    const uint32_t n = fVNum(f);
    bool touches = false;
    for (uint32_t i = 0; i < n && !touches; ++i) touches = listed[fV(f, i)];
    if (!touches || n < 3) continue;
    ring.clear();
    for (uint32_t i = 0; i < n; ++i) {
      const uint32_t v = fV(f, i);
      uint32_t eIn = maxValue, eOut = maxValue;
      if (!listed[v] || !findEdgePairSharingVertInFace(f, v, eIn, eOut)) {
        ring.push_back(v);
        continue;
      }
      const uint32_t in = ringVertex(eIn, v), out = ringVertex(eOut, v);
      ring.push_back(in);
      ring.push_back(out);
      fan.push_back({v, out, in});
    }
    makePolyFace(f, ring);
  }
  for (const fanTriangle& t : fan) addTriFace(t.apex, t.out, t.in);
  closeTopologyEdit(*this);
  recountSelection(*this);
}

namespace {

// Offsets along the vertex normals, scaled so that a flat face moves by the full
// thickness (capped at 4 times it at sharp corners), and joins open borders with rims.
void solidify(editMesh& m, const std::vector<float>& thickness, unsigned int rimSegments,
              bool centered, bool selectNew) {
  m.checkMeshState();
  if (m.fn() == 0) return;
  ensureAdjacency(m);
  m.computeNormalizedNormals();
  const uint32_t nv = m.vn(), nf = m.fn();
  const uint32_t rows = std::max(1u, rimSegments);

  std::vector<float> dotSum(nv, 0.f);
  std::vector<uint32_t> faceCount(nv, 0);
  for (uint32_t f = 0; f < nf; ++f) {
    if (m.isFaceDeleted(f)) continue;
    for (uint32_t i = 0; i < m.fVNum(f); ++i) {
      const uint32_t v = m.fV(f, i);
      dotSum[v] += m.vNor(v) * m.fNor(f);
      ++faceCount[v];
    }
  }
  auto offset = [&](uint32_t v, float share) {
    const float mean = faceCount[v] ? dotSum[v] / float(faceCount[v]) : 1.f;
    const float scale = mean > 0.25f ? 1.f / mean : 4.f;
    const float t = v < thickness.size() ? thickness[v] : 0.f;
    return m.vNor(v) * (t * scale * share);
  };
  const float outerShare = centered ? 0.5f : 0.f;

  // border vertices get a row of vertices per rim segment, the others only the inner copy
  std::vector<uint8_t> onBorder(nv, 0);
  std::vector<std::pair<uint32_t, uint32_t>> borderSlots;  // edge, EF slot of its one face
  for (uint32_t e = 0; e < m.en(); ++e) {
    unsigned int slot = 0;
    if (m.edgeIsDeleted(e) || liveFacesOnEdge(m, e, &slot) != 1) continue;
    onBorder[m.eV(e, 0)] = onBorder[m.eV(e, 1)] = 1;
    borderSlots.emplace_back(e, slot);
  }
  std::vector<uint32_t> rowBase(nv, NO_ID);  // first new vertex of v: rows 1..rows
  for (uint32_t v = 0; v < nv; ++v) {
    if (faceCount[v] == 0) continue;
    const point3<float> p = m.vPos(v);
    const point3<float> top = p + offset(v, outerShare);
    const point3<float> bottom = p + offset(v, outerShare - 1.f);
    const uint32_t first = onBorder[v] ? 1 : rows;
    for (uint32_t r = first; r <= rows; ++r) {
      const uint32_t id =
          m.addVertex(point3<float>::interpolate(top, bottom, float(r) / float(rows)), -m.vNor(v));
      if (r == first) rowBase[v] = id - (first - 1);
    }
    m.vPos(v) = top;
  }
  auto rowVertex = [&](uint32_t v, uint32_t r) { return r == 0 ? v : rowBase[v] + r - 1; };

  std::vector<uint32_t> ids;
  std::vector<uint32_t> innerFaces;
  for (uint32_t f = 0; f < nf; ++f) {
    if (m.isFaceDeleted(f)) continue;
    const uint32_t n = m.fVNum(f);
    ids.resize(n);
    for (uint32_t i = 0; i < n; ++i) ids[i] = rowVertex(m.fV(f, (n - i) % n), rows);
    innerFaces.push_back(m.addPolyFace(ids));
  }
  for (const auto& [e, slot] : borderSlots) {
    uint32_t a = 0, b = 0, corner = 0;
    if (!sideOfFace(m, e, m.E2F(e, slot), a, b, corner)) continue;
    for (uint32_t r = 0; r < rows; ++r)
      m.addQuadFace(rowVertex(b, r), rowVertex(a, r), rowVertex(a, r + 1), rowVertex(b, r + 1));
  }
  closeTopologyEdit(m);
  if (selectNew) {
    m.clearGeomSelectionState();
    for (uint32_t f : innerFaces) m.selectFace(f);
  } else {
    m.updateSelVertPosNorSum();
  }
}

}  // namespace

void editMesh::makeSolid(float thickness, unsigned int rimSegments, bool centered, bool selectNew) {
  solidify(*this, std::vector<float>(vn(), thickness), rimSegments, centered, selectNew);
}

void editMesh::makeSolid(const std::vector<float>& thickness, unsigned int rimSegments,
                         bool centered, bool selectNew) {
  solidify(*this, thickness, rimSegments, centered, selectNew);
}

}  // namespace MESH
}  // namespace JEV
