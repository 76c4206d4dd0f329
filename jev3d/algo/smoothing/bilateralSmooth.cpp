#include "jev3d/algo/smoothing/bilateralSmooth.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <vector>

#include "jev3d/algo/postprocessing/triSurface.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "jev3d/mesh/meshInterface.h"

namespace JEV {
namespace MESH {
namespace ALGO {
namespace SMOOTHING {

using MATH::point3;
using POSTPROCESSING::triSurface;

namespace {

// The neighbourhood walk of one filter pass. Faces are marked with the walk's number, so
// the marks never need clearing: a larger number invalidates all old ones.
class bilateralWalk {
 public:
  explicit bilateralWalk(triSurface& s) : surface(s), mark(s.faces.size(), 0) {}

  // The mollifying pass: the area- and distance-weighted mean of the face centroids near
  // p, or p when nothing is near.
  point3<float> mollify(unsigned int v, const point3<float>& p, float inv1) {
    return walk(v, p, inv1, 0.f, nullptr);
  }
  // The robust pass: the weighted mean of p projected onto the faces' planes, the normals
  // taken from the mollified positions.
  point3<float> estimate(unsigned int v, const point3<float>& p, float inv1, float inv2,
                         const std::vector<point3<float>>& mollified) {
    return walk(v, p, inv1, inv2, &mollified);
  }

 private:
  point3<float> walk(unsigned int v, const point3<float>& p, float inv1, float inv2,
                     const std::vector<point3<float>>* mollified) {
    const std::vector<int>& around = surface.adjacentFaces[v];
    if (around.empty()) return p;
    ++counter;
    stack.assign(around.begin(), around.end());
    point3<float> sum;
    float weight = 0.f;
    const std::vector<point3<float>>& pos = surface.vertices;
    while (!stack.empty()) {
      const size_t f = size_t(stack.back());
      stack.pop_back();
      if (mark[f] == counter) continue;
      mark[f] = counter;
      const triSurface::face& t = surface.faces[f];
      const point3<float>&a = pos[size_t(t[0])], &b = pos[size_t(t[1])], &c = pos[size_t(t[2])];
      const point3<float> centroid = (a + b + c) * 0.33333334f;
      const float d = (centroid - p).squaredNorm() * inv1;
      if (!(d < 9.f)) continue;
      const float spatial = std::exp(-0.5f * d);
      if (spatial == 0.f) continue;
      float w = spatial * 0.5f * point3<float>::cross(b - a, c - a).norm();
      if (!mollified) {
        sum += centroid * w;
      } else {
        const std::vector<point3<float>>& m = *mollified;
        point3<float> n = point3<float>::cross(m[size_t(t[1])] - m[size_t(t[0])],
                                               m[size_t(t[2])] - m[size_t(t[0])]);
        const float length = n.norm();
        n = length > 0.f ? n / length : point3<float>(1.f, 0.f, 0.f);
        const point3<float> q = p - n * ((p - centroid) * n);
        const float e = (q - p).squaredNorm() * inv2;
        w *= e < 9.f ? std::exp(-0.5f * e) : 0.f;
        if (w == 0.f) continue;
        sum += q * w;
      }
      weight += w;
      for (int k = 0; k < 3; ++k) {
        const int g = surface.acrossEdge[f][size_t(k)];
        if (g >= 0 && mark[size_t(g)] != counter) stack.push_back(g);
      }
    }
    return weight != 0.f ? sum / weight : p;
  }

  triSurface& surface;
  std::vector<unsigned int> mark;
  unsigned int counter = 0;
  std::vector<int> stack;
};

}  // namespace

void computeBilateralSmooth(const meshInterface& mesh, float sigmaSpace, float sigmaRange,
                            std::vector<point3<float>>& result, SYSTEM::callBack*) {
  triSurface s;
  s.fromMesh(mesh);
  const float f = s.featureSize();
  std::cout << "bilateral smoothing " << f << std::endl;
  const float s1 = sigmaSpace * f, s2 = sigmaRange * f;

  s.needFaces();
  s.needAdjacentFaces();
  s.needAcrossEdge();
  std::cout << "\rSmoothing... " << std::flush;
  const auto start = std::chrono::steady_clock::now();
  const size_t nv = s.vertices.size();
  bilateralWalk walk(s);
  std::vector<point3<float>> flt(nv);
  const float mollifyInv = 1.f / ((s1 * 0.5f) * (s1 * 0.5f));
  for (size_t i = 0; i < nv; ++i) flt[i] = walk.mollify(unsigned(i), s.vertices[i], mollifyInv);
  // In place, in index order: later centroids see the vertices already filtered.
  const float inv1 = 1.f / (s1 * s1), inv2 = 1.f / (s2 * s2);
  for (size_t i = 0; i < nv; ++i)
    s.vertices[i] = walk.estimate(unsigned(i), flt[i], inv1, inv2, flt);
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  char line[64];
  std::snprintf(line, sizeof line, "Done.  Filtering took %f sec.\n", seconds);
  std::cout << line << "done" << std::endl;
  result.assign(s.vertices.begin(), s.vertices.end());
  std::cout << "done" << std::endl;
}

void computeBilateralSmooth(const editMesh& mesh, float sigmaSpace, float sigmaRange,
                            std::vector<point3<float>>& result, SYSTEM::callBack* cb) {
  // The view is only read.
  const editMeshInterface view(const_cast<editMesh&>(mesh));
  computeBilateralSmooth(view, sigmaSpace, sigmaRange, result, cb);
}

}  // namespace SMOOTHING
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
