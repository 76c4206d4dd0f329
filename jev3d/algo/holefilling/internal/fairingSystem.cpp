#include "jev3d/algo/holefilling/internal/fairingSystem.h"

#include <algorithm>
#include <utility>

#include "jev3d/algo/holefilling/internal/flatIndexMap.h"
#include "jev3d/algo/holefilling/internal/holeLoops.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace HOLEFILLING_INTERNAL {

using d3 = MATH::point3<double>;
using p3 = MATH::point3<float>;

namespace {

d3 toDouble(const p3& p) { return d3(p.x, p.y, p.z); }
d3 scaled(const d3& v, const d3& k) { return d3(v.x * k.x, v.y * k.y, v.z * k.z); }
d3 squares(const d3& v) { return d3(v.x * v.x, v.y * v.y, v.z * v.z); }
// Per coordinate a / b, 0 where b is not positive.
d3 ratio(const d3& a, const d3& b) {
  return d3(b.x > 0 ? a.x / b.x : 0, b.y > 0 ? a.y / b.y : 0, b.z > 0 ? a.z / b.z : 0);
}

}  // namespace

fairingSystem::fairingSystem(holeSurface& surface, const std::vector<patchFace>& faces,
                             float exponent, int firstNew)
    : s(surface),
      base(surface.vertexCount()),
      firstMoving(base + firstNew),
      end(base + int(surface.added.size())) {
  if (firstMoving >= end) return;
  // Local ids: moving vertices first, in id order, then the old vertices of the patch in
  // the order met. Rings hold local ids; an old vertex's ring also holds its neighbours
  // in the mesh, which get local ids of their own (with empty rings: the operator is not
  // taken there).
  moving = size_t(end - firstMoving);
  flatIndexMap oldLocal(faces.size() / 2 + 16);
  global.reserve(moving + faces.size() / 2 + 16);
  for (int v = firstMoving; v < end; ++v) global.push_back(v);
  auto localOf = [&](int v) {
    if (v >= firstMoving) return v - firstMoving;
    const int id = oldLocal.insert(uint64_t(uint32_t(v)), int(global.size()));
    if (id == int(global.size())) global.push_back(v);
    return id;
  };
  std::vector<std::pair<int, int>> links;
  links.reserve(faces.size() * 6);
  for (const patchFace& f : faces)
    for (int k = 0; k < 3; ++k) {
      const int a = localOf(f.v[k]), b = localOf(f.v[(k + 1) % 3]);
      links.emplace_back(a, b);
      links.emplace_back(b, a);
    }
  const size_t patchVertices = global.size();
  for (size_t i = moving; i < patchVertices; ++i) {
    const int v = global[i];
    for (unsigned int k = 0; k < s.edgeSet().neighbourCount(v); ++k)
      links.emplace_back(int(i), localOf(s.edgeSet().neighbours(v)[k]));
  }
  // Rings as sorted, duplicate-free rows: bucketed by their first vertex, then each
  // short row sorted on its own.
  ringStart.assign(global.size() + 1, 0);
  for (const auto& l : links) ++ringStart[size_t(l.first) + 1];
  for (size_t i = 0; i < global.size(); ++i) ringStart[i + 1] += ringStart[i];
  ring.resize(links.size());
  {
    std::vector<unsigned int> next(ringStart.begin(), ringStart.end() - 1);
    for (const auto& l : links) ring[next[size_t(l.first)]++] = l.second;
  }
  // Repeats (each inner side comes from both its faces) are dropped before the sort,
  // which then has half as much to order. Rows only shrink, so they compact in place.
  std::vector<int> seenIn(global.size(), -1);
  unsigned int kept = 0;
  for (size_t r = 0; r < global.size(); ++r) {
    const unsigned int rowBegin = kept;
    for (unsigned int k = ringStart[r]; k < ringStart[r + 1]; ++k) {
      const int v = ring[k];
      if (seenIn[size_t(v)] == int(r)) continue;
      seenIn[size_t(v)] = int(r);
      ring[kept++] = v;
    }
    std::sort(ring.begin() + std::ptrdiff_t(rowBegin), ring.begin() + std::ptrdiff_t(kept));
    ringStart[r] = rowBegin;
  }
  ringStart.back() = kept;
  ring.resize(kept);
  rows = exponent > 1.5f ? patchVertices : moving;

  local.resize(global.size());
  for (size_t i = 0; i < global.size(); ++i) local[i] = s.position(global[i]);
  inverseSize.resize(rows);
  for (size_t r = 0; r < rows; ++r) inverseSize[r] = 1.0 / double(ringStart[r + 1] - ringStart[r]);

  // B keeps the moving members of each row's ring, in ring order.
  bStart.assign(rows + 1, 0);
  for (size_t r = 0; r < rows; ++r) {
    for (unsigned int k = ringStart[r]; k < ringStart[r + 1]; ++k)
      if (size_t(ring[k]) < moving) bColumn.push_back(ring[k]), bSlot.push_back(k);
    bStart[r + 1] = unsigned(bColumn.size());
  }
  // The transpose gathers, for each moving vertex, what a row by row scatter would add
  // to it, in the same order: the rows ascending, a row's own -1 after its ring.
  tStart.assign(moving + 1, 0);
  for (size_t r = 0; r < rows; ++r) {
    for (unsigned int e = bStart[r]; e < bStart[r + 1]; ++e) ++tStart[size_t(bColumn[e]) + 1];
    if (r < moving) ++tStart[r + 1];
  }
  for (size_t j = 0; j < moving; ++j) tStart[j + 1] += tStart[j];
  tRow.resize(tStart.back());
  tEntry.resize(tStart.back());
  std::vector<unsigned int> next(tStart.begin(), tStart.end() - 1);
  for (size_t r = 0; r < rows; ++r) {
    for (unsigned int e = bStart[r]; e < bStart[r + 1]; ++e) {
      const unsigned int at = next[size_t(bColumn[e])]++;
      tRow[at] = int(r), tEntry[at] = int(e);
    }
    if (r < moving) {
      const unsigned int at = next[r]++;
      tRow[at] = int(r), tEntry[at] = -1;
    }
  }
  fillTransposeCoefficients();
}

