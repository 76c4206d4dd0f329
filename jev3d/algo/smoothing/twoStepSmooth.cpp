#include "jev3d/algo/smoothing/twoStepSmooth.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "jev3d/algo/internal/workMesh.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "jev3d/mesh/meshInterface.h"
#include "jev3d/system/callBack.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace SMOOTHING {

using MATH::point3;

namespace {

// Face selection before the vertex rule; see the header for why the loop without
// selectedOnly keeps only the verdict of edge 2.
void selectForBorder(workMesh& w, bool selectedOnly) {
  for (unsigned int f = 0; f < w.fn(); ++f) {
    if (w.isFaceDeleted(f)) continue;
    if (!selectedOnly) {
      for (unsigned int i = 0; i < 3; ++i) {
        if (w.isBorder(f, i))
          w.fFlag[f] &= static_cast<unsigned char>(~workMesh::SELECTED);
        else
          w.fFlag[f] |= workMesh::SELECTED;
      }
    } else if (w.isFaceSelected(f) && (w.isBorder(f, 0) || w.isBorder(f, 1) || w.isBorder(f, 2))) {
      w.fFlag[f] &= static_cast<unsigned char>(~workMesh::SELECTED);
    }
  }
}

// A vertex ends selected only if every live face around it is selected.
void selectVerticesOfSelectedFaces(workMesh& w) {
  const auto notSelected = static_cast<unsigned char>(~workMesh::SELECTED);
  for (unsigned int v = 0; v < w.vn(); ++v)
    if (!w.isVertDeleted(v)) w.vFlag[v] &= notSelected;
  for (unsigned int f = 0; f < w.fn(); ++f)
    if (!w.isFaceDeleted(f) && w.isFaceSelected(f))
      for (unsigned int i = 0; i < 3; ++i) w.vFlag[w.V(f, i)] |= workMesh::SELECTED;
  for (unsigned int f = 0; f < w.fn(); ++f)
    if (!w.isFaceDeleted(f) && !w.isFaceSelected(f))
      for (unsigned int i = 0; i < 3; ++i) w.vFlag[w.V(f, i)] &= notSelected;
}

// One round of normal filtering over the faces that share a vertex with each face.
void filterNormals(workMesh& w, float sigma, std::vector<point3<float>>& next) {
  next.assign(w.fn(), point3<float>());
  const auto notVisited = static_cast<unsigned char>(~workMesh::VISITED);
  for (unsigned int f = 0; f < w.fn(); ++f) {
    if (w.isFaceDeleted(f)) continue;
    for (unsigned int i = 0; i < 3; ++i) {
      const unsigned int v = w.V(f, i);
      for (unsigned int k = 0; k < w.vfNum(v); ++k) w.fFlag[w.vfFace(v, k)] &= notVisited;
    }
    const point3<float>& nf = w.fNor[f];
    point3<float> sum;
    for (unsigned int i = 0; i < 3; ++i) {
      const unsigned int v = w.V(f, i);
      for (unsigned int k = 0; k < w.vfNum(v); ++k) {
        const unsigned int g = w.vfFace(v, k);
        if (w.fFlag[g] & workMesh::VISITED) continue;
        w.fFlag[g] |= workMesh::VISITED;
        const float c = std::min(1.f, std::max(0.0001f, nf * w.fNor[g]));
        if (c >= sigma) sum += w.fNor[g] * ((c - sigma) * (c - sigma));
      }
    }
    if (sum.norm() > 0.f) sum.normalize();
    next[f] = sum;
  }
  for (unsigned int f = 0; f < w.fn(); ++f)
    if (!w.isFaceDeleted(f)) w.fNor[f] = next[f];
  for (unsigned char& flag : w.fFlag) flag &= notVisited;
}

// One round of fitting each vertex to the planes of its faces through their centroids.
void fitVertices(workMesh& w, bool selectedOnly, std::vector<point3<float>>& next) {
  next = w.pos;
  for (unsigned int v = 0; v < w.vn(); ++v) {
    if (w.isVertDeleted(v)) continue;
    const point3<float>& p = w.pos[v];
    point3<float> sum;
    unsigned int count = 0;
    for (unsigned int k = 0; k < w.vfNum(v); ++k) {
      const unsigned int f = w.vfFace(v, k);
      const point3<float>& n = w.fNor[f];
      const point3<float> c = (w.P(f, 0) + w.P(f, 1) + w.P(f, 2)) / 3.0f;
      sum += n * (n * (c - p));
      ++count;
    }
    // Component by component, so that a vertex of no face gets 0 / 0 as the filter
    // always did, not the point division's rule for 0.
    const float k = float(count);
    next[v] = point3<float>(p.x + sum.x / k, p.y + sum.y / k, p.z + sum.z / k);
  }
  for (unsigned int v = 0; v < w.vn(); ++v)
    if (!w.isVertDeleted(v) && (!selectedOnly || w.isVertSelected(v))) w.pos[v] = next[v];
}

void exportTo(const workMesh& w, meshInterface& target, bool normals, bool colors) {
  std::vector<unsigned int> map(w.vn(), workMesh::NONE);
  unsigned int live = 0;
  for (unsigned int v = 0; v < w.vn(); ++v)
    if (!w.isVertDeleted(v)) map[v] = live++;
  target.clear();
  target.vertexReserve(live);
  for (unsigned int v = 0; v < w.vn(); ++v)
    if (map[v] != workMesh::NONE) target.addVertex(w.pos[v]);
  // Sized after the vertices are added: on a mesh whose normals live in the vertex
  // records, sizing first would add live empty vertices.
  target.vertexNormalResize(live);
  if (normals)
    for (unsigned int v = 0; v < w.vn(); ++v)
      if (map[v] != workMesh::NONE) target.vNor(map[v]) = w.nor[v];
  if (colors) {
    target.vertexColorResize(live);
    for (unsigned int v = 0; v < w.vn(); ++v)
      if (map[v] != workMesh::NONE) target.vCol(map[v]) = w.col[v];
  }
  target.faceReserve(w.fn());
  for (unsigned int f = 0; f < w.fn(); ++f) {
    if (w.isFaceDeleted(f)) continue;
    const unsigned int ids[3] = {map[w.V(f, 0)], map[w.V(f, 1)], map[w.V(f, 2)]};
    // A live triangle on a deleted vertex has nowhere to point.
    if (ids[0] == workMesh::NONE || ids[1] == workMesh::NONE || ids[2] == workMesh::NONE) continue;
    target.addFace(ids, 3);
  }
}

}  // namespace

