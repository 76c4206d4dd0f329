#include <algorithm>
#include <memory>

#include "jev3d/mesh/editMesh.h"
#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {

namespace {

// An edge met while pairing sides, filed under its smaller vertex.
struct slotEntry {
  uint32_t other;
  uint32_t edgeId;
};

// Per vertex: where its slots start and how many are in use.
struct slotRange {
  uint32_t base;
  uint32_t used;
};

// Counts steps of a rebuild into an integer percentage, as computeEdgesOpt reports it.
class progressSteps {
 public:
  progressSteps(int* out, SYSTEM::callBack* cb, int steps) : out(out), cb(cb), step(100.0 / steps) {
    if (cb) cb->setValue(0.0f);
  }
  void next() {
    acc += step;
    if (out) *out = int(acc);
    if (cb) cb->setValue(float(int(acc)));
  }

 private:
  int* out;
  SYSTEM::callBack* cb;
  double step;
  double acc = 0.0;
};

constexpr int REBUILD_STEPS = 5;

}  // namespace

bool editMesh::computeEVEF() { return rebuildEdges(nullptr, nullptr); }

bool editMesh::computeEdgesOpt(int& progress, SYSTEM::callBack* cb) {
  progress = 0;
  const bool ok = rebuildEdges(&progress, cb);
  if (ok) evefInvalid = false;
  return ok;
}

