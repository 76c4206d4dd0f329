// Runs the built jevmesh executable on files the tests write, and checks what it prints,
// writes and returns.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "algo/smoothing/smoothingMeshes.h"
#include "jev3d/algo/measurement/distance.h"
#include "jev3d/io/ply/ioPly.h"
#include "support/dataFiles.h"
#include "support/meshes.h"
#include "support/tempDir.h"

namespace {

using JEV::IO::PLY::ioPly;
using JEV::IO::PLY::plyPolygonMesh;

struct runResult {
  int status = -1;
  std::string out, err;
};

std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

class jevmesh : public ::testing::Test {
 protected:
  runResult run(const std::string& arguments) {
    const std::string out = dir.file("stdout.txt"), err = dir.file("stderr.txt");
    const std::string line =
        std::string(JEVMESH_PATH) + " " + arguments + " >" + out + " 2>" + err + " </dev/null";
    runResult r;
    const int raw = std::system(line.c_str());
    r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    r.out = slurp(out);
    r.err = slurp(err);
    return r;
  }

  // The value printed after "label:" in the info report.
  static std::string field(const std::string& report, const std::string& label) {
    const auto at = report.find(label + ":");
    if (at == std::string::npos) return "<missing " + label + ">";
    auto begin = report.find_first_not_of(' ', at + label.size() + 1);
    return report.substr(begin, report.find('\n', begin) - begin);
  }

  std::string writePly(JEV::MESH::editMesh& m, const std::string& name, bool binary = true) {
    plyPolygonMesh out;
    for (unsigned v = 0; v < m.vn(); ++v) out.positions.push_back(m.vPos(v));
    for (unsigned f = 0; f < m.fn(); ++f) {
      out.cornerCounts.push_back(m.fVNum(f));
      for (unsigned i = 0; i < m.fVNum(f); ++i) out.corners.push_back(m.fV(f, i));
    }
    const std::string path = dir.file(name);
    EXPECT_TRUE(ioPly::writePlyPolygonsToFile(path, out, binary));
    return path;
  }

  tempDir dir;
};

TEST_F(jevmesh, infoDescribesAGridWithHoles) {
  JEV::MESH::editMesh m;
  testMeshes::makeGrid(m, 6, 4, true, {{1, 1}, {4, 2}});
  m.addVertex(50.f, 50.f, 50.f);  // isolated, and it stretches the box
  const std::string path = writePly(m, "grid.ply");

  const runResult r = run("info " + path);
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(field(r.out, "vertices"), "36");
  EXPECT_EQ(field(r.out, "faces"), "22 (22 quads)");
  // 7*4 horizontal + 6*5 vertical edges, none lost to the holes' interior.
  EXPECT_EQ(field(r.out, "edges"), "58");
  EXPECT_EQ(field(r.out, "boundary loops"), "3 (sizes 20, 4, 4)");
  EXPECT_EQ(field(r.out, "boundary edges"), "28");
  EXPECT_EQ(field(r.out, "non-manifold edges"), "0");
  EXPECT_EQ(field(r.out, "isolated vertices"), "1");
  EXPECT_EQ(field(r.out, "components"), "1");
  EXPECT_EQ(field(r.out, "bounding box"), "(0, 0, 0) - (50, 50, 50)");
  EXPECT_EQ(field(r.out, "surface area"), "22");
  EXPECT_EQ(field(r.out, "volume"), "not closed");
}

TEST_F(jevmesh, infoGivesTheVolumeOfAClosedMesh) {
  JEV::MESH::editMesh m;
  testMeshes::makeCube(m);
  const std::string path = writePly(m, "cube.ply", false);
  const runResult r = run("info " + path);
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(field(r.out, "boundary loops"), "0");
  EXPECT_EQ(field(r.out, "surface area"), "6");
  EXPECT_EQ(field(r.out, "volume"), "1");
}

TEST_F(jevmesh, plyToStlToPlyKeepsTheSurface) {
  JEV::MESH::editMesh m;
  testMeshes::makeSphere(m, 8, 12);
  const std::string ply = writePly(m, "sphere.ply");
  const runResult before = run("info " + ply);
  plyPolygonMesh original;
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(ply, original));
  auto sorted = [](std::vector<JEV::MATH::point3<float>> p) {
    std::sort(p.begin(), p.end());
    return p;
  };

