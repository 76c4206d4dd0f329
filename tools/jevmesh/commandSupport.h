#pragma once

#include <string>
#include <vector>

#include "commands.h"
#include "jev3d/mesh/editMesh.h"

namespace JEVMESH {

// What every command shares: its error lines, the file checks, loading and saving with a
// progress bar, and the read-edit-write frame of the commands that change a mesh.

// Prints "jevmesh NAME: MESSAGE (see ...)" and returns EXIT_BAD_USAGE.
int usageError(const char* name, const std::string& message);
// Prints "jevmesh: PATH: MESSAGE" and returns EXIT_BAD_INPUT.
int fileError(const std::string& path, const std::string& message);

bool quiet(const commandLine& line);

// Exactly `n` positional arguments, each a path with a known extension; otherwise false
// with the usage status in `status`.
bool checkFiles(const char* name, const commandLine& line, size_t n, int& status);

int load(const commandLine& line, const std::string& path, JEV::MESH::editMesh& mesh);
int save(const commandLine& line, const std::string& path, const JEV::MESH::editMesh& mesh);

// Loads IN, applies `edit` and saves OUT; the edit returns an exit status.
template <class Edit>
int transform(const char* name, const commandLine& line, Edit edit) {
  int status = EXIT_OK;
  if (!checkFiles(name, line, 2, status)) return status;
  JEV::MESH::editMesh mesh;
  if ((status = load(line, line.positional()[0], mesh)) != EXIT_OK) return status;
  if ((status = edit(mesh)) != EXIT_OK) return status;
  return save(line, line.positional()[1], mesh);
}

// The --ascii/--binary pair of the commands that write a file, appended to `specs`.
std::vector<optionSpec> withWriteOptions(std::vector<optionSpec> specs = {});

}  // namespace JEVMESH