void fairingSystem::fillTransposeCoefficients() {
  tCoefficient.resize(tRow.size());
  for (size_t i = 0; i < tRow.size(); ++i)
    tCoefficient[i] = tEntry[i] < 0    ? -1.0
                      : weight.empty() ? inverseSize[size_t(tRow[i])]
                                       : bWeight[size_t(tEntry[i])];
}

d3 fairingSystem::solvedUmbrella(size_t row) const {
  if (weight.empty()) return toDouble(umbrella(row));
  d3 sum;
  for (unsigned int k = ringStart[row]; k < ringStart[row + 1]; ++k)
    sum += toDouble(local[size_t(ring[k])]) * weight[k];
  return sum - toDouble(local[row]);
}

d3 fairingSystem::applyB(const std::vector<d3>& d, std::vector<d3>& out) const {
  d3 squared;
  for (size_t r = 0; r < rows; ++r) {
    d3 sum;
    if (weight.empty()) {
      for (unsigned int e = bStart[r]; e < bStart[r + 1]; ++e) sum += d[size_t(bColumn[e])];
      sum = sum * inverseSize[r];
    } else {
      for (unsigned int e = bStart[r]; e < bStart[r + 1]; ++e)
        sum += d[size_t(bColumn[e])] * bWeight[e];
    }
    if (r < moving) sum -= d[r];
    out[r] = sum;
    squared += squares(sum);
  }
  return squared;
}

d3 fairingSystem::applyBt(const std::vector<d3>& in, std::vector<d3>& out) const {
  d3 squared;
  for (size_t j = 0; j < moving; ++j) {
    d3 sum;
    for (unsigned int e = tStart[j]; e < tStart[j + 1]; ++e)
      sum += in[size_t(tRow[e])] * tCoefficient[e];
    out[j] = sum;
    squared += squares(sum);
  }
  return squared;
}

void fairingSystem::writeBack() {
  for (size_t i = 0; i < moving; ++i) s.movablePosition(global[i]) = local[i];
}

unsigned int fairingSystem::solve(unsigned int maxSteps, double tolerance) {
  if (!moving) return 0;
  std::vector<d3> r(rows), g(moving), q(rows);
  for (size_t i = 0; i < rows; ++i) r[i] = solvedUmbrella(i) * -1.0;
  d3 gamma = applyBt(r, g);
  std::vector<d3> dir = g;
  const d3 start = gamma;
  unsigned int k = 0;
  for (; k < maxSteps; ++k) {
    if (gamma.x <= tolerance * start.x && gamma.y <= tolerance * start.y &&
        gamma.z <= tolerance * start.z)
      break;
    const d3 alpha = ratio(gamma, applyB(dir, q));
    for (size_t i = 0; i < rows; ++i) r[i] -= scaled(q[i], alpha);
    const d3 next = applyBt(r, g);
    const d3 beta = ratio(next, gamma);
    gamma = next;
    // The step along the old direction and the new direction in one sweep.
    for (size_t i = 0; i < moving; ++i) {
      const d3 move = scaled(dir[i], alpha);
      local[i] += p3(float(move.x), float(move.y), float(move.z));
      dir[i] = g[i] + scaled(dir[i], beta);
    }
  }
  writeBack();
  return k;
}

void fairingSystem::weighByInverseLength() {
  weight.assign(ring.size(), 0.0);
  for (size_t r = 0; r < rows; ++r) {
    double sum = 0;
    for (unsigned int k = ringStart[r]; k < ringStart[r + 1]; ++k) {
      const double len = double((local[size_t(ring[k])] - local[r]).norm());
      // A coincident neighbour gets a huge but finite weight.
      weight[k] = 1.0 / std::max(len, 1e-30);
      sum += weight[k];
    }
    for (unsigned int k = ringStart[r]; k < ringStart[r + 1]; ++k) weight[k] /= sum;
  }
  bWeight.resize(bSlot.size());
  for (size_t e = 0; e < bSlot.size(); ++e) bWeight[e] = weight[bSlot[e]];
  fillTransposeCoefficients();
}

void fairingSystem::slide(float step, unsigned int rounds) {
  if (!moving) return;
  for (unsigned int sweep = 0; sweep < rounds; ++sweep)
    for (size_t i = 0; i < moving; ++i) {
      const p3 u = umbrella(i);
      const p3& n = s.added[size_t(global[i] - base)].nor;
      local[i] += (u - n * (u * n)) * step;
    }
  writeBack();
}

void fairingSystem::updateNormals(const std::vector<patchFace>& faces) {
  for (int v = firstMoving; v < end; ++v) s.added[size_t(v - base)].nor = p3();
  for (const patchFace& f : faces) {
    const p3& pa = s.position(f.v[0]);
    const p3 n = p3::cross(s.position(f.v[1]) - pa, s.position(f.v[2]) - pa);
    for (int v : f.v)
      if (v >= firstMoving) s.added[size_t(v - base)].nor += n;
  }
  for (int v = firstMoving; v < end; ++v) {
    p3& n = s.added[size_t(v - base)].nor;
    const float len = n.norm();
    if (len > 0.f) n = n * (1.f / len);
  }
}

}  // namespace HOLEFILLING_INTERNAL
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
