#include "jev3d/algo/remeshing/meshProjection.h"

#include <chrono>
#include <cmath>
#include <iostream>
#include <limits>
#include <vector>

#include "jev3d/algo/remeshing/internal/triangleSoup.h"
#include "jev3d/math/triangleTree.h"
#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace REMESHING {

namespace {

using p3 = MATH::point3<float>;
constexpr unsigned int NONE = 0xFFFFFFFFu;
constexpr double MAX_NODES = 16e6;
constexpr float TOUCHING = 0.0005f;

void finish(editMesh& m) {
  m.checkMeshState();
  m.computeEdges(true);
  m.computeVE();
  m.computeNormalizedFaceNormals();
  m.computeNormalizedVertexNormals();
}

void buildTree(const editMesh& m, MATH::triangleTree& tree) {
  std::vector<p3> positions;
  std::vector<unsigned int> triangles;
  INTERNAL::toTriangleSoup(m, positions, triangles);
  tree.build(positions.data(), positions.size(), triangles.data(), triangles.size() / 3);
}

template <class F>
void timed(const char* name, unsigned int rounds, F rebuild) {
  const auto start = std::chrono::steady_clock::now();
  for (unsigned int i = 0; i < rounds; ++i) rebuild();
  std::cout
      << name << " " << rounds << " rounds in "
      << std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count()
      << " msecs\n";
}

}  // namespace

bool projectGridOnMesh(const editMesh& mesh, const p3& direction, float spacing, editMesh& result) {
  result.clear(false);
  const p3 d = direction.getNormalized();
  if (!(spacing > 0.f) || !std::isfinite(spacing) || d.squaredNorm() == 0.f) return false;
  MATH::triangleTree tree;
  buildTree(mesh, tree);
  p3 lo, hi;
  if (!tree.bounds(lo, hi)) return false;
  // A frame across the direction, and the shadow of the box in it.
  const p3 helper = std::fabs(d.x) < 0.9f ? p3(1.f, 0.f, 0.f) : p3(0.f, 1.f, 0.f);
  const p3 u = p3::cross(d, helper).getNormalized(), v = p3::cross(d, u);
  float uMin = std::numeric_limits<float>::max(), uMax = -uMin, vMin = uMin, vMax = -uMin;
  float dMin = uMin;
  for (int corner = 0; corner < 8; ++corner) {
    const p3 c((corner & 1) ? hi.x : lo.x, (corner & 2) ? hi.y : lo.y, (corner & 4) ? hi.z : lo.z);
    uMin = std::min(uMin, c * u), uMax = std::max(uMax, c * u);
    vMin = std::min(vMin, c * v), vMax = std::max(vMax, c * v);
    dMin = std::min(dMin, c * d);
  }
  const double nu = std::floor(double(uMax - uMin) / spacing) + 1.0;
  const double nv = std::floor(double(vMax - vMin) / spacing) + 1.0;
  if (!(nu * nv <= MAX_NODES)) return false;
  const unsigned int cols = unsigned(nu), rows = unsigned(nv);
  const float depth = (hi - lo).norm() * 2.f + spacing;
  std::vector<unsigned int> node(size_t(cols) * rows, NONE);
  for (unsigned int j = 0; j < rows; ++j)
    for (unsigned int i = 0; i < cols; ++i) {
      const p3 origin =
          u * (uMin + float(i) * spacing) + v * (vMin + float(j) * spacing) + d * (dMin - spacing);
      MATH::rayHit hit;
      if (tree.firstHit(origin, d, depth, hit))
        node[size_t(j) * cols + i] = result.addVertex(origin + d * hit.t);
    }
  if (result.vn() == 0) return false;
  // Wound so the grid faces back along the direction, towards the viewer.
  for (unsigned int j = 0; j + 1 < rows; ++j)
    for (unsigned int i = 0; i + 1 < cols; ++i) {
      const unsigned int a = node[size_t(j) * cols + i], b = node[size_t(j) * cols + i + 1];
      const unsigned int c = node[size_t(j + 1) * cols + i + 1], e = node[size_t(j + 1) * cols + i];
      const bool all = a != NONE && b != NONE && c != NONE && e != NONE;
      if (all) {
        result.addTriFace(a, c, b);
        result.addTriFace(a, e, c);
      } else if (a != NONE && b != NONE && c != NONE) {
        result.addTriFace(a, c, b);
      } else if (a != NONE && c != NONE && e != NONE) {
        result.addTriFace(a, e, c);
      } else if (a != NONE && b != NONE && e != NONE) {
        result.addTriFace(a, e, b);
      } else if (b != NONE && c != NONE && e != NONE) {
        result.addTriFace(b, e, c);
      }
    }
  finish(result);
  return true;
}

unsigned int intersectionsRemoval(const editMesh& a, const editMesh& b, editMesh& result) {
  const editMesh copy(a);  // a and result may be one mesh
  MATH::triangleTree tree;
  buildTree(b, tree);
  result.clone(&copy);
  // A direction unlikely to run along any face of a modelled shape.
  const p3 ray = p3(0.5773f, 0.5774f, 0.5772f).getNormalized();
  p3 lo, hi;
  if (!tree.bounds(lo, hi)) return 0;
  const float reach = (hi - lo).norm() * 2.f + 1.f;
  std::vector<MATH::rayHit> hits;
  unsigned int moved = 0;
  for (unsigned int v = 0; v < result.vn(); ++v) {
    if (result.isVertDeleted(v)) continue;
    const p3 p = result.vPos(v);
    MATH::closestPointHit hit;
    if (!tree.closestPoint(p, std::numeric_limits<float>::max(), hit)) continue;
    if (std::sqrt(hit.squaredDistance) < TOUCHING) continue;
    if (tree.allHits(p, ray, reach, hits) % 2 == 0) continue;  // outside b
    result.vPos(v) = hit.point;
    ++moved;
  }
  if (moved) {
    result.updateSelVertPosSum();
    result.updateBBox();
    result.computeNormalizedFaceNormals();
    result.computeNormalizedVertexNormals();
  }
  return moved;
}

void computeEVEFStressTest(editMesh& mesh, unsigned int rounds) {
  timed("computeEVEFStressTest", rounds, [&] {
    mesh.computeEVEF();
    mesh.computeVE();
  });
}

void computeEVEFOptiStressTest(editMesh& mesh, unsigned int rounds) {
  timed("computeEVEFOptiStressTest", rounds, [&] {
    int progress = 0;
    mesh.computeEdgesOpt(progress);
    mesh.computeVE();
  });
}

}  // namespace REMESHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
