#include <algorithm>
#include <cmath>
#include <sstream>

#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {

namespace {

// One use of an unordered vertex pair by a face, from a face side or an EF record.
struct sideUse {
  uint64_t key;
  uint32_t face;
  bool operator<(const sideUse& o) const { return key != o.key ? key < o.key : face < o.face; }
  bool operator==(const sideUse& o) const { return key == o.key && face == o.face; }
};

uint64_t pairKey(uint32_t a, uint32_t b) {
  return a < b ? (uint64_t(a) << 32 | b) : (uint64_t(b) << 32 | a);
}

class violationList {
 public:
  explicit violationList(unsigned int cap) : cap(cap) {}
  template <class... A>
  void add(const A&... parts) {
    if (count++ < cap) {
      (out << ... << parts);
      out << '\n';
    }
  }
  std::string str() const {
    if (count <= cap) return out.str();
    std::ostringstream s;
    s << out.str() << "... and " << count - cap << " more\n";
    return s.str();
  }

 private:
  std::ostringstream out;
  unsigned int cap;
  unsigned int count = 0;
};

}  // namespace

std::string editMesh::checkInvariants(unsigned int maxReports) const {
  violationList bad(maxReports);
  const uint32_t nv = vn(), ne = en(), nf = fn();

  if (vFlag.size() < nv) bad.add("vFlag holds ", vFlag.size(), " bytes for ", nv, " vertices");
  if (eFlag.size() < ne) bad.add("eFlag holds ", eFlag.size(), " bytes for ", ne, " edges");
  if (fFlag.size() < nf) bad.add("fFlag holds ", fFlag.size(), " bytes for ", nf, " faces");
  if (vFlag.size() < nv || eFlag.size() < ne || fFlag.size() < nf) return bad.str();

  auto liveVertex = [&](uint32_t v) { return v < nv && !isVertDeleted(v); };
  auto liveFace = [&](uint32_t f) { return f < nf && !isFaceDeleted(f); };
  std::vector<unsigned char> faceInFV(nf, 0);

  // faces and their corners
  for (uint32_t f = 0; f < nf; ++f) {
    if (isFaceDeleted(f)) continue;
    const face& r = fStore[f];
    if (size_t(r.fvBase) + r.fvNum > fvStore.size()) {
      bad.add("face ", f, " corners ", r.fvBase, "+", r.fvNum, " run past FV (", fvn(), ")");
      continue;
    }
    faceInFV[f] = 1;
    for (uint32_t i = 0; i < r.fvNum; ++i) {
      const uint32_t v = fvStore[r.fvBase + i].vertId;
      if (!liveVertex(v))
        bad.add("face ", f, " corner ", i, " is vertex ", v,
                v < nv ? ", which is deleted" : ", out of range");
    }
  }

  // edges and EF
  if (ne > 0) {
    std::vector<sideUse> fromFaces, fromEF;
    for (uint32_t f = 0; f < nf; ++f) {
      if (!faceInFV[f]) continue;
      const face& r = fStore[f];
      for (uint32_t i = 0; i < r.fvNum; ++i) {
        const uint32_t a = fvStore[r.fvBase + i].vertId;
        const uint32_t b = fvStore[r.fvBase + (i + 1 == r.fvNum ? 0 : i + 1)].vertId;
        if (a < nv && b < nv) fromFaces.push_back({pairKey(a, b), f});
      }
    }
    for (uint32_t e = 0; e < ne; ++e) {
      if (edgeIsDeleted(e)) continue;
      const edge& r = eStore[e];
      const uint32_t a = r.v[0], b = r.v[1];
      if (!liveVertex(a) || !liveVertex(b)) {
        bad.add("edge ", e, " joins ", a, " and ", b, ", not both live vertices");
        continue;
      }
      if (size_t(r.efBase) + r.efNum > efStore.size()) {
        bad.add("edge ", e, " EF range ", r.efBase, "+", r.efNum, " runs past EF (", efn(), ")");
        continue;
      }
      for (uint32_t k = 0; k < r.efNum; ++k) {
        const edgeFaceRecord rec = efStore[r.efBase + k];
        if (!liveFace(rec.faceId)) continue;  // deleted faces may linger until a rebuild
        const face& fr = fStore[rec.faceId];
        fromEF.push_back({pairKey(a, b), rec.faceId});
        if (!faceInFV[rec.faceId] || fr.fvNum > 64) continue;  // corner index has 6 bits
        const uint32_t c = rec.corner;
        const uint32_t n = fr.fvNum;
        if (c >= n) {
          bad.add("edge ", e, " EF record of face ", rec.faceId, " has corner ", c, " of ", n);
          continue;
        }
        const uint32_t p = fV(rec.faceId, (c + n - 1) % n), q = fV(rec.faceId, c);
        if (pairKey(p, q) != pairKey(a, b))
          bad.add("edge ", e, " (", a, "-", b, ") EF record of face ", rec.faceId, " corner ", c,
                  " names side ", p, "-", q);
      }
    }
    std::sort(fromFaces.begin(), fromFaces.end());
    std::sort(fromEF.begin(), fromEF.end());
    std::vector<sideUse> missing, extra;
    std::set_difference(fromFaces.begin(), fromFaces.end(), fromEF.begin(), fromEF.end(),
                        std::back_inserter(missing));
    std::set_difference(fromEF.begin(), fromEF.end(), fromFaces.begin(), fromFaces.end(),
                        std::back_inserter(extra));
    for (const sideUse& s : missing)
      bad.add("face ", s.face, " side ", uint32_t(s.key >> 32), "-", uint32_t(s.key),
              " is missing from the EF lists of its edges");
    for (const sideUse& s : extra)
      bad.add("EF lists hold face ", s.face, " on ", uint32_t(s.key >> 32), "-", uint32_t(s.key),
              " more often than the face uses that side");
  }

  // VE, when it claims to be valid
  if (isVEValid()) {
    std::vector<unsigned char> atEnd(ne, 0);  // bit 1: listed at v[0], bit 2: at v[1]
    for (uint32_t v = 0; v < nv; ++v) {
      if (isVertDeleted(v)) continue;
      const vert& r = vStore[v];
      if (size_t(r.veBase) + r.veNum > veStore.size()) {
        bad.add("vertex ", v, " VE range ", r.veBase, "+", r.veNum, " runs past VE (", ven(), ")");
        continue;
      }
      for (uint32_t i = 0; i < r.veNum; ++i) {
        const uint32_t e = veStore[r.veBase + i];
        // compactVertices renames only live edges: a deleted one may name old vertex ids
        if (e < ne && edgeIsDeleted(e)) continue;
        if (e >= ne || (eStore[e].v[0] != v && eStore[e].v[1] != v)) {
          bad.add("vertex ", v, " VE lists edge ", e, ", which does not end at it");
          continue;
        }
        if (eStore[e].v[0] == v) atEnd[e] |= 1;
        if (eStore[e].v[1] == v) atEnd[e] |= 2;
      }
    }
    for (uint32_t e = 0; e < ne; ++e) {
      if (edgeIsDeleted(e) || !liveVertex(eStore[e].v[0]) || !liveVertex(eStore[e].v[1])) continue;
      if (atEnd[e] != 3) bad.add("edge ", e, " is missing from the VE list of an end");
    }
  }

  // selection counters and sums
  uint32_t sf = 0, sfv = 0, se = 0, sv = 0;
  double sum[3] = {0, 0, 0}, mag = 0;
  for (uint32_t f = 0; f < nf; ++f)
    if (!isFaceDeleted(f) && isFaceSelected(f)) ++sf, sfv += fStore[f].fvNum;
  for (uint32_t e = 0; e < ne; ++e)
    if (!edgeIsDeleted(e) && isEdgeSelected(e)) ++se;
  for (uint32_t v = 0; v < nv; ++v) {
    if (isVertDeleted(v) || !isVertSelected(v)) continue;
    ++sv;
    const MATH::point3<float>& p = vStore[v].pos;
    for (int k = 0; k < 3; ++k) sum[k] += p[k], mag += std::fabs(p[k]);
  }
  if (sf != selFn) bad.add("selFn is ", selFn, " but ", sf, " live faces are selected");
  if (sfv != selFvn)
    bad.add("selFvn is ", selFvn, " but the selected faces have ", sfv, " corners");
  if (se != selEn) bad.add("selEn is ", selEn, " but ", se, " live edges are selected");
  if (sv != selVn) bad.add("selVn is ", selVn, " but ", sv, " live vertices are selected");
  const double tol = 1e-4 * (1.0 + mag);
  for (int k = 0; k < 3; ++k)
    if (std::fabs(sum[k] - selVertSum[k]) > tol) {
      bad.add("selVertSum is (", selVertSum.x, ", ", selVertSum.y, ", ", selVertSum.z,
              ") but the selected positions sum to (", sum[0], ", ", sum[1], ", ", sum[2], ")");
      break;
    }
  return bad.str();
}

}  // namespace MESH
}  // namespace JEV
