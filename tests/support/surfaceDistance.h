#pragma once

// Distances between two triangle surfaces, sampled: every vertex, every triangle's
// centroid and the midpoints of its edges on one side, against the closest point of
// the other side through a triangleTree.

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "jev3d/math/triangleTree.h"

namespace surfaceDistance {

using p3 = JEV::MATH::point3<float>;

struct stats {
  double maximum = 0.0;
  double mean = 0.0;
};

// From the samples of surface a to surface b.
inline stats oneSided(const std::vector<p3>& pa, const std::vector<unsigned>& ta,
                      const std::vector<p3>& pb, const std::vector<unsigned>& tb) {
  JEV::MATH::triangleTree tree;
  tree.build(pb.data(), pb.size(), tb.data(), tb.size() / 3);
  stats s;
  size_t n = 0;
  auto sample = [&](const p3& p) {
    JEV::MATH::closestPointHit hit;
    if (!tree.closestPoint(p, std::numeric_limits<float>::max(), hit)) return;
    const double d = std::sqrt(double(hit.squaredDistance));
    s.maximum = std::max(s.maximum, d);
    s.mean += d;
    ++n;
  };
  std::vector<bool> used(pa.size(), false);
  for (size_t k = 0; k + 2 < ta.size(); k += 3) {
    const p3 &a = pa[ta[k]], &b = pa[ta[k + 1]], &c = pa[ta[k + 2]];
    sample((a + b + c) * (1.f / 3.f));
    sample((a + b) * 0.5f), sample((b + c) * 0.5f), sample((c + a) * 0.5f);
    used[ta[k]] = used[ta[k + 1]] = used[ta[k + 2]] = true;
  }
  for (size_t v = 0; v < pa.size(); ++v)
    if (used[v]) sample(pa[v]);
  if (n) s.mean /= double(n);
  return s;
}

// Both ways: the larger maximum and the mean of the two means.
inline stats symmetric(const std::vector<p3>& pa, const std::vector<unsigned>& ta,
                       const std::vector<p3>& pb, const std::vector<unsigned>& tb) {
  const stats ab = oneSided(pa, ta, pb, tb), ba = oneSided(pb, tb, pa, ta);
  return {std::max(ab.maximum, ba.maximum), 0.5 * (ab.mean + ba.mean)};
}

}  // namespace surfaceDistance
