// triMesh filters, smoothing and decimation. Every filter marks faces and hands the marks
// to removeFace, the one-pass compaction.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "jev3d/algo/internal/triangleAdjacency.h"
#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/math/mathBase.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace POSTPROCESSING {

using MATH::point3;

namespace {

void report(SYSTEM::callBack* cb, float percent) {
  if (cb) cb->setValue(percent);
}

bool faceInRange(const triMesh& m, unsigned int f) {
  const unsigned int nv = m.vn();
  return m.fV0(f) < nv && m.fV1(f) < nv && m.fV2(f) < nv;
}

point3<float> crossOf(const triMesh& m, unsigned int f) {
  const point3<float>&a = m.vPos(m.fV0(f)), &b = m.vPos(m.fV1(f)), &c = m.vPos(m.fV2(f));
  return point3<float>::cross(b - a, c - a);
}

// Mixes the 12 bytes of a position into a hash; equal bytes give equal hashes.
inline uint64_t hashPosition(const point3<float>& p) {
  uint32_t w[3];
  std::memcpy(w, &p, 12);
  uint64_t h = (uint64_t(w[0]) * 0x9E3779B97F4A7C15ull) ^ (uint64_t(w[1]) * 0xC2B2AE3D27D4EB4Full) ^
               (uint64_t(w[2]) * 0x165667B19E3779F9ull);
  return h ^ (h >> 29);
}

// Labels id on every face reached from seed across the FF links that crosses(face,
// edge) allows, skipping labelled faces; returns how many it labelled.
template <class Crosses>
unsigned int flood(const std::vector<unsigned int>& ff, unsigned int seed, unsigned int id,
                   std::vector<unsigned int>& label, std::vector<unsigned int>& stack,
                   Crosses crosses) {
  unsigned int count = 0;
  label[seed] = id;
  stack.assign(1, seed);
  while (!stack.empty()) {
    const unsigned int g = stack.back();
    stack.pop_back();
    ++count;
    for (unsigned int i = 0; i < 3; ++i) {
      const unsigned int w = ff[3 * size_t(g) + i];
      if (w == triMesh::NONE || label[w / 3] != triMesh::NONE || !crosses(g, i)) continue;
      label[w / 3] = id;
      stack.push_back(w / 3);
    }
  }
  return count;
}

}  // namespace

unsigned int triMesh::removeFace(const std::vector<unsigned char>& marks) {
  std::vector<unsigned int> remap;
  return removeFace(marks, remap);
}

unsigned int triMesh::removeFace(const std::vector<unsigned char>& marks,
                                 std::vector<unsigned int>& remap) {
  const unsigned int n = fn();
  remap.assign(n, NONE);
  unsigned int kept = 0;
  for (unsigned int f = 0; f < n; ++f)
    if (!(f < marks.size() && marks[f])) remap[f] = kept++;
  // Face-face links survive through the table: a link to a removed face passes on along
  // its edge's ring to the next kept face, or becomes a border when none is left.
  const bool carryLinks = hasFF();
  if (carryLinks) {
    std::vector<unsigned int> links(3 * size_t(kept));
    for (unsigned int f = 0; f < n; ++f) {
      if (remap[f] == NONE) continue;
      for (unsigned int i = 0; i < 3; ++i) {
        const unsigned int self = 3 * f + i;
        unsigned int w = ff[self];
        for (unsigned int steps = 0; w != NONE && w != self && remap[w / 3] == NONE && steps < n;
             ++steps)
          w = ff[w];
        links[3 * size_t(remap[f]) + i] =
            w == NONE || w == self || remap[w / 3] == NONE ? NONE : 3 * remap[w / 3] + w % 3;
      }
    }
    ff.swap(links);
  }
  const bool carryNormals = hasFN(), carryFlags = hasFaceFlags();
  for (unsigned int f = 0; f < n; ++f) {
    const unsigned int to = remap[f];
    if (to == NONE || to == f) continue;
    std::memcpy(&faces[3 * size_t(to)], &faces[3 * size_t(f)], 3 * sizeof(unsigned int));
    if (carryNormals) faceNormals[to] = faceNormals[f];
    if (carryFlags) faceFlags[to] = faceFlags[f];
  }
  faces.resize(3 * size_t(kept));
  if (carryNormals) faceNormals.resize(kept);
  if (carryFlags) faceFlags.resize(kept);
  std::vector<unsigned int> links;
  if (carryLinks) links.swap(ff);
  facesChanged();
  if (carryLinks) ff.swap(links);
  return n - kept;
}