  for (const char* form : {"--binary", "--ascii"}) {
    SCOPED_TRACE(form);
    const std::string stl = dir.file("sphere.stl"), back = dir.file("back.ply");
    ASSERT_EQ(run("convert " + ply + " " + stl + " " + form).status, 0);
    ASSERT_EQ(run("convert " + stl + " " + back).status, 0);
    plyPolygonMesh after;
    ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(back, after));
    EXPECT_TRUE(std::all_of(after.cornerCounts.begin(), after.cornerCounts.end(),
                            [](unsigned n) { return n == 3; }));
    // STL welds on exact positions, so each vertex comes back once; ASCII rounds them.
    const auto a = sorted(original.positions), b = sorted(after.positions);
    ASSERT_EQ(a.size(), b.size());
    for (size_t i = 0; i < a.size(); ++i)
      EXPECT_LE((a[i] - b[i]).norm(), std::string(form) == "--binary" ? 0.f : 1e-5f);
    const runResult r = run("info " + back);
    EXPECT_EQ(field(r.out, "boundary loops"), "0");
    EXPECT_NEAR(std::stod(field(r.out, "surface area")),
                std::stod(field(before.out, "surface area")), 1e-4);
    EXPECT_NEAR(std::stod(field(r.out, "volume")), std::stod(field(before.out, "volume")), 1e-4);
  }
}

TEST_F(jevmesh, subdivisionAndTriangulationChangeTheFaces) {
  JEV::MESH::editMesh m;
  testMeshes::makeCube(m);
  const std::string cube = writePly(m, "cube.ply");
  const std::string cc = dir.file("cc.ply"), tri = dir.file("tri.stl"), mid = dir.file("mid.ply");
  ASSERT_EQ(run("subdivide " + cube + " " + cc + " --scheme catmull-clark -n 2").status, 0);
  EXPECT_EQ(field(run("info " + cc).out, "faces"), "96 (96 quads)");
  ASSERT_EQ(run("triangulate " + cube + " " + tri).status, 0);
  EXPECT_EQ(field(run("info " + tri).out, "faces"), "12 (12 triangles)");
  ASSERT_EQ(run("subdivide " + tri + " " + mid + " --scheme midpoint -n 1").status, 0);
  const runResult r = run("info " + mid);
  EXPECT_EQ(field(r.out, "faces"), "48 (48 triangles)");
  EXPECT_EQ(field(r.out, "volume"), "1");  // midpoints stay on the surface
}

TEST_F(jevmesh, mirrorAddsAReflectedCopy) {
  // Two cells over x in [0, 2]; the plane through the second cell's centre is x = 1.5, so
  // the copy covers x in [1, 3].
  JEV::MESH::editMesh m;
  testMeshes::makeGrid(m, 2, 1);
  const std::string path = writePly(m, "strip.ply");
  const std::string out = dir.file("mirrored.ply");
  ASSERT_EQ(run("mirror " + path + " " + out + " --face 1 --normal 2 0 0").status, 0);
  const runResult r = run("info " + out);
  EXPECT_EQ(field(r.out, "faces"), "4 (4 quads)");
  EXPECT_EQ(field(r.out, "bounding box"), "(0, 0, 0) - (3, 1, 0)");
  EXPECT_EQ(field(r.out, "surface area"), "4");
  EXPECT_EQ(run("mirror " + path + " " + out + " --face 7 --normal 1 0 0").status, 1);
}

