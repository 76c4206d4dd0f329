#pragma once

// The inputs every remeshing case shares, and how a case reports its result: the time
// is the benchmark's, the distance to the input (sampled both ways, in units of the
// input's box diagonal) goes into counters, measured once per case outside the timing.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <unordered_map>
#include <vector>

#include "jev3d/math/point3.h"
#include "support/surfaceDistance.h"

namespace remeshingBench {

using p3 = JEV::MATH::point3<float>;

struct soup {
  std::vector<p3> positions;
  std::vector<unsigned> triangles;
  size_t count() const { return triangles.size() / 3; }
};

// A scan-like closed blob with three holes: a cube of n x n cells a side, two
// triangles a cell, pushed onto a bumpy sphere of radius about 1, with noise of 0.05%
// along the radius; the cells whose centre falls in one of three small caps are left
// out, as a scanner leaves holes. About 12·n² triangles.
inline soup scanLikeBlob(unsigned n) {
  soup s;
  std::unordered_map<uint64_t, unsigned> ids;
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> noise(-5e-4, 5e-4);
  auto vertex = [&](int x, int y, int z) {
    const uint64_t key = (uint64_t(x) << 42) | (uint64_t(y) << 21) | uint64_t(z);
    auto it = ids.find(key);
    if (it != ids.end()) return it->second;
    const double h = n / 2.0;
    double px = x - h, py = y - h, pz = z - h;
    const double len = std::sqrt(px * px + py * py + pz * pz);
    px /= len, py /= len, pz /= len;
    const double r =
        1.0 + 0.08 * std::sin(5 * px) * std::cos(4 * py) + 0.03 * std::sin(9 * pz) + noise(rng);
    const unsigned id = unsigned(s.positions.size());
    s.positions.emplace_back(float(px * r), float(py * r), float(pz * r));
    ids.emplace(key, id);
    return id;
  };
  const p3 holes[3] = {p3(0.f, 0.f, 1.f), p3(0.7f, 0.7f, 0.f), p3(-0.6f, 0.f, -0.8f)};
  auto inHole = [&](unsigned a, unsigned b, unsigned c) {
    const p3 centre = (s.positions[a] + s.positions[b] + s.positions[c]) * (1.f / 3.f);
    for (const p3& h : holes)
      if ((centre.getNormalized() - h).norm() < 0.08f) return true;
    return false;
  };
  auto quad = [&](unsigned a, unsigned b, unsigned c, unsigned d) {
    if (!inHole(a, b, c)) s.triangles.insert(s.triangles.end(), {a, b, c});
    if (!inHole(a, c, d)) s.triangles.insert(s.triangles.end(), {a, c, d});
  };
  const int m = int(n);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < m; ++j) {
      // Six faces, each wound outward.
      quad(vertex(i, j, 0), vertex(i, j + 1, 0), vertex(i + 1, j + 1, 0), vertex(i + 1, j, 0));
      quad(vertex(i, j, m), vertex(i + 1, j, m), vertex(i + 1, j + 1, m), vertex(i, j + 1, m));
      quad(vertex(i, 0, j), vertex(i + 1, 0, j), vertex(i + 1, 0, j + 1), vertex(i, 0, j + 1));
      quad(vertex(i, m, j), vertex(i, m, j + 1), vertex(i + 1, m, j + 1), vertex(i + 1, m, j));
      quad(vertex(0, i, j), vertex(0, i, j + 1), vertex(0, i + 1, j + 1), vertex(0, i + 1, j));
      quad(vertex(m, i, j), vertex(m, i + 1, j), vertex(m, i + 1, j + 1), vertex(m, i, j + 1));
    }
  return s;
}

// About a million triangles.
inline const soup& millionTriangles() {
  static const soup s = scanLikeBlob(289);
  return s;
}

// About a hundred thousand triangles.
inline const soup& hundredThousandTriangles() {
  static const soup s = scanLikeBlob(91);
  return s;
}

// Adds the result's triangle count and its distance to the input to the counters.
inline void reportDistance(benchmark::State& state, const soup& input, const soup& result) {
  const surfaceDistance::stats d = surfaceDistance::symmetric(input.positions, input.triangles,
                                                              result.positions, result.triangles);
  p3 lo = input.positions[0], hi = lo;
  for (const p3& p : input.positions)
    for (int c = 0; c < 3; ++c) lo[c] = std::min(lo[c], p[c]), hi[c] = std::max(hi[c], p[c]);
  const double diagonal = double((hi - lo).norm());
  state.counters["triangles"] = double(result.count());
  state.counters["dist_max"] = d.maximum / diagonal;
  state.counters["dist_mean"] = d.mean / diagonal;
}

// Mean edge length of a triangle list (edges inside counted twice, which does not move
// the mean much).
inline double meanEdgeLength(const soup& s) {
  double sum = 0.0;
  for (size_t k = 0; k < s.triangles.size(); ++k)
    sum +=
        double((s.positions[s.triangles[k]] - s.positions[s.triangles[k % 3 == 2 ? k - 2 : k + 1]])
                   .norm());
  return s.triangles.empty() ? 0.0 : sum / double(s.triangles.size());
}

// Adds the mean edge length over the target and the spread (standard deviation over
// mean) of the result's edges to the counters.
inline void reportEdgeLengths(benchmark::State& state, const soup& result, double target) {
  const double mean = meanEdgeLength(result);
  double sum = 0.0;
  for (size_t k = 0; k < result.triangles.size(); ++k) {
    const double d = double((result.positions[result.triangles[k]] -
                             result.positions[result.triangles[k % 3 == 2 ? k - 2 : k + 1]])
                                .norm()) -
                     mean;
    sum += d * d;
  }
  state.counters["len_mean"] = mean / target;
  state.counters["len_spread"] = std::sqrt(sum / double(result.triangles.size())) / mean;
}

// Adds the share of the result's edges whose length lies in [min(0.3, 0.8·target), target],
// the bounds of isotropic remeshing to a target length.
inline void reportLengthBand(benchmark::State& state, const soup& result, double target) {
  const double lo = std::min(0.3, 0.8 * target);
  size_t within = 0;
  for (size_t k = 0; k < result.triangles.size(); ++k) {
    const double l = double((result.positions[result.triangles[k]] -
                             result.positions[result.triangles[k % 3 == 2 ? k - 2 : k + 1]])
                                .norm());
    within += l >= lo && l <= target;
  }
  state.counters["len_in_bounds"] =
      result.triangles.empty() ? 0.0 : double(within) / double(result.triangles.size());
}

}  // namespace remeshingBench
