#include "meshEdits.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <vector>

#include <jev3d/algo/holefilling/computeHoleFilling.h>
#include <jev3d/algo/measurement/distance.h>
#include <jev3d/algo/remeshing/isotropicMeshRefinement.h>
#include <jev3d/algo/smoothing/laplacianSmooth.h>
#include <jev3d/editing/editMeshNode.h>
#include <jev3d/mesh/editMeshInterface.h>
#include <jev3d/system/callBack.h>

namespace EDITOR {

using JEV::MESH::editMesh;
using point3f = JEV::MATH::point3<float>;

namespace {

constexpr unsigned int SMOOTH_STEPS = 5;

void report(JEV::SYSTEM::callBack* cb, float percent) {
  if (cb) cb->setValue(percent);
}

// Normals, box and selection sums after positions moved; the topology is as it was.
void finishGeometry(editMesh& m) {
  m.computeNormalizedNormals();
  m.updateSelVertPosNorSum();
  m.computeBBox();
}

// The full rebuild after faces were added or replaced outside the kernel's own
// operations.
void finishTopology(editMesh& m) {
  m.computeEdges(true);
  m.computeVE();
  finishGeometry(m);
}

std::vector<unsigned int> selectedFaces(const editMesh& m) {
  std::vector<unsigned int> faces;
  for (unsigned int f = 0; f < m.fn(); ++f)
    if (!m.isFaceDeleted(f) && m.isFaceSelected(f)) faces.push_back(f);
  return faces;
}

std::vector<unsigned int> liveFaces(const editMesh& m) {
  std::vector<unsigned int> faces;
  for (unsigned int f = 0; f < m.fn(); ++f)
    if (!m.isFaceDeleted(f)) faces.push_back(f);
  return faces;
}

unsigned int liveFaceCount(const editMesh& m) { return unsigned(liveFaces(m).size()); }

point3f meanNormal(const editMesh& m, const std::vector<unsigned int>& faces) {
  point3f n(0.f, 0.f, 0.f);
  for (unsigned int f : faces) n = n + m.fNor(f);
  return n.normalize();
}

}  // namespace

float meanEdgeLength(const editMesh& m) {
  double sum = 0;
  unsigned int count = 0;
  for (unsigned int e = 0; e < m.en(); ++e) {
    if (m.edgeIsDeleted(e)) continue;
    sum += (m.vPos(m.E(e).v[0]) - m.vPos(m.E(e).v[1])).norm();
    ++count;
  }
  return count ? float(sum / count) : 0.f;
}

bool extrudeSelection(editMesh& m, const editMesh&, JEV::SYSTEM::callBack* cb,
                      std::string& message) {
  std::vector<unsigned int> faces = selectedFaces(m);
  if (faces.empty()) {
    message = "Extrude: select faces first";
    return false;
  }
  report(cb, 1.f);
  const point3f along = meanNormal(m, faces) * (0.5f * meanEdgeLength(m));
  m.extrudeRegion(faces);
  // The region's vertices are now the copies on top of the walls.
  m.translateSelectedVertices(along);
  finishGeometry(m);
  report(cb, 100.f);
  message = "Extruded " + std::to_string(faces.size()) + " faces";
  return true;
}

bool loopCutSelection(editMesh& m, const editMesh&, JEV::SYSTEM::callBack* cb,
                      std::string& message) {
  unsigned int edge = std::numeric_limits<unsigned int>::max();
  for (unsigned int e = 0; e < m.en() && edge == std::numeric_limits<unsigned int>::max(); ++e)
    if (!m.edgeIsDeleted(e) && m.isEdgeSelected(e)) edge = e;
  if (edge == std::numeric_limits<unsigned int>::max()) {
    const std::vector<unsigned int> faces = selectedFaces(m);
    if (!faces.empty() && m.fVNum(faces[0]) >= 2)
      edge = m.findSharedEdgeFromVertices(m.fV(faces[0], 0), m.fV(faces[0], 1));
  }
  if (edge >= m.en()) {
    message = "Loop cut: select an edge or a face on a ring of quads";
    return false;
  }
  report(cb, 1.f);
  const unsigned int before = liveFaceCount(m);
  m.loopCut(edge);
  finishGeometry(m);
  report(cb, 100.f);
  const unsigned int after = liveFaceCount(m);
  if (after == before) {
    message = "Loop cut: no ring of quads runs through the chosen edge";
    return false;
  }
  message = "Loop cut: " + std::to_string(after - before) + " faces added";
  return true;
}

bool subdivideMesh(editMesh& m, const editMesh&, JEV::SYSTEM::callBack* cb, std::string& message) {
  const bool selected = m.getSelFn() > 0;
  report(cb, 1.f);
  if (selected) {
    m.catmullClarkSubdivideSelected(true, cb);
  } else {
    m.catmullClarkSubdivideVE(true, cb);
  }
  finishGeometry(m);
  report(cb, 100.f);
  message = std::string("Subdivided ") + (selected ? "the selection" : "the mesh") + ": " +
            std::to_string(liveFaceCount(m)) + " faces";
  return true;
}

bool triangulateMesh(editMesh& m, const editMesh&, JEV::SYSTEM::callBack* cb,
                     std::string& message) {
  report(cb, 1.f);
  m.triangulate(cb);
  finishGeometry(m);
  report(cb, 100.f);
  message = "Triangulated: " + std::to_string(liveFaceCount(m)) + " triangles";
  return true;
}

bool mirrorAcrossSelection(editMesh& m, const editMesh&, JEV::SYSTEM::callBack* cb,
                           std::string& message) {
  const std::vector<unsigned int> faces = selectedFaces(m);
  if (faces.empty()) {
    message = "Mirror: select the faces that lie in the mirror plane";
    return false;
  }
  report(cb, 1.f);
  m.mirrorMesh(faces, meanNormal(m, faces));
  finishTopology(m);
  report(cb, 100.f);
  message = "Mirrored: " + std::to_string(liveFaceCount(m)) + " faces";
  return true;
}

bool smoothMesh(editMesh& m, const editMesh&, JEV::SYSTEM::callBack* cb, std::string& message) {
  report(cb, 1.f);
  const bool selected = m.getSelVn() > 0;
  if (selected) {
    for (unsigned int i = 0; i < SMOOTH_STEPS; ++i) {
      m.smooth(true);
      report(cb, 100.f * float(i + 1) / SMOOTH_STEPS);
    }
  } else {
    JEV::MESH::ALGO::SMOOTHING::computeLaplacianSmooth(m, SMOOTH_STEPS, false, cb);
  }
  finishGeometry(m);
  report(cb, 100.f);
  message = std::string("Smoothed ") +
            (selected ? std::to_string(m.getSelVn()) + " selected vertices" : "the surface");
  return true;
}

bool fillHoles(editMesh& m, const editMesh&, JEV::SYSTEM::callBack* cb, std::string& message) {
  namespace ALGO = JEV::MESH::ALGO;
  JEV::MESH::editMeshInterface view(m);
  std::vector<unsigned int> before, after;
  if (!ALGO::computeHoleFillingFindHoleDimension(view, before)) {
    message = "Fill holes: the border cannot be walked (faces on it are wound against each other)";
    return false;
  }
  if (before.empty()) {
    message = "Fill holes: the mesh has no hole";
    return false;
  }
  ALGO::computeHoleFilling(view, 0, view, false, cb);
  m.checkMeshState();
  finishTopology(m);
  ALGO::computeHoleFillingFindHoleDimension(view, after);
  message =
      "Holes filled: " + std::to_string(before.size() - std::min(before.size(), after.size())) +
      " of " + std::to_string(before.size());
  return true;
}

bool remeshMesh(editMesh& m, const editMesh&, JEV::SYSTEM::callBack* cb, std::string& message) {
  namespace REMESHING = JEV::MESH::ALGO::REMESHING;
  std::vector<unsigned int> faces = selectedFaces(m);
  const bool selected = !faces.empty();
  if (!selected) faces = liveFaces(m);
  const float length = meanEdgeLength(m);
  REMESHING::attributeList none, noneOut;
  editMesh result;
  if (!REMESHING::computeIsotropicMeshRefinement(m, none, faces, result, noneOut, length, cb)) {
    message = "Remesh: nothing to remesh";
    return false;
  }
  m = result;
  m.deselectAllFaces();
  finishTopology(m);
  message = std::string("Remeshed ") + (selected ? "the selection" : "the mesh") + ": " +
            std::to_string(liveFaceCount(m)) + " faces";
  return true;
}

bool decimateMesh(editMesh& m, const editMesh&, JEV::SYSTEM::callBack* cb, std::string& message) {
  unsigned int triangles = 0;
  for (unsigned int f : liveFaces(m)) triangles += m.fVNum(f) >= 3 ? m.fVNum(f) - 2 : 0;
  if (triangles < 8) {
    message = "Decimate: too few triangles";
    return false;
  }
  JEV::MESH::EDITING::editMeshNode work;
  work.getEditMesh() = m;
  work.decimate(triangles / 2, cb);
  m = work.getEditMesh();
  finishGeometry(m);
  message = "Decimated: " + std::to_string(liveFaceCount(m)) + " triangles";
  return true;
}

bool colourByDistance(editMesh& m, const editMesh& reference, JEV::SYSTEM::callBack* cb,
                      std::string& message) {
  using JEV::MESH::ALGO::MEASUREMENT::distance;
  if (reference.fn() == 0) {
    message = "Distance: no reference mesh";
    return false;
  }
  editMesh against = reference;
  JEV::MESH::editMeshInterface view(m), target(against);
  const float far = std::numeric_limits<float>::max();
  std::vector<float> d;
  distance::computeSignedDistance(&view, &target, true, far, d, cb);
  float lo = far, hi = -far;
  for (unsigned int v = 0; v < m.vn() && v < d.size(); ++v)
    if (!m.isVertDeleted(v) && d[v] < far) lo = std::min(lo, d[v]), hi = std::max(hi, d[v]);
  view.vertexColorResize(m.vn());
  for (unsigned int v = 0; v < m.vn(); ++v)
    m.vCol(v) = distance::getColor(lo, hi, v < d.size() ? d[v] : far);
  m.setHasVC(true);
  m.colorDisplayState = JEV::MESH::MESH_COLOR_VERTEX;
  if (lo > hi) {
    message = "Distance: nothing measured";
  } else {
    char range[96];
    std::snprintf(range, sizeof range, "Distance to the opened mesh: %.4g to %.4g", double(lo),
                  double(hi));
    message = range;
  }
  return true;
}

}  // namespace EDITOR
