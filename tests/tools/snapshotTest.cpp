// Runs 'jevmesh snapshot' with no display in its environment and reads the pictures back.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "jev3d/io/image/ioTexture.h"
#include "jev3d/io/image/textureImage.h"
#include "jev3d/io/ply/ioPly.h"
#include "support/meshes.h"
#include "support/tempDir.h"

extern char** environ;

namespace {

using JEV::CORE::color;
using JEV::IO::textureImage;

// The grey the snapshots are drawn on.
constexpr unsigned char BACKGROUND[3] = {72, 76, 82};
constexpr int W = 160, H = 120;

struct outcome {
  int status = -1;
  std::string err;
};

class snapshot : public ::testing::Test {
 protected:
  // Runs `program` with `arguments`, in the environment of the test without DISPLAY and
  // WAYLAND_DISPLAY, stderr kept. The GL driver keeps allocations for the life of the
  // process in modules it unloads before a sanitizer build's leak report, where they
  // cannot be told from ours: the child's leak check is off (the library's own drawing
  // code is leak-checked by the display tests).
  outcome run(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<std::string> env;
    std::string asanOptions = "ASAN_OPTIONS=detect_leaks=0";
    for (char** e = environ; *e; ++e) {
      if (std::strncmp(*e, "ASAN_OPTIONS=", 13) == 0)
        asanOptions = std::string(*e) + ":detect_leaks=0";
      else if (std::strncmp(*e, "DISPLAY=", 8) != 0 &&
               std::strncmp(*e, "WAYLAND_DISPLAY=", 16) != 0)
        env.push_back(*e);
    }
    env.push_back(asanOptions);
    std::vector<std::string> words = {program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv, envp;
    for (std::string& w : words) argv.push_back(w.data());
    for (std::string& e : env) envp.push_back(e.data());
    argv.push_back(nullptr);
    envp.push_back(nullptr);
    const std::string errPath = dir.file("stderr.txt");
    outcome o;
    const pid_t child = fork();
    if (child == 0) {
      const int fd = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
      if (fd >= 0) dup2(fd, 2);
      execve(argv[0], argv.data(), envp.data());
      _exit(127);
    }
    int raw = 0;
    if (child > 0 && waitpid(child, &raw, 0) == child && WIFEXITED(raw))
      o.status = WEXITSTATUS(raw);
    std::ifstream in(errPath);
    std::stringstream s;
    s << in.rdbuf();
    o.err = s.str();
    return o;
  }
  outcome jevmesh(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {"snapshot"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return run(JEVMESH_PATH, words);
  }

  std::string writePly(JEV::MESH::editMesh& m, const std::string& name) {
    JEV::IO::PLY::plyPolygonMesh out;
    for (unsigned v = 0; v < m.vn(); ++v) out.positions.push_back(m.vPos(v));
    for (unsigned f = 0; f < m.fn(); ++f) {
      out.cornerCounts.push_back(m.fVNum(f));
      for (unsigned i = 0; i < m.fVNum(f); ++i) out.corners.push_back(m.fV(f, i));
    }
    const std::string path = dir.file(name);
    EXPECT_TRUE(JEV::IO::PLY::ioPly::writePlyPolygonsToFile(path, out, true));
    return path;
  }
  std::string sphere() {
    JEV::MESH::editMesh m;
    testMeshes::makeSphere(m, 16, 24);
    return writePly(m, "sphere.ply");
  }

  // Draws `in` with `options` at W x H, front view, and reads the picture back.
  textureImage draw(const std::string& in, std::vector<std::string> options) {
    const std::string out = dir.file("picture.png");
    std::filesystem::remove(out);
    std::vector<std::string> words = {
        in,        out, "--size", std::to_string(W) + "x" + std::to_string(H), "--yaw", "0",
        "--pitch", "0", "--quiet"};
    words.insert(words.end(), options.begin(), options.end());
    const outcome o = jevmesh(words);
    textureImage image;
    EXPECT_EQ(o.status, 0) << o.err;
    EXPECT_TRUE(JEV::IO::ioTexture::readTextureFromFile(out, image)) << o.err;
    return image;
  }

  // Pixel (x, y) counted from the top left.
  static color at(const textureImage& image, int x, int y) {
    const unsigned char* p = image.pixel(x, image.height - 1 - y);
    return color(p[0], p[1], p[2], 255);
  }
  static bool isBackground(const color& c) {
    return c.r == BACKGROUND[0] && c.g == BACKGROUND[1] && c.b == BACKGROUND[2];
  }
  static int countOf(const textureImage& image, const color& c) {
    int n = 0;
    for (int y = 0; y < image.height; ++y)
      for (int x = 0; x < image.width; ++x) {
        const color p = at(image, x, y);
        n += p.r == c.r && p.g == c.g && p.b == c.b;
      }
    return n;
  }
  // Pixels of the row that are not background.
  static int foregroundInRow(const textureImage& image, int y) {
    int n = 0;
    for (int x = 0; x < image.width; ++x) n += !isBackground(at(image, x, y));
    return n;
  }

  tempDir dir;
};

TEST_F(snapshot, everyModeShowsTheSphereFramedOnTheBackground) {
  const std::string in = sphere();
  const JEV::MESH::editMesh colours;  // the display colours of a fresh mesh
  for (const char* mode : {"object", "face", "edge", "vertex"}) {
    SCOPED_TRACE(mode);
    const textureImage image = draw(in, {"--mode", mode});
    ASSERT_EQ(image.width, W);
    ASSERT_EQ(image.height, H);
    // Framed by the box's bounding sphere, the unit sphere covers a disc of about 33 pixels
    // around the centre.
    for (const auto& corner : {std::pair<int, int>{0, 0}, {W - 1, 0}, {0, H - 1}, {W - 1, H - 1}})
      EXPECT_TRUE(isBackground(at(image, corner.first, corner.second)));
    for (const int dx : {-45, 45}) EXPECT_TRUE(isBackground(at(image, W / 2 + dx, H / 2)));
    EXPECT_TRUE(isBackground(at(image, W / 2, H / 2 - 42)));
    for (const int d : {0, -25, 25}) {
      EXPECT_FALSE(isBackground(at(image, W / 2 + d, H / 2)));
      EXPECT_FALSE(isBackground(at(image, W / 2, H / 2 + d)));
    }
    const int row = foregroundInRow(image, H / 2);
    EXPECT_GT(row, 56);
    EXPECT_LT(row, 76);
    // Each mode draws its own marks, in the mesh's colours.
    const std::string m = mode;
    EXPECT_EQ(countOf(image, colours.edgeColor) > 30, m == "edge");
    EXPECT_EQ(countOf(image, colours.ghostColor) > 30, m == "face");
    EXPECT_EQ(countOf(image, colours.vertexColor) > 10, m == "vertex");
  }
}

TEST_F(snapshot, yawTurnsTheViewAboutTheVerticalAxis) {
  // A bar four times longer along x than across: long seen from the front, short from
  // the side.
  JEV::MESH::editMesh m;
  testMeshes::makeCube(m);
  for (unsigned v = 0; v < m.vn(); ++v) m.vPos(v).x *= 4.f;
  const std::string in = writePly(m, "bar.ply");
  const int front = foregroundInRow(draw(in, {}), H / 2);
  const int side = foregroundInRow(draw(in, {"--yaw", "90"}), H / 2);
  EXPECT_GT(front, 100);
  EXPECT_GT(side, 20);
  EXPECT_GT(front, 2 * side);
}

TEST_F(snapshot, badInputFailsWithAMessageAndWritesNoPicture) {
  const std::string out = dir.file("out.png");
  const std::string good = sphere();
  std::string bytes;
  {
    std::ifstream in(good, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    bytes = s.str();
  }
  const std::string truncated = dir.file("truncated.ply");
  std::ofstream(truncated, std::ios::binary) << bytes.substr(0, bytes.size() / 2);
  const std::string text = dir.file("notes.stl");
  std::ofstream(text) << "these are notes, not a mesh\n";
  const std::string infinite = dir.file("infinite.ply");
  std::ofstream(infinite) << "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\n"
                             "property float y\nproperty float z\nelement face 1\n"
                             "property list uchar int vertex_indices\nend_header\n"
                             "0 0 0\n1 0 0\ninf 1 0\n3 0 1 2\n";

  struct badCase {
    std::vector<std::string> words;
    int status;
  };
  const std::vector<badCase> cases = {
      {{dir.file("missing.ply"), out}, 1},
      {{truncated, out}, 1},
      {{text, out}, 1},
      {{infinite, out}, 1},
      {{good, dir.file("no/such/folder/out.png")}, 1},
      {{good, out, "--mode", "wire"}, 2},
      {{good, out, "--size", "12x12"}, 2},
      {{good, out, "--yaw", "north"}, 2},
      {{good, dir.file("out.jpg")}, 2},
      {{good}, 2},
  };
  for (const badCase& c : cases) {
    SCOPED_TRACE(c.words[0] + (c.words.size() > 1 ? " " + c.words[1] : ""));
    const outcome o = jevmesh(c.words);
    EXPECT_EQ(o.status, c.status);
    EXPECT_NE(o.err.find("jevmesh"), std::string::npos) << o.err;
    EXPECT_FALSE(std::filesystem::exists(out));
  }
}

TEST_F(snapshot, withoutItsHelperProgramJevmeshSaysSoAndFails) {
  const std::string copy = dir.file("jevmesh");
  std::filesystem::copy_file(JEVMESH_PATH, copy);
  std::filesystem::permissions(copy, std::filesystem::perms::owner_all);
  const outcome o = run(copy, {"snapshot", sphere(), dir.file("out.png")});
  EXPECT_EQ(o.status, 1);
  EXPECT_NE(o.err.find("jevmesh-snapshot"), std::string::npos) << o.err;
  EXPECT_FALSE(std::filesystem::exists(dir.file("out.png")));
}

}  // namespace