unsigned int triMesh::keepVertices(const std::vector<unsigned char>& keep) {
  std::vector<unsigned int> map(vn(), NONE);
  unsigned int out = 0;
  const bool n = hasVN(), c = hasVC();
  for (unsigned int v = 0; v < vn(); ++v) {
    if (!keep[v]) continue;
    map[v] = out;
    vertices[out] = vertices[v];
    if (n) normals[out] = normals[v];
    if (c) colors[out] = colors[v];
    ++out;
  }
  const unsigned int dropped = vn() - out;
  vertices.resize(out);
  if (n) normals.resize(out);
  if (c) colors.resize(out);
  for (unsigned int& i : faces) i = i < map.size() ? map[i] : NONE;
  positionsChanged();
  return dropped;
}

unsigned int triMesh::removeUnReferenceVertex() {
  std::vector<unsigned char> used(vn(), 0);
  for (unsigned int f = 0; f < fn(); ++f)
    if (faceInRange(*this, f)) used[fV0(f)] = used[fV1(f)] = used[fV2(f)] = 1;
  return keepVertices(used);
}

unsigned int triMesh::removeDuplicateVertices(SYSTEM::callBack* cb) {
  report(cb, 1.f);
  const unsigned int nv = vn();
  // Open addressing over a power of two at least twice the vertex count; each slot holds
  // the first vertex seen with its position.
  size_t size = 16;
  while (size < 2 * size_t(nv)) size <<= 1;
  std::vector<unsigned int> slots(size, NONE);
  std::vector<unsigned int> map(nv);
  std::vector<unsigned char> keep(nv, 0);
  const size_t mask = size - 1;
  for (unsigned int v = 0; v < nv; ++v) {
    size_t s = size_t(hashPosition(vertices[v])) & mask;
    while (slots[s] != NONE && std::memcmp(&vertices[slots[s]], &vertices[v], 12) != 0)
      s = (s + 1) & mask;
    if (slots[s] == NONE) {
      slots[s] = v;
      keep[v] = 1;
      map[v] = v;
    } else {
      map[v] = slots[s];
    }
  }
  report(cb, 50.f);
  for (unsigned int& i : faces)
    if (i < nv) i = map[i];
  ff.clear();  // welding joins faces that did not meet
  const unsigned int removed = keepVertices(keep);
  report(cb, 100.f);
  return removed;
}

unsigned int triMesh::removeDuplicateFaces() {
  // Sort the faces by their sorted corners; the first of each run stays.
  std::vector<std::pair<std::array<unsigned int, 3>, unsigned int>> keyed(fn());
  for (unsigned int f = 0; f < fn(); ++f) {
    std::array<unsigned int, 3> k = {fV0(f), fV1(f), fV2(f)};
    std::sort(k.begin(), k.end());
    keyed[f] = {k, f};
  }
  std::sort(keyed.begin(), keyed.end());
  std::vector<unsigned char> marks(fn(), 0);
  for (size_t i = 1; i < keyed.size(); ++i)
    if (keyed[i].first == keyed[i - 1].first) marks[keyed[i].second] = 1;
  return removeFace(marks);
}

unsigned int triMesh::removeDegenerateFace() {
  std::vector<unsigned char> marks(fn(), 0);
  for (unsigned int f = 0; f < fn(); ++f)
    marks[f] = !faceInRange(*this, f) || fV0(f) == fV1(f) || fV1(f) == fV2(f) || fV0(f) == fV2(f);
  return removeFace(marks);
}

unsigned int triMesh::removeZeroAreaFace() {
  std::vector<unsigned char> marks(fn(), 0);
  for (unsigned int f = 0; f < fn(); ++f)
    marks[f] = !faceInRange(*this, f) || crossOf(*this, f).squaredNorm() == 0.f;
  return removeFace(marks);
}