void computeTwoStep(const meshInterface* source, meshInterface* target, float featureAngleDeg,
                    int iterations, int normalSteps, int fitSteps, bool keepBorder,
                    bool selectedOnly, SYSTEM::callBack* cb) {
  if (cb) cb->setValue(0.f);
  workMesh w;
  bool normals = false, colors = false;
  if (source) {
    w.fromMesh(*source, selectedOnly);
    normals = source->hasVN();
    colors = source->hasVC();
  }
  w.updateTopology();
  if (keepBorder) selectForBorder(w, selectedOnly);
  w.computeVertexNormals();
  selectVerticesOfSelectedFaces(w);

  const double pi = 3.14159265358979323846;
  const float sigma = std::max(0.f, float(std::cos(double(featureAngleDeg) * pi / 180.0)));
  std::vector<point3<float>> faceScratch, vertexScratch;
  for (int it = 0; it < iterations; ++it) {
    w.computeFaceNormals(true);
    for (int s = 0; s < normalSteps; ++s) filterNormals(w, sigma, faceScratch);
    for (int s = 0; s < fitSteps; ++s) fitVertices(w, selectedOnly, vertexScratch);
    if (cb) cb->setValue(float(100.0 * (it + 1) / (iterations + 1)));
  }
  if (target) exportTo(w, *target, normals, colors);
  if (cb) cb->setValue(100.f);
}

void computeTwoStep(const editMesh* source, editMesh* target, float featureAngleDeg, int iterations,
                    int normalSteps, int fitSteps, bool keepBorder, bool selectedOnly,
                    SYSTEM::callBack* cb) {
  // The source view is only read; the target is written after the copy is taken, so
  // source and target may be one mesh.
  std::unique_ptr<editMeshInterface> sourceView, targetView;
  if (source) sourceView = std::make_unique<editMeshInterface>(const_cast<editMesh&>(*source));
  if (target) targetView = std::make_unique<editMeshInterface>(*target);
  computeTwoStep(sourceView.get(), targetView.get(), featureAngleDeg, iterations, normalSteps,
                 fitSteps, keepBorder, selectedOnly, cb);
  if (!target) return;
  target->checkMeshState();
  target->computeEdges(true);
  target->computeVE();
  target->computeNormalizedNormals();
  target->invalidateRenderData();
}

}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
