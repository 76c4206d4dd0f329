#include "jev3d/algo/holefilling/internal/holePatch.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "jev3d/algo/holefilling/internal/fairingSystem.h"
#include "jev3d/algo/holefilling/internal/flatIndexMap.h"
#include "jev3d/algo/holefilling/internal/holeLoops.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace HOLEFILLING_INTERNAL {

using p3 = MATH::point3<float>;

namespace {

// The flip pass's generator, one word for the process: fills on two threads draw from
// it together, which changes which sides are tried but not the validity of the result.
std::atomic<uint32_t> flipRandomState{1u};

uint32_t nextFlipRandom() {
  const uint32_t s = flipRandomState.load(std::memory_order_relaxed) * 1664525u + 1013904223u;
  flipRandomState.store(s, std::memory_order_relaxed);
  return s;
}

// v scaled to unit length, given its length, or fallback when it is null.
p3 unitOf(const p3& v, float len, const p3& fallback) {
  return len > 0.f ? v * (1.f / len) : fallback;
}

p3 unitOr(const p3& v, const p3& fallback) { return unitOf(v, v.norm(), fallback); }

const p3 UNIT_X(1.f, 0.f, 0.f);

p3 faceNormal(const holeSurface& s, int a, int b, int c) {
  const p3& pa = s.position(a);
  return unitOr(p3::cross(s.position(b) - pa, s.position(c) - pa), p3());
}

float faceQuality(const holeSurface& s, const patchFace& f, float featureSize) {
  return earQuality(s, f.v[2], f.v[1], f.v[0], featureSize);
}

uint64_t sideKey(int a, int b) {
  return uint64_t(uint32_t(std::min(a, b))) << 32 | uint32_t(std::max(a, b));
}

// Corner of face f at which the side from a to b starts, or -1.
int cornerOfSide(const patchFace& f, int a, int b) {
  for (int i = 0; i < 3; ++i)
    if (f.v[i] == a && f.v[(i + 1) % 3] == b) return i;
  return -1;
}

// Points the link of face g across the side from a to b at face to.
void relink(std::vector<patchFace>& faces, int g, int a, int b, int to) {
  if (g < 0) return;
  const int k = cornerOfSide(faces[size_t(g)], a, b);
  if (k >= 0) faces[size_t(g)].n[k] = to;
}

// A max-heap of ear candidates. A new entry rises past its parent only when its quality
// is strictly above the parent's, so ties keep the older entry on top.
struct earCandidate {
  int prev, mid, next;
  float quality;
};

class earHeap {
 public:
  bool empty() const { return items.empty(); }
  void push(const earCandidate& c) {
    size_t i = items.size();
    items.push_back(c);
    while (i > 0) {
      const size_t parent = (i - 1) / 2;
      if (!(items[i].quality > items[parent].quality)) break;
      std::swap(items[i], items[parent]);
      i = parent;
    }
  }
  earCandidate pop() {
    const earCandidate top = items.front();
    items.front() = items.back();
    items.pop_back();
    size_t i = 0;
    for (;;) {
      const size_t l = 2 * i + 1, r = l + 1;
      size_t best = i;
      if (l < items.size() && items[l].quality > items[best].quality) best = l;
      if (r < items.size() && items[r].quality > items[best].quality) best = r;
      if (best == i) break;
      std::swap(items[i], items[best]);
      i = best;
    }
    return top;
  }
  void reserve(size_t n) { items.reserve(n); }

 private:
  std::vector<earCandidate> items;
};

// Bending between two faces with unit normals n1, n2: 1 when they are at right angles,
// 0.5 when flat, growing without bound as they fold onto each other.
float bendTerm(const p3& n1, const p3& n2) {
  const float t = std::max(n1 * n2, -0.999f);
  return 1.f - t / (t + 1.f);
}

// Conjugate gradient steps of one fairing round.
constexpr unsigned int CG_STEPS_PER_ROUND = 8;
// Steps of the fitted path's solves. From the fitted start the solve only blends the
// patch into the ring around it; run much longer, the weighted thin plate drifts from the
// fitted shape towards its own minimum, which bulges on lopsided rims. SETTLE_TOLERANCE
// is the drop of the squared gradient at which a solve stops early. Refined to the rim's
// spacing, a patch has few enough unknowns that half the steps once needed at the feature
// size carry the same shape.
constexpr unsigned int COARSE_SOLVE_STEPS = 100;
constexpr unsigned int FINE_SOLVE_STEPS = 50;
constexpr double SETTLE_TOLERANCE = 1e-10;

// Refinement stops growing a patch past this many faces: a feature size far below the
// hole's extent would otherwise fill memory.
constexpr size_t MAX_PATCH_FACES = size_t(1) << 24;

}  // namespace

