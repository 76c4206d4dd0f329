#include "jev3d/algo/postprocessing/triSurface.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <iostream>
#include <map>

#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/mesh/meshInterface.h"

namespace JEV {
namespace MESH {
namespace POSTPROCESSING {

using MATH::point3;

namespace {

// The feature-size sampler's state. Relaxed atomics keep concurrent use free of data
// races; two threads still draw different samples, which is all the estimate allows.
std::atomic<unsigned int> randomState{0};

bool validFace(const triSurface::face& f, size_t nv) {
  for (int i = 0; i < 3; ++i)
    if (f[i] < 0 || size_t(f[i]) >= nv) return false;
  return true;
}

// Calls side(a, b) for the three sides of every face whose corners are in range.
template <class Side>
void forEachSide(const std::vector<triSurface::face>& faces, size_t nv, Side side) {
  for (const triSurface::face& f : faces) {
    if (!validFace(f, nv)) continue;
    for (size_t i = 0; i < 3; ++i) side(size_t(f[i]), size_t(f[(i + 1) % 3]));
  }
}

// Adds each face's normal, (b - a) x (c - a), to its corners that take(v) accepts, face
// by face: the sums, and so the unit normals, are the same whichever corners are taken.
// facesMet, when given, receives the faces with a corner taken, in order.
template <class Take>
void addFaceNormals(const std::vector<point3<float>>& vertices,
                    const std::vector<triSurface::face>& faces, std::vector<point3<float>>& sums,
                    Take take, std::vector<triSurface::face>* facesMet) {
  const size_t nv = vertices.size();
  for (const triSurface::face& f : faces) {
    if (!validFace(f, nv)) continue;
    const size_t i0 = size_t(f[0]), i1 = size_t(f[1]), i2 = size_t(f[2]);
    const bool t0 = take(i0), t1 = take(i1), t2 = take(i2);
    if (!(t0 || t1 || t2)) continue;
    if (facesMet) facesMet->push_back(f);
    const point3<float>&a = vertices[i0], &b = vertices[i1], &c = vertices[i2];
    const point3<float> n = point3<float>::cross(b - a, c - a);
    if (t0) sums[i0] += n;
    if (t1) sums[i1] += n;
    if (t2) sums[i2] += n;
  }
}

}  // namespace

triSurface::triSurface() : diagnostics(&std::cout) {}

void triSurface::setRandomState(unsigned int state) { randomState.store(state); }
unsigned int triSurface::getRandomState() { return randomState.load(); }

void triSurface::diag(const char* format, ...) const {
  if (!diagnostics) return;
  char text[256];
  va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  *diagnostics << text << std::flush;
}

void triSurface::dropFaceData() {
  adjacentFaces.clear();
  acrossEdge.clear();
  curvature.clear();
  dcurv.clear();
  pointAreas.clear();
}

void triSurface::fromMesh(const meshInterface& source) {
  *this = triSurface();
  // A scan mesh deletes nothing and holds triangles: its arrays come over in bulk.
  if (const triMesh* scan = dynamic_cast<const triMesh*>(&source)) {
    vertices = scan->getVertices();
    if (scan->hasVN()) normals = scan->getNormals();
    const std::vector<unsigned int>& corners = scan->getFaces();
    const size_t nv = vertices.size();
    faces.reserve(corners.size() / 3);
    for (size_t c = 0; c + 2 < corners.size(); c += 3) {
      const unsigned int a = corners[c], b = corners[c + 1], d = corners[c + 2];
      if (a < nv && b < nv && d < nv) faces.push_back({int(a), int(b), int(d)});
    }
    return;
  }
  std::vector<int> map(source.vn(), -1);
  vertices.reserve(source.vn());
  if (source.hasVN()) normals.reserve(source.vn());
  for (unsigned int v = 0; v < source.vn(); ++v) {
    if (source.isVertDeleted(v)) continue;
    map[v] = int(vertices.size());
    vertices.push_back(source.vPos(v));
    if (source.hasVN()) normals.push_back(source.vNor(v));
  }
  const bool flags = source.hasFaceFlags();
  faces.reserve(source.fn());
  for (unsigned int f = 0; f < source.fn(); ++f) {
    if (flags && source.isFaceDeleted(f)) continue;
    const unsigned int n = source.f2vNum(f);
    bool valid = n >= 3;
    for (unsigned int i = 0; i < n && valid; ++i)
      valid = source.fV(f, i) < source.vn() && map[source.fV(f, i)] >= 0;
    if (!valid) continue;
    for (unsigned int t = 0; t + 2 < n; ++t)
      faces.push_back({map[source.fV(f, 0)], map[source.fV(f, t + 1)], map[source.fV(f, t + 2)]});
  }
}

void triSurface::toMesh(meshInterface& target) const {
  target.clear();
  const bool withNormals = normals.size() == vertices.size() && !normals.empty();
  if (triMesh* scan = dynamic_cast<triMesh*>(&target)) {
    scan->getVertices().assign(vertices.begin(), vertices.end());
    if (withNormals) scan->getNormals().assign(normals.begin(), normals.end());
    std::vector<unsigned int>& corners = scan->getFaces();
    corners.reserve(3 * faces.size());
    for (const face& f : faces)
      if (validFace(f, vertices.size()))
        corners.insert(corners.end(), {unsigned(f[0]), unsigned(f[1]), unsigned(f[2])});
    return;
  }
  target.vertexReserve(unsigned(vertices.size()));
  for (const point3<float>& p : vertices) target.addVertex(p);
  if (withNormals) {
    target.vertexNormalResize(unsigned(vertices.size()));
    for (size_t v = 0; v < normals.size(); ++v) target.vNor(unsigned(v)) = normals[v];
  }
  target.faceReserve(unsigned(faces.size()));
  for (const face& f : faces) {
    if (!validFace(f, vertices.size())) continue;
    const unsigned int ids[3] = {unsigned(f[0]), unsigned(f[1]), unsigned(f[2])};
    target.addFace(ids, 3);
  }
}

void triSurface::needBoundingSphere() {
  if (sphereValid || vertices.empty()) return;
  diag("Computing bounding sphere... ");
  point3<float> lo = vertices[0], hi = vertices[0];
  for (const point3<float>& p : vertices)
    for (int i = 0; i < 3; ++i) lo[i] = std::min(lo[i], p[i]), hi[i] = std::max(hi[i], p[i]);
  sphereCenter = (lo + hi) * 0.5f;
  float r2 = 0.f;
  for (const point3<float>& p : vertices) r2 = std::max(r2, (p - sphereCenter).squaredNorm());
  sphereRadius = std::sqrt(r2);
  sphereValid = true;
  diag("Done.\n  center = (%g, %g, %g), radius = %g\n", double(sphereCenter.x),
       double(sphereCenter.y), double(sphereCenter.z), double(sphereRadius));
}

void triSurface::needAdjacentFaces() {
  if (!adjacentFaces.empty()) return;
  needFaces();
  diag("Finding vertex to triangle maps... ");
  adjacentFaces.assign(vertices.size(), {});
  for (size_t f = 0; f < faces.size(); ++f) {
    if (!validFace(faces[f], vertices.size())) continue;
    for (int i = 0; i < 3; ++i) adjacentFaces[size_t(faces[f][size_t(i)])].push_back(int(f));
  }
  diag("Done.\n");
}

void triSurface::needAcrossEdge() {
  if (!acrossEdge.empty()) return;
  needAdjacentFaces();
  diag("Finding across-edge maps... ");
  acrossEdge.assign(faces.size(), face{-1, -1, -1});
  for (size_t f = 0; f < faces.size(); ++f) {
    if (!validFace(faces[f], vertices.size())) continue;
    for (int i = 0; i < 3; ++i) {
      if (acrossEdge[f][size_t(i)] != -1) continue;
      // Edge opposite corner i runs from corner i + 1 to i + 2; the neighbour runs it
      // the other way.
      const int a = faces[f][size_t((i + 1) % 3)], b = faces[f][size_t((i + 2) % 3)];
      for (int g : adjacentFaces[size_t(a)]) {
        if (size_t(g) == f) continue;
        const face& o = faces[size_t(g)];
        for (int j = 0; j < 3; ++j)
          if (o[size_t((j + 1) % 3)] == b && o[size_t((j + 2) % 3)] == a) {
            acrossEdge[f][size_t(i)] = g;
            if (acrossEdge[size_t(g)][size_t(j)] == -1) acrossEdge[size_t(g)][size_t(j)] = int(f);
          }
        if (acrossEdge[f][size_t(i)] != -1) break;
      }
    }
  }
  diag("Done.\n");
}

void triSurface::needCurvatures() {
  if (!curvature.empty()) return;
  needNormals();
  needAdjacentFaces();
  diag("Computing curvatures... ");
  // Twice the umbrella's reach along the normal over the mean squared edge length: 1/r on
  // a sphere of radius r, positive where the surface curves away from its normal.
  const size_t nv = vertices.size();
  std::vector<point3<float>> sum(nv);
  std::vector<float> len2(nv, 0.f);
  std::vector<int> count(nv, 0);
  forEachSide(faces, nv, [&](size_t a, size_t b) {
    const float d = (vertices[a] - vertices[b]).squaredNorm();
    sum[a] += vertices[b], sum[b] += vertices[a];
    len2[a] += d, len2[b] += d;
    ++count[a], ++count[b];
  });
  curvature.assign(nv, 0.f);
  for (size_t v = 0; v < nv; ++v) {
    if (!count[v] || len2[v] <= 0.f) continue;
    const point3<float> reach = sum[v] / float(count[v]) - vertices[v];
    curvature[v] = -2.f * (reach * normals[v]) / (len2[v] / float(count[v]));
  }
  diag("Done.\n");
}

void triSurface::needDCurv() {
  if (!dcurv.empty()) return;
  needCurvatures();
  diag("Computing dcurv... ");
  const size_t nv = vertices.size();
  std::vector<float> sum(nv, 0.f);
  std::vector<int> count(nv, 0);
  forEachSide(faces, nv, [&](size_t a, size_t b) {
    const float len = (vertices[a] - vertices[b]).norm();
    if (len <= 0.f) return;
    const float rate = std::abs(curvature[a] - curvature[b]) / len;
    sum[a] += rate, sum[b] += rate;
    ++count[a], ++count[b];
  });
  dcurv.assign(nv, 0.f);
  for (size_t v = 0; v < nv; ++v)
    if (count[v]) dcurv[v] = sum[v] / float(count[v]);
  diag("Done.\n");
}

void triSurface::needFaces() {
  if (!faces.empty()) return;
  if (!tstrips.empty())
    unpackTStrips();
  else if (!grid.empty())
    triangulateGrid();
}

void triSurface::triangulateGrid() {
  // A grid whose size disagrees with its dimensions would be read past its end.
  if (gridWidth <= 0 || gridHeight <= 0 || grid.size() != size_t(gridWidth) * size_t(gridHeight))
    return;
  diag("Triangulating... ");
  auto at = [&](int i, int j) {
    const int v = grid[size_t(j) * size_t(gridWidth) + size_t(i)];
    return v >= 0 && size_t(v) < vertices.size() ? v : -1;
  };
  for (int j = 0; j + 1 < gridHeight; ++j)
    for (int i = 0; i + 1 < gridWidth; ++i) {
      const int a = at(i, j), b = at(i + 1, j), c = at(i + 1, j + 1), d = at(i, j + 1);
      const int n = (a >= 0) + (b >= 0) + (c >= 0) + (d >= 0);
      if (n == 4) {
        faces.push_back({a, b, c});
        faces.push_back({a, c, d});
      } else if (n == 3) {
        face f{};
        int k = 0;
        for (int v : {a, b, c, d})
          if (v >= 0) f[size_t(k++)] = v;
        faces.push_back(f);
      }
    }
  diag("%lu faces.\n", static_cast<unsigned long>(faces.size()));
}

void triSurface::needNormals() {
  if (!normals.empty() && normals.size() == vertices.size()) return;
  const size_t nv = vertices.size();
  if (faces.empty() && !grid.empty() && gridWidth > 0 && gridHeight > 0 &&
      grid.size() == size_t(gridWidth) * size_t(gridHeight)) {
    diag("Computing normals... ");
    normals.assign(nv, point3<float>());
    // On a range grid: the fan of the four axis neighbours that exist, in turn order.
    const int di[4] = {1, 0, -1, 0}, dj[4] = {0, 1, 0, -1};
    for (int j = 0; j < gridHeight; ++j)
      for (int i = 0; i < gridWidth; ++i) {
        const int v = grid[size_t(j) * size_t(gridWidth) + size_t(i)];
        if (v < 0 || size_t(v) >= nv) continue;
        int around[4];
        int n = 0;
        for (int k = 0; k < 4; ++k) {
          const int x = i + di[k], y = j + dj[k];
          const int w = x >= 0 && y >= 0 && x < gridWidth && y < gridHeight
                            ? grid[size_t(y) * size_t(gridWidth) + size_t(x)]
                            : -1;
          around[k] = w >= 0 && size_t(w) < nv ? w : -1;
          n += around[k] >= 0;
        }
        if (n < 3) {
          diag("Warning: not enough points for vertex %d\n", v);
          continue;
        }
        point3<float> sum;
        for (int k = 0; k < 4; ++k) {
          const int a = around[k], b = around[(k + 1) % 4];
          if (a >= 0 && b >= 0)
            sum += point3<float>::cross(vertices[size_t(a)] - vertices[size_t(v)],
                                        vertices[size_t(b)] - vertices[size_t(v)]);
        }
        normals[size_t(v)] = sum.getNormalized();
      }
    diag("Done.\n");
    return;
  }
  needFaces();
  diag("Computing normals... ");
  normals.assign(nv, point3<float>());
  addFaceNormals(
      vertices, faces, normals, [](size_t) { return true; }, nullptr);
  for (point3<float>& n : normals) n.normalize();
  diag("Done.\n");
}

void triSurface::normalsOf(const std::vector<unsigned char>& wanted,
                           std::vector<point3<float>>& out, std::vector<face>* facesMet) const {
  const size_t nv = vertices.size();
  diag("Computing normals... ");
  out.assign(nv, point3<float>());
  if (facesMet) facesMet->clear();
  const auto take = [&](size_t v) { return v < wanted.size() && wanted[v]; };
  addFaceNormals(vertices, faces, out, take, facesMet);
  for (size_t v = 0; v < nv; ++v)
    if (take(v)) out[v].normalize();
  diag("Done.\n");
}

void triSurface::needPointAreas() {
  if (!pointAreas.empty()) return;
  needFaces();
  diag("Computing point areas... ");
  pointAreas.assign(vertices.size(), 0.f);
  for (const face& f : faces) {
    if (!validFace(f, vertices.size())) continue;
    const float third = point3<float>::cross(vertices[size_t(f[1])] - vertices[size_t(f[0])],
                                             vertices[size_t(f[2])] - vertices[size_t(f[0])])
                            .norm() /
                        6.f;
    for (int i = 0; i < 3; ++i) pointAreas[size_t(f[size_t(i)])] += third;
  }
  diag("Done.\n");
}

void triSurface::needTStrips() {
  if (!tstrips.empty()) return;
  needAcrossEdge();
  diag("Building triangle strips... ");
  std::vector<char> done(faces.size(), 0);
  int strips = 0;
  size_t total = 0;
  for (size_t f0 = 0; f0 < faces.size(); ++f0) {
    if (done[f0] || !validFace(faces[f0], vertices.size())) continue;
    done[f0] = 1;
    std::vector<int> s = {faces[f0][0], faces[f0][1], faces[f0][2]};
    size_t last = f0;
    // Extend over the edge (s[n-2], s[n-1]); the next triangle turns the other way.
    for (;;) {
      const int a = s[s.size() - 2], b = s[s.size() - 1];
      const bool odd = (s.size() - 2) % 2 == 1;
      int next = -1, third = -1;
      for (int i = 0; i < 3; ++i) {
        const int g = acrossEdge[last][size_t(i)];
        if (g < 0 || done[size_t(g)]) continue;
        const face& o = faces[size_t(g)];
        for (int j = 0; j < 3; ++j) {
          // The wanted triangle is (a, b, c) at even k and (b, a, c) at odd k, in turn.
          const int p = odd ? b : a, q = odd ? a : b;
          if (o[size_t(j)] == p && o[size_t((j + 1) % 3)] == q)
            next = g, third = o[size_t((j + 2) % 3)];
        }
        if (next >= 0) break;
      }
      if (next < 0) break;
      done[size_t(next)] = 1;
      s.push_back(third);
      last = size_t(next);
    }
    tstrips.insert(tstrips.end(), s.begin(), s.end());
    tstrips.push_back(-1);
    ++strips;
    total += s.size();
  }
  diag("Done.\n  %d strips (Avg. length %.1f)\n", strips,
       strips ? double(total) / double(strips) : 0.0);
}

void triSurface::unpackTStrips() {
  if (tstrips.empty()) return;
  diag("Unpacking triangle strips... ");
  faces.clear();
  size_t begin = 0;
  for (size_t i = 0; i <= tstrips.size(); ++i) {
    if (i < tstrips.size() && tstrips[i] != -1) continue;
    for (size_t k = begin; k + 2 < i; ++k) {
      const bool odd = (k - begin) % 2 == 1;
      const face f = odd ? face{tstrips[k + 1], tstrips[k], tstrips[k + 2]}
                         : face{tstrips[k], tstrips[k + 1], tstrips[k + 2]};
      if (f[0] != f[1] && f[1] != f[2] && f[0] != f[2] && validFace(f, vertices.size()))
        faces.push_back(f);
    }
    begin = i + 1;
  }
  dropFaceData();
  diag("Done.\n  %d triangles\n", int(faces.size()));
}

void triSurface::removeFaces(const std::vector<bool>& toRemove) {
  diag("Removing faces... ");
  size_t out = 0;
  for (size_t f = 0; f < faces.size(); ++f)
    if (!(f < toRemove.size() && toRemove[f])) faces[out++] = faces[f];
  const size_t removed = faces.size() - out;
  faces.resize(out);
  if (removed == 0) {
    diag("None removed.\n");
    return;
  }
  tstrips.clear();
  dropFaceData();
  diag("%d faces removed... Done.\n", int(removed));
}

void triSurface::subdivide() {
  needFaces();
  diag("Subdividing mesh... ");
  std::map<std::pair<int, int>, int> midpoint;
  auto mid = [&](int a, int b) {
    const std::pair<int, int> key(std::min(a, b), std::max(a, b));
    const auto it = midpoint.find(key);
    if (it != midpoint.end()) return it->second;
    const int id = int(vertices.size());
    vertices.push_back((vertices[size_t(a)] + vertices[size_t(b)]) * 0.5f);
    midpoint.emplace(key, id);
    return id;
  };
  std::vector<face> out;
  out.reserve(faces.size() * 4);
  for (const face& f : faces) {
    if (!validFace(f, vertices.size())) continue;
    const int ab = mid(f[0], f[1]), bc = mid(f[1], f[2]), ca = mid(f[2], f[0]);
    out.push_back({f[0], ab, ca});
    out.push_back({ab, f[1], bc});
    out.push_back({ca, bc, f[2]});
    out.push_back({ab, bc, ca});
  }
  faces.swap(out);
  tstrips.clear();
  grid.clear();
  normals.clear();
  sphereValid = false;
  dropFaceData();
  diag("Done.\n");
}

float triSurface::featureSize() {
  needFaces();
  const size_t nf = faces.size();
  if (nf == 0) return 0.f;
  const size_t sample = std::min<size_t>(nf / 2, 333);
  std::vector<float> samples;
  samples.reserve(sample * 3);
  for (size_t k = 0; k < sample; ++k) {
    unsigned int state = randomState.load(std::memory_order_relaxed) * 1664525u + 1013904223u;
    randomState.store(state, std::memory_order_relaxed);
    const face& f = faces[state % nf];
    if (!validFace(f, vertices.size())) continue;  // a bad index would read past the vertices
    const point3<float>&a = vertices[size_t(f[0])], &b = vertices[size_t(f[1])],
          &c = vertices[size_t(f[2])];
    samples.push_back((a - b).squaredNorm());
    samples.push_back((b - c).squaredNorm());
    samples.push_back((c - a).squaredNorm());
  }
  // A single face draws no sample (F / 2 is 0): nothing to measure.
  if (samples.empty()) return 0.f;
  const auto middle = samples.begin() + std::ptrdiff_t(samples.size() / 2);
  std::nth_element(samples.begin(), middle, samples.end());
  return std::sqrt(*middle);
}

}  // namespace POSTPROCESSING
}  // namespace MESH
}  // namespace JEV
