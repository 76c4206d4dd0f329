#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <system_error>

#include "commands.h"

namespace JEVMESH {

namespace {

// The drawing program lives next to this one: it links the GL libraries jevmesh does
// without.
constexpr const char* HELPER = "jevmesh-snapshot";

int runSnapshot(const commandLine& line) {
  std::error_code ec;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", ec);
  const std::string helper = (ec ? std::filesystem::path() : self.parent_path() / HELPER).string();
  if (ec || ::access(helper.c_str(), X_OK) != 0) {
    std::fprintf(stderr, "jevmesh snapshot: '%s' is not installed next to jevmesh\n", HELPER);
    return EXIT_BAD_INPUT;
  }
  // The options first, then "--" so that no file name is taken for one.
  std::vector<std::string> words = {helper};
  for (const char* option : {"--mode", "--size", "--yaw", "--pitch"})
    if (line.has(option)) {
      words.push_back(option);
      words.push_back(line.values(option)[0]);
    }
  if (line.has("--quiet")) words.push_back("--quiet");
  words.push_back("--");
  for (const std::string& p : line.positional()) words.push_back(p);
  std::vector<char*> argv;
  for (std::string& w : words) argv.push_back(w.data());
  argv.push_back(nullptr);
  std::fflush(stdout);
  ::execv(helper.c_str(), argv.data());
  std::fprintf(stderr, "jevmesh snapshot: '%s' could not be run\n", helper.c_str());
  return EXIT_BAD_INPUT;
}

}  // namespace

command snapshotCommand() {
  return {"snapshot",
          "IN OUT.png [--mode object|face|edge|vertex] [--size WxH] [--yaw A --pitch B]",
          "Draw a mesh into a PNG picture, with no display needed.",
          "The mesh is framed by its bounding box and lit from the camera, on grey.\n"
          "  --mode M            display mode: object (default), face (with its wire),\n"
          "                      edge or vertex\n"
          "  --size WxH          picture size in pixels, 16 to 4096 a side (640x480)\n"
          "  --yaw A             turn the view A degrees about the y axis (30)\n"
          "  --pitch B           look down on the mesh from B degrees above (20)\n",
          {{"--mode", 1}, {"--size", 1}, {"--yaw", 1}, {"--pitch", 1}},
          runSnapshot};
}

}  // namespace JEVMESH
