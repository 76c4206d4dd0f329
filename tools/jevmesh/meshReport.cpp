#include "meshReport.h"

#include <algorithm>
#include <iomanip>
#include <limits>
#include <numeric>

namespace JEVMESH {

using JEV::MESH::editMesh;
using p3d = JEV::MATH::point3<double>;

namespace {

p3d toDouble(const JEV::MATH::point3<float>& p) { return p3d(p.x, p.y, p.z); }

// Plain union-find with path halving, over vertex ids.
struct disjointSets {
  explicit disjointSets(unsigned n) : parent(n) { std::iota(parent.begin(), parent.end(), 0u); }
  unsigned find(unsigned a) {
    while (parent[a] != a) a = parent[a] = parent[parent[a]];
    return a;
  }
  void join(unsigned a, unsigned b) { parent[find(a)] = find(b); }
  std::vector<unsigned> parent;
};

// Boundary edges grouped into loops through shared ends. Grouping by connection rather
// than walking half-edges keeps the count right on scans whose faces are not consistently
// oriented; a border pinched at one vertex counts as one loop.
std::vector<unsigned> groupBoundaryLoops(const editMesh& m, const std::vector<unsigned>& border) {
  disjointSets sets(m.vn());
  for (unsigned e : border) sets.join(m.eV(e, 0), m.eV(e, 1));
  std::map<unsigned, unsigned> sizeByRoot;
  for (unsigned e : border) ++sizeByRoot[sets.find(m.eV(e, 0))];
  std::vector<unsigned> loops;
  for (const auto& [root, size] : sizeByRoot) loops.push_back(size);
  std::sort(loops.rbegin(), loops.rend());
  return loops;
}

}  // namespace

meshReport meshReport::of(const editMesh& m) {
  meshReport r;
  const double inf = std::numeric_limits<double>::infinity();
  r.bboxMin = p3d(inf, inf, inf);
  r.bboxMax = p3d(-inf, -inf, -inf);

  std::vector<bool> used(m.vn(), false);
  disjointSets pieces(m.vn());
  for (unsigned f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f)) continue;
    const unsigned n = m.fVNum(f);
    ++r.faces;
    ++r.facesByCorners[n];
    bool repeated = false;
    for (unsigned i = 0; i < n && !repeated; ++i)
      for (unsigned j = i + 1; j < n; ++j) repeated |= m.fV(f, i) == m.fV(f, j);
    r.degenerateFaces += repeated;
    for (unsigned i = 0; i < n; ++i) {
      used[m.fV(f, i)] = true;
      if (i > 0) pieces.join(m.fV(f, 0), m.fV(f, i));
    }
    // Fan triangles from corner 0: area, and volume by the divergence theorem.
    const p3d a = toDouble(m.F2VPOS(f, 0));
    for (unsigned t = 1; t + 1 < n; ++t) {
      const p3d b = toDouble(m.F2VPOS(f, t)), c = toDouble(m.F2VPOS(f, t + 1));
      r.area += 0.5 * p3d::cross(b - a, c - a).norm();
      r.volume += a * p3d::cross(b, c) / 6.0;
    }
  }

  std::vector<bool> isRoot(m.vn(), false);
  for (unsigned v = 0; v < m.vn(); ++v) {
    if (m.isVertDeleted(v)) continue;
    ++r.vertices;
    const p3d p = toDouble(m.vPos(v));
    r.bboxMin =
        p3d(std::min(r.bboxMin.x, p.x), std::min(r.bboxMin.y, p.y), std::min(r.bboxMin.z, p.z));
    r.bboxMax =
        p3d(std::max(r.bboxMax.x, p.x), std::max(r.bboxMax.y, p.y), std::max(r.bboxMax.z, p.z));
    if (!used[v]) {
      ++r.isolatedVertices;
    } else if (!isRoot[pieces.find(v)]) {
      isRoot[pieces.find(v)] = true;
      ++r.components;
    }
  }

  // Edges from a corner to itself (inside degenerate faces) are no part of the surface.
  std::vector<unsigned> border;
  for (unsigned e = 0; e < m.en(); ++e) {
    if (m.edgeIsDeleted(e) || m.eV(e, 0) == m.eV(e, 1)) continue;
    ++r.edges;
    const unsigned faces = m.eFNum(e);
    r.wireEdges += faces == 0;
    r.nonManifoldEdges += faces > 2;
    if (faces == 1) border.push_back(e);
  }
  r.boundaryEdges = unsigned(border.size());
  r.boundaryLoops = groupBoundaryLoops(m, border);
  r.closed = r.faces > 0 && r.boundaryEdges == 0 && r.nonManifoldEdges == 0;
  return r;
}

void meshReport::print(std::ostream& out) const {
  out << "vertices:           " << vertices << "\n";
  out << "faces:              " << faces;
  for (const auto& [corners, count] : facesByCorners) {
    const char* name = corners == 3 ? "triangles" : corners == 4 ? "quads" : nullptr;
    out << (corners == facesByCorners.begin()->first ? " (" : ", ") << count << " ";
    if (name)
      out << name;
    else
      out << corners << "-gons";
  }
  out << (facesByCorners.empty() ? "" : ")") << "\n";
  out << "edges:              " << edges << "\n";
  out << "boundary edges:     " << boundaryEdges << "\n";
  out << "boundary loops:     " << boundaryLoops.size();
  // A polygon soup can have thousands of loops: the ten largest, then how many more.
  const size_t listed = std::min<size_t>(boundaryLoops.size(), 10);
  for (size_t i = 0; i < listed; ++i) out << (i == 0 ? " (sizes " : ", ") << boundaryLoops[i];
  if (boundaryLoops.size() > listed) out << ", and " << boundaryLoops.size() - listed << " more";
  out << (boundaryLoops.empty() ? "" : ")") << "\n";
  out << "non-manifold edges: " << nonManifoldEdges << "\n";
  out << "wire edges:         " << wireEdges << "\n";
  out << "degenerate faces:   " << degenerateFaces << "\n";
  out << "isolated vertices:  " << isolatedVertices << "\n";
  out << "components:         " << components << "\n";
  const auto oldFlags = out.flags();
  const auto oldPrecision = out.precision(6);
  if (vertices > 0) {
    out << "bounding box:       (" << bboxMin.x << ", " << bboxMin.y << ", " << bboxMin.z << ") - ("
        << bboxMax.x << ", " << bboxMax.y << ", " << bboxMax.z << ")\n";
  } else {
    out << "bounding box:       empty\n";
  }
  out << "surface area:       " << area << "\n";
  if (closed)
    out << "volume:             " << volume << "\n";
  else
    out << "volume:             not closed\n";
  out.precision(oldPrecision);
  out.flags(oldFlags);
}

}  // namespace JEVMESH
