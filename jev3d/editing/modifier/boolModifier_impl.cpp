// The only source that includes CGAL: it is slow to compile, so it stays small.
#include "jev3d/editing/modifier/boolModifier_impl.h"

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Polygon_mesh_processing/corefinement.h>
#include <CGAL/Polygon_mesh_processing/orientation.h>
#include <CGAL/Polygon_mesh_processing/self_intersections.h>
#include <CGAL/Polygon_mesh_processing/triangulate_faces.h>
#include <CGAL/Surface_mesh.h>

#include <exception>
#include <iostream>
#include <vector>

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MODIFIER {

namespace {

using kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using surface = CGAL::Surface_mesh<kernel::Point_3>;
namespace PMP = CGAL::Polygon_mesh_processing;

// Empty string when the record became a closed, triangulated, self-intersection-free
// surface that bounds a volume; else why not.
const char* toSurface(const dataExchange::editMeshNode& in, surface& out) {
  if (in.fn() == 0) return "is empty";
  std::vector<surface::Vertex_index> vertex;
  vertex.reserve(in.vn());
  for (unsigned int v = 0; v < in.vn(); ++v) {
    const auto p = in.vFunc()->position(v);
    vertex.push_back(out.add_vertex(kernel::Point_3(p.x, p.y, p.z)));
  }
  std::vector<surface::Vertex_index> corners;
  for (unsigned int f = 0; f < in.fn(); ++f) {
    corners.clear();
    for (unsigned int i = 0; i < in.f2vNum(f); ++i) {
      const unsigned int v = in.fV(f, i);
      if (v >= vertex.size()) return "names a vertex it does not have";
      corners.push_back(vertex[v]);
    }
    if (out.add_face(corners) == surface::null_face()) return "is not a manifold surface";
  }
  if (!CGAL::is_closed(out)) return "is not closed";
  if (!PMP::triangulate_faces(out)) return "has a face that cannot be triangulated";
  if (PMP::does_self_intersect(out)) return "intersects itself";
  if (!PMP::does_bound_a_volume(out)) return "does not bound a volume";
  return "";
}

void fromSurface(const surface& in, dataExchange::editMeshNode& out) {
  std::vector<unsigned int> id(in.number_of_vertices() + in.number_of_removed_vertices());
  out.allocateVertexArray(unsigned(in.number_of_vertices()));
  for (auto v : in.vertices()) {
    const auto& p = in.point(v);
    id[v] = unsigned(out.vFunc()->addVertex(float(CGAL::to_double(p.x())),
                                            float(CGAL::to_double(p.y())),
                                            float(CGAL::to_double(p.z()))));
  }
  out.allocateFaceArray(unsigned(in.number_of_faces()));
  out.allocateFVArray(unsigned(3 * in.number_of_faces()));
  std::vector<unsigned int> corners;
  for (auto f : in.faces()) {
    corners.clear();
    for (auto v : CGAL::vertices_around_face(in.halfedge(f), in)) corners.push_back(id[v]);
    out.fFunc()->addFace(corners.data(), unsigned(corners.size()), false);
  }
}

void clearRecord(dataExchange::editMeshNode& m) {
  m.positions.clear();
  m.corners.clear();
  m.faces.clear();
}

}  // namespace

template <class M>
bool boolModifier_impl<M>::and_(const M& a, const M& b, M& result) const {
  clearRecord(result);
  try {
    surface sa, sb, sc;
    const char* why = toSurface(a, sa);
    if (*why) {
      std::cerr << "boolean: the first mesh " << why << '\n';
      return false;
    }
    why = toSurface(b, sb);
    if (*why) {
      std::cerr << "boolean: the second mesh " << why << '\n';
      return false;
    }
    if (!PMP::corefine_and_compute_intersection(sa, sb, sc)) {
      std::cerr << "boolean: the intersection is not a valid solid\n";
      return false;
    }
    fromSurface(sc, result);
    return true;
  } catch (const std::exception& e) {
    clearRecord(result);
    std::cerr << "boolean: " << e.what() << '\n';
    return false;
  }
}

template class boolModifier_impl<dataExchange::editMeshNode>;

}  // namespace MODIFIER
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