TEST_F(jevmesh, mirrorWeldsOnlyWhenAsked) {
  // The cube mirrored across its face x = 1: a plain copy doubles the four vertices and
  // the face on the plane; --weld shares them and drops that face on both sides.
  JEV::MESH::editMesh m;
  m.makeCube();
  const std::string path = writePly(m, "cube.ply");
  const std::string out = dir.file("mirrored.ply");
  const unsigned onPlane = [&] {
    for (unsigned f = 0; f < m.fn(); ++f) {
      bool all = true;
      for (unsigned i = 0; i < 4; ++i) all = all && m.vPos(m.fV(f, i)).x == 1.f;
      if (all) return f;
    }
    return 0u;
  }();
  const std::string args = " --face " + std::to_string(onPlane) + " --normal 1 0 0";
  ASSERT_EQ(run("mirror " + path + " " + out + args).status, 0);
  runResult r = run("info " + out);
  EXPECT_EQ(field(r.out, "vertices"), "16");
  EXPECT_EQ(field(r.out, "faces"), "12 (12 quads)");
  EXPECT_EQ(field(r.out, "components"), "2");
  ASSERT_EQ(run("mirror " + path + " " + out + args + " --weld").status, 0);
  r = run("info " + out);
  EXPECT_EQ(field(r.out, "vertices"), "12");
  EXPECT_EQ(field(r.out, "faces"), "10 (10 quads)");
  EXPECT_EQ(field(r.out, "boundary loops"), "0");
  EXPECT_EQ(field(r.out, "bounding box"), "(-1, -1, -1) - (3, 1, 1)");
  EXPECT_EQ(field(r.out, "volume"), "16");
}

TEST_F(jevmesh, badInputAndBadUsageHaveTheirOwnStatus) {
  JEV::MESH::editMesh m;
  testMeshes::makeSphere(m, 6, 8);
  const std::string good = writePly(m, "good.ply");
  const std::string text = slurp(good);
  const std::string cut = dir.file("cut.ply");
  std::ofstream(cut, std::ios::binary) << text.substr(0, text.size() / 2);

  const runResult truncated = run("info " + cut);
  EXPECT_EQ(truncated.status, 1);
  // The reader may say what it met first; the tool's own last line names the file.
  const std::string err = truncated.err;
  const std::string lastLine = err.substr(err.rfind('\n', err.size() - 2) + 1);
  EXPECT_EQ(lastLine.rfind("jevmesh: " + cut + ": ", 0), 0u) << err;

  EXPECT_EQ(run("info " + dir.file("missing.ply")).status, 1);
  EXPECT_EQ(run("info " + good + " --frobnicate").status, 2);
  EXPECT_EQ(run("subdivide " + good + " " + dir.file("o.ply") + " --scheme sqrt3").status, 2);
  EXPECT_EQ(run("mirror " + good + " " + dir.file("o.ply") + " --face 0 --normal 1 0").status, 2);
  EXPECT_EQ(run("convert " + good).status, 2);
  const runResult both = run("triangulate " + good + " " + dir.file("o.ply") + " --ascii --binary");
  EXPECT_EQ(both.status, 2);
  EXPECT_EQ(both.err.rfind("jevmesh triangulate: ", 0), 0u) << both.err;
  EXPECT_EQ(run("explode " + good).status, 2);
  EXPECT_EQ(run("info " + dir.file("mesh.obj")).status, 2);

  const runResult help = run("subdivide --help");
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("--scheme"), std::string::npos);
}

TEST_F(jevmesh, progressStaysOffWhenNotOnATerminal) {
  JEV::MESH::editMesh m;
  testMeshes::makeGrid(m, 30, 30);
  const std::string path = writePly(m, "grid.ply");
  const runResult r = run("convert " + path + " " + dir.file("grid.stl"));
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.err, "");
}