void seedFlipRandom(uint32_t state) { flipRandomState.store(state, std::memory_order_relaxed); }

holeSurface::holeSurface(const std::vector<p3>& positions, const std::vector<p3>& normals,
                         const holeEdgeSet& edgeSet, float featureSize)
    : pos(positions), nor(normals), edges(edgeSet), feature(featureSize) {}

bool holeSurface::isMeshEdge(int a, int b) const {
  return a < vertexCount() && b < vertexCount() && edges.hasEdge(a, b);
}

float earQuality(const holeSurface& s, int prev, int mid, int next, float featureSize,
                 bool angleOnly) {
  const int a = prev, b = mid, c = next;
  if (a == b || b == c || a == c) return EAR_CLOSES_EDGE;
  const p3 &pa = s.position(a), &pb = s.position(b), &pc = s.position(c);
  // The normal of the face (c, b, a) that the ear becomes.
  const p3 n = unitOr(p3::cross(pc - pa, pb - pa), UNIT_X);
  const float d0 = n * s.normal(a), d1 = n * s.normal(b), d2 = n * s.normal(c);
  if (d0 < -0.999f || d1 < -0.999f || d2 < -0.999f) return EAR_CLOSES_EDGE;
  const p3 ab = pb - pa, bc = pc - pb, ca = pa - pc;
  const float lab = ab.norm(), lbc = bc.norm(), lca = ca.norm();
  const float longest = std::max(lab, std::max(lbc, lca));
  // Without a length scale (a surface of no extent) every ear counts as short.
  const float scale = featureSize > 0.f ? longest / featureSize + 1.f : 1.f;
  const p3 u = unitOf(ab, lab, UNIT_X), v = unitOf(bc, lbc, UNIT_X), w = unitOf(ca, lca, UNIT_X);
  float angle;
  if (angleOnly) {
    angle = u * v + 2.f;
  } else {
    const float uv = u * v + 1.f, uw = u * w + 1.f, vw = v * w + 1.f;
    angle = uv * uv + uw * uw + vw * vw;
  }
  const float normals = d0 / (d0 + 1.f) + d1 / (d1 + 1.f) + d2 / (d2 + 1.f);
  return std::sqrt(scale) * normals - angle * scale;
}

void triangulateLoop(const holeSurface& s, const std::vector<int>& loop,
                     std::vector<patchFace>& faces) {
  const int n = int(loop.size());
  if (n < 3) return;
  // Alive corners as a ring of links, so the neighbours of a cut are found at once.
  const size_t count = size_t(n);
  std::vector<int> after(count), before(count);
  std::vector<unsigned char> cut(count, 0);
  for (int i = 0; i < n; ++i) after[size_t(i)] = (i + 1) % n, before[size_t(i)] = (i + n - 1) % n;
  const float f = s.featureSize();
  auto candidate = [&](int p, int m, int x, float penalty) {
    const int vp = loop[size_t(p)], vx = loop[size_t(x)];
    const float q = s.isMeshEdge(vp, vx) ? penalty : earQuality(s, vp, loop[size_t(m)], vx, f);
    return earCandidate{p, m, x, q};
  };
  earHeap heap;
  heap.reserve(size_t(3 * n));
  for (int i = 0; i < n; ++i)
    heap.push(candidate(before[size_t(i)], i, after[size_t(i)], EAR_CLOSES_EDGE));
  int alive = n;
  faces.reserve(faces.size() + size_t(n - 2));
  while (!heap.empty()) {
    const earCandidate c = heap.pop();
    // Stale entries are skipped, not removed. A candidate whose middle is gone always
    // has a gone neighbour too; the test keeps that from resting on the reasoning.
    if (cut[size_t(c.prev)] || cut[size_t(c.next)] || cut[size_t(c.mid)]) continue;
    cut[size_t(c.mid)] = 1;
    faces.push_back(
        {{loop[size_t(c.next)], loop[size_t(c.mid)], loop[size_t(c.prev)]}, {-1, -1, -1}});
    after[size_t(c.prev)] = c.next;
    before[size_t(c.next)] = c.prev;
    // Finished when the corner after the third is the first again: two corners left.
    if (--alive <= 2) break;
    const int nn = after[size_t(c.next)], pp = before[size_t(c.prev)];
    heap.push(candidate(pp, c.prev, c.next, EAR_CLOSES_EDGE_AGAIN));
    heap.push(candidate(c.prev, c.next, nn, EAR_CLOSES_EDGE_AGAIN));
  }
}