// Sides are the pairs (corner i, corner i + 1 mod n) of live faces, walked in face order
// then corner order. Each side is filed under its smaller vertex; the slots of a vertex
// are sized by a counting pass, so pairing needs no hashing and no allocation per side.
// The corners are first packed into one scratch list (so later passes read 4 bytes per
// corner instead of the 16-byte record and never look at the faces again).
bool editMesh::rebuildEdges(int* progress, SYSTEM::callBack* cb) {
  const uint32_t nv = vn();
  const uint32_t nf = fn();
  if (nf == 0 || nv == 0) return true;
  progressSteps steps(progress, cb, REBUILD_STEPS);
  checkMeshState();

  auto fail = [&] {
    eStore.clear();
    efStore.clear();
    eFlag.clear();
    delEn = delEfn = 0;
    selEn = 0;
    veInvalid = true;
    return false;
  };
  if (nf > EF_LIMIT) return fail();

  const faceWEdgeRecord* fv = fvStore.data();
  const face* faces = fStore.data();
  const unsigned char* ff = fFlag.data();
  const size_t nfv = fvStore.size();
  constexpr unsigned char DEAD = uint8_t(FACE_STATE_T::DELETED);
  constexpr uint32_t SKIPPED = 0xFFFFFFFFu;
  // 1. copy the corners of the faces that take part (live, not empty, inside FV) into one
  // packed list, face after face, and count the sides under their smaller vertex
  std::vector<uint32_t> offsets(size_t(nf) + 1);
  uint32_t* off = offsets.data();
  std::unique_ptr<uint32_t[]> scratch(new uint32_t[nfv ? nfv : 1]);
  uint32_t* sid = scratch.get();
  std::vector<slotRange> ranges(size_t(nv) + 1, slotRange{0, 0});
  slotRange* rg = ranges.data();
  uint32_t packed = 0;
  for (uint32_t f = 0; f < nf; ++f) {
    off[f] = packed;
    const uint32_t n = faces[f].fvNum;
    // Faces sharing FV entries (built by hand) could outgrow the list: they are left out.
    if ((ff[f] & DEAD) || n == 0 || size_t(faces[f].fvBase) + n > nfv || size_t(packed) + n > nfv)
      continue;
    uint32_t* c = sid + packed;
    const faceWEdgeRecord* w = fv + faces[f].fvBase;
    for (uint32_t i = 0; i < n; ++i) c[i] = w[i].vertId;
    for (uint32_t i = 0; i < n; ++i) {
      const uint32_t a = c[i], b = c[i + 1 == n ? 0 : i + 1];
      if (a < nv && b < nv) ++rg[a < b ? a : b].base;
    }
    packed += n;
  }
  off[nf] = packed;
  size_t sides = 0;
  for (uint32_t v = 0; v <= nv; ++v) {
    const uint32_t count = rg[v].base;
    rg[v].base = uint32_t(sides);
    sides += count;
  }
  steps.next();

  // 2. pair the sides; edge ids follow first appearance. Each packed corner now takes the
  // edge of the side that starts at it.
  std::unique_ptr<slotEntry[]> slots(new slotEntry[sides ? sides : 1]);
  slotEntry* sl = slots.get();
  // The old edges and EF are not read by the rebuild: their memory is reused.
  std::vector<edge>& newE = eStore;
  newE.clear();
  newE.reserve(sides / 2 + sides / 16 + 16);
  // Faces per edge, kept apart from the records while pairing; 6 bits, as efNum wraps.
  std::unique_ptr<uint8_t[]> faceCount(new uint8_t[sides ? sides : 1]);
  uint8_t* cnt = faceCount.get();
  for (uint32_t f = 0; f < nf; ++f) {
    const uint32_t n = off[f + 1] - off[f];
    if (n == 0) continue;
    uint32_t* c = sid + off[f];
    const uint32_t first = c[0];
    for (uint32_t i = 0; i < n; ++i) {
      const uint32_t a = c[i], b = i + 1 == n ? first : c[i + 1];
      if (a >= nv || b >= nv) {
        c[i] = SKIPPED;
        continue;
      }
      const uint32_t key = a < b ? a : b, other = a < b ? b : a;
      slotRange& r = rg[key];
      slotEntry* s = sl + r.base;
      uint32_t j = 0;
      while (j < r.used && s[j].other != other) ++j;
      if (j < r.used) {
        const uint32_t e = s[j].edgeId;
        cnt[e] = uint8_t((cnt[e] + 1) & 63);  // the 64th face wraps it to 0
        c[i] = e;
      } else {
        const uint32_t e = uint32_t(newE.size());
        newE.emplace_back(key, other);
        cnt[e] = 1;
        s[r.used++] = slotEntry{other, e};
        c[i] = e;
      }
    }
  }
  slots.reset();
  ranges = std::vector<slotRange>();
  steps.next();

  // 3. efBase as a prefix sum of efNum
  const uint32_t ne = uint32_t(newE.size());
  std::unique_ptr<uint32_t[]> nextSlot(new uint32_t[ne ? ne : 1]);
  uint32_t* next = nextSlot.get();
  size_t total = 0;
  edge* er = newE.data();
  for (uint32_t e = 0; e < ne; ++e) {
    er[e].efBase = uint32_t(total);  // truncated past the limit, which fails below
    er[e].efNum = cnt[e];
    next[e] = uint32_t(total);
    total += cnt[e];
  }
  if (total > EF_LIMIT) return fail();
  steps.next();

  // 4. fill EF in the same order; entries beyond efNum are dropped
  std::vector<edgeFaceRecord>& newEF = efStore;
  newEF.resize(total);
  edgeFaceRecord* ef = newEF.data();
  for (uint32_t f = 0; f < nf; ++f) {
    const uint32_t n = off[f + 1] - off[f];
    const uint32_t* c = sid + off[f];
    for (uint32_t i = 0; i < n; ++i) {
      const uint32_t e = c[i];
      if (e == SKIPPED || cnt[e] == 0) continue;
      --cnt[e];
      ef[next[e]++] = edgeFaceRecord(f, (i + 1 == n ? 0 : i + 1) & 63u);
    }
  }
  steps.next();

  // 5. edge flags start clean
  eFlag.assign(ne, 0);
  edgeColors.clear();
  delEn = delEfn = 0;
  selEn = 0;
  veInvalid = true;
  steps.next();
  return true;
}

bool editMesh::computeEdges(bool keepWire) {
  // The rebuild leaves a mesh without faces or vertices as it is, wire edges included:
  // appending the saved ones again would double them.
  if (fn() == 0 || vn() == 0) {
    evefInvalid = en() == 0;
    return true;
  }
  std::vector<edge> wires;
  if (keepWire && countWireEdges() > 0) getWireEdges(wires);
  const bool ok = rebuildEdges(nullptr, nullptr);
  if (!ok) return false;
  addWireEdges(wires);
  evefInvalid = false;
  return true;
}