unsigned int triMesh::removeFacesByConfidence(const point3<float>& direction, float maxAngleDeg) {
  computeVertexFaceNormalizedNormals(true);
  const point3<float> d = direction.getNormalized();
  std::vector<unsigned char> marks(fn(), 0);
  for (unsigned int f = 0; f < fn(); ++f) {
    const float angle = MATH::mathBase<float>::aCos(faceNormals[f] * d) * 57.295779513082323f;
    marks[f] = angle > maxAngleDeg;
  }
  return removeFace(marks);
}

unsigned int triMesh::removeFacesOutsideRotaryTable(const point3<float>& centre,
                                                    const point3<float>& axis, float radius,
                                                    const MATH::matrix4<float>& tableMatrix) {
  const point3<float> u = axis.getNormalized();
  std::vector<unsigned char> marks(fn(), 0);
  for (unsigned int f = 0; f < fn(); ++f) {
    if (!faceInRange(*this, f)) continue;
    const point3<float> c =
        ((vPos(f, 0) + vPos(f, 1) + vPos(f, 2)) * (1.f / 3.f)) * tableMatrix - centre;
    const float along = c * u;
    marks[f] = along < 0.f || (c - u * along).squaredNorm() > radius * radius;
  }
  return removeFace(marks);
}

unsigned int triMesh::removeFaceOutOfRangeArea(float minArea, float maxArea) {
  std::vector<unsigned char> marks(fn(), 0);
  for (unsigned int f = 0; f < fn(); ++f) {
    if (!faceInRange(*this, f)) continue;
    const float area = 0.5f * crossOf(*this, f).norm();
    marks[f] = area < minArea || area > maxArea;
  }
  return removeFace(marks);
}

unsigned int triMesh::removeNotManifoldFlagFaces() {
  ensureFaceFace();
  std::vector<unsigned char> marks(fn(), 0);
  std::vector<unsigned int> ring;
  for (unsigned int f = 0; f < fn(); ++f)
    for (unsigned int i = 0; i < 3; ++i) {
      const unsigned int start = 3 * f + i;
      if (ff[start] == NONE || ff[ff[start]] == start) continue;  // border or two faces
      ring.clear();
      unsigned int w = start;
      do {
        ring.push_back(w / 3);
        w = ff[w];
      } while (w != start && w != NONE && ring.size() <= fn());
      // The ring is in face order from its smallest face: handle it there only.
      if (*std::min_element(ring.begin(), ring.end()) != f) continue;
      std::sort(ring.begin(), ring.end());
      for (size_t k = 2; k < ring.size(); ++k) marks[ring[k]] = 1;
    }
  return removeFace(marks);
}

unsigned int triMesh::removeNotManifoldVertices() {
  ensureFaceFace();
  std::vector<unsigned int> start, wedges;
  ALGO::INTERNAL::buildVertexFace(faces.data(), fn(), vn(), nullptr, start, wedges);
  std::vector<unsigned char> marks(fn(), 0);
  std::vector<unsigned int> fan(fn(), NONE), stack, sizes;
  for (unsigned int v = 0; v < vn(); ++v) {
    // Fans at v: faces joined through the edges at v, walked over FF rings.
    sizes.clear();
    for (unsigned int k = start[v]; k < start[v + 1]; ++k) {
      const unsigned int f0 = wedges[k] / 3;
      if (fan[f0] != NONE) continue;
      sizes.push_back(
          flood(ff, f0, unsigned(sizes.size()), fan, stack, [&](unsigned int g, unsigned int i) {
            return fV(g, i) == v || fV(g, (i + 1) % 3) == v;  // only edges at v
          }));
    }
    if (sizes.size() > 1) {
      const unsigned int largest =
          unsigned(std::max_element(sizes.begin(), sizes.end()) - sizes.begin());
      for (unsigned int k = start[v]; k < start[v + 1]; ++k)
        if (fan[wedges[k] / 3] != largest) marks[wedges[k] / 3] = 1;
    }
    for (unsigned int k = start[v]; k < start[v + 1]; ++k) fan[wedges[k] / 3] = NONE;
  }
  return removeFace(marks);
}

