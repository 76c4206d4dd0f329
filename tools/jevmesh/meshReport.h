#pragma once

#include <map>
#include <ostream>
#include <vector>

#include "jev3d/math/point3.h"
#include "jev3d/mesh/editMesh.h"

namespace JEVMESH {

// What `jevmesh info` says of a mesh: counts over live elements, its border, its pieces
// and its size. Needs the mesh's edges (computeEVEF); reads nothing else derived.
struct meshReport {
  unsigned vertices = 0;
  std::map<unsigned, unsigned> facesByCorners;  // corner count -> faces
  unsigned faces = 0;
  unsigned degenerateFaces = 0;  // a corner repeated
  unsigned edges = 0;
  unsigned boundaryEdges = 0;           // on exactly one face
  unsigned nonManifoldEdges = 0;        // on three faces or more
  unsigned wireEdges = 0;               // on no face
  std::vector<unsigned> boundaryLoops;  // edge count of each loop, largest first
  unsigned isolatedVertices = 0;        // used by no face
  unsigned components = 0;              // pieces of faces joined through shared vertices
  JEV::MATH::point3<double> bboxMin, bboxMax;
  double area = 0;
  bool closed = false;  // faces, no boundary and no non-manifold edge
  double volume = 0;    // signed; meaningful when closed

  static meshReport of(const JEV::MESH::editMesh& mesh);
  void print(std::ostream& out) const;
};

}  // namespace JEVMESH