TEST_F(jevmesh, progressShowsOnATerminal) {
  if (std::system("command -v script >/dev/null 2>&1") != 0) GTEST_SKIP() << "no script(1)";
  JEV::MESH::editMesh m;
  testMeshes::makeGrid(m, 30, 30);
  const std::string path = writePly(m, "grid.ply");
  const std::string command =
      std::string(JEVMESH_PATH) + " subdivide " + path + " " + dir.file("fine.ply");
  // script(1) gives the tool a pseudo-terminal for its standard streams.
  const std::string out = dir.file("tty.txt");
  ASSERT_EQ(std::system(("script -qec '" + command + "' /dev/null >" + out).c_str()), 0);
  const std::string text = slurp(out);
  EXPECT_NE(text.find("step 1/1 ["), std::string::npos) << text;
  EXPECT_NE(text.find("100%"), std::string::npos) << text;
  ASSERT_EQ(std::system(("script -qec '" + command + " --quiet' /dev/null >" + out).c_str()), 0);
  EXPECT_EQ(slurp(out).find('%'), std::string::npos);
}

TEST_F(jevmesh, infoListsTheTenLargestLoopsAndCountsTheRest) {
  JEV::MESH::editMesh m;
  std::vector<std::pair<unsigned, unsigned>> holes;
  for (unsigned j = 1; j < 9; j += 2)
    for (unsigned i = 1; i < 9; i += 2)
      if (holes.size() < 13) holes.push_back({i, j});
  testMeshes::makeGrid(m, 10, 10, true, holes);
  const runResult r = run("info " + writePly(m, "holes.ply"));
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(field(r.out, "boundary loops"), "14 (sizes 40, 4, 4, 4, 4, 4, 4, 4, 4, 4, and 4 more)");
}

TEST_F(jevmesh, cleanWeldsDropsBadFacesAndSpecks) {
  // A unit cube whose last quad uses a second vertex at the first one's place, a repeat
  // of the first quad, a face with a repeated corner, a lone triangle and a vertex of no
  // face.
  plyPolygonMesh in;
  for (unsigned k = 0; k < 8; ++k)
    in.positions.emplace_back(float(k & 1), float((k >> 1) & 1), float(k >> 2));
  in.positions.emplace_back(0.f, 0.f, 0.f);  // 8: same place as 0
  in.positions.emplace_back(5.f, 5.f, 5.f), in.positions.emplace_back(6.f, 5.f, 5.f);
  in.positions.emplace_back(5.f, 6.f, 5.f);  // 9-11: the speck
  in.positions.emplace_back(9.f, 9.f, 9.f);  // 12: isolated
  const std::vector<std::vector<unsigned>> faces = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                                    {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5},
                                                    {0, 2, 3, 1}, {0, 0, 1},    {9, 10, 11}};
  for (const auto& f : faces) {
    in.cornerCounts.push_back(unsigned(f.size()));
    in.corners.insert(in.corners.end(), f.begin(), f.end());
  }
  in.corners[16] = 8;  // the x = 0 quad starts at the second vertex
  const std::string path = dir.file("dirty.ply"), out = dir.file("clean.ply");
  ASSERT_TRUE(ioPly::writePlyPolygonsToFile(path, in, true));

  const runResult r = run("clean " + path + " " + out + " --min-faces 2");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(field(r.out, "welded vertices"), "1");
  EXPECT_EQ(field(r.out, "degenerate faces"), "1");
  EXPECT_EQ(field(r.out, "duplicate faces"), "2");
  EXPECT_EQ(field(r.out, "faces of small pieces"), "1");
  EXPECT_EQ(field(r.out, "unreferenced vertices"), "4");
  const runResult info = run("info " + out);
  EXPECT_EQ(field(info.out, "vertices"), "8");
  EXPECT_EQ(field(info.out, "faces"), "12 (12 triangles)");
  EXPECT_EQ(field(info.out, "boundary loops"), "0");
  EXPECT_EQ(field(info.out, "volume"), "1");

  EXPECT_EQ(run("clean " + path + " " + out + " --min-faces 0").status, 2);
  EXPECT_EQ(run("clean " + dir.file("none.ply") + " " + out).status, 1);
  EXPECT_EQ(run("clean " + path).status, 2);
  const runResult quiet = run("clean " + path + " " + out + " --quiet");
  EXPECT_EQ(quiet.status, 0);
  EXPECT_EQ(quiet.out, "");
}

