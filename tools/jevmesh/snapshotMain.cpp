// jevmesh-snapshot: the drawing half of 'jevmesh snapshot', kept out of jevmesh so that the
// tool itself runs where there are no GL libraries.

#include <cctype>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "commandSupport.h"
#include "meshFiles.h"
#include "meshSnapshot.h"

using namespace JEVMESH;
using JEV::MESH::EDITING::editMeshNode;

namespace {

const char* const NAME = "snapshot";

bool endsWithPng(const std::string& path) {
  if (path.size() < 4) return false;
  std::string ext = path.substr(path.size() - 4);
  for (char& c : ext) c = char(std::tolower(static_cast<unsigned char>(c)));
  return ext == ".png";
}

// "WxH", each side 16 to 4096.
bool parseSize(const std::string& word, int& width, int& height) {
  const size_t x = word.find_first_of("xX");
  long w = 0, h = 0;
  if (x == std::string::npos || !commandLine::toInt(word.substr(0, x), w) ||
      !commandLine::toInt(word.substr(x + 1), h))
    return false;
  if (w < 16 || h < 16 || w > 4096 || h > 4096) return false;
  width = int(w), height = int(h);
  return true;
}

// Reads the options into `view`; a usage status, or EXIT_OK.
int readView(const commandLine& line, snapshotView& view) {
  using namespace JEV::MESH::EDITING;
  if (line.has("--mode")) {
    const std::string& m = line.values("--mode")[0];
    if (m == "object")
      view.mode = EDIT_MESH_DISPLAY_OBJECT;
    else if (m == "face")
      view.mode = EDIT_MESH_DISPLAY_FACE;
    else if (m == "edge")
      view.mode = EDIT_MESH_DISPLAY_EDGE;
    else if (m == "vertex")
      view.mode = EDIT_MESH_DISPLAY_VERTEX;
    else
      return usageError(NAME, "unknown mode '" + m + "' (object, face, edge or vertex)");
  }
  if (line.has("--size") && !parseSize(line.values("--size")[0], view.width, view.height))
    return usageError(NAME, "--size takes WxH, each side 16 to 4096");
  for (const char* angle : {"--yaw", "--pitch"}) {
    float a = 0;
    if (!line.has(angle)) continue;
    if (!commandLine::toFloat(line.values(angle)[0], a) || !std::isfinite(a) ||
        std::fabs(a) > 3600.f)
      return usageError(NAME, std::string(angle) + " takes an angle in degrees");
    (std::string(angle) == "--yaw" ? view.yaw : view.pitch) = a;
  }
  return EXIT_OK;
}

}  // namespace

int main(int argc, char** argv) {
  commandLine line;
  std::string error;
  const std::vector<optionSpec> specs = {
      {"--mode", 1}, {"--size", 1}, {"--yaw", 1}, {"--pitch", 1}, {"--quiet", 0}};
  if (!line.parse(std::vector<std::string>(argv + 1, argv + argc), specs, error))
    return usageError(NAME, error);
  if (line.positional().size() != 2)
    return usageError(NAME, "expected IN and OUT.png, got " +
                                std::to_string(line.positional().size()) + " arguments");
  const std::string& in = line.positional()[0];
  const std::string& out = line.positional()[1];
  if (kindOfPath(in) == fileKind::UNKNOWN)
    return usageError(NAME, "'" + in + "' is neither .ply nor .stl");
  if (!endsWithPng(out)) return usageError(NAME, "'" + out + "' does not end in .png");
  snapshotView view;
  int status = readView(line, view);
  if (status != EXIT_OK) return status;

  auto* node = new editMeshNode();
  if ((status = load(line, in, node->getEditMesh())) != EXIT_OK) {
    delete node;
    return status;
  }
  if (node->getEditMesh().fn() == 0) {
    delete node;
    return fileError(in, "has no faces to draw");
  }
  std::vector<std::uint8_t> rgba;
  if (!renderSnapshot(node, view, rgba, error)) {
    std::fprintf(stderr, "jevmesh %s: %s\n", NAME, error.c_str());
    return EXIT_BAD_INPUT;
  }
  if (!writePng(out, view.width, view.height, rgba, error)) return fileError(out, error);
  return EXIT_OK;
}
