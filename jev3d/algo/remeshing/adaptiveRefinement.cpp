#include "jev3d/algo/remeshing/adaptiveRefinement.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iostream>

#include "jev3d/algo/remeshing/internal/triangleFlip.h"
#include "jev3d/algo/smoothing/internal/brushRelaxation.h"
#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {

namespace {

using p3 = MATH::point3<float>;
constexpr unsigned int MAX_PASSES = 4;  // the loop stops once the count exceeds it
constexpr unsigned int FV_RESERVE = 0x18000;

bool selected(const editMesh& m, unsigned int v) { return m.isVertSelected(v); }

bool active(const editMesh& m, unsigned int e) {
  return selected(m, m.eV(e, 0)) || selected(m, m.eV(e, 1));
}

float lengthSqr(const editMesh& m, unsigned int e) {
  return (m.vPos(m.eV(e, 0)) - m.vPos(m.eV(e, 1))).squaredNorm();
}

// The edges of the faces on e (its star), e among them.
void edgeStar(const editMesh& m, unsigned int e, std::vector<unsigned int>& star) {
  star.clear();
  for (unsigned int i = 0; i < m.eFNum(e); ++i) {
    const unsigned int f = m.eF(e, i);
    if (m.isFaceDeleted(f)) continue;
    const unsigned int n = m.fVNum(f);
    for (unsigned int k = 0; k < n; ++k) {
      const unsigned int side = m.findSharedEdgeFromVertices(m.fV(f, k), m.fV(f, (k + 1) % n));
      if (side < m.en()) star.push_back(side);
    }
  }
}

// Puts a selected vertex at the midpoint of e into each face on it; a triangle is cut
// in two, the second half a new selected face.
void splitEdge(editMesh& m, unsigned int e) {
  const unsigned int a = m.eV(e, 0), b = m.eV(e, 1);
  const unsigned int mid = m.addVertex((m.vPos(a) + m.vPos(b)) * 0.5f);
  m.checkMeshState();
  m.selectVert(mid);
  std::vector<unsigned int> faces;
  for (unsigned int i = 0; i < m.eFNum(e); ++i) faces.push_back(m.eF(e, i));
  std::vector<unsigned int> corners;
  for (unsigned int f : faces) {
    if (m.isFaceDeleted(f)) continue;
    const unsigned int n = m.fVNum(f);
    unsigned int k = 0;  // the side k -> k + 1 is e
    while (k < n && !((m.fV(f, k) == a && m.fV(f, (k + 1) % n) == b) ||
                      (m.fV(f, k) == b && m.fV(f, (k + 1) % n) == a)))
      ++k;
    if (k == n) continue;
    // The face keeps its flags: its corners stay selected, and the counters follow.
    if (n == 3) {
      const unsigned int x = m.fV(f, k), y = m.fV(f, (k + 1) % 3), z = m.fV(f, (k + 2) % 3);
      m.makeTriFace(f, x, mid, z);
      const unsigned int g = m.addTriFace(mid, y, z);
      m.checkMeshState();
      m.selectFace(g);
    } else {
      corners.clear();
      for (unsigned int i = 0; i < n; ++i) {
        corners.push_back(m.fV(f, i));
        if (i == k) corners.push_back(mid);
      }
      m.makePolyFace(f, corners);
      if (m.isFaceSelected(f)) m.setSelFvn(m.getSelFvn() + 1);
    }
  }
}

void rebuild(editMesh& m) {
  m.checkMeshState();
  m.computeEVEF();
  m.computeVE();
}

// Half an umbrella step of each selected inner vertex, kept in its tangent plane.
void relaxSelected(editMesh& m, const std::vector<unsigned char>* rim) {
  m.computeFaceNormals();
  std::vector<p3> next(m.vn());
  for (unsigned int v = 0; v < m.vn(); ++v) {
    next[v] = m.vPos(v);
    if (m.isVertDeleted(v) || !selected(m, v) || m.vENum(v) == 0) continue;
    if (rim && v < rim->size() && (*rim)[v]) continue;
    p3 sum, normal;
    bool inner = true;
    for (unsigned int i = 0; i < m.vENum(v) && inner; ++i) {
      const unsigned int e = m.vE(v, i);
      inner = m.eFNum(e) == 2;
      sum += m.vPos(m.eV(e, 0) == v ? m.eV(e, 1) : m.eV(e, 0));
      for (unsigned int j = 0; j < m.eFNum(e); ++j) normal += m.fNor(m.eF(e, j));
    }
    if (!inner) continue;
    normal.normalize();
    const p3 move = (sum * (1.f / float(m.vENum(v))) - m.vPos(v)) * 0.5f;
    next[v] = m.vPos(v) + move - normal * (normal * move);
  }
  for (unsigned int v = 0; v < m.vn(); ++v) m.vPos(v) = next[v];
  m.updateSelVertPosSum();
  m.updateBBox();
}

// The valence pass: an active edge between two triangles whose ends both have valence
// above 6 flips when both far corners, untouched in this pass, have less than the larger
// end. True when something flipped.
bool valencePass(editMesh& m) {
  std::vector<unsigned char> touched(m.vn(), 0);
  bool any = false;
  for (unsigned int e = 0; e < m.en(); ++e) {
    if (m.edgeIsDeleted(e) || !active(m, e)) continue;
    INTERNAL::edgeQuad q;
    if (!INTERNAL::findEdgeQuad(m, e, q)) continue;
    const unsigned int va = m.vENum(q.a), vb = m.vENum(q.b);
    if (va <= 6 || vb <= 6 || touched[q.a] || touched[q.b] || touched[q.c] || touched[q.d])
      continue;
    const unsigned int most = std::max(va, vb);
    if (m.vENum(q.c) >= most || m.vENum(q.d) >= most || q.c == q.d) continue;
    if (m.findSharedEdgeFromVertices(q.c, q.d) != m.getMaxValue()) continue;
    INTERNAL::flipEdgeInPlace(m, e, q);
    touched[q.a] = touched[q.b] = touched[q.c] = touched[q.d] = 1;
    any = true;
  }
  if (any) rebuild(m);
  return any;
}

// Collapses active edges between two selected inner vertices that were shorter than a
// quarter of the length before the relaxation, at their midpoints, in one set of
// collapses on disjoint faces.
void collapseShort(editMesh& m, const std::vector<p3>& before, float maxEdgeLength,
                   const std::vector<unsigned char>* rim) {
  const float limit = 0.0625f * maxEdgeLength * maxEdgeLength;
  std::vector<unsigned char> used(m.fn(), 0);
  bool any = false;
  for (unsigned int e = 0; e < m.en(); ++e) {
    if (m.edgeIsDeleted(e) || m.eFNum(e) != 2) continue;
    const unsigned int a = m.eV(e, 0), b = m.eV(e, 1);
    if (!selected(m, a) || !selected(m, b) || a >= before.size() || b >= before.size()) continue;
    if (rim && ((a < rim->size() && (*rim)[a]) || (b < rim->size() && (*rim)[b]))) continue;
    if ((before[a] - before[b]).squaredNorm() >= limit) continue;
    bool free = true;
    for (unsigned int v : {a, b})
      for (unsigned int i = 0; i < m.vENum(v) && free; ++i) {
        const unsigned int s = m.vE(v, i);
        if (m.eFNum(s) != 2) free = false;  // a border end stays
        for (unsigned int j = 0; j < m.eFNum(s) && free; ++j) free = !used[m.eF(s, j)];
      }
    if (!free || !m.canCollapseEdge(e)) continue;
    for (unsigned int v : {a, b})
      for (unsigned int i = 0; i < m.vENum(v); ++i)
        for (unsigned int j = 0; j < m.eFNum(m.vE(v, i)); ++j) used[m.eF(m.vE(v, i), j)] = 1;
    m.collapseEdge(e, (m.vPos(a) + m.vPos(b)) * 0.5f);
    any = true;
  }
  if (any) rebuild(m);
}

// adaptiveRefine with a rim that stays: vertices flagged in rim (when given) neither move
// nor collapse, and an edge between two of them is never split, so a region cut out of
// a mesh still fits its hole.
void refineRegion(editMesh& mesh, float maxEdgeLength, const std::vector<unsigned char>* rim) {
  auto onRim = [&](unsigned int v) { return rim && v < rim->size() && (*rim)[v]; };
  const float limit = maxEdgeLength * maxEdgeLength;
  mesh.expandFaceArray(mesh.fn());
  mesh.expandFVArray(FV_RESERVE);
  if (!mesh.isEVEFValid() || !mesh.isVEValid()) rebuild(mesh);
  const unsigned int firstNew = mesh.fn();
  unsigned int passes = 0;
  bool changed = false;
  std::vector<unsigned int> star, splits;
  do {
    // One set of long active edges whose stars do not overlap.
    std::vector<unsigned char> mark(mesh.en(), 1);
    splits.clear();
    for (unsigned int e = 0; e < mesh.en(); ++e) {
      if (mesh.edgeIsDeleted(e) || !mark[e]) continue;
      edgeStar(mesh, e, star);
      if (std::any_of(star.begin(), star.end(), [&](unsigned int s) { return !mark[s]; })) continue;
      if (!active(mesh, e) || !(lengthSqr(mesh, e) > limit)) continue;
      if (onRim(mesh.eV(e, 0)) && onRim(mesh.eV(e, 1))) continue;
      for (unsigned int s : star) mark[s] = 0;
      mark[e] = 0;
      splits.push_back(e);
    }
    for (unsigned int e : splits)
      if (active(mesh, e)) splitEdge(mesh, e);
    rebuild(mesh);
    changed = false;
    for (unsigned int e = 0; e < mesh.en() && !changed; ++e)
      changed = !mesh.edgeIsDeleted(e) && active(mesh, e) && lengthSqr(mesh, e) > limit &&
                !(onRim(mesh.eV(e, 0)) && onRim(mesh.eV(e, 1)));
    ++passes;
    std::vector<p3> before(mesh.vn());
    for (unsigned int v = 0; v < mesh.vn(); ++v) before[v] = mesh.vPos(v);
    relaxSelected(mesh, rim);
    if (passes % 3 == 0 && changed && valencePass(mesh)) changed = true;
    collapseShort(mesh, before, maxEdgeLength, rim);
  } while (changed && passes <= MAX_PASSES);
  mesh.checkMeshState();
  for (unsigned int f = firstNew; f < mesh.fn(); ++f)
    if (!mesh.isFaceDeleted(f) && !mesh.isFaceSelected(f)) mesh.selectFace(f);
  mesh.computeNormalizedFaceNormals();
  mesh.computeNormalizedVertexNormals();
  std::cout << "numIters " << passes << "\n"
            << "updateEdgeTime " << 0 << "\n";
}

}  // namespace

