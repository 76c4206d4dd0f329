#include "jev3d/algo/remeshing/qECollapse.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {

namespace {

using p3d = MATH::point3<double>;
using p3f = MATH::point3<float>;

constexpr unsigned int NONE = 0xFFFFFFFFu;
constexpr unsigned int MAX_PASSES = 200;
// Most passes between two compactions of the triangle list and rebuilds of the vertex
// lists; a pass also compacts when half the triangles are gone.
constexpr unsigned int COMPACT_EVERY = 5;
// Weight of the planes that hold an open border on its line, against 1 for a face plane.
constexpr double BORDER_WEIGHT = 10.0;
// Flip test: a face may not turn by more than acos(0.2); edges at a new corner may not
// become parallel (|cos| above 0.999).
constexpr double MIN_NORMAL_COS = 0.2;
constexpr double MAX_CORNER_COS = 0.999;

// Symmetric 4x4 error matrix of the planes n·x + d = 0: xx xy xz xd yy yz yd zz zd dd.
struct quadric {
  double m[10] = {};

  void addPlane(const p3d& n, double d, double w) {
    m[0] += w * n.x * n.x, m[1] += w * n.x * n.y, m[2] += w * n.x * n.z, m[3] += w * n.x * d;
    m[4] += w * n.y * n.y, m[5] += w * n.y * n.z, m[6] += w * n.y * d;
    m[7] += w * n.z * n.z, m[8] += w * n.z * d, m[9] += w * d * d;
  }
  quadric& operator+=(const quadric& o) {
    for (int i = 0; i < 10; ++i) m[i] += o.m[i];
    return *this;
  }
  double eval(const p3d& p) const {
    const double x = p.x, y = p.y, z = p.z;
    const double e = m[0] * x * x + 2 * m[1] * x * y + 2 * m[2] * x * z + 2 * m[3] * x +
                     m[4] * y * y + 2 * m[5] * y * z + 2 * m[6] * y + m[7] * z * z + 2 * m[8] * z +
                     m[9];
    return e > 0.0 ? e : 0.0;
  }
  // The point of least error, by Cramer's rule; false for a (nearly) singular system, as
  // on a flat or cylindrical patch.
  bool optimum(p3d& p) const {
    const double a = m[0], b = m[1], c = m[2], d = m[4], e = m[5], f = m[7];
    const double det = a * (d * f - e * e) - b * (b * f - c * e) + c * (b * e - c * d);
    const double size = std::fabs(a) + std::fabs(d) + std::fabs(f);
    if (!(std::fabs(det) > 1e-9 * size * size * size)) return false;
    const double rx = -m[3], ry = -m[6], rz = -m[8];
    p.x = (rx * (d * f - e * e) - b * (ry * f - rz * e) + c * (ry * e - rz * d)) / det;
    p.y = (a * (ry * f - e * rz) - rx * (b * f - c * e) + c * (b * rz - c * ry)) / det;
    p.z = (a * (d * rz - e * ry) - b * (b * rz - c * ry) + rx * (b * e - c * d)) / det;
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
  }
};

struct tri {
  unsigned int v[3];
  float err[4];  // collapse error of edge (v[k], v[k + 1]) and the least of the three
  p3f n;         // unit normal
  bool deleted = false;
  bool dirty = false;
};

struct vtx {
  p3d p;
  quadric q;
  unsigned int start = 0, count = 0;  // range of the vertex's triangles in refs
  bool border = false;                // on an open border edge
  bool locked = false;                // on a non-manifold edge: never moves
};

struct ref {
  unsigned int t;
  unsigned int corner;
};

p3d toDouble(const p3f& p) { return p3d(p.x, p.y, p.z); }

p3d unitCross(const p3d& a, const p3d& b) { return p3d::cross(a, b).normalize(); }

class decimator {
 public:
  // False when no triangle is valid.
  bool load(const std::vector<p3f>& positions, const std::vector<unsigned int>& triangles);
  void run(unsigned int target, double aggressiveness, SYSTEM::callBack* cb);
  void write(std::vector<p3f>& newPositions, std::vector<unsigned int>& newTriangles,
             std::vector<unsigned int>& vertexMap);

 private:
  void buildRefs();
  void findBorders();
  void computeErrors(tri& t);
  double edgeError(unsigned int a, unsigned int b, p3d& p) const;
  bool linkAllowsCollapse(unsigned int a, unsigned int b);
  bool foldsOver(unsigned int a, unsigned int b, const p3d& p) const;
  void collapse(unsigned int a, unsigned int b, const p3d& p);
  void compact();
  double cheapestErrors(unsigned int target);
  unsigned int root(unsigned int v);