void editMesh::computeVE(bool skipDeleted) {
  const uint32_t nv = vn();
  const uint32_t ne = en();
  if (nv == 0) return;
  checkMeshState();
  std::vector<uint32_t> cursor(size_t(nv) + 1, 0);
  uint32_t* cur = cursor.data();
  const edge* es = eStore.data();
  const unsigned char* efl = eFlag.data();
  constexpr unsigned char DEAD = uint8_t(EDGE_STATE_T::DELETED);
  auto skip = [&](uint32_t e) { return skipDeleted && (efl[e] & DEAD); };

  for (uint32_t e = 0; e < ne; ++e) {
    if (skip(e)) continue;
    const uint32_t a = es[e].v[0], b = es[e].v[1];
    if (a < nv) ++cur[a];
    if (b < nv) ++cur[b];
  }
  uint32_t total = 0;
  vert* vs = vStore.data();
  for (uint32_t v = 0; v < nv; ++v) {
    const uint32_t c = cur[v];
    vs[v].veBase = total;
    vs[v].veNum = c;
    cur[v] = total;
    total += c;
  }
  veStore.resize(total);  // overwritten whole: the old content is not read
  unsigned int* ve = veStore.data();
  for (uint32_t e = 0; e < ne; ++e) {
    if (skip(e)) continue;
    const uint32_t a = es[e].v[0], b = es[e].v[1];
    if (a < nv) ve[cur[a]++] = e;
    if (b < nv) ve[cur[b]++] = e;
  }
  delVen = 0;
  veInvalid = false;
}

void editMesh::addEdgesToVE(const std::vector<unsigned int>& vertices,
                            const std::vector<std::vector<unsigned int>>& lists) {
  const size_t n = std::min(vertices.size(), lists.size());
  for (size_t i = 0; i < n; ++i) {
    vert& r = vStore[vertices[i]];
    const uint32_t oldBase = r.veBase, oldNum = r.veNum;
    const uint32_t newBase = ven();
    veStore.reserve(veStore.size() + oldNum + lists[i].size());
    for (uint32_t k = 0; k < oldNum; ++k) {
      const unsigned int e = veStore[oldBase + k];
      veStore.push_back(e);
    }
    veStore.insert(veStore.end(), lists[i].begin(), lists[i].end());
    delVen += oldNum;
    r.veBase = newBase;
    r.veNum = oldNum + unsigned(lists[i].size());
  }
}

void editMesh::removeIdFromEF(unsigned int f, unsigned int e) {
  if (edgeIsDeleted(e)) return;
  edge& r = eStore[e];
  const uint32_t n = r.efNum;
  for (uint32_t i = 0; i < n; ++i) {
    if (efStore[r.efBase + i].faceId != f) continue;
    for (uint32_t k = i + 1; k < n; ++k) efStore[r.efBase + k - 1] = efStore[r.efBase + k];
    r.efNum = n - 1;
    ++delEfn;
    return;
  }
}

unsigned int editMesh::countWireEdges() const {
  unsigned int count = 0;
  for (unsigned int e = 0; e < en(); ++e)
    if (eStore[e].efNum == 0 && !(e < eFlag.size() && edgeIsDeleted(e))) ++count;
  return count;
}

void editMesh::getWireEdges(std::vector<edge>& out) const {
  out.clear();
  for (unsigned int e = 0; e < en(); ++e)
    if (eStore[e].efNum == 0 && !(e < eFlag.size() && edgeIsDeleted(e)))
      out.emplace_back(eStore[e].v[0], eStore[e].v[1]);
}

void editMesh::addWireEdges(const std::vector<edge>& wires) {
  for (const edge& w : wires) addEdge(w.v[0], w.v[1]);
}

}  // namespace MESH
}  // namespace JEV
