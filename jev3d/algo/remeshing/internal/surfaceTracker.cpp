#include "jev3d/algo/remeshing/internal/surfaceTracker.h"

#include "jev3d/algo/remeshing/internal/triangleCuts.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>
#include <type_traits>

#include "jev3d/math/triangleQueries.h"
#include "jev3d/math/triangleTree.h"
#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {
namespace INTERNAL {

namespace {

using p3 = MATH::point3<float>;
constexpr unsigned int NONE = surfaceTracker::NONE;
constexpr unsigned int MAX_SPLIT_PASSES = 8;
constexpr unsigned int FLIP_PASSES = 2;
// A band of lengths whose short end is at least this share of its long end is narrow.
constexpr float NARROW_BAND = 0.75f;
constexpr float WIDE_COLLAPSE_REACH = 1.15f;
// What settles a narrow band: rounds after the coarse ones, with their flip passes and
// relaxations, and the sweeps of single vertices that finish.
constexpr unsigned int EQUALISE_ROUNDS = 7;
constexpr unsigned int EQUALISE_FLIP_PASSES = 3;
constexpr unsigned int EQUALISE_RELAXATIONS = 3;
constexpr unsigned int SWEEP_ROUNDS = 3;

constexpr float FEATURE_COS = 0.5f;         // normals more than 60 degrees apart
constexpr float BORDER_CORNER_COS = 0.94f;  // a border turning by more than 20 degrees
// A projection walks at most this many triangles over the input, and takes the local
// minimum it finds only within this share of the squared longest edge; past either a
// search of the whole input decides, this many times, and then the tree.
constexpr unsigned int MAX_WALK_STEPS = 8;
constexpr float LOCAL_REACH_SHARE = 1.f / 16.f;
constexpr unsigned int WHOLE_INPUT_SCANS = 8;
// A barycentric weight at most this is nought: the closest point lies on the side across.
constexpr float SIDE_WEIGHT = 1e-6f;

// Length in float: the hot loops take it for every face around every vertex, where
// point3::norm's double square root costs. Lengths past float's range take that one,
// out of line: the loops keep only the float path.
[[gnu::noinline]] float wideLength(const p3& v) { return v.norm(); }
[[gnu::noinline]] p3 wideUnit(const p3& v) { return v.getNormalized(); }

float length(const p3& v) {
  const float s = v.squaredNorm();
  return s <= std::numeric_limits<float>::max() ? std::sqrt(s) : wideLength(v);
}

// Unit vector in float, for the same reason; the null vector stays null.
p3 unit(const p3& v) {
  const float s = v.squaredNorm();
  return s > 0.f && s <= std::numeric_limits<float>::max() ? v * (1.f / std::sqrt(s)) : wideUnit(v);
}

// Twice the area vector of a triangle.
p3 areaVector(const p3& a, const p3& b, const p3& c) { return p3::cross(b - a, c - a); }

double signedVolume(const p3& a, const p3& b, const p3& c, const p3& r) {
  const MATH::point3<double> x(a.x - r.x, a.y - r.y, a.z - r.z), y(b.x - r.x, b.y - r.y, b.z - r.z),
      z(c.x - r.x, c.y - r.y, c.z - r.z);
  return (x * MATH::point3<double>::cross(y, z)) / 6.0;
}

// The corner after and before each corner of a triangle.
constexpr unsigned int NEXT[3] = {1, 2, 0}, PREV[3] = {2, 0, 1};

struct edgeRec {
  unsigned int a, b;
  unsigned int f[2];    // faces on the edge (f[1] NONE on a border)
  unsigned char k[2];   // corner of the edge's first end in each face
  unsigned char faces;  // number of faces seen, 3 or more for non-manifold
};

}  // namespace

struct surfaceTracker::state {
  trackerParams params;
  std::vector<p3> pos;
  std::vector<unsigned int> tri;     // three corners a face
  std::vector<unsigned char> dead;   // per face
  std::vector<unsigned int> origin;  // input position of each vertex, or NONE
  std::vector<unsigned char> fixed;  // per vertex: never moves nor goes away
  std::vector<unsigned char> fresh;  // per vertex: made by a split this round
  MATH::triangleTree input;
  std::vector<p3> inputPos;
  std::vector<unsigned int> inputTri;
  // Per vertex, the input triangle it was last projected onto (NONE before): its
  // distance bounds the next search, which then prunes nearly all of the tree.
  std::vector<unsigned int> hint;
  unsigned int scansLeft = WHOLE_INPUT_SCANS;  // searches of the whole input before the tree
  std::vector<unsigned int> inputVtStart, inputVtList;  // input triangles at each position
  // The input triangle across each side (side k runs from corner k to k + 1), NONE on a
  // border or a non-manifold edge.
  std::vector<unsigned int> inputAcross;
  // Scratch of a collapse pass: the vertex each one went into (itself while it stays),
  // and the chain of vertices gone into each one, through which its faces are read.
  std::vector<unsigned int> mergedInto, chain, chainTail;
  // Per vertex, whether a collapse of the pass changed its faces: the rings of the others
  // still read as they were built.
  std::vector<unsigned char> stirred;

  // Adjacency of the live faces, rebuilt by buildTopology.
  std::vector<edgeRec> edges;
  std::vector<unsigned int> faceEdge;         // edge of corner k's side, 3 a face
  std::vector<unsigned int> vfStart, vfList;  // faces around each vertex (CSR)
  std::vector<unsigned char> vfCorner;        // the vertex's corner in each of them
  // The corners after and before the vertex in each of them: the sweeps over vertices
  // read their rings from here in order, not through the faces.
  std::vector<unsigned int> vfNext, vfPrev;
  std::vector<unsigned char> border, feature;  // per vertex
  std::vector<unsigned char> featureEdge;      // per edge
  std::vector<unsigned int> valence;
  std::vector<unsigned int> mark;                 // per vertex scratch
  std::vector<unsigned int> fill;                 // scratch of buildTopology
  std::vector<unsigned int> sideOwner, sideEdge;  // scratch of buildTopology
  unsigned int markValue = 0;

  unsigned int fn() const { return unsigned(dead.size()); }
  unsigned int V(unsigned int f, unsigned int k) const { return tri[3 * f + k]; }
  void log(const char* what) {
    if (params.log) *params.log << what << "\n";
  }

