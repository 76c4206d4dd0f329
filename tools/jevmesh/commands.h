#pragma once

#include <string>
#include <vector>

#include "commandLine.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
class editMesh;
}
}  // namespace JEV

namespace JEVMESH {

// Exit statuses of the tool.
enum exitStatus { EXIT_OK = 0, EXIT_BAD_INPUT = 1, EXIT_BAD_USAGE = 2 };

// One subcommand: its words, the options it takes besides the common ones, its help text
// and the function that runs it on a parsed command line.
struct command {
  const char* name;
  const char* usage;  // the arguments after the name
  const char* summary;
  const char* details;
  std::vector<optionSpec> options;
  int (*run)(const commandLine& line);
};

// Commands defined in files of their own.
command smoothCommand();
command snapshotCommand();
// Commands kept in files of their own.
command fillHolesCommand();

// Every subcommand, in the order the help lists them.
const std::vector<command>& allCommands();
// The remeshing commands (remeshCommands.cpp), listed after the others.
const std::vector<command>& remeshingCommands();
// The subdivision schemes of the remeshing algorithms ("loop", "butterfly"), one step
// on the whole mesh, which is finished again.
bool isRemeshingScheme(const std::string& scheme);
void remeshingStep(const std::string& scheme, JEV::MESH::editMesh& mesh,
                   JEV::SYSTEM::callBack* cb);

// Subcommands kept in files of their own.
command distanceCommand();

}  // namespace JEVMESH