unsigned int triMesh::getIsolatePieces(std::vector<unsigned int>& piece,
                                       std::vector<unsigned int>& sizes) {
  ensureFaceFace();
  piece.assign(fn(), NONE);
  sizes.clear();
  std::vector<unsigned int> stack;
  for (unsigned int f = 0; f < fn(); ++f) {
    if (piece[f] != NONE) continue;
    sizes.push_back(flood(ff, f, unsigned(sizes.size()), piece, stack,
                          [](unsigned int, unsigned int) { return true; }));
  }
  return unsigned(sizes.size());
}

unsigned int triMesh::removeIsolatePieces(unsigned int minFaces, SYSTEM::callBack* cb) {
  report(cb, 1.f);
  std::vector<unsigned int> piece, sizes;
  getIsolatePieces(piece, sizes);
  report(cb, 50.f);
  std::vector<unsigned char> marks(fn(), 0);
  for (unsigned int f = 0; f < fn(); ++f) marks[f] = sizes[piece[f]] < minFaces;
  const unsigned int removed = removeFace(marks);
  report(cb, 100.f);
  return removed;
}

unsigned int triMesh::removeMinorIsolatePieces() {
  std::vector<unsigned int> piece, sizes;
  if (getIsolatePieces(piece, sizes) < 2) return 0;
  const unsigned int largest =
      unsigned(std::max_element(sizes.begin(), sizes.end()) - sizes.begin());
  std::vector<unsigned char> marks(fn(), 0);
  for (unsigned int f = 0; f < fn(); ++f) marks[f] = piece[f] != largest;
  return removeFace(marks);
}

bool triMesh::filterRangeMap(unsigned int& removed, unsigned int& filled, unsigned int& total,
                             unsigned int width, unsigned int height, float threshold) {
  if (size_t(width) * height != vn() || vn() == 0) return false;
  const float limit = threshold * threshold;
  total = fn();
  std::vector<float> value(vn(), 0.f);
  std::vector<unsigned char> marks(fn(), 0);
  for (unsigned int f = 0; f < fn(); ++f) {
    if (!faceInRange(*this, f)) {
      marks[f] = 1;
      continue;
    }
    for (unsigned int i = 0; i < 3; ++i) {
      const unsigned int a = fV(f, i), b = fV(f, (i + 1) % 3);
      const float d = (vertices[a] - vertices[b]).squaredNorm();
      value[a] = std::max(value[a], d), value[b] = std::max(value[b], d);
      if (d > limit) marks[f] = 1;
    }
  }
  const float minimum = *std::min_element(value.begin(), value.end());
  colors.resize(vn());
  for (unsigned int v = 0; v < vn(); ++v) {
    // A zero threshold would divide by zero: everything above the minimum is then 255.
    const float g =
        limit > 0.f ? (value[v] - minimum) / limit * 255.f : (value[v] > minimum ? 255.f : 0.f);
    const auto level = uint8_t(std::min(255.f, std::max(0.f, g)));
    colors[v] = CORE::color(level, level, level, 255);
  }
  removed = removeFace(marks);
  filled = fn();
  return true;
}

unsigned int triMesh::crop(unsigned int axis, float value) {
  if (axis > 2) return 0;
  std::vector<unsigned char> marks(fn(), 0);
  for (unsigned int f = 0; f < fn(); ++f)
    if (faceInRange(*this, f))
      marks[f] =
          (vPos(f, 0)[int(axis)] + vPos(f, 1)[int(axis)] + vPos(f, 2)[int(axis)]) / 3.f > value;
  return removeFace(marks);
}