  void buildTopology();
  void buildInputAcross();
  void buildVertexFaces();
  void compactFaces();
  void compactVertices();
  unsigned int nextMark() {
    if (++markValue == 0) {
      std::fill(mark.begin(), mark.end(), 0u);
      markValue = 1;
    }
    return markValue;
  }
  // Whether a triangle with twice this area vector is under the smallest area allowed;
  // compared squared, as it runs for every face around every move.
  bool tooSmall(const p3& twiceArea) const {
    const float least = params.minTriangleArea;
    return least > 0.f && twiceArea.squaredNorm() < 4.f * least * least;
  }
  p3 faceNormal(unsigned int f) const {
    return areaVector(pos[V(f, 0)], pos[V(f, 1)], pos[V(f, 2)]);
  }
  // Whether squared length l2 is above limit and can be split: a length that is not a
  // number, or that overflows, would give halves of the same kind, split after split.
  static bool splittable(float l2, float limit) {
    return l2 > limit && l2 <= std::numeric_limits<float>::max();
  }
  bool splitLongEdges(float longest);
  // Whether a side of a face is longer than longest and not between two fixed vertices.
  bool anySideLonger(float longest) const {
    const float limit = longest * longest;
    for (size_t f = 0; f < tri.size(); f += 3) {
      const p3 &a = pos[tri[f]], &b = pos[tri[f + 1]], &c = pos[tri[f + 2]];
      if (!((a - b).squaredNorm() > limit || (b - c).squaredNorm() > limit ||
            (c - a).squaredNorm() > limit))
        continue;
      for (unsigned int k = 0; k < 3; ++k) {
        const unsigned int u = tri[f + k], w = tri[f + NEXT[k]];
        if (splittable((pos[u] - pos[w]).squaredNorm(), limit) && !(fixed[u] && fixed[w]))
          return true;
      }
    }
    return false;
  }
  unsigned int collapseShortEdges(float shortest, float reach);
  // nearLastOnly looks only at edges by a vertex of the last pass's flips: positions
  // stay, so nothing else has changed since that pass refused it.
  unsigned int flipEdges(bool forLength, bool nearLastOnly = false);
  std::vector<unsigned char> flippedLast;  // per vertex: in a flip of the last pass
  std::vector<unsigned int> flippedFaces;  // the faces the last pass rewrote
  std::vector<unsigned int> rewritten;     // the faces flips rewrote since buildVertexFaces
  std::vector<unsigned char> edgesNearLastFlips();
  bool collapseAllowed(unsigned int keep, unsigned int gone, const p3& p, float reach);
  // Calls fn(f) for the live faces around v, including those of the vertices collapsed
  // into v during the current pass, while fn returns true; false if fn stopped it.
  template <class Fn>
  bool forFacesOf(unsigned int v, Fn fn) {
    for (unsigned int u = v; u != NONE; u = chain[u])
      for (unsigned int i = vfStart[u]; i < vfStart[u + 1]; ++i)
        if (!dead[vfList[i]] && !fn(vfList[i])) return false;
    return true;
  }
  bool flipAllowed(const edgeRec& e, unsigned int c, unsigned int d);
  enum class move { FRESH, CENTROID };
  bool projectOntoInput(unsigned int v, const p3& target, p3& onSurface);
  // Looks at the vertices set in pending, and leaves set those whose ring moved.
  unsigned int bandSweep(float lo, float hi, std::vector<unsigned char>& pending);
  // Vertices before from are left alone (the splits append theirs).
  void relaxAndProject(move how, bool project = true, unsigned int from = 0);
  bool borderNeighbours(unsigned int v, unsigned int& ahead, unsigned int& behind) const;
  // The move of border vertex v along its border; false where it stays (a corner, or
  // where borders meet).
  bool borderSlide(unsigned int v, p3& shift) const;
  // The corners after and before v in each face around it, as positions in ring (two a
  // face, in the order of the face list): the moves of a vertex read them many times.
  std::vector<p3> ring;
  std::vector<p3> ringArea;  // scratch of a relaxation: twice the area vector of each face
  unsigned int gatherRing(unsigned int v) {
    const unsigned int first = vfStart[v], count = vfStart[v + 1] - first;
    if (ring.size() < 2 * size_t(count)) ring.resize(2 * size_t(count));
    for (unsigned int i = 0; i < count; ++i)
      ring[2 * i] = pos[vfNext[first + i]], ring[2 * i + 1] = pos[vfPrev[first + i]];
    return count;
  }
  // Whether v at p would turn one of its count faces against normal or make it too small.
  bool ringFolds(const p3& p, unsigned int count, const p3& normal) const {
    for (unsigned int i = 0; i < count; ++i) {
      const p3 n = areaVector(p, ring[2 * i], ring[2 * i + 1]);
      if (n * normal <= 0.f || tooSmall(n)) return true;
    }
    return false;
  }

  // ringFolds for v moved to p, its ring read afresh.
  bool foldsAt(unsigned int v, const p3& p, const p3& normal);