void linkPatch(std::vector<patchFace>& faces) {
  flatIndexMap sides(faces.size() * 2);  // each side is stored once: 1.5 per face and the rim
  for (size_t t = 0; t < faces.size(); ++t)
    for (int k = 0; k < 3; ++k) {
      patchFace& f = faces[t];
      f.n[k] = -1;
      const int a = f.v[k], b = f.v[(k + 1) % 3];
      const int other = sides.find(uint64_t(uint32_t(b)) << 32 | uint32_t(a));
      if (other >= 0 && faces[size_t(other / 3)].n[other % 3] < 0) {
        f.n[k] = other / 3;
        faces[size_t(other / 3)].n[other % 3] = int(t);
      } else {
        sides.assign(uint64_t(uint32_t(a)) << 32 | uint32_t(b), int(t) * 3 + k);
      }
    }
}

// Each face in turn, the new ones included as they are appended, splits its longest
// side at the midpoint when that side is at least length long, together with the face
// across it. A face whose longest side is on the rim stands: the old mesh on the other
// side would keep the unsplit side and open a crack, and splitting a shorter side in its
// place can go on for ever along the rim. The face budget (from the patch's area, with a
// wide margin) stops a pass that the neighbours' splits keep feeding.
void splitPass(holeSurface& s, std::vector<patchFace>& faces, float length) {
  if (!(length > 0.f)) return;  // no length scale: splitting would never end
  double area = 0;
  for (const patchFace& f : faces)
    area += 0.5 * double(p3::cross(s.position(f.v[1]) - s.position(f.v[0]),
                                   s.position(f.v[2]) - s.position(f.v[0]))
                             .norm());
  const double smallest = 0.108 * double(length) * double(length);  // equilateral of side L/2
  const size_t budget =
      std::min(MAX_PATCH_FACES, faces.size() + size_t(16.0 * area / smallest) + 64);
  for (size_t t = 0; t < faces.size() && faces.size() < budget; ++t) {
    int k = -1;
    float longest = 0.f;
    for (int i = 0; i < 3; ++i) {
      const patchFace& f = faces[t];
      const float len = (s.position(f.v[(i + 1) % 3]) - s.position(f.v[i])).norm();
      if (len > longest) longest = len, k = i;
    }
    if (k < 0 || longest < length || faces[t].n[k] < 0 || faces[t].n[k] == int(t)) continue;
    const int a = faces[t].v[k], b = faces[t].v[(k + 1) % 3], c = faces[t].v[(k + 2) % 3];
    const int u = faces[t].n[k];
    const int j = cornerOfSide(faces[size_t(u)], b, a);
    if (j < 0) continue;  // a link that no longer matches: leave the side alone
    const int d = faces[size_t(u)].v[(j + 2) % 3];
    const int tOut = faces[t].n[(k + 1) % 3];          // across b-c
    const int uOut = faces[size_t(u)].n[(j + 1) % 3];  // across a-d
    const int tRest = faces[t].n[(k + 2) % 3], uRest = faces[size_t(u)].n[(j + 2) % 3];

    const int m = s.vertexCount() + int(s.added.size());
    const p3 mid = (s.position(a) + s.position(b)) * 0.5f;
    s.added.push_back({mid, unitOr(s.normal(a) + s.normal(b), faceNormal(s, a, b, c))});

    const int t2 = int(faces.size()), u2 = t2 + 1;
    faces[t] = {{a, m, c}, {u2, t2, tRest}};
    faces[size_t(u)] = {{b, m, d}, {t2, u2, uRest}};
    faces.push_back({{m, b, c}, {u, tOut, int(t)}});
    faces.push_back({{m, a, d}, {int(t), uOut, u}});
    relink(faces, tOut, c, b, t2);
    relink(faces, uOut, d, a, u2);
  }
}

