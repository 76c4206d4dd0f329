#pragma once

#include <cstddef>
#include <vector>

#include "jev3d/algo/holefilling/internal/holePatch.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace HOLEFILLING_INTERNAL {

// The fairing problem of one patch against the umbrella operator U (mean of the ring
// minus the vertex). With the exponent 2 (the thin plate) the new positions minimise the
// sum of |U|² over every vertex of the patch, the rim included, whose rings also hold
// their neighbours in the old mesh: so the slope of the surface around the hole carries
// into the patch. With the exponent 1 (the membrane) U is driven to 0 at the new
// vertices only. Only new vertices from firstNew on move.
//
// The operator is built once into compact rows (and their transpose, for the gradient),
// and the positions the solve and the slide read are copied into one local array, so a
// solver step walks flat arrays only. Every sum runs in the order of the sorted rings,
// which keeps the results independent of how the rows are stored.
class fairingSystem {
 public:
  fairingSystem(holeSurface& surface, const std::vector<patchFace>& faces, float exponent,
                int firstNew);

  // Conjugate gradients on the normal equations of the least-squares problem, coordinates
  // solved apart: at most maxSteps steps, stopping once the squared gradient has fallen
  // below tolerance times its start. Returns the steps taken.
  unsigned int solve(unsigned int maxSteps, double tolerance);

  // Weighs each ring member by the inverse of its distance (normalised per ring) in the
  // solve from here on, instead of evenly. Even weights read a tangential pull into the
  // operator wherever a ring is lopsided (long sides on one side, short on the other, as
  // at a rim between a fine patch and a coarse or stretched mesh), and the solve bends
  // the patch to cancel it; with these weights a ring on a smooth surface gives a
  // nearly normal U. The slide keeps even weights: spreading the vertices evenly is its
  // purpose.
  void weighByInverseLength();

  // Rounds sweeps in which each moving vertex slides by step times the tangential part of
  // its U, which spreads the vertices evenly without bending the surface.
  void slide(float step, unsigned int rounds);

  // Normals of the moved vertices from the patch's faces, weighted by area.
  void updateNormals(const std::vector<patchFace>& faces);

 private:
  using p3 = MATH::point3<float>;
  using d3 = MATH::point3<double>;

  // U at a row from the current positions, even weights.
  p3 umbrella(size_t row) const {
    p3 sum;
    for (unsigned int k = ringStart[row]; k < ringStart[row + 1]; ++k)
      sum += local[size_t(ring[k])];
    return sum * float(inverseSize[row]) - local[row];
  }
  // U of the solve at a row: even or weighted.
  d3 solvedUmbrella(size_t row) const;
  // The linear part B of U in the moving vertices, applied to a direction over them;
  // returns the coordinate-wise squares of the result, summed.
  d3 applyB(const std::vector<d3>& d, std::vector<d3>& out) const;
  // The transpose of B, likewise.
  d3 applyBt(const std::vector<d3>& in, std::vector<d3>& out) const;
  // The transpose's coefficients from the current weights.
  void fillTransposeCoefficients();
  void writeBack();

  holeSurface& s;
  const int base, firstMoving, end;
  size_t moving = 0, rows = 0;
  std::vector<int> global;  // local id -> vertex id
  std::vector<p3> local;    // positions by local id
  // Sorted, duplicate-free rings by local id.
  std::vector<unsigned int> ringStart;
  std::vector<int> ring;
  std::vector<double> inverseSize;  // 1 / ring size, per row
  std::vector<double> weight;       // per ring member; empty for even weights
  // B's entries in the moving vertices, per row: column, ring slot (for the weight).
  std::vector<unsigned int> bStart;
  std::vector<int> bColumn;
  std::vector<unsigned int> bSlot;
  std::vector<double> bWeight;
  // B's transpose, per moving vertex, rows ascending: row, B entry (-1: the vertex's own
  // -1 of U, placed where the row order puts it), coefficient.
  std::vector<unsigned int> tStart;
  std::vector<int> tRow;
  std::vector<int> tEntry;
  std::vector<double> tCoefficient;
};

}  // namespace HOLEFILLING_INTERNAL
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
