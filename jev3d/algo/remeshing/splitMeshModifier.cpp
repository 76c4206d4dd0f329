#include "jev3d/algo/remeshing/splitMeshModifier.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <limits>
#include <unordered_map>
#include <utility>

#include "jev3d/math/triangleTree.h"
#include "jev3d/mesh/aabbtreeEditMeshFaceWrap.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {

namespace {

using p3 = MATH::point3<float>;
using MATH::point3d;

constexpr unsigned int NONE = 0xFFFFFFFFu;
// Crossings are kept this far (as a share of the edge) from the edge's ends, so that no
// face of the cut is flat.
constexpr double END_GAP = 1e-4;
// Control points move this share of the way to their face's centre, so that none lies
// on an edge or a corner.
constexpr double CENTRE_PULL = 1e-4;

uint64_t edgeKey(unsigned int a, unsigned int b) {
  if (a > b) std::swap(a, b);
  return uint64_t(a) << 32 | b;
}

point3d toDouble(const p3& p) { return point3d(p.x, p.y, p.z); }
p3 toFloat(const point3d& p) { return p3(float(p.x), float(p.y), float(p.z)); }

struct point2 {
  double x, y;
};

double orient(const point2& a, const point2& b, const point2& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// True when the open segments a-b and c-d cross.
bool segmentsCross(const point2& a, const point2& b, const point2& c, const point2& d) {
  const double d1 = orient(a, b, c), d2 = orient(a, b, d);
  const double d3 = orient(c, d, a), d4 = orient(c, d, b);
  return ((d1 > 0 && d2 < 0) || (d1 < 0 && d2 > 0)) && ((d3 > 0 && d4 < 0) || (d3 < 0 && d4 > 0));
}

// Cuts a simple polygon into triangles, ear by ear, keeping its winding. False when no
// ear is left, which only a polygon that overlaps itself leaves.
bool earClip(const std::vector<unsigned int>& poly, const std::vector<point2>& at,
             std::vector<std::vector<unsigned int>>& out) {
  std::vector<size_t> left(poly.size());
  for (size_t i = 0; i < left.size(); ++i) left[i] = i;
  double area = 0.0;
  for (size_t i = 0; i < at.size(); ++i) {
    const point2 &a = at[i], &b = at[(i + 1) % at.size()];
    area += a.x * b.y - a.y * b.x;
  }
  const double sign = area >= 0 ? 1.0 : -1.0;
  const double eps = 1e-14 * std::fabs(area);
  while (left.size() > 3) {
    bool cut = false;
    for (size_t k = 0; k < left.size() && !cut; ++k) {
      const size_t i0 = left[(k + left.size() - 1) % left.size()], i1 = left[k],
                   i2 = left[(k + 1) % left.size()];
      const point2 &a = at[i0], &b = at[i1], &c = at[i2];
      if (sign * orient(a, b, c) <= eps) continue;
      bool blocked = false;
      for (size_t j : left) {
        if (j == i0 || j == i1 || j == i2) continue;
        const point2& q = at[j];
        if (sign * orient(a, b, q) >= -eps && sign * orient(b, c, q) >= -eps &&
            sign * orient(c, a, q) >= -eps) {
          blocked = true;
          break;
        }
      }
      if (blocked) continue;
      out.push_back({poly[i0], poly[i1], poly[i2]});
      left.erase(left.begin() + std::ptrdiff_t(k));
      cut = true;
    }
    if (!cut) return false;
  }
  out.push_back({poly[left[0]], poly[left[1]], poly[left[2]]});
  return true;
}

// The faces around each edge, filed under the edge's smaller vertex in slots sized by a
// counting pass: no sort and no map, which matters on a scan of a million sides.
class sideTable {
 public:
  void add(unsigned int a, unsigned int b, unsigned int face) {
    if (a != b) pending.push_back({std::min(a, b), std::max(a, b), face});
  }
  void finish(size_t vertexCount) {
    start.assign(vertexCount + 1, 0);
    for (const side& s : pending) ++start[s.low + 1];
    for (size_t v = 0; v < vertexCount; ++v) start[v + 1] += start[v];
    slots.resize(pending.size());
    std::vector<unsigned int> fill(start.begin(), start.end() - 1);
    for (const side& s : pending) slots[fill[s.low]++] = {s.high, s.face};
    pending.clear();
    pending.shrink_to_fit();
  }
  // The faces on edge a-b.
  template <class V>
  void forFaces(unsigned int a, unsigned int b, V visit) const {
    const unsigned int low = std::min(a, b), high = std::max(a, b);
    if (size_t(low) + 1 >= start.size()) return;
    for (unsigned int k = start[low]; k < start[low + 1]; ++k)
      if (slots[k].first == high) visit(slots[k].second);
  }
  size_t count(unsigned int a, unsigned int b) const {
    size_t n = 0;
    forFaces(a, b, [&](unsigned int) { ++n; });
    return n;
  }

 private:
  struct side {
    unsigned int low, high, face;
  };
  std::vector<side> pending;
  std::vector<unsigned int> start;
  std::vector<std::pair<unsigned int, unsigned int>> slots;  // (other end, face)
};

// True when face corners run from a straight to b.
bool runs(const std::vector<unsigned int>& corners, unsigned int a, unsigned int b) {
  for (size_t i = 0; i < corners.size(); ++i)
    if (corners[i] == a && corners[(i + 1) % corners.size()] == b) return true;
  return false;
}

void writeObj(const std::string& name, const std::vector<point3d>& pos,
              const std::vector<std::vector<unsigned int>>& faces) {
  std::ofstream out(name);
  for (const point3d& p : pos) out << "v " << p.x << ' ' << p.y << ' ' << p.z << '\n';
  for (const auto& f : faces) {
    out << 'f';
    for (unsigned int v : f) out << ' ' << v + 1;
    out << '\n';
  }
}

// The working state of one split: the live part of the mesh renumbered, then the curve's
// vertices appended to it.
class splitter {
 public:
  explicit splitter(std::string& e) : error(e) {}

  bool initData(const editMesh& m, const std::vector<p3>& polyline, float maxDistance);
  bool initSplitTable();
  bool initOutTriangulation();
  bool advanceMultiSplit();
  void writeTo(editMesh& m) const;
  void writeDebug(const std::string& name) const { writeObj(name, pos, outFaces); }
  unsigned int crossings() const { return unsigned(pos.size() - records.size() - cpVertex.size()); }

  std::vector<unsigned int> leftLoop, rightLoop;

 private:
  bool fail(const char* why) {
    error = why;
    return false;
  }
  unsigned int addVertex(const point3d& p) {
    pos.push_back(p);
    return unsigned(pos.size() - 1);
  }
  void addSegment(unsigned int face, unsigned int a, unsigned int b) {
    faceSegments[face].emplace_back(a, b);
    loop.push_back(b);
  }
  bool trace(unsigned int from, unsigned int to);
  bool cutFace(unsigned int f, std::vector<std::vector<unsigned int>>& out);
  void boundaryCycle(unsigned int f, std::vector<unsigned int>& cycle) const;

  std::string& error;
  std::vector<point3d> pos;
  std::vector<editMesh::vert> records;  // the mesh's own vertices, kept whole
  std::vector<std::vector<unsigned int>> faces;
  std::vector<point3d> normals;
  sideTable sides;
  // The curve's crossings of each edge: (share of the way from the smaller id, vertex).
  std::unordered_map<uint64_t, std::vector<std::pair<double, unsigned int>>> cuts;
  std::unordered_map<unsigned int, std::vector<std::pair<unsigned int, unsigned int>>> faceSegments;
  std::vector<unsigned int> cpFace, cpVertex;
  std::vector<unsigned int> loop;  // the curve's vertices in order, the first not repeated
  std::vector<std::vector<unsigned int>> outFaces;
  std::vector<unsigned char> outSelected;
};

bool splitter::initData(const editMesh& m, const std::vector<p3>& polyline, float maxDistance) {
  std::vector<unsigned int> map(m.vn(), NONE);
  for (unsigned int v = 0; v < m.vn(); ++v) {
    if (m.isVertDeleted(v)) continue;
    map[v] = unsigned(records.size());
    records.push_back(m.V(v));
    pos.push_back(toDouble(m.vPos(v)));
  }
  std::vector<unsigned int> workFace(m.fn(), NONE);
  for (unsigned int f = 0; f < m.fn(); ++f) {
    if (m.isFaceDeleted(f) || m.fVNum(f) < 3) continue;
    workFace[f] = unsigned(faces.size());
    std::vector<unsigned int> corners;
    for (unsigned int i = 0; i < m.fVNum(f); ++i) {
      const unsigned int v = m.fV(f, i);
      if (v >= map.size() || map[v] == NONE) return fail("a face names a missing vertex");
      corners.push_back(map[v]);
    }
    faces.push_back(corners);
  }
  if (faces.empty()) return fail("the mesh has no faces");

  std::vector<p3> flat(pos.size());
  MATH::point3d lo = pos[0], hi = pos[0];
  for (size_t i = 0; i < pos.size(); ++i) {
    flat[i] = toFloat(pos[i]);
    lo = point3d(std::min(lo.x, pos[i].x), std::min(lo.y, pos[i].y), std::min(lo.z, pos[i].z));
    hi = point3d(std::max(hi.x, pos[i].x), std::max(hi.y, pos[i].y), std::max(hi.z, pos[i].z));
  }
  // The mesh's own face index serves when it is current (its hits name the mesh's face
  // ids); otherwise one is built over the fans of the faces.
  const aabbtreeEditMeshFaceWrap<float>* own = m.getFABBTree();
  std::vector<unsigned int> fans, fanFace;
  for (unsigned int f = 0; f < faces.size(); ++f) {
    const auto& c = faces[f];
    point3d n(0, 0, 0);  // Newell's normal, good for polygons that are not flat
    for (size_t i = 0; i < c.size(); ++i) {
      const point3d &a = pos[c[i]], &b = pos[c[(i + 1) % c.size()]];
      n += point3d((a.y - b.y) * (a.z + b.z), (a.z - b.z) * (a.x + b.x), (a.x - b.x) * (a.y + b.y));
      sides.add(c[i], c[(i + 1) % c.size()], f);
    }
    normals.push_back(n.normalize());
    for (size_t t = 1; !own && t + 1 < c.size(); ++t) {
      fans.insert(fans.end(), {c[0], c[t], c[t + 1]});
      fanFace.push_back(f);
    }
  }
  sides.finish(pos.size());
  MATH::triangleTree built;
  if (!own) built.build(flat.data(), flat.size(), fans.data(), fanFace.size(), 8, fanFace.data());
  const MATH::triangleTree& tree = own ? own->getTree() : built;

  const double limit = maxDistance >= 0.f ? maxDistance : 0.01 * (hi - lo).norm();
  for (const p3& p : polyline) {
    MATH::closestPointHit hit;
    if (!tree.closestPoint(p, float(limit * limit), hit))
      return fail("a control point lies off the mesh");
    if (own) hit.face = hit.face < workFace.size() ? workFace[hit.face] : NONE;
    if (hit.face == NONE) return fail("the mesh's face index does not match its faces");
    const point3d q = toDouble(hit.point);
    if (!cpVertex.empty() && (q - pos[cpVertex.back()]).norm() < 1e-9) continue;
    point3d centre(0, 0, 0);
    for (unsigned int v : faces[hit.face]) centre += pos[v];
    centre /= double(faces[hit.face].size());
    cpVertex.push_back(addVertex(q + (centre - q) * CENTRE_PULL));
    cpFace.push_back(hit.face);
  }
  if (cpVertex.size() > 1 && (pos[cpVertex.back()] - pos[cpVertex.front()]).norm() < 1e-9) {
    cpVertex.pop_back();
    cpFace.pop_back();
  }
  if (cpVertex.size() < 3) return fail("the curve has fewer than 3 distinct points");
  return true;
}

bool splitter::initSplitTable() {
  for (unsigned int i = 0; i < cpVertex.size(); ++i)
    if (!trace(i, unsigned((i + 1) % cpVertex.size()))) return false;
  return true;
}

// Follows the section of the surface with the plane through both points that holds their
// mean normal, from face to face, and notes each edge crossed.
bool splitter::trace(unsigned int from, unsigned int to) {
  const unsigned int fa = cpFace[from], fb = cpFace[to];
  const unsigned int va = cpVertex[from], vb = cpVertex[to];
  if (fa == fb) {
    addSegment(fa, va, vb);
    return true;
  }
  const point3d a = pos[va], b = pos[vb], ab = b - a;
  point3d plane = ab.cross(normals[fa] + normals[fb]);
  if (plane.norm() < 1e-12 * ab.norm()) plane = ab.cross(normals[fa]);
  if (plane.norm() < 1e-12 * ab.norm()) return fail("the curve runs along the surface normal");
  plane.normalize();
  // Vertices on the plane count as on its positive side, so every crossing is inside an edge.
  auto side = [&](unsigned int v) {
    const double d = (pos[v] - a) * plane;
    return d == 0.0 ? std::numeric_limits<double>::min() : d;
  };
  unsigned int f = fa, prev = va;
  uint64_t entry = 0xFFFFFFFFFFFFFFFFull;
  point3d here = a;
  for (size_t step = 0; step <= faces.size(); ++step) {
    const auto& c = faces[f];
    double bestScore = -std::numeric_limits<double>::infinity();
    unsigned int u = NONE, w = NONE;
    double share = 0.0;
    for (size_t i = 0; i < c.size(); ++i) {
      const unsigned int p = c[i], q = c[(i + 1) % c.size()];
      if (p == q || edgeKey(p, q) == entry) continue;
      const double dp = side(p), dq = side(q);
      if ((dp > 0) == (dq > 0)) continue;
      const double s = dp / (dp - dq);
      const double score = (pos[p] + (pos[q] - pos[p]) * s - here) * ab;
      if (score > bestScore) bestScore = score, u = p, w = q, share = s;
    }
    if (u == NONE) return fail("the curve cannot be followed across a face");
    const uint64_t key = edgeKey(u, w);
    double t = u < w ? share : 1.0 - share;
    t = std::min(1.0 - END_GAP, std::max(END_GAP, t));
    auto& onEdge = cuts[key];
    for (const auto& other : onEdge)
      if (std::fabs(other.first - t) < 1e-9) return fail("the curve crosses itself");
    const unsigned int lo = std::min(u, w), hi = std::max(u, w);
    const unsigned int x = addVertex(pos[lo] + (pos[hi] - pos[lo]) * t);
    onEdge.emplace_back(t, x);
    addSegment(f, prev, x);
    if (sides.count(u, w) != 2) return fail("the curve leaves the surface over a border edge");
    unsigned int g = f;
    sides.forFaces(u, w, [&](unsigned int h) {
      if (h != f) g = h;
    });
    if (g == f) return fail("the curve meets an edge used twice by one face");
    prev = x, here = pos[x], entry = key, f = g;
    if (f == fb) {
      addSegment(fb, prev, vb);
      return true;
    }
    if (f == fa) return fail("the section through two control points does not join them");
  }
  return fail("the section through two control points does not join them");
}

void splitter::boundaryCycle(unsigned int f, std::vector<unsigned int>& cycle) const {
  const auto& c = faces[f];
  for (size_t i = 0; i < c.size(); ++i) {
    const unsigned int p = c[i], q = c[(i + 1) % c.size()];
    cycle.push_back(p);
    const auto found = cuts.find(edgeKey(p, q));
    if (p == q || found == cuts.end()) continue;
    auto along = found->second;
    std::sort(along.begin(), along.end());
    if (p > q) std::reverse(along.begin(), along.end());
    for (const auto& cut : along) cycle.push_back(cut.second);
  }
}

// Cuts face f along the pieces of the curve inside it and triangulates the parts.
bool splitter::cutFace(unsigned int f, std::vector<std::vector<unsigned int>>& out) {
  const auto& segments = faceSegments[f];
  std::unordered_map<unsigned int, std::vector<unsigned int>> next;
  for (const auto& s : segments) {
    next[s.first].push_back(s.second);
    next[s.second].push_back(s.first);
  }
  // Plane coordinates in the face.
  const point3d n = normals[f];
  point3d e1 = std::fabs(n.x) < 0.9 ? point3d(1, 0, 0).cross(n) : point3d(0, 1, 0).cross(n);
  e1.normalize();
  const point3d e2 = n.cross(e1);
  auto flat = [&](unsigned int v) { return point2{pos[v] * e1, pos[v] * e2}; };

  for (size_t i = 0; i < segments.size(); ++i)
    for (size_t j = i + 1; j < segments.size(); ++j) {
      const auto &s = segments[i], &t = segments[j];
      if (s.first == t.first || s.first == t.second || s.second == t.first || s.second == t.second)
        continue;
      if (segmentsCross(flat(s.first), flat(s.second), flat(t.first), flat(t.second)))
        return fail("the curve crosses itself");
    }

  std::vector<std::vector<unsigned int>> parts(1);
  boundaryCycle(f, parts[0]);
  size_t walked = 0;
  std::unordered_map<unsigned int, bool> used;
  // With no vertex of more than two segments, every walk below is a simple path.
  for (const auto& at : next)
    if (at.second.size() > 2) return fail("the curve crosses itself");
  for (const auto& start : next) {
    if (start.second.size() != 1 || used[start.first]) continue;
    std::vector<unsigned int> chain{start.first};
    unsigned int before = NONE, at = start.first;
    for (;;) {
      const auto& nb = next[at];
      const unsigned int step = nb[0] != before ? nb[0] : (nb.size() > 1 ? nb[1] : NONE);
      if (step == NONE) break;
      before = at, at = step;
      chain.push_back(at);
      if (next[at].size() == 1) break;
    }
    used[chain.front()] = used[chain.back()] = true;
    walked += chain.size() - 1;
    // The part whose border holds both ends of the piece is cut in two along it.
    bool placed = false;
    for (size_t k = 0; k < parts.size() && !placed; ++k) {
      auto& part = parts[k];
      const auto s = std::find(part.begin(), part.end(), chain.front());
      const auto e = std::find(part.begin(), part.end(), chain.back());
      if (s == part.end() || e == part.end()) continue;
      const size_t si = size_t(s - part.begin()), ei = size_t(e - part.begin());
      std::vector<unsigned int> one, two;
      for (size_t i = si; i != ei; i = (i + 1) % part.size()) one.push_back(part[i]);
      for (size_t i = chain.size() - 1; i > 0; --i) one.push_back(chain[i]);
      for (size_t i = ei; i != si; i = (i + 1) % part.size()) two.push_back(part[i]);
      for (size_t i = 0; i + 1 < chain.size(); ++i) two.push_back(chain[i]);
      part = one;
      parts.push_back(two);
      placed = true;
    }
    if (!placed) return fail("the curve crosses itself");
  }
  if (walked != segments.size()) return fail("the curve lies inside one face");
  for (const auto& part : parts) {
    std::vector<point2> at;
    for (unsigned int v : part) at.push_back(flat(v));
    if (!earClip(part, at, out)) {
      std::cerr << "splitMeshModifier::triangulateEV() error\n";
      return fail("a cut face cannot be triangulated");
    }
  }
  return true;
}

bool splitter::initOutTriangulation() {
  for (unsigned int f = 0; f < faces.size(); ++f) {
    if (faceSegments.find(f) == faceSegments.end()) {
      outFaces.push_back(faces[f]);
    } else if (!cutFace(f, outFaces)) {
      return false;
    }
  }
  return true;
}

// Labels the pieces on either side of the curve and doubles the curve's vertices for the
// right-hand side.
bool splitter::advanceMultiSplit() {
  sideTable around;
  for (unsigned int f = 0; f < outFaces.size(); ++f) {
    const auto& c = outFaces[f];
    for (size_t i = 0; i < c.size(); ++i) around.add(c[i], c[(i + 1) % c.size()], f);
  }
  around.finish(pos.size());
  std::vector<uint64_t> onCurve;
  for (size_t i = 0; i < loop.size(); ++i)
    onCurve.push_back(edgeKey(loop[i], loop[(i + 1) % loop.size()]));
  std::sort(onCurve.begin(), onCurve.end());

  std::vector<unsigned int> label(outFaces.size(), NONE);
  unsigned int pieces = 0;
  for (unsigned int seed = 0; seed < outFaces.size(); ++seed) {
    if (label[seed] != NONE) continue;
    std::vector<unsigned int> todo{seed};
    label[seed] = pieces;
    while (!todo.empty()) {
      const unsigned int f = todo.back();
      todo.pop_back();
      const auto& c = outFaces[f];
      for (size_t i = 0; i < c.size(); ++i) {
        const unsigned int p = c[i], q = c[(i + 1) % c.size()];
        if (std::binary_search(onCurve.begin(), onCurve.end(), edgeKey(p, q))) continue;
        around.forFaces(p, q, [&](unsigned int g) {
          if (label[g] == NONE) label[g] = pieces, todo.push_back(g);
        });
      }
    }
    ++pieces;
  }
  unsigned int left = NONE;
  for (size_t i = 0; i < loop.size(); ++i) {
    const unsigned int p = loop[i], q = loop[(i + 1) % loop.size()];
    // The face running p to q lies on the curve's left, the one running q to p on its right.
    unsigned int l = NONE, r = NONE;
    around.forFaces(p, q, [&](unsigned int g) {
      if (runs(outFaces[g], p, q)) l = g;
      if (runs(outFaces[g], q, p)) r = g;
    });
    if (l == NONE || r == NONE) return fail("the mesh is not consistently wound");
    if (left == NONE) left = label[l];
    if (label[l] != left || label[r] == left) return fail("the curve does not separate the mesh");
  }
  outSelected.assign(outFaces.size(), 0);
  std::unordered_map<unsigned int, unsigned int> twin;
  for (unsigned int v : loop) {
    twin[v] = addVertex(pos[v]);
    leftLoop.push_back(v);
    rightLoop.push_back(twin[v]);
  }
  for (unsigned int f = 0; f < outFaces.size(); ++f) {
    if (label[f] == left) {
      outSelected[f] = 1;
      continue;
    }
    for (unsigned int& v : outFaces[f]) {
      const auto t = twin.find(v);
      if (t != twin.end()) v = t->second;
    }
  }
  return true;
}

void splitter::writeTo(editMesh& m) const {
  m.clear(false);
  for (size_t v = 0; v < pos.size(); ++v) {
    if (v < records.size()) {
      m.addVertex(records[v]);
    } else {
      m.addVertex(toFloat(pos[v]));
    }
  }
  for (size_t f = 0; f < outFaces.size(); ++f) {
    const unsigned int id = m.addFace(outFaces[f].data(), unsigned(outFaces[f].size()));
    if (f < outSelected.size() && outSelected[f]) m.selectFace(id);
  }
  m.computeEVEF();
  m.computeVE();
  m.computeNormalizedNormals();
  m.updateBBox();
}

}  // namespace

bool splitMeshModifier::exec(editMesh& mesh, const std::vector<MATH::point3<float>>& polyline,
                             SYSTEM::callBack* cb) {
  const auto started = std::chrono::steady_clock::now();
  error.clear();
  leftLoop.clear();
  rightLoop.clear();
  if (cb) cb->setValue(1.0f);
  auto mark = [&](const char* text) {
    if (verbose) std::cout << text << "\n";
  };
  splitter work(error);
  bool ok = work.initData(mesh, polyline, maxDistance);
  mark("splitMeshModifier::exec(), after init data");
  if (ok) ok = work.initSplitTable();
  if (ok && verbose) std::cout << "numExpectedSplit " << work.crossings() << "\n";
  mark("splitMeshModifier::exec(), after initSplitTable");
  if (ok) ok = work.initOutTriangulation();
  mark("splitMeshModifier::exec(), after initOutTriangulation");
  if (ok && !debugPath.empty()) {
    work.writeDebug(debugPath + "/splitMeshfinalBeforeAdvanceMultiSplit.obj");
    editMesh before;
    work.writeTo(before);
    before.saveMeshToPly(debugPath + "/splitMeshfinalBeforeAdvanceMultiSplit.ply");
  }
  if (ok) ok = work.advanceMultiSplit();
  if (ok) {
    work.writeTo(mesh);
    leftLoop = work.leftLoop;
    rightLoop = work.rightLoop;
    if (!debugPath.empty()) work.writeDebug(debugPath + "/splitMeshfinalResult.obj");
  }
  if (verbose) {
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
                        std::chrono::steady_clock::now() - started)
                        .count();
    std::cout << "splitMeshModifier::exec(), done in " << ms << " msecs\n";
  }
  if (cb) cb->setValue(100.0f);
  return ok;
}

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