void flipPass(const holeSurface& s, std::vector<patchFace>& faces, float featureSize) {
  struct entry {
    int face, a, b;
  };
  std::vector<entry> work;
  work.reserve(faces.size() * 2);
  flatIndexMap sides(faces.size() * 2);
  for (size_t t = 0; t < faces.size(); ++t)
    for (int k = 0; k < 3; ++k) {
      const patchFace& f = faces[t];
      sides.insert(sideKey(f.v[k], f.v[(k + 1) % 3]), 0);
      if (f.n[k] > int(t)) work.push_back({int(t), f.v[k], f.v[(k + 1) % 3]});
    }
  // Each face's ear quality, measured once while the face stands (NaN: not yet): most
  // sides weigh qualities, and a face meets the test from each of its sides.
  std::vector<float> quality(faces.size(), std::numeric_limits<float>::quiet_NaN());
  auto qualityOf = [&](int face) {
    float& q = quality[size_t(face)];
    if (std::isnan(q)) q = faceQuality(s, faces[size_t(face)], featureSize);
    return q;
  };
  // Sides come back to the list only when a flip changes their faces; the budget keeps
  // a cycle of flips, should the rules allow one, from running forever.
  size_t budget = 10 * work.size() + 64;
  while (!work.empty() && budget > 0) {
    const size_t pick = std::min(
        work.size() - 1, size_t(double(nextFlipRandom()) * 2.3283064e-10 * double(work.size())));
    const entry e = work[pick];
    work[pick] = work.back();
    work.pop_back();
    patchFace& t = faces[size_t(e.face)];
    const int k = cornerOfSide(t, e.a, e.b);
    if (k < 0 || t.n[k] < 0) continue;
    const int ui = t.n[k];
    patchFace& u = faces[size_t(ui)];
    const int j = cornerOfSide(u, e.b, e.a);
    if (j < 0) continue;
    const int a = e.a, b = e.b, c = t.v[(k + 2) % 3], d = u.v[(j + 2) % 3];
    // The new diagonal must not double a side that exists already.
    if (c == d || sides.contains(sideKey(c, d)) || s.isMeshEdge(c, d)) continue;

    const float before = bendTerm(faceNormal(s, a, b, c), faceNormal(s, b, a, d));
    const float after = bendTerm(faceNormal(s, a, d, c), faceNormal(s, d, b, c));
    bool take;
    float qt1 = std::numeric_limits<float>::quiet_NaN(), qu1 = qt1;
    if (after > 1.5f * before)
      take = false;
    else if (after < 0.5f * before)
      take = true;
    else {
      qt1 = faceQuality(s, patchFace{{a, d, c}, {}}, featureSize);
      qu1 = faceQuality(s, patchFace{{d, b, c}, {}}, featureSize);
      take = qt1 + qu1 > qualityOf(e.face) + qualityOf(ui);
    }
    if (!take) continue;
    --budget;
    const int tBC = t.n[(k + 1) % 3], tCA = t.n[(k + 2) % 3];
    const int uAD = u.n[(j + 1) % 3], uDB = u.n[(j + 2) % 3];
    t = {{a, d, c}, {uAD, ui, tCA}};
    u = {{d, b, c}, {uDB, tBC, e.face}};
    quality[size_t(e.face)] = qt1;
    quality[size_t(ui)] = qu1;
    relink(faces, uAD, d, a, e.face);
    relink(faces, tBC, c, b, ui);
    sides.erase(sideKey(a, b));
    sides.insert(sideKey(c, d), 0);
    if (uAD >= 0) work.push_back({e.face, a, d});
    if (tCA >= 0) work.push_back({e.face, c, a});
    if (uDB >= 0) work.push_back({ui, d, b});
    if (tBC >= 0) work.push_back({ui, b, c});
  }
}

// Each round is CG_STEPS_PER_ROUND steps of the solve (stopping early once converged),
// which carries the shape across a patch far faster than local sweeps, then one sweep
// of the slide.
void fairPatch(holeSurface& s, const std::vector<patchFace>& faces, float step, float exponent,
               unsigned int rounds, int firstNew) {
  assert(rounds >= 10 && rounds <= 50);
  fairingSystem system(s, faces, exponent, firstNew);
  system.solve(rounds * CG_STEPS_PER_ROUND, 1e-14);
  system.slide(step, rounds);
  system.updateNormals(faces);
}

