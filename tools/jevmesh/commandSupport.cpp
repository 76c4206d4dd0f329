#include "commandSupport.h"

#include <cstdio>

#include "meshFiles.h"
#include "progressBar.h"

namespace JEVMESH {

using JEV::MESH::editMesh;

int usageError(const char* name, const std::string& message) {
  std::fprintf(stderr, "jevmesh %s: %s (see 'jevmesh %s --help')\n", name, message.c_str(), name);
  return EXIT_BAD_USAGE;
}

int fileError(const std::string& path, const std::string& message) {
  std::fprintf(stderr, "jevmesh: %s: %s\n", path.c_str(), message.c_str());
  return EXIT_BAD_INPUT;
}

bool quiet(const commandLine& line) { return line.has("--quiet"); }

bool checkFiles(const char* name, const commandLine& line, size_t n, int& status) {
  if (line.positional().size() != n) {
    status = usageError(name, "expected " + std::to_string(n) +
                                  (n == 1 ? " file, got " : " files, got ") +
                                  std::to_string(line.positional().size()));
    return false;
  }
  for (const std::string& path : line.positional())
    if (kindOfPath(path) == fileKind::UNKNOWN) {
      status = usageError(name, "'" + path + "' is neither .ply nor .stl");
      return false;
    }
  return true;
}

int load(const commandLine& line, const std::string& path, editMesh& mesh) {
  progressBar bar("reading", quiet(line));
  std::string error;
  if (!loadMesh(path, mesh, error, bar.reporter())) return fileError(path, error);
  return EXIT_OK;
}

int save(const commandLine& line, const std::string& path, const editMesh& mesh) {
  progressBar bar("writing", quiet(line));
  std::string error;
  if (!saveMesh(path, mesh, line.has("--ascii"), error, bar.reporter()))
    return fileError(path, error);
  return EXIT_OK;
}

std::vector<optionSpec> withWriteOptions(std::vector<optionSpec> specs) {
  specs.push_back({"--ascii", 0});
  specs.push_back({"--binary", 0});
  return specs;
}

}  // namespace JEVMESH