TEST_F(jevmesh, infoOnScans) {
  JEV3D_REQUIRE_DATA("ply/stanford_bun_zipper.ply");
  const runResult bunny = run("info " + dataFile("ply/stanford_bun_zipper.ply"));
  ASSERT_EQ(bunny.status, 0) << bunny.err;
  EXPECT_EQ(field(bunny.out, "faces"), "69451 (69451 triangles)");
  EXPECT_EQ(field(bunny.out, "boundary loops").substr(0, 2), "5 ");
  EXPECT_EQ(field(bunny.out, "isolated vertices"), "1113");

  const runResult horse = run("info " + dataFile("ply/cyberware_horse.ply"));
  ASSERT_EQ(horse.status, 0) << horse.err;
  EXPECT_EQ(field(horse.out, "boundary loops"), "0");
  EXPECT_NE(field(horse.out, "volume"), "not closed");

  const runResult spider = run("info " + dataFile("stl/assimp_Spider_binary.stl"));
  ASSERT_EQ(spider.status, 0) << spider.err;
  EXPECT_EQ(field(spider.out, "vertices"), "722");
  EXPECT_EQ(field(spider.out, "non-manifold edges"), "16");
  EXPECT_EQ(field(spider.out, "boundary loops").substr(0, 2), "6 ");
  EXPECT_EQ(field(spider.out, "degenerate faces"), "56");

  const runResult dental = run("info " + dataFile("ply/dental_Upper_1.ply"));
  EXPECT_EQ(field(dental.out, "components"), "3");
  EXPECT_EQ(field(dental.out, "boundary loops").substr(0, 2), "3 ");
}

TEST_F(jevmesh, decimateKeepsTheCountAskedAndRefusesBadOptions) {
  JEV::MESH::editMesh m;
  testMeshes::makeSphere(m, 24, 48);
  const std::string in = writePly(m, "sphere.ply"), out = dir.file("small.ply");
  const runResult r = run("decimate " + in + " " + out + " --faces 300");
  ASSERT_EQ(r.status, 0) << r.err;
  plyPolygonMesh small;
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(out, small));
  EXPECT_LE(small.cornerCounts.size(), 300u);
  EXPECT_GE(small.cornerCounts.size(), 290u);
  for (const auto& p : small.positions) EXPECT_NEAR(p.norm(), 1.f, 0.05f);

  const runResult half = run("decimate " + in + " " + out + " --ratio 0.5");
  ASSERT_EQ(half.status, 0) << half.err;
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(out, small));
  EXPECT_LE(small.cornerCounts.size(), 24u * 48u);  // half of the 2·24·48 - 2·48 triangles

  EXPECT_EQ(run("decimate " + in + " " + out).status, 2);
  EXPECT_EQ(run("decimate " + in + " " + out + " --faces 10 --ratio 0.5").status, 2);
  EXPECT_EQ(run("decimate " + in + " " + out + " --ratio 1.5").status, 2);
  EXPECT_EQ(run("decimate " + in + " " + out + " --faces -3").status, 2);
  EXPECT_EQ(run("decimate " + dir.file("missing.ply") + " " + out + " --faces 3").status, 1);
}

