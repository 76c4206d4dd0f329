#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace HOLEFILLING_INTERNAL {

// The rows of a sparse sum (row i adds up values at its columns, optionally each times
// a coefficient) laid out four rows side by side, so that four running sums advance in
// one loop. A row's own terms still add up one after another in their given order, so
// the sums come out bit for bit as a row-by-row loop gives them; but four independent
// chains of additions keep the processor busy where one chain waits on each addition.
// Shorter rows of a group are filled up with a padding column whose value must be +0
// (and coefficient 0): adding +0 leaves a sum that starts at +0 unchanged.
class lanedRows {
 public:
  static constexpr unsigned int LANES = 4;
  using d3 = MATH::point3<double>;

  // Rows in compressed form: row r has columns[start[r]] up to columns[start[r + 1]].
  void build(const std::vector<unsigned int>& start, const std::vector<unsigned int>& columns,
             unsigned int padColumn) {
    rowCount = start.empty() ? 0 : start.size() - 1;
    const size_t groups = (rowCount + LANES - 1) / LANES;
    groupStart.assign(groups + 1, 0);
    column.clear();
    source.clear();
    for (size_t g = 0; g < groups; ++g) {
      unsigned int longest = 0;
      for (size_t r = g * LANES; r < rowCount && r < (g + 1) * LANES; ++r)
        longest = std::max(longest, start[r + 1] - start[r]);
      for (unsigned int step = 0; step < longest; ++step)
        for (size_t lane = 0; lane < LANES; ++lane) {
          const size_t r = g * LANES + lane;
          const bool real = r < rowCount && step < start[r + 1] - start[r];
          column.push_back(real ? columns[start[r] + step] : padColumn);
          source.push_back(real ? start[r] + step : NONE);
        }
      groupStart[g + 1] = unsigned(column.size() / LANES);
    }
  }

  // Coefficients per entry of the compressed rows given to build.
  void setCoefficients(const std::vector<double>& perEntry) {
    coefficient.resize(source.size());
    for (size_t i = 0; i < source.size(); ++i)
      coefficient[i] = source[i] == NONE ? 0.0 : perEntry[source[i]];
  }

  // done(row, sum) for each row in ascending order; weighted multiplies each value by
  // its coefficient.
  template <bool weighted, class F>
  void sums(const d3* values, F&& done) const {
    for (size_t g = 0; g + 1 < groupStart.size(); ++g) {
      d3 s[LANES];
      for (unsigned int step = groupStart[g]; step < groupStart[g + 1]; ++step) {
        const unsigned int* c = column.data() + size_t(step) * LANES;
        if (weighted) {
          const double* k = coefficient.data() + size_t(step) * LANES;
          for (unsigned int lane = 0; lane < LANES; ++lane) s[lane] += values[c[lane]] * k[lane];
        } else {
          for (unsigned int lane = 0; lane < LANES; ++lane) s[lane] += values[c[lane]];
        }
      }
      for (size_t lane = 0; lane < LANES && g * LANES + lane < rowCount; ++lane)
        done(g * LANES + lane, s[lane]);
    }
  }

 private:
  static constexpr unsigned int NONE = ~0u;

  size_t rowCount = 0;
  std::vector<unsigned int> groupStart;  // per group of LANES rows, in steps
  std::vector<unsigned int> column;      // LANES per step
  std::vector<unsigned int> source;      // the entry given to build, or NONE for padding
  std::vector<double> coefficient;       // LANES per step
};

}  // namespace HOLEFILLING_INTERNAL
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
