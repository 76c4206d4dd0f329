#pragma once

#include <iosfwd>
#include <limits>
#include <memory>
#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
namespace ALGO {
namespace REMESHING {
namespace INTERNAL {

// What the tracker may do. Lengths, areas and volumes in the units of the positions.
struct trackerParams {
  float minEdgeLength = 0.8f;     // shorter edges collapse
  float maxEdgeLength = 1.0f;     // longer edges split
  float maxVolumeChange = 0.5f;   // most volume a flip or a collapse may add or remove
  float minTriangleArea = 1e-7f;  // no operation leaves a smaller triangle
  float maxAreaChange = 0.5f;     // most relative change of area a flip may make
  bool keepBorder = false;        // open borders stay as they are
  bool keepFeatures = false;      // edges with a dihedral angle above 60 degrees stay
  unsigned int iterations = 3;    // rounds before those of a narrow band
  // No split pass starts on a surface of this many triangles: splits beside an edge that
  // never splits (a non-manifold one) would otherwise cut slivers without end.
  double maxTriangles = std::numeric_limits<double>::infinity();
  std::ostream* log = nullptr;  // every refused operation and why, one line each
};

// An explicit surface tracker for isotropic remeshing: each round splits long edges,
// collapses short ones, flips edges towards valence 6 (4 on a border), relaxes the
// vertices in their tangent planes and projects them back onto the input surface. The
// surface is a triangle list; splits and flips run in independent sets, collapses in
// one pass that chains the faces of merged vertices. The faces around each vertex are
// rebuilt after splits and flips, the edges once a round, after the collapses (flips keep
// them current). Vertices with an infinite mass never move nor go away; neither do the ends of
// non-manifold edges. A narrow band of lengths (the shortest at least 0.75 of the
// longest) gets rounds of its own after these: finer splits and collapses even out the
// number of vertices, border vertices slide along their border, and a last sweep moves
// single vertices whose edges are still outside the band.
class surfaceTracker {
 public:
  static constexpr unsigned int NONE = 0xFFFFFFFFu;

  // masses holds one value per position (missing ones count as 1).
  surfaceTracker(const std::vector<MATH::point3<float>>& positions,
                 const std::vector<unsigned int>& triangles, const std::vector<float>& masses,
                 const trackerParams& params);
  ~surfaceTracker();
  surfaceTracker(const surfaceTracker&) = delete;
  surfaceTracker& operator=(const surfaceTracker&) = delete;

  // Runs the rounds; cb hears 1 first and 100 last.
  void improve(SYSTEM::callBack* cb = nullptr);

  // The live vertices and triangles; vertexMap gives, for each output vertex, the input
  // position it is (NONE for a vertex the tracker made). Fixed vertices keep their
  // positions bit for bit.
  void result(std::vector<MATH::point3<float>>& positions, std::vector<unsigned int>& triangles,
              std::vector<unsigned int>& vertexMap) const;

 private:
  struct state;
  std::unique_ptr<state> s;
};

}  // namespace INTERNAL
}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