TEST_F(jevmesh, remeshEvensOutASphere) {
  JEV::MESH::editMesh m;
  testMeshes::makeSphere(m, 12, 24);
  const std::string in = writePly(m, "sphere.ply"), out = dir.file("even.ply");
  const runResult r = run("remesh " + in + " " + out + " --length 0.15 -n 2");
  ASSERT_EQ(r.status, 0) << r.err;
  plyPolygonMesh even;
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(out, even));
  EXPECT_GT(even.cornerCounts.size(), 2u * 12u * 24u);
  for (const auto& p : even.positions) EXPECT_NEAR(p.norm(), 1.f, 0.02f);
  unsigned long longEdges = 0;
  for (size_t k = 0; k < even.corners.size(); ++k) {
    const size_t next = k % 3 == 2 ? k - 2 : k + 1;
    longEdges += (even.positions[even.corners[k]] - even.positions[even.corners[next]]).norm() > 0.15f;
  }
  EXPECT_LT(longEdges, even.corners.size() / 20);

  EXPECT_EQ(r.out.find("rejected"), std::string::npos) << r.out;

  // A refused flip, which --verbose reports.
  JEV::MESH::editMesh fan;
  testMeshes::makePulledDisc(fan);
  testMeshes::finishMesh(fan);
  const std::string fanIn = writePly(fan, "fan.ply");
  const runResult quietFan = run("remesh " + fanIn + " " + out + " --length 5");
  ASSERT_EQ(quietFan.status, 0) << quietFan.err;
  EXPECT_EQ(quietFan.out.find("rejected"), std::string::npos) << quietFan.out;
  const runResult verboseFan = run("remesh " + fanIn + " " + out + " --length 5 --verbose");
  ASSERT_EQ(verboseFan.status, 0) << verboseFan.err;
  EXPECT_NE(verboseFan.out.find("edge flip rejected: normal inversion\n"), std::string::npos)
      << verboseFan.out;

  EXPECT_EQ(run("remesh " + in + " " + out).status, 2);
  EXPECT_EQ(run("remesh " + in + " " + out + " --length -1").status, 2);
  EXPECT_EQ(run("remesh " + in + " " + out + " --length 0.1 -n 0").status, 2);
}

TEST_F(jevmesh, voxelizeWritesAClosedBlockySurface) {
  JEV::MESH::editMesh m;
  testMeshes::makeSphere(m, 16, 32);
  const std::string in = writePly(m, "sphere.ply"), out = dir.file("voxels.ply");
  const runResult r = run("voxelize " + in + " " + out + " --size 0.1");
  ASSERT_EQ(r.status, 0) << r.err;
  plyPolygonMesh blocks;
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(out, blocks));
  ASSERT_FALSE(blocks.cornerCounts.empty());
  for (unsigned n : blocks.cornerCounts) EXPECT_EQ(n, 4u);
  const runResult info = run("info " + out);
  EXPECT_EQ(field(info.out, "boundary loops"), "0");
  for (const auto& p : blocks.positions) EXPECT_LT(p.norm(), 1.f + 0.2f);

  EXPECT_EQ(run("voxelize " + in + " " + out).status, 2);
  EXPECT_EQ(run("voxelize " + in + " " + out + " --size 0").status, 2);
  EXPECT_EQ(run("voxelize " + in + " " + out + " --size 1e-9").status, 1);
}

TEST_F(jevmesh, subdivideByLoopAndButterfly) {
  JEV::MESH::editMesh m;
  m.makeOctahedron();
  const std::string in = writePly(m, "octahedron.ply"), out = dir.file("fine.ply");
  for (const char* scheme : {"loop", "butterfly"}) {
    const runResult r = run(std::string("subdivide ") + in + " " + out + " --scheme " + scheme +
                            " -n 2");
    ASSERT_EQ(r.status, 0) << r.err;
    plyPolygonMesh fine;
    ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(out, fine));
    EXPECT_EQ(fine.cornerCounts.size(), 8u * 16u) << scheme;
    EXPECT_EQ(fine.positions.size(), 66u) << scheme;  // V - E + F = 2 with E = 3F / 2
    EXPECT_EQ(field(run("info " + out).out, "boundary loops"), "0");
  }
  EXPECT_EQ(run("subdivide " + in + " " + out + " --scheme sqrt3").status, 2);
}

// A 10 x 10 grid of triangles with every vertex lifted by up to 0.2: the smoothing
// commands' input. Border vertices are those with i or j at 0 or 10.
JEV::MESH::editMesh bumpyGrid() {
  JEV::MESH::editMesh m;
  testMeshes::makeGrid(m, 10, 10, false);
  for (unsigned v = 0; v < m.vn(); ++v) m.vPos(v).z = 0.2f * float((v * 7919u) % 11u) / 10.f;
  return m;
}

double zVariance(const plyPolygonMesh& m) {
  double s = 0, s2 = 0;
  for (const auto& p : m.positions) s += p.z, s2 += double(p.z) * p.z;
  const double n = double(m.positions.size());
  return s2 / n - (s / n) * (s / n);
}

