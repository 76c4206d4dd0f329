// The general fill's output pinned bit for bit: the faces in their order and the new
// positions. Rewrites of the patch machinery for speed must leave every one of these
// unchanged; the ear queue, the flip generator and the fairing rounds fix them.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "jev3d/algo/holefilling/computeHoleFilling.h"
#include "jev3d/algo/holefilling/internal/holePatch.h"
#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/algo/postprocessing/triSurface.h"
#include "pinnedOutput.h"
#include "support/dataFiles.h"

using namespace JEV::MESH;
using namespace JEV::MESH::ALGO;
using JEV::MESH::POSTPROCESSING::triMesh;
using p3 = JEV::MATH::point3<float>;

namespace {

// The vertex and face counts, the corners and the positions' bits.
uint64_t meshDigest(const triMesh& m) {
  pinnedOutput::byteHash d;
  const unsigned vn = m.vn(), fn = m.fn();
  d.add(&vn, sizeof vn);
  d.add(&fn, sizeof fn);
  for (unsigned f = 0; f < fn; ++f)
    for (unsigned i = 0; i < 3; ++i) {
      const unsigned v = m.fV(f, i);
      d.add(&v, sizeof v);
    }
  for (unsigned v = 0; v < vn; ++v) d.add(&m.vPos(v), sizeof(p3));
  return d.h;
}

// A wavy sheet with a round hole, a long slot and a one-triangle hole: loops of very
// different sizes and shapes on a curved surface.
triMesh wavySheetWithHoles() {
  triMesh m;
  const unsigned n = 48;
  for (unsigned y = 0; y <= n; ++y)
    for (unsigned x = 0; x <= n; ++x) {
      const float fx = float(x) / n, fy = float(y) / n;
      m.addVertex(p3(fx, fy, 0.08f * std::sin(7.f * fx) * std::cos(5.f * fy)));
    }
  auto inRound = [](float cx, float cy) {
    return (cx - 0.3f) * (cx - 0.3f) + (cy - 0.35f) * (cy - 0.35f) < 0.02f;
  };
  auto inSlot = [](float cx, float cy) {
    return cx > 0.55f && cx < 0.9f && std::fabs(cy - 0.7f) < 0.03f;
  };
  for (unsigned y = 0; y < n; ++y)
    for (unsigned x = 0; x < n; ++x) {
      const unsigned a = y * (n + 1) + x, b = a + 1, c = a + n + 1, d = c + 1;
      const float cx = (x + 0.5f) / n, cy = (y + 0.5f) / n;
      if (inRound(cx, cy) || inSlot(cx, cy)) continue;
      m.addFace(a, b, d);
      if (x == 40 && y == 10) continue;  // the single missing triangle
      m.addFace(a, d, c);
    }
  return m;
}

// The digests of the three forms: triangulation only, the fixed rounds, the faired fill.
// The feature size's sampler and the flip generator start from the same words for
// each, as in a fresh process.
std::vector<uint64_t> fillDigests(const triMesh& source) {
  std::vector<uint64_t> out;
  for (int form = 0; form < 3; ++form) {
    JEV::MESH::POSTPROCESSING::triSurface::setRandomState(0u);
    HOLEFILLING_INTERNAL::seedFlipRandom(1u);
    triMesh target;
    const bool ok = form == 2 ? computeHoleFillingFaired(source, 0, target)
                              : computeHoleFilling(source, 0, target, form == 0);
    EXPECT_TRUE(ok);
    EXPECT_GT(target.fn(), source.fn());
    out.push_back(meshDigest(target));
  }
  return out;
}

std::string hex(const std::vector<uint64_t>& v) {
  std::string s;
  char buf[24];
  for (uint64_t x : v)
    std::snprintf(buf, sizeof buf, "0x%016llxull, ", (unsigned long long)x), s += buf;
  return s;
}

}  // namespace

TEST(HoleFillingRepeat, GeneratedHolesFillToTheSameBits) {
  const std::vector<uint64_t> band = fillDigests(pinnedOutput::sphereBand(360, 6, 15.0));
  EXPECT_EQ(band, (std::vector<uint64_t>{0x09fa1cb730c93c5bull, 0x57b59017d3401402ull,
                                         0xdfd42749813e76f7ull}))
      << hex(band);
  const std::vector<uint64_t> sheet = fillDigests(wavySheetWithHoles());
  EXPECT_EQ(sheet, (std::vector<uint64_t>{0xcef992386f06fa13ull, 0x5d5bc24608a9b470ull,
                                          0xf87951900a3f50fdull}))
      << hex(sheet);
}

TEST(HoleFillingRepeat, TheBunnysHolesFillToTheSameBits) {
  JEV3D_REQUIRE_DATA("ply/stanford_bun_zipper.ply");
  triMesh bunny;
  ASSERT_TRUE(bunny.readPlyFromFile(dataFile("ply/stanford_bun_zipper.ply")));
  bunny.removeUnReferenceVertex();
  const std::vector<uint64_t> got = fillDigests(bunny);
  EXPECT_EQ(got, (std::vector<uint64_t>{0xfdaf45ed376ee883ull, 0xc524b4a19c6ed29cull,
                                        0x7eb0edbccbb1dd63ull}))
      << hex(got);
}