void improvePatch(holeSurface& s, std::vector<patchFace>& faces) {
  const int firstNew = int(s.added.size());
  const float f = s.featureSize();
  linkPatch(faces);
  flipPass(s, faces, f);
  const double m = double(faces.size());
  int passes = m > 0 ? int(std::ceil(2.0 * std::log(m) * 1.4426950408889634 - 3.0)) : 0;
  passes = std::min(passes, 4);
  for (int p = 0; p < passes; ++p) {
    splitPass(s, faces, 2.f * f);
    flipPass(s, faces, f);
    fairPatch(s, faces, 0.2f, 2.0f, 10, firstNew);
  }
  splitPass(s, faces, 1.5f * f);
  splitPass(s, faces, f);
  flipPass(s, faces, f);
  fairPatch(s, faces, 0.2f, 2.0f, 50, firstNew);
}

namespace {

// Solves the 6 x 6 system a x = b by elimination with partial pivoting; false when it
// is singular.
bool solve6(double a[6][6], double b[6], double x[6]) {
  for (int c = 0; c < 6; ++c) {
    int pivot = c;
    for (int r = c + 1; r < 6; ++r)
      if (std::fabs(a[r][c]) > std::fabs(a[pivot][c])) pivot = r;
    if (!(std::fabs(a[pivot][c]) > 1e-12)) return false;
    std::swap(a[c], a[pivot]);
    std::swap(b[c], b[pivot]);
    for (int r = c + 1; r < 6; ++r) {
      const double k = a[r][c] / a[c][c];
      for (int j = c; j < 6; ++j) a[r][j] -= k * a[c][j];
      b[r] -= k * b[c];
    }
  }
  for (int c = 5; c >= 0; --c) {
    double sum = b[c];
    for (int j = c + 1; j < 6; ++j) sum -= a[c][j] * x[j];
    x[c] = sum / a[c][c];
  }
  return true;
}

// Lifts the new vertices onto a quadric height field fitted to the rim and the ring of
// old vertices around it, over the plane of the rim's mean normal: the start of the
// weighted solve, which then has only local detail to settle. Holes whose rim normals
// disagree too much for one height direction (a tube's end, a fold) keep the flat start.
bool liftOntoFittedQuadric(holeSurface& s, const std::vector<patchFace>& faces, int firstNew) {
  const int base = s.vertexCount(), firstMoving = base + firstNew;
  std::vector<int> rim;
  for (const patchFace& f : faces)
    for (int v : f.v)
      if (v < base) rim.push_back(v);
  std::sort(rim.begin(), rim.end());
  rim.erase(std::unique(rim.begin(), rim.end()), rim.end());
  if (rim.size() < 3 || firstMoving >= base + int(s.added.size())) return false;
  p3 origin, normal;
  for (int v : rim) origin += s.position(v), normal += s.normal(v);
  origin = origin * (1.f / float(rim.size()));
  if (normal.norm() < 0.5f * float(rim.size())) return false;
  normal = unitOr(normal, UNIT_X);
  const p3 e1 =
      unitOr(p3::cross(normal, std::fabs(normal.x) < 0.9f ? UNIT_X : p3(0.f, 1.f, 0.f)), UNIT_X);
  const p3 e2 = p3::cross(normal, e1);
  std::vector<int> samples = rim;
  for (int v : rim)
    for (unsigned int k = 0; k < s.edgeSet().neighbourCount(v); ++k)
      samples.push_back(s.edgeSet().neighbours(v)[k]);
  std::sort(samples.begin(), samples.end());
  samples.erase(std::unique(samples.begin(), samples.end()), samples.end());
  // Plane coordinates scaled by the samples' reach, so the system is well conditioned.
  double reach = 0;
  for (int v : samples) {
    const p3 d = s.position(v) - origin;
    reach = std::max(reach, std::hypot(double(d * e1), double(d * e2)));
  }
  if (!(reach > 0)) return false;
  auto terms = [&](const p3& p, double t[6]) {
    const p3 d = p - origin;
    const double u = double(d * e1) / reach, v = double(d * e2) / reach;
    t[0] = 1, t[1] = u, t[2] = v, t[3] = u * u, t[4] = u * v, t[5] = v * v;
  };
  double a[6][6] = {}, b[6] = {}, c[6] = {};
  for (int v : samples) {
    double t[6];
    terms(s.position(v), t);
    const double h = double((s.position(v) - origin) * normal);
    for (int i = 0; i < 6; ++i) {
      for (int j = 0; j < 6; ++j) a[i][j] += t[i] * t[j];
      b[i] += t[i] * h;
    }
  }
  if (!solve6(a, b, c)) return false;
  for (size_t i = size_t(firstNew); i < s.added.size(); ++i) {
    p3& p = s.added[i].pos;
    double t[6];
    terms(p, t);
    double h = 0;
    for (int k = 0; k < 6; ++k) h += c[k] * t[k];
    p = p - normal * ((p - origin) * normal) + normal * float(h);
  }
  return true;
}

// The thin plate with lengths weighed in, solved for at most steps steps (less once it
// settles), then slid rounds times.
void solveWeighted(holeSurface& s, const std::vector<patchFace>& faces, unsigned int steps,
                   unsigned int rounds, int firstNew) {
  fairingSystem system(s, faces, 2.0f, firstNew);
  system.weighByInverseLength();
  system.solve(steps, SETTLE_TOLERANCE);
  system.slide(0.2f, rounds);
  system.updateNormals(faces);
}

// The length scale of the mesh at the patch's rim: the mean length of the mesh edges
// that leave the rim's corners into the mesh; the mean of the rim's own sides when no
// edge does; 0 without a rim. The edges across the rim rather than along it, because a
// rim can be far finer along the hole than across it (a hole cut along a row of a
// stretched mesh), and refining to its sides would make a patch many times denser than
// the mesh around it. Called before any split, when every patch vertex is a rim corner.
float rimEdgeScale(const holeSurface& s, const std::vector<patchFace>& faces) {
  std::vector<int> rim;
  for (const patchFace& f : faces) rim.insert(rim.end(), f.v, f.v + 3);
  std::sort(rim.begin(), rim.end());
  rim.erase(std::unique(rim.begin(), rim.end()), rim.end());
  double across = 0, along = 0;
  size_t acrossCount = 0, alongCount = 0;
  for (int v : rim) {
    const int* ring = s.edgeSet().neighbours(v);
    for (unsigned int j = 0; j < s.edgeSet().neighbourCount(v); ++j) {
      const double length = double((s.position(ring[j]) - s.position(v)).norm());
      if (std::binary_search(rim.begin(), rim.end(), ring[j]))
        along += length, ++alongCount;
      else
        across += length, ++acrossCount;
    }
  }
  if (acrossCount) return float(across / double(acrossCount));
  return alongCount ? float(along / double(alongCount)) : 0.f;
}

}  // namespace

