#include "jev3d/algo/remeshing/isotropicMeshRefinement.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>

#include "jev3d/algo/remeshing/internal/surfaceTracker.h"
#include "jev3d/math/triangleTree.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "jev3d/mesh/meshInterface.h"
#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {

namespace {

using p3 = MATH::point3<float>;
constexpr unsigned int NONE = 0xFFFFFFFFu;
constexpr unsigned int ROUNDS = 3;
// Most triangles a remeshing may make (a few gigabytes of working memory): a length far
// below the surface's size is refused rather than left to run out of memory.
constexpr double MAX_TRIANGLES = double(1u << 25);

// The listed live faces as triangles over region vertices, with the map from region
// vertex to mesh vertex, and which region vertices the rest of the mesh also uses.
struct region {
  std::vector<unsigned char> listed;  // per mesh face
  std::vector<unsigned int> meshVertex;
  std::vector<p3> positions;
  std::vector<unsigned int> triangles;
  std::vector<float> masses;
};

region cutRegion(const editMesh& mesh, const std::vector<unsigned int>& faces,
                 const std::vector<unsigned int>& keptVertices) {
  region r;
  r.listed.assign(mesh.fn(), 0);
  for (unsigned int f : faces)
    if (mesh.isFaceValid(f)) r.listed[f] = 1;
  std::vector<unsigned int> local(mesh.vn(), NONE);
  std::vector<unsigned char> seam(mesh.vn(), 0);
  auto cornerOk = [&](unsigned int v) { return v < mesh.vn() && !mesh.isVertDeleted(v); };
  for (unsigned int f = 0; f < mesh.fn(); ++f) {
    if (mesh.isFaceDeleted(f)) continue;
    if (!r.listed[f]) {
      for (unsigned int i = 0; i < mesh.fVNum(f); ++i)
        if (cornerOk(mesh.fV(f, i))) seam[mesh.fV(f, i)] = 1;
      continue;
    }
    for (unsigned int t = 0; t < mesh.getTriangleNumFace(f); ++t) {
      unsigned int c[3];
      mesh.getTriangle(f, t, c[0], c[1], c[2]);
      if (!cornerOk(c[0]) || !cornerOk(c[1]) || !cornerOk(c[2])) continue;
      for (unsigned int v : c) {
        if (local[v] == NONE) {
          local[v] = unsigned(r.positions.size());
          r.positions.push_back(mesh.vPos(v));
          r.meshVertex.push_back(v);
        }
        r.triangles.push_back(local[v]);
      }
    }
  }
  r.masses.assign(r.positions.size(), 1.f);
  for (size_t i = 0; i < r.meshVertex.size(); ++i)
    if (seam[r.meshVertex[i]]) r.masses[i] = std::numeric_limits<float>::infinity();
  for (unsigned int v : keptVertices)
    if (v < local.size() && local[v] != NONE)
      r.masses[local[v]] = std::numeric_limits<float>::infinity();
  return r;
}

// Area of the region's triangles, in double.
double area(const region& r) {
  double sum = 0.0;
  for (size_t k = 0; k + 2 < r.triangles.size(); k += 3) {
    const p3 &a = r.positions[r.triangles[k]], &b = r.positions[r.triangles[k + 1]],
             &c = r.positions[r.triangles[k + 2]];
    const MATH::point3<double> u(b.x - a.x, b.y - a.y, b.z - a.z),
        v(c.x - a.x, c.y - a.y, c.z - a.z);
    const double a2 = MATH::point3<double>::cross(u, v).norm();
    if (std::isfinite(a2)) sum += 0.5 * a2;  // a corner that is not a number counts nothing
  }
  return sum;
}

double meanEdgeLength(const region& r) {
  double sum = 0.0;
  size_t n = 0;
  for (size_t k = 0; k + 2 < r.triangles.size(); k += 3)
    for (unsigned int i = 0; i < 3; ++i) {
      sum += (r.positions[r.triangles[k + i]] - r.positions[r.triangles[k + (i + 1) % 3]]).norm();
      ++n;
    }
  return n ? sum / double(n) : 0.0;
}

// The attributes of a point, interpolated on the region triangle closest to it.
dataExchange::xyzw_impl<float> interpolate(const MATH::triangleTree& tree, const region& r,
                                           const attributeList& attributes, const p3& p) {
  dataExchange::xyzw_impl<float> out;
  MATH::closestPointHit hit;
  if (!tree.closestPoint(p, std::numeric_limits<float>::max(), hit)) return out;
  const float w[3] = {1.f - hit.u - hit.v, hit.u, hit.v};
  for (unsigned int k = 0; k < 3; ++k) {
    const dataExchange::xyzw_impl<float>& a =
        attributes[r.meshVertex[r.triangles[3 * hit.triangle + k]]];
    out.x += w[k] * a.x, out.y += w[k] * a.y, out.z += w[k] * a.z, out.w += w[k] * a.w;
  }
  return out;
}

unsigned int remesh(const editMesh& mesh, const std::vector<unsigned int>& keptVertices,
                    const attributeList& attributes, const std::vector<unsigned int>& faces,
                    editMesh& result, attributeList& attributesOut, bool fromParams, float length,
                    const isotropicMeshParams& params, SYSTEM::callBack* cb, std::ostream* log) {
  if (&mesh == &result || &attributes == &attributesOut) {  // outputs written while read
    const editMesh meshCopy(mesh);
    const attributeList attributesCopy(attributes);
    return remesh(meshCopy, keptVertices, attributesCopy, faces, result, attributesOut, fromParams,
                  length, params, cb, log);
  }
  if (cb) cb->setValue(1.0f);
  attributesOut.clear();
  region r = cutRegion(mesh, faces, keptVertices);
  INTERNAL::trackerParams tp;
  double unit = length;
  if (fromParams) {
    unit = meanEdgeLength(r);
    tp.minEdgeLength = float((1.0 - params.firstLengthRatio) * unit);
    tp.maxEdgeLength = float((1.0 + params.secondLengthRatio) * unit);
    tp.maxVolumeChange = float(params.volumeTolerance * unit * unit * unit);
    tp.keepBorder = params.firstSwitch != 0;
    tp.keepFeatures = params.secondSwitch != 0;
  } else {
    tp.maxEdgeLength = length;
    // The collapse bound's 0.3 is absolute and belongs to the length form's definition:
    // from a length of 0.375 up, edges settle in [0.3, length]; below it the band narrows
    // to [0.8, 1]·length, which the tracker settles with rounds of its own to about nine
    // edges in ten (everything else here scales with the length, so the share does not
    // change with the mesh's units).
    tp.minEdgeLength = std::min(0.3f, 0.8f * length);
    tp.maxVolumeChange = float(0.5 * unit * unit * unit);
  }
  if (r.triangles.empty() || !(unit > 0.0) || !std::isfinite(unit) ||
      !(tp.minEdgeLength < tp.maxEdgeLength)) {
    result.clear(false);
    if (cb) cb->setValue(100.0f);
    return 0;
  }
  // Triangles of the longest edges allowed, equilateral, cover about 0.43·L² each.
  const double triangles = area(r) / (0.43 * double(tp.maxEdgeLength) * tp.maxEdgeLength);
  if (triangles > MAX_TRIANGLES) {
    std::cerr << "isotropic remeshing: edges of " << tp.maxEdgeLength << " would make about "
              << triangles << " triangles, more than " << MAX_TRIANGLES << "; nothing is made\n";
    result.clear(false);
    if (cb) cb->setValue(100.0f);
    return 0;
  }
  // Room for twice what the length asks and the input besides; past it no split starts.
  tp.maxTriangles = 2.0 * triangles + double(r.triangles.size() / 3) + 1024.0;
  tp.minTriangleArea = float(1e-7 * unit * unit);
  tp.iterations = ROUNDS;
  tp.log = log;
  INTERNAL::surfaceTracker tracker(r.positions, r.triangles, r.masses, tp);
  tracker.improve(cb);
  std::vector<p3> outPositions;
  std::vector<unsigned int> outTriangles, outOrigin;
  tracker.result(outPositions, outTriangles, outOrigin);

  // The rest first, as it was: its vertices in id order and its faces with their corners.
  result.clear(false);
  std::vector<unsigned int> id(mesh.vn(), NONE);
  const bool carry = attributes.size() >= mesh.vn();
  for (unsigned int f = 0; f < mesh.fn(); ++f)
    if (!mesh.isFaceDeleted(f) && !r.listed[f])
      for (unsigned int i = 0; i < mesh.fVNum(f); ++i)
        if (mesh.fV(f, i) < mesh.vn() && !mesh.isVertDeleted(mesh.fV(f, i))) id[mesh.fV(f, i)] = 0;
  for (unsigned int v = 0; v < mesh.vn(); ++v) {
    if (id[v] == NONE) continue;
    id[v] = result.addVertex(mesh.vPos(v));
    if (carry) attributesOut.push_back(attributes[v]);
  }
  std::vector<unsigned int> corners;
  for (unsigned int f = 0; f < mesh.fn(); ++f) {
    if (mesh.isFaceDeleted(f) || r.listed[f]) continue;
    corners.clear();
    for (unsigned int i = 0; i < mesh.fVNum(f); ++i)
      if (mesh.fV(f, i) < mesh.vn() && id[mesh.fV(f, i)] != NONE)
        corners.push_back(id[mesh.fV(f, i)]);
    if (corners.size() >= 3) result.addPolyFace(corners);
  }
  // Then the tracker's surface, joined to the rest at the seam vertices it kept.
  MATH::triangleTree tree;
  if (carry)
    tree.build(r.positions.data(), r.positions.size(), r.triangles.data(), r.triangles.size() / 3);
  std::vector<unsigned int> outId(outPositions.size());
  for (size_t v = 0; v < outPositions.size(); ++v) {
    const unsigned int source = outOrigin[v] == NONE ? NONE : r.meshVertex[outOrigin[v]];
    if (source != NONE && id[source] != NONE) {
      outId[v] = id[source];
      continue;
    }
    outId[v] = result.addVertex(outPositions[v]);
    if (carry) attributesOut.push_back(interpolate(tree, r, attributes, outPositions[v]));
  }
  const unsigned int first = result.fn();
  for (size_t k = 0; k + 2 < outTriangles.size(); k += 3)
    result.addTriFace(outId[outTriangles[k]], outId[outTriangles[k + 1]],
                      outId[outTriangles[k + 2]]);
  result.checkMeshState();
  result.computeEdges(true);
  result.computeVE();
  result.computeNormalizedFaceNormals();
  result.computeNormalizedVertexNormals();
  for (unsigned int f = first; f < result.fn(); ++f) result.selectFace(f);
  if (cb) cb->setValue(100.0f);
  return result.fn() - first;
}

// An editable copy of any mesh with the same vertex and face ids, deleted ones deleted.
void editableCopy(const meshInterface& source, editMesh& copy) {
  copy.clear(false);
  for (unsigned int v = 0; v < source.vn(); ++v) copy.addVertex(source.vPos(v));
  std::vector<unsigned int> corners;
  for (unsigned int f = 0; f < source.fn(); ++f) {
    corners.clear();
    for (unsigned int i = 0; i < source.f2vNum(f); ++i) corners.push_back(source.fV(f, i));
    copy.addFace(corners.data(), unsigned(corners.size()));
  }
  copy.checkMeshState();
  for (unsigned int v = 0; v < source.vn(); ++v)
    if (source.isVertDeleted(v)) copy.setVertFlag(v, VERT_STATE_T::DELETED);
  for (unsigned int f = 0; f < source.fn(); ++f)
    if (source.isFaceDeleted(f)) copy.setFaceFlag(f, FACE_STATE_T::DELETED);
}

// Runs the editMesh form through editable copies of source and result.
template <class Form>
unsigned int overInterfaces(const meshInterface& source, meshInterface& result, Form form) {
  editMesh from, to;
  editableCopy(source, from);
  const unsigned int made = form(from, to);
  editMeshInterface view(to);
  view.copyTo(result);
  return made;
}

}  // namespace