  std::vector<vtx> verts;
  std::vector<tri> tris;
  std::vector<ref> refs;
  std::vector<unsigned int> parent;  // the vertex each one collapsed into, itself if none
  std::vector<unsigned int> stamp;   // neighbour marks of the link test
  unsigned int stampValue = 0;
  std::vector<float> sample;  // of triangle errors, for the pass bound
  unsigned int stalls = 0;    // passes in a row that collapsed nothing
  size_t live = 0;
  p3d centre;
  double unit = 1.0;  // input units per unit of the scaled copy
};

bool decimator::load(const std::vector<p3f>& positions,
                     const std::vector<unsigned int>& triangles) {
  const size_t n = positions.size();
  auto finite = [](const p3f& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
  };
  tris.reserve(triangles.size() / 3);
  for (size_t k = 0; k + 2 < triangles.size(); k += 3) {
    tri t;
    t.v[0] = triangles[k], t.v[1] = triangles[k + 1], t.v[2] = triangles[k + 2];
    if (t.v[0] >= n || t.v[1] >= n || t.v[2] >= n) continue;
    if (t.v[0] == t.v[1] || t.v[1] == t.v[2] || t.v[2] == t.v[0]) continue;
    if (!finite(positions[t.v[0]]) || !finite(positions[t.v[1]]) || !finite(positions[t.v[2]]))
      continue;
    tris.push_back(t);
  }
  if (tris.empty()) return false;
  live = tris.size();

  // Work in a copy centred on the box and scaled to a unit diagonal, so the thresholds
  // mean the same on every model and huge coordinates cannot overflow the quadrics.
  p3d lo(1e300, 1e300, 1e300), hi(-1e300, -1e300, -1e300);
  for (const tri& t : tris)
    for (unsigned int v : t.v)
      for (int c = 0; c < 3; ++c) {
        lo[c] = std::min(lo[c], double(positions[v][c]));
        hi[c] = std::max(hi[c], double(positions[v][c]));
      }
  centre = (lo + hi) * 0.5;
  const double diagonal = (hi - lo).norm();
  unit = diagonal > 0.0 && std::isfinite(diagonal) ? diagonal : 1.0;
  verts.resize(n);
  parent.resize(n);
  stamp.assign(n, 0);
  for (size_t v = 0; v < n; ++v) {
    parent[v] = unsigned(v);
    if (finite(positions[v])) verts[v].p = (toDouble(positions[v]) - centre) * (1.0 / unit);
  }
  for (tri& t : tris) {
    const p3d &a = verts[t.v[0]].p, &b = verts[t.v[1]].p, &c = verts[t.v[2]].p;
    const p3d nn = unitCross(b - a, c - a);
    t.n = p3f(float(nn.x), float(nn.y), float(nn.z));
    for (unsigned int v : t.v) verts[v].q.addPlane(nn, -(nn * a), 1.0);
  }
  buildRefs();
  findBorders();
  for (tri& t : tris) computeErrors(t);
  return true;
}

void decimator::buildRefs() {
  for (vtx& v : verts) v.count = 0;
  for (const tri& t : tris)
    if (!t.deleted)
      for (unsigned int v : t.v) ++verts[v].count;
  unsigned int start = 0;
  for (vtx& v : verts) {
    v.start = start;
    start += v.count;
    v.count = 0;
  }
  refs.resize(start);
  for (unsigned int i = 0; i < tris.size(); ++i) {
    if (tris[i].deleted) continue;
    for (unsigned int k = 0; k < 3; ++k) {
      vtx& v = verts[tris[i].v[k]];
      refs[v.start + v.count++] = ref{i, k};
    }
  }
}

// An edge seen from one triangle only is an open border; from three or more, it is
// non-manifold and its ends are locked in place.
void decimator::findBorders() {
  std::vector<std::pair<unsigned int, unsigned int>> around;  // neighbour, triangles
  for (unsigned int v = 0; v < verts.size(); ++v) {
    around.clear();
    for (unsigned int r = verts[v].start; r < verts[v].start + verts[v].count; ++r) {
      const tri& t = tris[refs[r].t];
      for (unsigned int k = 1; k < 3; ++k) {
        const unsigned int w = t.v[(refs[r].corner + k) % 3];
        auto it = std::find_if(
            around.begin(), around.end(),
            [w](const std::pair<unsigned int, unsigned int>& e) { return e.first == w; });
        if (it == around.end())
          around.emplace_back(w, 1);
        else
          ++it->second;
      }
    }
    for (const auto& [w, count] : around) {
      if (count > 2) verts[v].locked = true;
      if (count != 1) continue;
      verts[v].border = true;
      if (w < v) continue;  // each border edge once
      // The plane through the edge, upright on its face, keeps the border on its line.
      for (unsigned int r = verts[v].start; r < verts[v].start + verts[v].count; ++r) {
        const tri& t = tris[refs[r].t];
        if (t.v[0] != w && t.v[1] != w && t.v[2] != w) continue;
        const p3d side = unitCross(verts[w].p - verts[v].p, toDouble(t.n));
        const double d = -(side * verts[v].p);
        verts[v].q.addPlane(side, d, BORDER_WEIGHT);
        verts[w].q.addPlane(side, d, BORDER_WEIGHT);
        break;
      }
    }
  }
}

// The error of collapsing a with b and the point they would meet at. A locked vertex,
// or a border vertex meeting an inner one, stays where it is; two that both must stay
// cannot collapse (infinite error).
double decimator::edgeError(unsigned int a, unsigned int b, p3d& p) const {
  const vtx &va = verts[a], &vb = verts[b];
  const bool fixA = va.locked || (va.border && !vb.border);
  const bool fixB = vb.locked || (vb.border && !va.border);
  if (fixA && fixB) return std::numeric_limits<double>::infinity();
  quadric q = va.q;
  q += vb.q;
  if (fixA || fixB) {
    p = fixA ? va.p : vb.p;
    return q.eval(p);
  }
  const p3d mid = (va.p + vb.p) * 0.5;
  // A nearly singular system can put the optimum far away: keep it near the edge.
  const double reach = (vb.p - va.p).squaredNorm() * 4.0;
  if (q.optimum(p) && (p - mid).squaredNorm() <= reach) return q.eval(p);
  const double ea = q.eval(va.p), eb = q.eval(vb.p), em = q.eval(mid);
  if (ea <= eb && ea <= em) {
    p = va.p;
    return ea;
  }
  p = eb <= em ? vb.p : mid;
  return std::min(eb, em);
}

void decimator::computeErrors(tri& t) {
  p3d p;
  float least = std::numeric_limits<float>::infinity();
  for (unsigned int k = 0; k < 3; ++k) {
    const double e = edgeError(t.v[k], t.v[(k + 1) % 3], p);
    t.err[k] = e < 1e30 ? float(e) : std::numeric_limits<float>::infinity();
    least = std::min(least, t.err[k]);
  }
  t.err[3] = least;
}

// The collapse keeps the surface a manifold only when a and b share exactly the
// neighbours of the triangles on their edge (two inside, one on a border), an edge
// between two border vertices is itself a border edge, and enough triangles stay.
bool decimator::linkAllowsCollapse(unsigned int a, unsigned int b) {
  stampValue += 2;
  if (stampValue < 2) {  // wrapped: start the marks again
    std::fill(stamp.begin(), stamp.end(), 0u);
    stampValue = 2;
  }
  unsigned int onEdge = 0, around = 0;
  for (unsigned int r = verts[a].start; r < verts[a].start + verts[a].count; ++r) {
    const tri& t = tris[refs[r].t];
    if (t.deleted) continue;
    ++around;
    for (unsigned int v : t.v) {
      if (v == b) ++onEdge;
      if (v != a) stamp[v] = stampValue;
    }
  }
  if (onEdge == 0 || onEdge > 2) return false;
  if (onEdge == 2 && verts[a].border && verts[b].border) return false;
  unsigned int shared = 0;
  for (unsigned int r = verts[b].start; r < verts[b].start + verts[b].count; ++r) {
    const tri& t = tris[refs[r].t];
    if (t.deleted) continue;
    ++around;
    for (unsigned int v : t.v)
      if (v != a && v != b && stamp[v] == stampValue) {
        stamp[v] = stampValue + 1;  // count each neighbour once
        ++shared;
      }
  }
  // A lone triangle, or a tetrahedron, would fold into nothing or into a doubled face.
  const bool border = verts[a].border || verts[b].border;
  if (around - 2 * onEdge < (border ? 1u : 3u)) return false;
  if (shared != onEdge) return false;
  // Nor may the far corner of a triangle on the edge lose its last triangle (an ear).
  for (unsigned int r = verts[a].start; r < verts[a].start + verts[a].count; ++r) {
    const tri& t = tris[refs[r].t];
    if (t.deleted) continue;
    const unsigned int c = t.v[(refs[r].corner + 2) % 3];
    if (t.v[(refs[r].corner + 1) % 3] != b && c != b) continue;
    const unsigned int far = c == b ? t.v[(refs[r].corner + 1) % 3] : c;
    unsigned int kept = 0;
    for (unsigned int q = verts[far].start; q < verts[far].start + verts[far].count; ++q)
      kept += !tris[refs[q].t].deleted;
    if (kept < 2) return false;
  }
  return true;
}

// True when moving a to p turns one of a's other triangles over or makes it a sliver.
bool decimator::foldsOver(unsigned int a, unsigned int b, const p3d& p) const {
  for (unsigned int r = verts[a].start; r < verts[a].start + verts[a].count; ++r) {
    const tri& t = tris[refs[r].t];
    if (t.deleted) continue;
    const unsigned int c = refs[r].corner;
    const unsigned int u = t.v[(c + 1) % 3], w = t.v[(c + 2) % 3];
    if (u == b || w == b) continue;  // goes away with the collapse
    // The cosine tests squared, to spare the square roots.
    const p3d d1 = verts[u].p - p, d2 = verts[w].p - p;
    const double l1 = d1.squaredNorm(), l2 = d2.squaredNorm(), dot = d1 * d2;
    if (dot * dot > MAX_CORNER_COS * MAX_CORNER_COS * l1 * l2) return true;
    const p3d nn = p3d::cross(d1, d2);
    const double along = nn * toDouble(t.n);
    if (along < 0.0 || along * along < MIN_NORMAL_COS * MIN_NORMAL_COS * nn.squaredNorm())
      return true;
  }
  return false;
}

void decimator::collapse(unsigned int a, unsigned int b, const p3d& p) {
  vtx& va = verts[a];
  va.p = p;
  va.q += verts[b].q;
  va.locked = va.locked || verts[b].locked;
  va.border = va.border || verts[b].border;
  parent[b] = a;
  const unsigned int start = unsigned(refs.size());
  const unsigned int lists[2][2] = {{verts[a].start, verts[a].count},
                                    {verts[b].start, verts[b].count}};
  for (const auto& list : lists)
    for (unsigned int r = list[0]; r < list[0] + list[1]; ++r) {
      const ref rf = refs[r];  // by value: refs grows below
      tri& t = tris[rf.t];
      if (t.deleted) continue;
      const bool hasA = t.v[0] == a || t.v[1] == a || t.v[2] == a;
      const bool hasB = t.v[0] == b || t.v[1] == b || t.v[2] == b;
      if (hasA && hasB) {
        t.deleted = true;
        --live;
        continue;
      }
      t.v[rf.corner] = a;
      t.dirty = true;
      const p3d nn =
          unitCross(verts[t.v[1]].p - verts[t.v[0]].p, verts[t.v[2]].p - verts[t.v[0]].p);
      t.n = p3f(float(nn.x), float(nn.y), float(nn.z));
      refs.push_back(rf);
    }
  verts[a].start = start;
  verts[a].count = unsigned(refs.size()) - start;
  // Only the two edges at a changed; the third keeps its ends and their quadrics.
  for (unsigned int r = start; r < refs.size(); ++r) {
    tri& t = tris[refs[r].t];
    const unsigned int c = refs[r].corner;
    p3d q;
    for (unsigned int k : {c, (c + 2) % 3}) {
      const double e = edgeError(t.v[k], t.v[(k + 1) % 3], q);
      t.err[k] = e < 1e30 ? float(e) : std::numeric_limits<float>::infinity();
    }
    t.err[3] = std::min(std::min(t.err[0], t.err[1]), t.err[2]);
  }
}

void decimator::compact() {
  tris.erase(std::remove_if(tris.begin(), tris.end(), [](const tri& t) { return t.deleted; }),
             tris.end());
  buildRefs();
}

// An error bound that lets through about as many collapses as are still needed, read
// from a sample of the triangles: late passes then take the cheapest edges only, as a
// queue would, instead of everything under a threshold that has grown large. It grows
// while passes find nothing.
double decimator::cheapestErrors(unsigned int target) {
  constexpr size_t STRIDE = 16;
  sample.clear();
  for (size_t i = 0; i < tris.size(); i += STRIDE)
    if (!tris[i].deleted) sample.push_back(tris[i].err[3]);
  if (sample.empty()) return std::numeric_limits<double>::infinity();
  const double wanted = double(live - target) * double(1u << std::min(stalls, 20u));
  const size_t rank = std::min(sample.size() - 1, size_t(wanted / double(STRIDE)));
  std::nth_element(sample.begin(), sample.begin() + long(rank), sample.end());
  return double(sample[rank]);
}

void decimator::run(unsigned int target, double aggressiveness, SYSTEM::callBack* cb) {
  const size_t first = live;
  for (unsigned int pass = 0; pass < MAX_PASSES && live > target; ++pass) {
    if (pass > 0 && (pass % COMPACT_EVERY == 0 || live < tris.size() / 2)) compact();
    for (tri& t : tris) t.dirty = false;
    const size_t before = live;
    const double threshold =
        std::min(1e-9 * std::pow(double(pass) + 3.0, aggressiveness), cheapestErrors(target));
    for (size_t i = 0; i < tris.size() && live > target; ++i) {
      tri& t = tris[i];
      if (t.deleted || t.dirty || !(t.err[3] <= threshold)) continue;
      for (unsigned int k = 0; k < 3; ++k) {
        if (!(t.err[k] <= threshold)) continue;
        const unsigned int a = t.v[k], b = t.v[(k + 1) % 3];
        p3d p;
        if (!(edgeError(a, b, p) < 1e30)) continue;
        if (!linkAllowsCollapse(a, b) || foldsOver(a, b, p) || foldsOver(b, a, p)) continue;
        collapse(a, b, p);
        break;
      }
    }
    stalls = live == before ? stalls + 1 : 0;
    if (cb && first > target)
      cb->setValue(float(1.0 + 98.0 * double(first - live) / double(first - target)));
  }
  compact();
}

unsigned int decimator::root(unsigned int v) {
  unsigned int r = v;
  while (parent[r] != r) r = parent[r];
  while (parent[v] != r) {  // shorten the chain for the next lookups
    const unsigned int next = parent[v];
    parent[v] = r;
    v = next;
  }
  return r;
}

void decimator::write(std::vector<p3f>& newPositions, std::vector<unsigned int>& newTriangles,
                      std::vector<unsigned int>& vertexMap) {
  std::vector<unsigned int> id(verts.size(), NONE);
  for (const tri& t : tris)
    for (unsigned int v : t.v) id[v] = 0;
  newPositions.clear();
  for (unsigned int v = 0; v < verts.size(); ++v) {
    if (id[v] == NONE) continue;
    id[v] = unsigned(newPositions.size());
    const p3d q = verts[v].p * unit + centre;
    newPositions.emplace_back(float(q.x), float(q.y), float(q.z));
  }
  newTriangles.clear();
  newTriangles.reserve(tris.size() * 3);
  for (const tri& t : tris)
    for (unsigned int v : t.v) newTriangles.push_back(id[v]);
  // Positions that no valid triangle used were never joined to the mesh: their root is
  // themselves, without an id.
  vertexMap.resize(verts.size());
  for (unsigned int v = 0; v < verts.size(); ++v) vertexMap[v] = id[root(v)];
}

}  // namespace