TEST_F(jevmesh, smoothFlattensBumpsByEveryScheme) {
  JEV::MESH::editMesh m = bumpyGrid();
  const std::string in = writePly(m, "bumpy.ply");
  plyPolygonMesh original;
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(in, original));
  for (const char* scheme : {"laplacian", "two-step", "bilateral"}) {
    SCOPED_TRACE(scheme);
    const std::string out = dir.file(std::string(scheme) + ".ply");
    const runResult r = run("smooth " + in + " " + out + " --scheme " + scheme + " -n 4");
    ASSERT_EQ(r.status, 0) << r.err;
    plyPolygonMesh after;
    ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(out, after));
    ASSERT_EQ(after.positions.size(), original.positions.size());
    EXPECT_LT(zVariance(after), 0.75 * zVariance(original));
  }
}

// Root mean square of |p| - 1, and the mean |p|, over the vertices read back.
void radii(const plyPolygonMesh& m, double& deviation, double& mean) {
  double s = 0, s2 = 0;
  for (const auto& p : m.positions) {
    const double r = p.norm();
    s += r, s2 += (r - 1.0) * (r - 1.0);
  }
  deviation = std::sqrt(s2 / double(m.positions.size()));
  mean = s / double(m.positions.size());
}

TEST_F(jevmesh, smoothTaubinRemovesNoiseWithoutShrinking) {
  JEV::MESH::editMesh m;
  smoothingMeshes::makeNoisySphere(m, 24, 32, 0.05f);
  const std::string in = writePly(m, "noisy.ply");
  const std::string taubin = dir.file("taubin.ply"), laplacian = dir.file("laplacian.ply");
  ASSERT_EQ(run("smooth " + in + " " + taubin + " --scheme taubin -n 10").status, 0);
  ASSERT_EQ(run("smooth " + in + " " + laplacian + " -n 10").status, 0);
  plyPolygonMesh original, t, l;
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(in, original));
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(taubin, t));
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(laplacian, l));
  double noisy, noisyMean, smoothed, smoothedMean, shrunk, shrunkMean;
  radii(original, noisy, noisyMean);
  radii(t, smoothed, smoothedMean);
  radii(l, shrunk, shrunkMean);
  EXPECT_LT(smoothed, 0.5 * noisy);
  EXPECT_NEAR(smoothedMean, noisyMean, 0.01);
  EXPECT_LT(shrunkMean, noisyMean - 0.05);
}

TEST_F(jevmesh, smoothKeepsTheBorderUnlessAsked) {
  JEV::MESH::editMesh m = bumpyGrid();
  const std::string in = writePly(m, "bumpy.ply");
  plyPolygonMesh original, kept, moved, held;
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(in, original));
  ASSERT_EQ(run("smooth " + in + " " + dir.file("a.ply") + " -n 3").status, 0);
  ASSERT_EQ(run("smooth " + in + " " + dir.file("b.ply") + " -n 3 --smooth-border").status, 0);
  ASSERT_EQ(
      run("smooth " + in + " " + dir.file("c.ply") + " --scheme two-step --keep-border").status, 0);
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(dir.file("a.ply"), kept));
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(dir.file("b.ply"), moved));
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(dir.file("c.ply"), held));
  unsigned borderMoved = 0;
  for (unsigned v = 0; v < original.positions.size(); ++v) {
    const unsigned i = v % 11, j = v / 11;
    if (i != 0 && j != 0 && i != 10 && j != 10) continue;
    EXPECT_EQ(kept.positions[v].z, original.positions[v].z) << v;
    EXPECT_EQ(held.positions[v].z, original.positions[v].z) << v;
    borderMoved += moved.positions[v].z != original.positions[v].z;
  }
  EXPECT_GT(borderMoved, 10u);
}