  // Border vertices move too (along their border) in the relaxations of this round.
  bool slideBorders = false;
  // One round: split above split, put the midpoints on the input (projectSplits),
  // collapse below collapse without an edge above reach, flip towards valence 6, relax
  // (only the last relaxation projects, and only with projectRelaxed: the others move in
  // tangent planes, which the input hardly leaves over so short a move).
  struct roundPlan {
    float split, collapse, reach;
    unsigned int flipPasses, relaxations;
    bool projectSplits, projectRelaxed;
  };
  void round(const roundPlan& r);
};

surfaceTracker::surfaceTracker(const std::vector<p3>& positions,
                               const std::vector<unsigned int>& triangles,
                               const std::vector<float>& masses, const trackerParams& params)
    : s(std::make_unique<state>()) {
  s->params = params;
  s->pos = positions;
  const size_t n = positions.size();
  s->origin.resize(n);
  s->fixed.assign(n, 0);
  s->fresh.assign(n, 0);
  for (size_t v = 0; v < n; ++v) {
    s->origin[v] = unsigned(v);
    if (v < masses.size() && !(masses[v] < std::numeric_limits<float>::infinity())) s->fixed[v] = 1;
  }
  for (size_t k = 0; k + 2 < triangles.size(); k += 3) {
    const unsigned int a = triangles[k], b = triangles[k + 1], c = triangles[k + 2];
    if (a >= n || b >= n || c >= n || a == b || b == c || c == a) continue;
    s->tri.insert(s->tri.end(), {a, b, c});
  }
  s->dead.assign(s->tri.size() / 3, 0);
  s->inputPos = positions;
  s->inputTri = s->tri;
  s->hint.assign(n, NONE);
  for (size_t k = 0; k < s->tri.size(); ++k) s->hint[s->tri[k]] = unsigned(k / 3);
  s->inputVtStart.assign(n + 1, 0);
  for (unsigned int v : s->tri) ++s->inputVtStart[v + 1];
  for (size_t v = 0; v < n; ++v) s->inputVtStart[v + 1] += s->inputVtStart[v];
  s->inputVtList.resize(s->tri.size());
  std::vector<unsigned int> at(s->inputVtStart.begin(), s->inputVtStart.end() - 1);
  for (size_t k = 0; k < s->tri.size(); ++k) s->inputVtList[at[s->tri[k]]++] = unsigned(k / 3);
  s->buildInputAcross();
}

void surfaceTracker::state::buildInputAcross() {
  inputAcross.assign(inputTri.size(), NONE);
  for (size_t side = 0; side < inputTri.size(); ++side) {
    const size_t t = side / 3;
    const unsigned int a = inputTri[side], b = inputTri[3 * t + (side + 1) % 3];
    unsigned int found = NONE, count = 0;
    for (unsigned int i = inputVtStart[a]; i < inputVtStart[a + 1]; ++i) {
      const unsigned int u = inputVtList[i];
      const unsigned int* c = &inputTri[3 * size_t(u)];
      if (u != t && (c[0] == b || c[1] == b || c[2] == b)) found = u, ++count;
    }
    if (count == 1) inputAcross[side] = found;
  }
}

surfaceTracker::~surfaceTracker() = default;

// The faces around each vertex; the edges, matching the sides of faces that join the
// same two vertices; border, feature and valence flags. Ends of non-manifold edges
// become fixed.
void surfaceTracker::state::buildVertexFaces() {
  const unsigned int nv = unsigned(pos.size()), nf = fn();
  rewritten.clear();
  vfStart.assign(size_t(nv) + 1, 0);
  for (unsigned int f = 0; f < nf; ++f)
    if (!dead[f])
      for (unsigned int k = 0; k < 3; ++k) ++vfStart[V(f, k) + 1];
  for (unsigned int v = 0; v < nv; ++v) vfStart[v + 1] += vfStart[v];
  mark.resize(nv, 0);
  vfList.resize(vfStart[nv]);
  vfCorner.resize(vfStart[nv]);
  vfNext.resize(vfStart[nv]);
  vfPrev.resize(vfStart[nv]);
  fill.assign(vfStart.begin(), vfStart.end() - 1);
  // Through plain pointers: a store of a corner, a byte, might alias any vector's insides,
  // which the compiler would then read again at every corner.
  const unsigned int* corners = tri.data();
  const unsigned char* gone = dead.data();
  unsigned int *at = fill.data(), *list = vfList.data(), *next = vfNext.data(),
               *prev = vfPrev.data();
  unsigned char* corner = vfCorner.data();
  for (unsigned int f = 0; f < nf; ++f, corners += 3)
    if (!gone[f])
      for (unsigned int k = 0; k < 3; ++k) {
        const unsigned int i = at[corners[k]]++;
        list[i] = f, corner[i] = static_cast<unsigned char>(k);
        next[i] = corners[NEXT[k]], prev[i] = corners[PREV[k]];
      }
}

void surfaceTracker::state::buildTopology() {
  buildVertexFaces();
  const unsigned int nv = unsigned(pos.size()), nf = fn();

  edges.clear();
  edges.reserve(size_t(nf) * 3 / 2 + 16);
  faceEdge.assign(size_t(nf) * 3, NONE);
  border.assign(nv, 0);
  valence.assign(nv, 0);
  // Each side is taken from its smaller end: the sides there to larger neighbours w are
  // matched through sideOwner[w] (v + 1 while v's sides are read) and sideEdge[w].
  sideOwner.assign(nv, 0);
  sideEdge.resize(nv);
  // Through plain pointers, as in buildVertexFaces: the byte fields of the edge records
  // might alias any vector's insides.
  const unsigned int *corners = tri.data(), *start = vfStart.data(), *list = vfList.data(),
                     *after = vfNext.data(), *before = vfPrev.data();
  const unsigned char* corner = vfCorner.data();
  unsigned int *owner = sideOwner.data(), *sideId = sideEdge.data(), *edgeOf = faceEdge.data();
  for (unsigned int v = 0; v < nv; ++v) {
    // Side k of face f joins v to w.
    auto side = [&](unsigned int f, unsigned int k, unsigned int w) {
      if (owner[w] != v + 1) {
        edgeRec e;
        e.a = corners[3 * f + k], e.b = corners[3 * f + NEXT[k]];
        e.f[0] = f, e.k[0] = static_cast<unsigned char>(k);
        e.f[1] = NONE, e.k[1] = 0;
        e.faces = 1;
        owner[w] = v + 1, sideId[w] = unsigned(edges.size());
        edgeOf[3 * f + k] = unsigned(edges.size());
        edges.push_back(e);
        return;
      }
      edgeRec& e = edges[sideId[w]];
      edgeOf[3 * f + k] = sideId[w];
      if (e.faces == 1) e.f[1] = f, e.k[1] = static_cast<unsigned char>(k);
      if (e.faces < 3) ++e.faces;
    };
    for (unsigned int i = start[v]; i < start[v + 1]; ++i) {
      const unsigned int f = list[i], c = corner[i];
      // The side leaving v (corner c) and the side entering it (corner c + 2).
      if (after[i] > v) side(f, c, after[i]);
      if (before[i] > v) side(f, PREV[c], before[i]);
    }
  }
  for (const edgeRec& e : edges) {
    if (e.faces == 1) border[e.a] = border[e.b] = 1;
    if (e.faces > 2) fixed[e.a] = fixed[e.b] = 1;
    ++valence[e.a], ++valence[e.b];
  }
  featureEdge.assign(edges.size(), 0);
  feature.assign(nv, 0);
  if (params.keepFeatures)
    for (unsigned int e = 0; e < edges.size(); ++e) {
      const edgeRec& r = edges[e];
      if (r.faces != 2) continue;
      const p3 n0 = faceNormal(r.f[0]).getNormalized(), n1 = faceNormal(r.f[1]).getNormalized();
      if (n0 * n1 < FEATURE_COS) featureEdge[e] = feature[r.a] = feature[r.b] = 1;
    }
  if (params.keepBorder)
    for (unsigned int v = 0; v < nv; ++v)
      if (border[v]) fixed[v] = 1;
  mark.resize(nv, 0);
}

void surfaceTracker::state::compactFaces() {
  unsigned int out = 0;
  for (unsigned int f = 0; f < fn(); ++f) {
    if (dead[f]) continue;
    for (unsigned int k = 0; k < 3; ++k) tri[3 * out + k] = tri[3 * f + k];
    ++out;
  }
  tri.resize(size_t(out) * 3);
  dead.assign(out, 0);
}

// Drops the vertices no face uses (those collapsed away) and numbers the rest in the
// order the faces first use them, so that the sweeps over vertices run through memory
// much as they run over the surface.
void surfaceTracker::state::compactVertices() {
  std::vector<unsigned int> id(pos.size(), NONE);
  unsigned int n = 0;
  for (unsigned int f = 0; f < fn(); ++f)
    if (!dead[f])
      for (unsigned int k = 0; k < 3; ++k)
        if (id[V(f, k)] == NONE) id[V(f, k)] = n++;
  auto keep = [&](auto& perVertex) {
    std::remove_reference_t<decltype(perVertex)> out(n);
    for (unsigned int v = 0; v < id.size(); ++v)
      if (id[v] != NONE) out[id[v]] = perVertex[v];
    perVertex.swap(out);
  };
  keep(pos);
  keep(origin);
  keep(fixed);
  keep(fresh);
  keep(hint);
  for (unsigned int& v : tri) v = id[v];
}

// Every edge longer than the bound gets its midpoint; each face is cut by the
// midpoints of its sides (one, two or three of them). A border edge between two fixed
// vertices is the seam to the rest of the mesh and stays whole.
bool surfaceTracker::state::splitLongEdges(float longest) {
  const float limit = longest * longest;
  std::vector<unsigned int> mid(edges.size(), NONE);
  bool any = false;
  for (unsigned int e = 0; e < edges.size(); ++e) {
    const edgeRec& r = edges[e];
    if (r.faces > 2 || !splittable((pos[r.a] - pos[r.b]).squaredNorm(), limit)) continue;
    if (r.faces == 1 && fixed[r.a] && fixed[r.b]) continue;
    mid[e] = unsigned(pos.size());
    pos.push_back((pos[r.a] + pos[r.b]) * 0.5f);
    origin.push_back(NONE);
    hint.push_back(hint[r.a]);
    // The flags a rebuild would give it, so that a collapse pass can follow at once.
    border.push_back(r.faces == 1);
    fixed.push_back(params.keepBorder && r.faces == 1);
    feature.push_back(featureEdge[e]);
    fresh.push_back(1);
    any = true;
  }
  if (!any) return false;
  std::vector<unsigned int> sideMid(tri.size());
  for (size_t w = 0; w < tri.size(); ++w)
    sideMid[w] = faceEdge[w] == NONE ? NONE : mid[faceEdge[w]];
  std::vector<unsigned int> cut;
  cutTriangles(tri, sideMid, pos, cut, nullptr, &dead);
  tri.swap(cut);
  dead.assign(tri.size() / 3, 0);
  return true;
}

// The checks of a collapse moving keep to p and removing gone; no edge at p may be
// longer than reach.
bool surfaceTracker::state::collapseAllowed(unsigned int keep, unsigned int gone, const p3& p,
                                            float reach) {
  const float limit = reach * reach;
  // No edge at p may come out long; the commonest refusal, so it is tested first.
  auto tooLong = [&](unsigned int w) {
    return w != keep && w != gone && (p - pos[w]).squaredNorm() > limit;
  };
  for (unsigned int end : {keep, gone}) {
    if (!stirred[end]) {
      // Each neighbour is the next corner of a face, but for the last along a border.
      for (unsigned int i = vfStart[end]; i < vfStart[end + 1]; ++i)
        if (tooLong(vfNext[i]) || (border[end] && tooLong(vfPrev[i]))) return false;
      continue;
    }
    if (!forFacesOf(end, [&](unsigned int f) {
          return !tooLong(V(f, 0)) && !tooLong(V(f, 1)) && !tooLong(V(f, 2));
        }))
      return false;
  }
  // Link condition: the two ends share exactly the far corners of the edge's faces.
  const unsigned int m = nextMark();
  unsigned int around = 0;
  forFacesOf(keep, [&](unsigned int f) {
    ++around;
    for (unsigned int k = 0; k < 3; ++k) mark[V(f, k)] = m;
    return true;
  });
  unsigned int shared = 0, edgeFaces = 0;
  unsigned int far[2] = {NONE, NONE};
  const unsigned int m2 = nextMark();
  forFacesOf(gone, [&](unsigned int f) {
    ++around;
    const bool onEdge = V(f, 0) == keep || V(f, 1) == keep || V(f, 2) == keep;
    for (unsigned int k = 0; k < 3; ++k) {
      const unsigned int w = V(f, k);
      if (w == keep || w == gone) continue;
      if (onEdge && edgeFaces < 2) far[edgeFaces] = w;
      if (mark[w] == m) ++shared, mark[w] = m2;
    }
    edgeFaces += onEdge;
    return true;
  });
  if (edgeFaces == 0 || edgeFaces > 2 || shared != edgeFaces) return false;
  if (edgeFaces == 2 && border[keep] && border[gone]) return false;  // would pinch the surface
  if (around - 2u * edgeFaces < (border[keep] || border[gone] ? 1u : 3u)) return false;
  // Nor may a far corner of the edge lose its last face.
  for (unsigned int side = 0; side < edgeFaces; ++side) {
    unsigned int live = 0;
    forFacesOf(far[side], [&](unsigned int) { return ++live < 2; });
    if (live < 2) return false;
  }
  // No face may turn over or become a sliver, and the enclosed volume may change only
  // a little.
  double before = 0.0, after = 0.0;
  const p3 ref = p;
  for (unsigned int end : {keep, gone})
    if (!forFacesOf(end, [&](unsigned int f) {
          const unsigned int a = V(f, 0), b = V(f, 1), c = V(f, 2);
          const bool hasKeep = a == keep || b == keep || c == keep;
          const bool hasGone = a == gone || b == gone || c == gone;
          if (end == gone && hasKeep) return true;  // counted from keep's side
          before += signedVolume(pos[a], pos[b], pos[c], ref);
          if (hasKeep && hasGone) return true;  // goes away
          auto at = [&](unsigned int v) { return v == keep || v == gone ? p : pos[v]; };
          const p3 n0 = faceNormal(f), n1 = areaVector(at(a), at(b), at(c));
          if (n0 * n1 <= 0.f || tooSmall(n1)) return false;
          after += signedVolume(at(a), at(b), at(c), ref);
          return true;
        }))
      return false;
  return std::fabs(after - before) <= params.maxVolumeChange;
}

// Short edges collapse, shortest first, in one pass. Each collapse rewrites the faces at
// once and chains the lists of faces of the removed end to those of the kept one, so
// the faces around an end are current without a rebuild; an edge read from the last
// rebuild runs between the ends its ends went into. A fixed end stays, a border end
// stays against an inner one, otherwise the ends meet at the midpoint.
unsigned int surfaceTracker::state::collapseShortEdges(float shortest, float reach) {
  const float limit = shortest * shortest;
  // Shortest first, near enough: a counting sort into buckets of squared length. Each
  // bucket is a sweep over the mesh in memory order; sixteen keep the sweeps few at
  // hardly a change of the result.
  // The edges are read off the sides of the faces (the edge list may date from before
  // the last splits): each once, as the side that runs from its smaller end, or, on a
  // border, as its only side. Ends of non-manifold edges are fixed and never meet.
  constexpr unsigned int BUCKETS = 16;
  auto twinless = [&](unsigned int a, unsigned int b) {
    for (unsigned int i = vfStart[b]; i < vfStart[b + 1]; ++i)
      if (vfNext[i] == a) return false;
    return true;
  };
  std::vector<unsigned char> bucketOf(tri.size(), BUCKETS);
  std::vector<unsigned int> start(BUCKETS + 1, 0);
  for (unsigned int f = 0; f < fn(); ++f) {
    if (dead[f]) continue;
    for (unsigned int k = 0; k < 3; ++k) {
      const unsigned int a = V(f, k), b = V(f, NEXT[k]);
      if (a > b && !(border[a] && border[b])) continue;
      const float l = (pos[a] - pos[b]).squaredNorm();
      if (!(l < limit) || (a > b && !twinless(a, b))) continue;
      const unsigned int bucket = std::min(BUCKETS - 1, unsigned(float(BUCKETS) * l / limit));
      bucketOf[3 * f + k] = static_cast<unsigned char>(bucket);
      ++start[bucket + 1];
    }
  }
  for (unsigned int b = 0; b < BUCKETS; ++b) start[b + 1] += start[b];
  std::vector<unsigned int> order(start[BUCKETS]);
  for (unsigned int side = 0; side < tri.size(); ++side)
    if (bucketOf[side] < BUCKETS) order[start[bucketOf[side]]++] = side;
  const unsigned int nv = unsigned(pos.size());
  mergedInto.resize(nv);
  chainTail.resize(nv);
  for (unsigned int v = 0; v < nv; ++v) mergedInto[v] = chainTail[v] = v;
  chain.assign(nv, NONE);
  stirred.assign(nv, 0);
  auto root = [&](unsigned int v) {
    while (mergedInto[v] != v) v = mergedInto[v] = mergedInto[mergedInto[v]];
    return v;
  };
  unsigned int done = 0;
  for (unsigned int side : order) {
    const unsigned int f = side / 3, k = side - 3 * f;
    const unsigned int a = root(V(f, k)), b = root(V(f, NEXT[k]));
    if (a == b || !((pos[a] - pos[b]).squaredNorm() < limit)) continue;
    const bool lockA = fixed[a] || feature[a] || (border[a] && !border[b]);
    const bool lockB = fixed[b] || feature[b] || (border[b] && !border[a]);
    if (lockA && lockB) continue;
    const unsigned int keep = lockB ? b : a, gone = keep == a ? b : a;
    const p3 p = lockA || lockB ? pos[keep] : (pos[a] + pos[b]) * 0.5f;
    if (!collapseAllowed(keep, gone, p, reach)) continue;
    forFacesOf(gone, [&](unsigned int f) {
      for (unsigned int k = 0; k < 3; ++k) stirred[V(f, k)] = 1;
      if (V(f, 0) == keep || V(f, 1) == keep || V(f, 2) == keep) {
        dead[f] = 1;
        return true;
      }
      for (unsigned int k = 0; k < 3; ++k)
        if (tri[3 * f + k] == gone) tri[3 * f + k] = keep;
      return true;
    });
    chain[chainTail[keep]] = gone;
    chainTail[keep] = chainTail[gone];
    mergedInto[gone] = keep;
    pos[keep] = p;
    fresh[keep] = fresh[keep] && fresh[gone];
    border[keep] = border[keep] || border[gone];
    ++done;
  }
  if (!done) return 0;
  compactFaces();
  return done;
}

// The geometric checks of flipping e (ends a, b) to the diagonal c-d, each refusal
// logged with its reason.
bool surfaceTracker::state::flipAllowed(const edgeRec& e, unsigned int c, unsigned int d) {
  const unsigned int a = e.a, b = e.b;
  if (c == d || c == a || c == b || d == a || d == b) {
    log("edge flip rejected: degenerate tet");
    return false;
  }
  const unsigned int m = nextMark();
  for (unsigned int i = vfStart[c]; i < vfStart[c + 1]; ++i)
    for (unsigned int k = 0; k < 3; ++k) mark[V(vfList[i], k)] = m;
  if (mark[d] == m) {
    log("edge flip rejected: edge exists");
    return false;
  }
  const double volume = std::fabs(signedVolume(pos[a], pos[b], pos[c], pos[d]));
  if (volume > params.maxVolumeChange) {
    if (params.log) *params.log << "edge flip rejected: volume change = " << volume << "\n";
    return false;
  }
  // Before: (a, b, c) and (b, a, d); after: (c, a, d) and (d, b, c).
  const p3 n0 = areaVector(pos[a], pos[b], pos[c]), n1 = areaVector(pos[b], pos[a], pos[d]);
  const p3 n2 = areaVector(pos[c], pos[a], pos[d]), n3 = areaVector(pos[d], pos[b], pos[c]);
  const p3 nOld = n0 + n1;
  if (n2 * nOld <= 0.f || n3 * nOld <= 0.f || n2 * n3 <= 0.f) {
    log("edge flip rejected: normal inversion");
    return false;
  }
  const float a2 = 0.5f * length(n2), a3 = 0.5f * length(n3);
  if (a2 < params.minTriangleArea || a3 < params.minTriangleArea) {
    log("edge flip rejected: area too small");
    return false;
  }
  const float areaBefore = 0.5f * (length(n0) + length(n1));
  if (std::fabs(a2 + a3 - areaBefore) > params.maxAreaChange * areaBefore) {
    log("edge flip rejected: area change too great");
    return false;
  }
  return true;
}

// Flips in independent sets: those that bring the four valences nearer 6 (4 on a
// border), or, forLength, those that replace an edge above the longest allowed by a
// shorter diagonal within it.
unsigned int surfaceTracker::state::flipEdges(bool forLength, bool nearLastOnly) {
  const float limit = params.maxEdgeLength * params.maxEdgeLength;
  std::vector<unsigned char> taken(pos.size(), 0);
  nearLastOnly = nearLastOnly && flippedLast.size() == pos.size();
  unsigned int done = 0;
  std::vector<unsigned int> flips;
  // Valence above the ideal, 6 (4 on a border).
  auto excess = [&](unsigned int v) { return int(valence[v]) - (border[v] ? 4 : 6); };
  auto tryFlip = [&](unsigned int e) {
    const edgeRec& r = edges[e];
    if (r.faces != 2 || featureEdge[e]) return;
    // The edge runs a -> b in f[0]; its far corners are c in f[0] and d in f[1].
    const unsigned int a = V(r.f[0], r.k[0]), b = V(r.f[0], (r.k[0] + 1) % 3);
    const unsigned int c = V(r.f[0], (r.k[0] + 2) % 3), d = V(r.f[1], (r.k[1] + 2) % 3);
    if (taken[a] || taken[b] || taken[c] || taken[d]) return;
    if (nearLastOnly && !(flippedLast[a] || flippedLast[b] || flippedLast[c] || flippedLast[d]))
      return;
    if (forLength) {
      const float now = (pos[a] - pos[b]).squaredNorm(), then = (pos[c] - pos[d]).squaredNorm();
      if (now <= limit || then >= now || then > limit) return;
    } else {
      // The flip takes one from a and b and gives one to c and d: the sum of the squared
      // excesses changes by 4 - 2 (xa + xb) + 2 (xc + xd).
      if (excess(a) + excess(b) - excess(c) - excess(d) <= 2) return;
    }
    edgeRec oriented = r;
    oriented.a = a, oriented.b = b;
    if (!flipAllowed(oriented, c, d)) return;
    const unsigned int f0 = r.f[0], f1 = r.f[1], k0 = r.k[0], k1 = r.k[1];
    // The four sides around the quad keep their edges, which change face or corner: the
    // edge list stays current without a rebuild (only the faces around the vertices
    // need one, buildVertexFaces).
    const unsigned int bc = faceEdge[3 * f0 + (k0 + 1) % 3], ca = faceEdge[3 * f0 + (k0 + 2) % 3];
    const unsigned int ad = faceEdge[3 * f1 + (k1 + 1) % 3], db = faceEdge[3 * f1 + (k1 + 2) % 3];
    auto moveSide = [&](unsigned int x, unsigned int fromFace, unsigned int fromCorner,
                        unsigned int toFace, unsigned int toCorner) {
      if (x == NONE) return;
      edgeRec& y = edges[x];
      for (unsigned int side = 0; side < 2; ++side)
        if (y.f[side] == fromFace && y.k[side] == fromCorner) {
          y.f[side] = toFace, y.k[side] = static_cast<unsigned char>(toCorner);
          return;
        }
    };
    moveSide(ca, f0, (k0 + 2) % 3, f0, 0);
    moveSide(bc, f0, (k0 + 1) % 3, f1, 1);
    moveSide(ad, f1, (k1 + 1) % 3, f0, 1);
    moveSide(db, f1, (k1 + 2) % 3, f1, 0);
    edgeRec& flipped = edges[e];
    flipped.a = d, flipped.b = c;
    flipped.f[0] = f0, flipped.k[0] = 2, flipped.f[1] = f1, flipped.k[1] = 2;
    tri[3 * f0] = c, tri[3 * f0 + 1] = a, tri[3 * f0 + 2] = d;
    tri[3 * f1] = d, tri[3 * f1 + 1] = b, tri[3 * f1 + 2] = c;
    faceEdge[3 * f0] = ca, faceEdge[3 * f0 + 1] = ad, faceEdge[3 * f0 + 2] = e;
    faceEdge[3 * f1] = db, faceEdge[3 * f1 + 1] = bc, faceEdge[3 * f1 + 2] = e;
    --valence[a], --valence[b], ++valence[c], ++valence[d];
    taken[a] = taken[b] = taken[c] = taken[d] = 1;
    flips.push_back(f0), flips.push_back(f1);
    ++done;
  };
  const std::vector<unsigned char> near =
      nearLastOnly ? edgesNearLastFlips() : std::vector<unsigned char>();
  for (unsigned int e = 0; e < edges.size(); ++e)
    if (!nearLastOnly || near[e]) tryFlip(e);
  flippedLast.swap(taken);
  rewritten.insert(rewritten.end(), flips.begin(), flips.end());
  flippedFaces.swap(flips);
  return done;
}

// Per edge, whether it has an end or a far corner at a vertex of the last pass's flips
// (or is near one: the test of those vertices follows). The faces around each vertex date from
// before the flips: a face that holds such a vertex now either held it then or is one a flip
// rewrote since.
std::vector<unsigned char> surfaceTracker::state::edgesNearLastFlips() {
  std::vector<unsigned char> near(edges.size(), 0);
  auto addFace = [&](unsigned int f) {
    for (unsigned int k = 0; k < 3; ++k)
      if (faceEdge[3 * f + k] != NONE) near[faceEdge[3 * f + k]] = 1;
  };
  for (unsigned int f : rewritten) addFace(f);
  for (unsigned int f : flippedFaces) {
    for (unsigned int k = 0; k < 3; ++k)
      for (unsigned int i = vfStart[V(f, k)]; i < vfStart[V(f, k) + 1]; ++i) addFace(vfList[i]);
  }
  return near;
}

// Where v, moved to target, lands on the input; hint[v] follows. False if the input
// has no triangle at all.
bool surfaceTracker::state::projectOntoInput(unsigned int v, const p3& target, p3& onSurface) {
  // The surface is near the last triangle projected onto: walk from it over the input,
  // each step across the side that holds the current closest point, or else to the
  // nearest triangle around the corners that hold it, while that comes nearer. A point
  // inside a triangle, or one on its edges that no triangle around them beats, is a local
  // minimum and is taken as it is (a nearer point elsewhere would need the surface to
  // fold back within that distance). A walk that runs long or ends far from the surface
  // asks the whole input instead, or, past the first few, the tree, its search bounded
  // by the nearest found (widened a little for the rounding of the tree's own
  // arithmetic); failing that, by the longest edge allowed.
  float reach = params.maxEdgeLength * params.maxEdgeLength;
  if (hint[v] != NONE) {
    unsigned int at = hint[v];
    float u, w;
    const unsigned int* c = &inputTri[3 * size_t(at)];
    p3 q =
        MATH::closestPointOnTriangle(target, inputPos[c[0]], inputPos[c[1]], inputPos[c[2]], u, w);
    float best = (target - q).squaredNorm();
    for (unsigned int step = 0; step < MAX_WALK_STEPS; ++step) {
      c = &inputTri[3 * size_t(at)];
      const float weight[3] = {1.f - u - w, u, w};
      const bool inside = weight[0] > 0.f && u > 0.f && w > 0.f;
      unsigned int next = NONE;
      float nextU = 0.f, nextW = 0.f;
      p3 nextQ;
      // On a side (one weight nought, the one of the corner across): the triangle
      // beyond that side is the one to try first, one test for the dozen of the fans.
      unsigned int onSide = NONE;
      for (unsigned int k = 0; k < 3; ++k)
        if (!(weight[k] > SIDE_WEIGHT) && weight[(k + 1) % 3] > SIDE_WEIGHT &&
            weight[(k + 2) % 3] > SIDE_WEIGHT)
          onSide = inputAcross[3 * size_t(at) + (k + 1) % 3];
      if (onSide != NONE) {
        const unsigned int* d = &inputTri[3 * size_t(onSide)];
        float tu, tw;
        const p3 tq = MATH::closestPointOnTriangle(target, inputPos[d[0]], inputPos[d[1]],
                                                   inputPos[d[2]], tu, tw);
        const float dist = (target - tq).squaredNorm();
        if (dist < best) {
          best = dist, at = onSide, q = tq, u = tu, w = tw;
          continue;
        }
      }
      if (!inside)
        for (unsigned int k = 0; k < 3; ++k) {
          if (!(weight[k] > 0.f)) continue;
          for (unsigned int i = inputVtStart[c[k]]; i < inputVtStart[c[k] + 1]; ++i) {
            const unsigned int t = inputVtList[i];
            if (t == at) continue;
            const unsigned int* d = &inputTri[3 * size_t(t)];
            float tu, tw;
            const p3 tq = MATH::closestPointOnTriangle(target, inputPos[d[0]], inputPos[d[1]],
                                                       inputPos[d[2]], tu, tw);
            const float dist = (target - tq).squaredNorm();
            if (dist < best) best = dist, next = t, nextQ = tq, nextU = tu, nextW = tw;
          }
        }
      if (next == NONE) {
        if (best <= reach * LOCAL_REACH_SHARE) {
          onSurface = q, hint[v] = at;
          return true;
        }
        break;
      }
      at = next, q = nextQ, u = nextU, w = nextW;
    }
    reach = best * 1.0001f + std::numeric_limits<float>::min();
  }
  // Walks rarely fail: the first few that do look at every input triangle, a small share
  // of the cost of building the tree, which is built only if more fail.
  if (input.empty() && scansLeft > 0) {
    --scansLeft;
    float best = std::numeric_limits<float>::infinity();
    for (size_t t = 0; t < inputTri.size() / 3; ++t) {
      const unsigned int* c = &inputTri[3 * t];
      float u, w;
      const p3 q = MATH::closestPointOnTriangle(target, inputPos[c[0]], inputPos[c[1]],
                                                inputPos[c[2]], u, w);
      const float dist = (target - q).squaredNorm();
      if (dist < best) best = dist, onSurface = q, hint[v] = unsigned(t);
    }
    return best < std::numeric_limits<float>::infinity();
  }
  if (input.empty() && !inputTri.empty())
    input.build(inputPos.data(), inputPos.size(), inputTri.data(), inputTri.size() / 3);
  MATH::closestPointHit hit;
  if (input.closestPoint(target, reach, hit) ||
      input.closestPoint(target, std::numeric_limits<float>::max(), hit)) {
    onSurface = hit.point;
    hint[v] = hit.triangle;
    return true;
  }
  return false;
}

// Moves each free inner vertex with edges outside [lo, hi] in its tangent plane along
// the pull of those edges, onto the input, where that leaves fewer of its edges outside
// (or as many, less far outside) and turns no face over.
unsigned int surfaceTracker::state::bandSweep(float lo, float hi,
                                              std::vector<unsigned char>& pending) {
  const float lo2 = lo * lo, hi2 = hi * hi;
  unsigned int moved = 0;
  // A vertex whose ring stayed where it was when last looked at would be left again.
  std::vector<unsigned char> next(pos.size(), 0);
  for (unsigned int v = 0; v < pos.size(); ++v) {
    if (!pending[v] || fixed[v] || border[v] || feature[v] || vfStart[v] == vfStart[v + 1])
      continue;
    const unsigned int count = gatherRing(v);
    // Around an inner vertex each neighbour is the next corner of one face.
    auto score = [&](const p3& p, float& energy) {
      unsigned int out = 0;
      energy = 0.f;
      for (unsigned int i = 0; i < count; ++i) {
        const float l2 = (p - ring[2 * i]).squaredNorm();
        if (l2 >= lo2 && l2 <= hi2) continue;
        const float l = std::sqrt(l2);
        const float x = l < lo ? lo - l : l - hi;
        ++out;
        energy += x * x;
      }
      return out;
    };
    float e0;
    const unsigned int c0 = score(pos[v], e0);
    if (c0 == 0) continue;
    p3 pull, normal;
    for (unsigned int i = 0; i < count; ++i) {
      normal += areaVector(pos[v], ring[2 * i], ring[2 * i + 1]);
      const p3 e = pos[v] - ring[2 * i];
      const float l = length(e);
      const float d = std::min(hi, std::max(lo, l));
      if (l > 0.f && d != l) pull += e * ((d - l) / l);
    }
    normal = unit(normal);
    pull = pull - normal * (normal * pull);
    const p3 old = pos[v];
    for (float step : {1.f, 0.5f, 0.25f}) {
      float e1;
      const p3 target = old + pull * step;
      const unsigned int c1 = score(target, e1);
      if (c1 > c0 || (c1 == c0 && e1 >= e0)) continue;
      p3 onSurface;
      pos[v] = projectOntoInput(v, target, onSurface) ? onSurface : target;
      const unsigned int c2 = score(pos[v], e1);
      if ((c2 < c0 || (c2 == c0 && e1 < e0)) && !ringFolds(pos[v], count, normal)) {
        ++moved;
        for (unsigned int i = vfStart[v]; i < vfStart[v + 1]; ++i)
          for (unsigned int k = 0; k < 3; ++k) next[V(vfList[i], k)] = 1;
        break;
      }
      pos[v] = old;
    }
  }
  pending.swap(next);
  return moved;
}

// The two neighbours of border vertex v along its border: the side leaving v in a face
// that no face enters v by, and the side entering v that none leaves by. False unless
// there is exactly one of each (a vertex where borders meet stays put).
bool surfaceTracker::state::foldsAt(unsigned int v, const p3& p, const p3& normal) {
  return ringFolds(p, gatherRing(v), normal);
}

bool surfaceTracker::state::borderSlide(unsigned int v, p3& shift) const {
  // Along the border, towards the middle of its two border neighbours.
  unsigned int ahead = NONE, behind = NONE;
  if (!borderNeighbours(v, ahead, behind)) return false;
  // A corner of the border stays: sliding would cut it off.
  const p3 in = (pos[v] - pos[behind]).getNormalized(), out = (pos[ahead] - pos[v]).getNormalized();
  if (in * out < BORDER_CORNER_COS) return false;
  const p3 along = (pos[ahead] - pos[behind]).getNormalized();
  shift = along * (0.5f * ((pos[ahead] - pos[v]).norm() - (pos[behind] - pos[v]).norm()));
  return true;
}

bool surfaceTracker::state::borderNeighbours(unsigned int v, unsigned int& ahead,
                                             unsigned int& behind) const {
  unsigned int found = 0;
  for (unsigned int i = vfStart[v]; i < vfStart[v + 1]; ++i) {
    const unsigned int next = vfNext[i], prev = vfPrev[i];
    bool nextPaired = false, prevPaired = false;
    for (unsigned int j = vfStart[v]; j < vfStart[v + 1]; ++j) {
      if (j == i) continue;
      nextPaired = nextPaired || vfPrev[j] == next;
      prevPaired = prevPaired || vfNext[j] == prev;
    }
    if (!nextPaired) ahead = next, found += 1;
    if (!prevPaired) behind = prev, found += 16;
  }
  return found == 17;
}

// CENTROID moves each free inner vertex towards the area-weighted centre of its faces,
// within its tangent plane (and, with slideBorders, each border vertex along its border
// towards the middle of its border neighbours), then onto the closest point of the input
// unless project is off; FRESH only projects the midpoints of this round's splits. A
// move that would turn a face over is taken back.
void surfaceTracker::state::relaxAndProject(move how, bool project, unsigned int from) {
  for (unsigned int v = from; v < pos.size(); ++v) {
    if (fixed[v] || feature[v] || vfStart[v] == vfStart[v + 1]) continue;
    if (border[v] && !(slideBorders && how == move::CENTROID)) continue;
    if (how == move::FRESH && !fresh[v]) continue;
    const unsigned int first = vfStart[v], count = vfStart[v + 1] - first;
    if (ringArea.size() < count) ringArea.resize(count);
    const p3 p = pos[v];  // held apart: the stores to ringArea might otherwise alias it
    p3 centre, normal;
    float area = 0.f, across = 0.f;  // across: the longest squared side facing v
    for (unsigned int i = 0; i < count; ++i) {
      const p3 &a = pos[vfNext[first + i]], &b = pos[vfPrev[first + i]];
      const p3 n = areaVector(p, a, b);
      ringArea[i] = n;
      const float w = length(n);
      normal += n;
      centre += (a + b) * w;  // v's own third added at the end
      area += w;
      across = std::max(across, (a - b).squaredNorm());
    }
    if (!(area > 0.f)) continue;
    normal = unit(normal);
    // Moving v by d adds d x (a - b) to the area vector of its face (v, a, b): a move
    // shorter than the flattest face's height over the smallest area allowed, measured
    // against the longest side, can fold none, and needs no test face by face.
    float flattest = std::numeric_limits<float>::infinity();
    for (unsigned int i = 0; i < count; ++i) flattest = std::min(flattest, ringArea[i] * normal);
    const float margin = flattest - 2.f * std::max(0.f, params.minTriangleArea);
    auto folds = [&](const p3& q) {
      if (margin > 0.f && (q - p).squaredNorm() * across < margin * margin) return false;
      return foldsAt(v, q, normal);
    };
    p3 shift;
    if (how == move::CENTROID && border[v]) {
      if (!borderSlide(v, shift)) continue;
    } else if (how == move::CENTROID) {
      shift = centre * (1.f / (3.f * area)) - p * (2.f / 3.f);
    }
    const p3 target = p + shift - normal * (normal * shift);
    p3 onSurface;
    const bool projected = project && projectOntoInput(v, target, onSurface);
    if (!folds(projected ? onSurface : target)) {
      pos[v] = projected ? onSurface : target;
      continue;
    }
    if (projected) {
      if (fresh[v]) log("Even mid-point subdivision introduces collision.  Backing out.");
      if (!folds(target)) pos[v] = target;
    }
  }
}

void surfaceTracker::state::round(const roundPlan& r) {
  std::fill(fresh.begin(), fresh.end(), 0);
  const unsigned int made = unsigned(pos.size());
  // Another pass of splits, which reads the edges, follows only where a side is still
  // long; the collapses read just the faces around each vertex.
  bool edgesCurrent = true;
  for (unsigned int pass = 0; pass < MAX_SPLIT_PASSES && fn() < params.maxTriangles; ++pass) {
    if (!edgesCurrent) buildTopology();
    edgesCurrent = true;
    if (!splitLongEdges(r.split)) break;
    edgesCurrent = false;
    if (!anySideLonger(r.split)) break;
  }
  if (!edgesCurrent) buildVertexFaces();
  // Collapses read the positions: the midpoints go onto the input first.
  if (r.projectSplits) relaxAndProject(move::FRESH, true, made);
  const bool collapsed = collapseShortEdges(r.collapse, r.reach) > 0;
  if (collapsed) compactVertices();
  if (collapsed || !edgesCurrent) buildTopology();
  bool flipped = false;
  for (unsigned int pass = 0; pass < r.flipPasses && flipEdges(false, pass > 0); ++pass)
    flipped = true;
  if (flipped) buildVertexFaces();
  for (unsigned int i = 0; i < r.relaxations; ++i)
    relaxAndProject(move::CENTROID, r.projectRelaxed && i + 1 == r.relaxations);
}

void surfaceTracker::improve(SYSTEM::callBack* cb) {
  if (cb) cb->setValue(1.0f);
  state& t = *s;
  const unsigned int rounds = std::max(1u, t.params.iterations);
  const float hi = t.params.maxEdgeLength, lo = t.params.minEdgeLength;
  // Splitting an edge just over the band gives halves of half its length. Where those
  // halves fit the band, splits and collapses settle the lengths; in a narrow band they
  // never do (the collapses take the halves back), and the lengths are settled instead by
  // where the vertices sit: the right number of them, spread evenly, near valence 6.
  const bool narrow = lo >= NARROW_BAND * hi;
  const unsigned int steps = rounds + (narrow ? EQUALISE_ROUNDS : 0u);
  unsigned int step = 0;
  auto progress = [&]() {
    if (cb) cb->setValue(1.f + 97.f * float(++step) / float(steps));
  };
  t.buildTopology();
  if (!narrow) {
    // A collapse may make edges a little above the band: the rounds then settle near its
    // middle, not at its short end, and the last stage trims what is left above.
    for (unsigned int r = 0; r < rounds; ++r, progress())
      t.round({hi, lo, WIDE_COLLAPSE_REACH * hi, FLIP_PASSES, 1, false, true});
    // Relaxation leaves some edges a little long: flip them away where a shorter diagonal
    // fits, split the rest, and collapse what that makes short without a long edge.
    std::fill(t.fresh.begin(), t.fresh.end(), 0);
    if (t.flipEdges(true)) t.buildTopology();
    const unsigned int made = unsigned(t.pos.size());
    if (t.fn() < t.params.maxTriangles && t.splitLongEdges(hi)) {
      t.buildVertexFaces();
      t.relaxAndProject(state::move::FRESH, true, made);
    }
    t.collapseShortEdges(lo, hi);  // the result reads only the faces: no rebuild
    if (cb) cb->setValue(100.0f);
    return;
  }
  // Coarse rounds bring the density near that of edges of 0.9·hi, then finer ones even it
  // out: a split only above 1.05·hi and a collapse below 0.78·hi that may reach 1.2·hi
  // leave the vertex count where relaxed edges land in [0.8, 1]·hi, and more flips keep
  // the valences near 6 (a vertex of valence 5 or 7 bends the lengths around it). Their
  // moves are short: every other one, the last among them, ends on the input (the
  // midpoints of splits always go onto it). A sweep of single vertices finishes.
  for (unsigned int r = 0; r < rounds; ++r, progress())
    t.round({1.2f * hi, 0.72f * hi, 1.2f * hi, FLIP_PASSES, 1, false, true});
  t.slideBorders = true;
  for (unsigned int r = 0; r < EQUALISE_ROUNDS; ++r, progress())
    t.round({1.05f * hi, 0.78f * hi, 1.2f * hi, EQUALISE_FLIP_PASSES, EQUALISE_RELAXATIONS, true,
             (EQUALISE_ROUNDS - 1 - r) % 2 == 0});
  // Inside the band by a hair, so that the rounding of the projection keeps them in.
  const float sweepLo = std::max(lo, 0.8f * hi) * 1.0125f, sweepHi = 0.99f * hi;
  std::vector<unsigned char> pending(t.pos.size(), 1);
  for (unsigned int i = 0; i < SWEEP_ROUNDS; ++i) t.bandSweep(sweepLo, sweepHi, pending);
  if (cb) cb->setValue(100.0f);
}

void surfaceTracker::result(std::vector<p3>& positions, std::vector<unsigned int>& triangles,
                            std::vector<unsigned int>& vertexMap) const {
  const state& t = *s;
  std::vector<unsigned int> id(t.pos.size(), NONE);
  for (unsigned int f = 0; f < t.fn(); ++f)
    if (!t.dead[f])
      for (unsigned int k = 0; k < 3; ++k) id[t.V(f, k)] = 0;
  positions.clear();
  vertexMap.clear();
  for (unsigned int v = 0; v < t.pos.size(); ++v) {
    if (id[v] == NONE) continue;
    id[v] = unsigned(positions.size());
    positions.push_back(t.pos[v]);
    vertexMap.push_back(t.origin[v]);
  }
  triangles.clear();
  for (unsigned int f = 0; f < t.fn(); ++f)
    if (!t.dead[f])
      for (unsigned int k = 0; k < 3; ++k) triangles.push_back(id[t.V(f, k)]);
}

}  // namespace INTERNAL
}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