bool qECollapse::decimate(const std::vector<p3f>& positions,
                          const std::vector<unsigned int>& triangles, unsigned int target,
                          std::vector<p3f>& newPositions, std::vector<unsigned int>& newTriangles,
                          std::vector<unsigned int>& vertexMap, SYSTEM::callBack* cb) {
  return decimate(positions, triangles, target, AGGRESSIVENESS, newPositions, newTriangles,
                  vertexMap, cb);
}

bool qECollapse::decimate(const std::vector<p3f>& positions,
                          const std::vector<unsigned int>& triangles, unsigned int target,
                          double aggressiveness, std::vector<p3f>& newPositions,
                          std::vector<unsigned int>& newTriangles,
                          std::vector<unsigned int>& vertexMap, SYSTEM::callBack* cb) {
  newPositions.clear();
  newTriangles.clear();
  vertexMap.clear();
  if (cb) cb->setValue(1.0f);
  decimator d;
  if (!d.load(positions, triangles)) {
    if (cb) cb->setValue(100.0f);
    return false;
  }
  const double agg = std::isfinite(aggressiveness) ? std::clamp(aggressiveness, 1.0, 20.0) : 7.0;
  d.run(target, agg, cb);
  d.write(newPositions, newTriangles, vertexMap);
  if (cb) cb->setValue(100.0f);
  return true;
}

bool computeQuickDecimate(const std::vector<p3f>& positions,
                          const std::vector<unsigned int>& triangles, unsigned int target,
                          std::vector<p3f>& newPositions, std::vector<unsigned int>& newTriangles,
                          std::vector<unsigned int>& vertexMap, SYSTEM::callBack* cb) {
  return qECollapse::decimate(positions, triangles, target, newPositions, newTriangles, vertexMap,
                              cb);
}

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