unsigned int triMesh::decimate(unsigned int target, SYSTEM::callBack* cb) {
  report(cb, 1.f);
  const unsigned int before = fn();
  if (before <= target) {
    report(cb, 100.f);
    return 0;
  }
  editMesh work;
  editMeshInterface view(work);
  copyTo(view);
  work.checkMeshState();
  unsigned int live = work.fn();
  // Passes of collapses on edges whose neighbourhoods do not meet, shortest first; the
  // adjacency is rebuilt between passes.
  for (unsigned int pass = 0; live > target && pass < 64; ++pass) {
    work.computeEVEF();
    work.computeVE();
    std::vector<std::pair<float, unsigned int>> edges;
    for (unsigned int e = 0; e < work.en(); ++e)
      if (!work.edgeIsDeleted(e))
        edges.push_back({(work.vPos(work.eV(e, 0)) - work.vPos(work.eV(e, 1))).squaredNorm(), e});
    std::sort(edges.begin(), edges.end());
    std::vector<unsigned char> touched(work.vn(), 0);
    unsigned int collapsed = 0;
    for (const auto& item : edges) {
      if (live <= target) break;
      const unsigned int e = item.second, a = work.eV(e, 0), b = work.eV(e, 1);
      if (touched[a] || touched[b] || !work.canCollapseEdge(e)) continue;
      // Lock the vertices of every face around both ends.
      for (unsigned int end : {a, b})
        for (unsigned int f : work.getAdiacentFaces(end))
          for (unsigned int i = 0; i < work.fVNum(f); ++i) touched[work.fV(f, i)] = 1;
      unsigned int onEdge = 0;
      for (unsigned int k = 0; k < work.eFNum(e); ++k) onEdge += !work.isFaceDeleted(work.eF(e, k));
      if (work.collapseEdge(e, (work.vPos(a) + work.vPos(b)) * 0.5f)) {
        live -= onEdge;
        ++collapsed;
      }
    }
    report(cb, 1.f + 98.f * float(before - std::min(before, live)) / float(before - target));
    if (collapsed == 0) break;
  }
  importFrom(view);
  report(cb, 100.f);
  return before - fn();
}

// Smoothing

namespace {

// Sum of neighbour positions and counts over the face sides; an interior edge is seen
// from both of its faces, so every neighbour weighs alike inside.
void umbrella(const triMesh& m, const std::vector<point3<float>>& p,
              std::vector<point3<float>>& sum, std::vector<unsigned int>& count) {
  sum.assign(m.vn(), point3<float>());
  count.assign(m.vn(), 0);
  for (unsigned int f = 0; f < m.fn(); ++f) {
    if (!faceInRange(m, f)) continue;
    for (unsigned int i = 0; i < 3; ++i) {
      const unsigned int a = m.fV(f, i), b = m.fV(f, (i + 1) % 3);
      sum[a] += p[b], sum[b] += p[a];
      ++count[a], ++count[b];
    }
  }
}

}  // namespace

void triMesh::laplacianSmoothing(unsigned int iterations, bool smoothBorder) {
  std::vector<unsigned char> pinned;
  if (smoothBorder)
    pinned.assign(vn(), 0);
  else
    markBorderVertex(pinned);
  std::vector<point3<float>> sum;
  std::vector<unsigned int> count;
  for (unsigned int it = 0; it < iterations; ++it) {
    umbrella(*this, vertices, sum, count);
    for (unsigned int v = 0; v < vn(); ++v)
      if (count[v] && !pinned[v]) vertices[v] = sum[v] / float(count[v]);
  }
  positionsChanged();
  normals.clear(), faceNormals.clear();
}

void triMesh::hCLaplacianSmoothing(unsigned int iterations) {
  const float alpha = 0.f, beta = 0.5f;
  const std::vector<point3<float>> original = vertices;
  std::vector<point3<float>> previous, b(vn()), sum, bSum;
  std::vector<unsigned int> count, bCount;
  for (unsigned int it = 0; it < iterations; ++it) {
    previous = vertices;
    umbrella(*this, previous, sum, count);
    for (unsigned int v = 0; v < vn(); ++v) {
      if (count[v]) vertices[v] = sum[v] / float(count[v]);
      b[v] = vertices[v] - (original[v] * alpha + previous[v] * (1.f - alpha));
    }
    umbrella(*this, b, bSum, bCount);
    for (unsigned int v = 0; v < vn(); ++v)
      if (count[v]) vertices[v] -= b[v] * beta + bSum[v] * ((1.f - beta) / float(bCount[v]));
  }
  positionsChanged();
  normals.clear(), faceNormals.clear();
}

}  // namespace POSTPROCESSING
}  // namespace MESH
}  // namespace JEV
