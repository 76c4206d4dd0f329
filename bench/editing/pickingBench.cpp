// Picking rays through an editable node against Embree on the same triangles.
//   rays1M/jev3d    one million random rays through the bounding box of a 1M-triangle
//                   sphere, each through editMeshNode::getRayIntersect (first hit, either
//                   side), one pass a repetition
//   rays1M/embree   the same rays through rtcIntersect1 on the same triangles
// Counters: rays a second; differingHits, the rays whose hit differs from Embree's (a miss
// against a hit, another t, or another face away from the edges); edgeTies, the rays that
// meet an edge or vertex two faces share at the same t, where each side took one face.
#include <benchmark/benchmark.h>
#include <embree3/rtcore.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "jev3d/editing/editMeshNode.h"
#include "jev3d/math/triangleQueries.h"

namespace {

using JEV::MESH::editMesh;
using JEV::MESH::EDITING::editMeshNode;
using p3 = JEV::MATH::point3<float>;

constexpr unsigned rayCount = 1000000;

struct scene {
  scene() {
    editMesh& m = node.getEditMesh();
    m.makeSphere(500, 1000);
    m.computeFABBTree(8);
    // The same fan triangles for Embree, with the face each belongs to.
    std::vector<unsigned> corners;
    for (unsigned f = 0; f < m.fn(); ++f) {
      if (m.isFaceDeleted(f)) continue;
      for (unsigned t = 0; t < m.getTriangleNumFace(f); ++t) {
        unsigned a, b, c;
        m.getTriangle(f, t, a, b, c);
        corners.insert(corners.end(), {a, b, c});
        faceOf.push_back(f);
      }
    }
    device = rtcNewDevice(nullptr);
    world = rtcNewScene(device);
    RTCGeometry g = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_TRIANGLE);
    auto* v = static_cast<float*>(
        rtcSetNewGeometryBuffer(g, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, 12, m.vn()));
    for (unsigned i = 0; i < m.vn(); ++i) {
      v[3 * i] = m.vPos(i).x;
      v[3 * i + 1] = m.vPos(i).y;
      v[3 * i + 2] = m.vPos(i).z;
    }
    auto* idx = static_cast<unsigned*>(rtcSetNewGeometryBuffer(
        g, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, 12, corners.size() / 3));
    std::copy(corners.begin(), corners.end(), idx);
    rtcCommitGeometry(g);
    rtcAttachGeometry(world, g);
    rtcReleaseGeometry(g);
    rtcCommitScene(world);

    m.computeBBox();
    const p3 lo = m.getBBoxMin(), hi = m.getBBoxMax();
    std::mt19937 random(7);
    std::uniform_real_distribution<float> unit(0.f, 1.f), sym(-1.f, 1.f);
    for (unsigned r = 0; r < rayCount; ++r) {
      origins.emplace_back(lo.x + (hi.x - lo.x) * unit(random), lo.y + (hi.y - lo.y) * unit(random),
                           lo.z + (hi.z - lo.z) * unit(random));
      p3 d;
      do d = p3(sym(random), sym(random), sym(random));
      while (d * d > 1.f || d * d < 1e-4f);
      directions.push_back(d / std::sqrt(d * d));
    }
    triangles = unsigned(faceOf.size());
  }
  ~scene() {
    rtcReleaseScene(world);
    rtcReleaseDevice(device);
  }
  struct hit {
    unsigned face = ~0u;  // ~0u for a miss
    float t = 0.0f;
  };
  // The face Embree hits first.
  hit embreeHit(unsigned r) const {
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    RTCRayHit h{};
    h.ray.org_x = origins[r].x, h.ray.org_y = origins[r].y, h.ray.org_z = origins[r].z;
    h.ray.dir_x = directions[r].x, h.ray.dir_y = directions[r].y, h.ray.dir_z = directions[r].z;
    h.ray.tnear = 0.f;
    h.ray.tfar = std::numeric_limits<float>::infinity();
    h.ray.mask = ~0u;
    h.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(world, &context, &h);
    if (h.hit.geomID == RTC_INVALID_GEOMETRY_ID) return {};
    return {faceOf[h.hit.primID], h.ray.tfar};
  }
  hit nodeHit(unsigned r) {
    JEV::MATH::rayHit found;
    p3 point;
    if (!node.getRayIntersect(origins[r], directions[r], found, point)) return {};
    return {found.face, found.t};
  }
  // Whether p lies on face f, within the rounding of a hit.
  bool onFace(unsigned f, const p3& p) {
    const editMesh& m = node.getEditMesh();
    for (unsigned t = 0; t < m.getTriangleNumFace(f); ++t) {
      unsigned a, b, c;
      m.getTriangle(f, t, a, b, c);
      float u, v;
      const p3 q = JEV::MATH::closestPointOnTriangle(p, m.vPos(a), m.vPos(b), m.vPos(c), u, v);
      if ((q - p).squaredNorm() <= 1e-10f) return true;
    }
    return false;
  }

  editMeshNode node;
  std::vector<unsigned> faceOf;
  std::vector<p3> origins, directions;
  RTCDevice device;
  RTCScene world;
  unsigned triangles = 0;
};

scene& theScene() {
  static scene s;
  return s;
}

// One pass of all rays a repetition through `hit`, with the rate as a counter.
template <class H>
void castRays(benchmark::State& state, H hit) {
  unsigned hits = 0;
  for (auto _ : state) {
    for (unsigned r = 0; r < rayCount; ++r) hits += hit(r).face != ~0u;
    benchmark::DoNotOptimize(hits);
  }
  state.counters["rays/s"] = benchmark::Counter(double(rayCount) * double(state.iterations()),
                                                benchmark::Counter::kIsRate);
}

void rays1M_jev3d(benchmark::State& state) {
  scene& s = theScene();
  castRays(state, [&](unsigned r) { return s.nodeHit(r); });
  // Identical: both miss, or both meet the same face at the same t within float rounding.
  // Where the ray meets an edge or vertex shared by two faces, either face is right.
  unsigned differ = 0, ties = 0;
  for (unsigned r = 0; r < rayCount; ++r) {
    const scene::hit ours = s.nodeHit(r), theirs = s.embreeHit(r);
    if (ours.face == ~0u || theirs.face == ~0u) {
      differ += ours.face != theirs.face;
      continue;
    }
    if (std::abs(ours.t - theirs.t) > 1e-5f * std::max(1.0f, theirs.t)) {
      ++differ;
    } else if (ours.face != theirs.face) {
      const p3 at = s.origins[r] + s.directions[r] * theirs.t;
      if (s.onFace(ours.face, at) && s.onFace(theirs.face, at)) {
        ++ties;
      } else {
        ++differ;
      }
    }
  }
  state.counters["triangles"] = s.triangles;
  state.counters["differingHits"] = differ;
  state.counters["edgeTies"] = ties;
}

void rays1M_embree(benchmark::State& state) {
  scene& s = theScene();
  castRays(state, [&](unsigned r) { return s.embreeHit(r); });
}

}  // namespace

BENCHMARK(rays1M_jev3d)->Name("rays1M/jev3d")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(rays1M_embree)->Name("rays1M/embree")->Unit(benchmark::kMillisecond)->UseRealTime();