// Two levels at the rim's length scale r: refined to 3·r, lifted onto the fitted quadric
// and solved there, then refined to 2·r and 1.4·r and solved again. The coarse level
// carries the shape across the patch in few steps; the fine one only settles detail. A
// split at length L leaves sides between about L/2 and L, so the last split leaves new
// sides near r: the patch takes the density of the mesh around it, where the whole
// surface's feature size made it several times denser on a fine-rimmed hole at no gain
// in fit (a coarser last split lets a small patch on a curved surface sag). A rim
// without a usable length (all its corners in one point) falls back to the feature size.
void improvePatchFitted(holeSurface& s, std::vector<patchFace>& faces) {
  const int firstNew = int(s.added.size());
  linkPatch(faces);
  float r = rimEdgeScale(s, faces);
  if (!(r > 0.f) || !std::isfinite(r)) r = s.featureSize();
  flipPass(s, faces, r);
  splitPass(s, faces, 3.f * r);
  flipPass(s, faces, r);
  liftOntoFittedQuadric(s, faces, firstNew);
  solveWeighted(s, faces, COARSE_SOLVE_STEPS, 10, firstNew);
  splitPass(s, faces, 2.f * r);
  splitPass(s, faces, 1.4f * r);
  flipPass(s, faces, r);
  solveWeighted(s, faces, FINE_SOLVE_STEPS, 50, firstNew);
}

}  // namespace HOLEFILLING_INTERNAL
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