unsigned int computeIsotropicMeshRefinement(const meshInterface& mesh,
                                            const attributeList& attributes,
                                            const std::vector<unsigned int>& faces,
                                            meshInterface& result, attributeList& attributesOut,
                                            float length, SYSTEM::callBack* cb, std::ostream* log) {
  return computeIsotropicMeshRefinement(mesh, {}, attributes, faces, result, attributesOut, length,
                                        cb, log);
}

unsigned int computeIsotropicMeshRefinement(const meshInterface& mesh,
                                            const std::vector<unsigned int>& keptVertices,
                                            const attributeList& attributes,
                                            const std::vector<unsigned int>& faces,
                                            meshInterface& result, attributeList& attributesOut,
                                            float length, SYSTEM::callBack* cb, std::ostream* log) {
  return overInterfaces(mesh, result, [&](const editMesh& from, editMesh& to) {
    return remesh(from, keptVertices, attributes, faces, to, attributesOut, false, length, {}, cb,
                  log);
  });
}

unsigned int computeIsotropicMeshRefinement(const meshInterface& mesh,
                                            const std::vector<unsigned int>& keptVertices,
                                            const attributeList& attributes,
                                            const std::vector<unsigned int>& faces,
                                            meshInterface& result, attributeList& attributesOut,
                                            const isotropicMeshParams& params, SYSTEM::callBack* cb,
                                            std::ostream* log) {
  return overInterfaces(mesh, result, [&](const editMesh& from, editMesh& to) {
    return remesh(from, keptVertices, attributes, faces, to, attributesOut, true, 0.f, params, cb,
                  log);
  });
}