TEST_F(jevmesh, smoothRejectsBadSchemesAndCounts) {
  JEV::MESH::editMesh m = bumpyGrid();
  const std::string in = writePly(m, "bumpy.ply"), out = dir.file("out.ply");
  EXPECT_EQ(run("smooth " + in + " " + out + " --scheme wobble").status, 2);
  EXPECT_EQ(run("smooth " + in + " " + out + " -n -1").status, 2);
  EXPECT_EQ(run("smooth " + in + " " + out + " --feature-angle 200").status, 2);
  EXPECT_EQ(run("smooth " + dir.file("missing.ply") + " " + out).status, 1);
}


TEST_F(jevmesh, distanceMeasuresBothWaysAndColoursA) {
  // A: unit sphere; B: the same sphere shifted by 0.5 along x, so that A's vertices lie
  // from 0.5 behind B to 0.5 in front of it.
  JEV::MESH::editMesh a, b;
  testMeshes::makeSphere(a, 32, 64);
  testMeshes::makeSphere(b, 32, 64);
  for (unsigned v = 0; v < b.vn(); ++v) b.vPos(v).x += 0.5f;
  const std::string pathA = writePly(a, "a.ply"), pathB = writePly(b, "b.ply");
  const std::string out = dir.file("coloured.ply");
  const runResult r = run("distance " + pathA + " " + pathB + " --out " + out);
  ASSERT_EQ(r.status, 0) << r.err;
  for (const char* label : {"a to b max", "b to a max"})
    EXPECT_NEAR(std::stod(field(r.out, label)), 0.5, 0.01) << label;
  const double mean = std::stod(field(r.out, "a to b mean"));
  EXPECT_GT(mean, 0.1);
  EXPECT_LT(mean, std::stod(field(r.out, "a to b rms")));

  plyPolygonMesh coloured;
  ASSERT_TRUE(ioPly::readPlyPolygonsFromFile(out, coloured));
  ASSERT_EQ(coloured.colours.size(), a.vn());
  // (1, 0, 0) lies 0.5 inside B, the most negative: first band; (-1, 0, 0) lies 0.5
  // outside, the most positive: last band.
  const auto at = [&](float x, float y, float z) {
    for (unsigned v = 0; v < a.vn(); ++v)
      if ((a.vPos(v) - JEV::MATH::point3<float>(x, y, z)).norm() < 1e-4f)
        return coloured.colours[v];
    return JEV::CORE::color();
  };
  using JEV::MESH::ALGO::MEASUREMENT::distance;
  EXPECT_EQ(at(1, 0, 0), distance::getBandColors()[0]);
  EXPECT_EQ(at(-1, 0, 0), distance::getBandColors()[4]);

  // Colours need a PLY; a missing file is bad input.
  EXPECT_EQ(run("distance " + pathA + " " + pathB + " --out " + dir.file("c.stl")).status, 2);
  EXPECT_EQ(run("distance " + pathA + " " + dir.file("none.ply")).status, 1);
}

}  // namespace

TEST_F(jevmesh, fillHolesClosesTheLoopsUpToTheGivenSize) {
  JEV::MESH::editMesh m;
  // A one-cell hole (4 edges), a two-cell hole (6 edges) and the outer border (24).
  testMeshes::makeGrid(m, 6, 6, true, {{1, 1}, {3, 3}, {4, 3}});
  const std::string in = writePly(m, "holes.ply"), out = dir.file("filled.ply");
  runResult r = run("fill-holes " + in + " " + out + " --max-edges 5 --no-fair");
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(field(r.out, "holes filled"), "1 of 3");
  EXPECT_EQ(field(run("info " + out).out, "boundary loops"), "2 (sizes 24, 6)");
  r = run("fill-holes " + in + " " + out);
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(field(r.out, "holes filled"), "3 of 3");
  const runResult info = run("info " + out);
  EXPECT_EQ(field(info.out, "boundary loops"), "0");
  EXPECT_EQ(field(info.out, "non-manifold edges"), "0");
  EXPECT_EQ(run("fill-holes " + in + " " + out + " --max-edges 2").status, 2);
  EXPECT_EQ(run("fill-holes " + dir.file("none.ply") + " " + out).status, 1);
}