void adaptiveRefine(editMesh& mesh, float maxEdgeLength) {
  refineRegion(mesh, maxEdgeLength, nullptr);
}

void adaptiveMeshRefinement(editMesh& mesh, std::vector<unsigned int>& faces, float maxEdgeLength) {
  if (!mesh.isEVEFValid() || !mesh.isVEValid()) rebuild(mesh);
  std::vector<unsigned int> live, region;
  for (unsigned int f : faces)
    if (mesh.isFaceValid(f)) live.push_back(f);
  mesh.computeRegionOneRing(live, region);
  // The copy: the listed faces' vertices are selected (active); the ring keeps the rim
  // in place.
  editMesh copy;
  std::vector<unsigned int> toCopy(mesh.vn(), 0xFFFFFFFFu), fromCopy;
  auto local = [&](unsigned int v) {
    if (toCopy[v] == 0xFFFFFFFFu) {
      toCopy[v] = copy.addVertex(mesh.vPos(v));
      fromCopy.push_back(v);
    }
    return toCopy[v];
  };
  for (unsigned int f : region)
    for (unsigned int t = 0; t < mesh.getTriangleNumFace(f); ++t) {
      unsigned int a, b, c;
      mesh.getTriangle(f, t, a, b, c);
      const unsigned int la = local(a), lb = local(b), lc = local(c);
      copy.addTriFace(la, lb, lc);
    }
  copy.checkMeshState();
  for (unsigned int f : live)
    for (unsigned int i = 0; i < mesh.fVNum(f); ++i) copy.selectVert(toCopy[mesh.fV(f, i)]);
  for (unsigned int f : region) mesh.deleteFaceUpdatingEdges(f);
  mesh.deselectAllFaces();
  rebuild(copy);
  // The copy's rim: its vertices that the rest of the mesh still uses.
  std::vector<unsigned char> rim(copy.vn(), 0);
  for (unsigned int f = 0; f < mesh.fn(); ++f)
    if (!mesh.isFaceDeleted(f))
      for (unsigned int i = 0; i < mesh.fVNum(f); ++i) {
        const unsigned int v = mesh.fV(f, i);
        if (v < toCopy.size() && toCopy[v] != 0xFFFFFFFFu) rim[toCopy[v]] = 1;
      }
  std::cout << "starting adaptiveRefine...\n";
  const auto start = std::chrono::steady_clock::now();
  refineRegion(copy, maxEdgeLength, &rim);
  std::cout
      << "adaptiveRefine done in "
      << std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count()
      << " msecs\n";
  // Back into the mesh: old vertices keep their ids (and take their new places), new
  // ones are appended; every face of the copy is a new selected face.
  std::vector<unsigned int> back(copy.vn());
  for (unsigned int v = 0; v < copy.vn(); ++v) {
    if (copy.isVertDeleted(v)) continue;
    if (v < fromCopy.size()) {
      back[v] = fromCopy[v];
      mesh.vPos(back[v]) = copy.vPos(v);
    } else {
      back[v] = mesh.addVertex(copy.vPos(v));
    }
  }
  mesh.checkMeshState();
  std::vector<unsigned int> added;
  for (unsigned int f = 0; f < copy.fn(); ++f) {
    if (copy.isFaceDeleted(f) || copy.fVNum(f) < 3) continue;
    std::vector<unsigned int> corners;
    for (unsigned int i = 0; i < copy.fVNum(f); ++i) corners.push_back(back[copy.fV(f, i)]);
    added.push_back(mesh.addPolyFace(corners));
  }
  mesh.checkMeshState();
  for (unsigned int f : added) mesh.selectFace(f);
  rebuild(mesh);
  mesh.computeNormalizedFaceNormals();
  mesh.computeNormalizedVertexNormals();
  mesh.updateSelVertPosSum();
  mesh.updateBBox();
  faces = added;
}