unsigned int computeIsotropicMeshRefinement(const editMesh& mesh, const attributeList& attributes,
                                            const std::vector<unsigned int>& faces,
                                            editMesh& result, attributeList& attributesOut,
                                            float length, SYSTEM::callBack* cb, std::ostream* log) {
  return remesh(mesh, {}, attributes, faces, result, attributesOut, false, length, {}, cb, log);
}

unsigned int computeIsotropicMeshRefinement(const editMesh& mesh,
                                            const std::vector<unsigned int>& keptVertices,
                                            const attributeList& attributes,
                                            const std::vector<unsigned int>& faces,
                                            editMesh& result, attributeList& attributesOut,
                                            float length, SYSTEM::callBack* cb, std::ostream* log) {
  return remesh(mesh, keptVertices, attributes, faces, result, attributesOut, false, length, {}, cb,
                log);
}

unsigned int computeIsotropicMeshRefinement(const editMesh& mesh,
                                            const std::vector<unsigned int>& keptVertices,
                                            const attributeList& attributes,
                                            const std::vector<unsigned int>& faces,
                                            editMesh& result, attributeList& attributesOut,
                                            const isotropicMeshParams& params, SYSTEM::callBack* cb,
                                            std::ostream* log) {
  return remesh(mesh, keptVertices, attributes, faces, result, attributesOut, true, 0.f, params, cb,
                log);
}

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
