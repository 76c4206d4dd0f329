#pragma once

// A closed torus (major radius 3, tube radius 1) sampled on a grid of `rings` vertices
// around the axis by `segments` around the tube, for the benchmarks that feed the same
// surface to jev3d and to OpenMesh.
#include <OpenMesh/Core/Geometry/VectorT.hh>
#include <cmath>

struct torusGrid {
  unsigned rings, segments;

  // Vertex (i, j) of the torus: i around the axis, j around the tube.
  OpenMesh::Vec3f point(unsigned i, unsigned j) const {
    const double pi = 3.14159265358979323846;
    const double u = 2 * pi * i / rings, v = 2 * pi * j / segments;
    return OpenMesh::Vec3f(float((3 + std::cos(v)) * std::cos(u)),
                           float((3 + std::cos(v)) * std::sin(u)), float(std::sin(v)));
  }

  // The index of vertex (i, j), wrapping around both ways.
  unsigned id(unsigned i, unsigned j) const { return (j % segments) * rings + i % rings; }

  // Every vertex's position, in index order.
  template <class F>
  void forEachPoint(F&& vertex) const {
    for (unsigned j = 0; j < segments; ++j)
      for (unsigned i = 0; i < rings; ++i) vertex(point(i, j));
  }

  // Every cell's four corners, counter-clockwise seen from outside.
  template <class F>
  void forEachCell(F&& cell) const {
    for (unsigned j = 0; j < segments; ++j)
      for (unsigned i = 0; i < rings; ++i)
        cell(id(i, j), id(i + 1, j), id(i + 1, j + 1), id(i, j + 1));
  }
};