void localSmoothing(editMesh& mesh, const std::vector<unsigned int>& centres, float radius,
                    std::vector<unsigned char>* moved) {
  // The brush of sculpting with its ring count fixed at 5 and 150 relaxation rounds.
  constexpr unsigned int RINGS = 5, ROUNDS = 150;
  if (moved) moved->assign(mesh.vn(), 0);
  // Without a positive radius nothing is in reach (0 would move each centre fully).
  if (!mesh.isVEValid() || !(radius > 0.f)) return;
  std::vector<p3> start;
  for (unsigned int c : centres) start.push_back(c < mesh.vn() ? mesh.vPos(c) : p3());
  std::vector<int> visited(mesh.vn(), 0);
  std::vector<unsigned int> queue;
  for (size_t k = 0; k < centres.size(); ++k) {
    if (centres[k] >= mesh.vn() || mesh.isVertDeleted(centres[k])) continue;
    SMOOTHING::INTERNAL::gatherRings(mesh, centres[k], RINGS, visited, queue);
    SMOOTHING::INTERNAL::relaxNeighbourhood(mesh, queue, start[k], radius, ROUNDS, nullptr, moved);
    for (unsigned int v : queue) visited[v] = 0;
  }
  mesh.updateSelVertPosSum();
  mesh.updateBBox();
}

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
