// jevmesh: describe, convert and process PLY and STL meshes from the command line.

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "commands.h"

using namespace JEVMESH;

namespace {

void printOverview(FILE* out) {
  std::fprintf(out,
               "usage: jevmesh COMMAND [ARGS] [--quiet]\n\n"
               "Describe, convert and process PLY and STL meshes.\n\ncommands:\n");
  for (const command& c : allCommands()) std::fprintf(out, "  %-12s %s\n", c.name, c.summary);
  std::fprintf(out, "\n'jevmesh COMMAND --help' describes one command.\n");
}

void printCommandHelp(const command& c) {
  std::printf("usage: jevmesh %s %s\n\n%s\n%s", c.name, c.usage, c.summary, c.details);
  for (const optionSpec& o : c.options)
    if (o.name == "--ascii")
      std::printf("  --ascii | --binary  form of the written file (binary by default)\n");
  std::printf("  --quiet             no progress bar\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    printOverview(stderr);
    return EXIT_BAD_USAGE;
  }
  const std::string name = argv[1];
  if (name == "--help" || name == "-h" || name == "help") {
    printOverview(stdout);
    return EXIT_OK;
  }
  for (const command& c : allCommands()) {
    if (name != c.name) continue;
    std::vector<std::string> words(argv + 2, argv + argc);
    for (const std::string& w : words)
      if (w == "--help" || w == "-h") {
        printCommandHelp(c);
        return EXIT_OK;
      }
    std::vector<optionSpec> specs = c.options;
    specs.push_back({"--quiet", 0});
    commandLine line;
    std::string error;
    bool parsed = line.parse(words, specs, error);
    // Checked before any file is read, so a bad pair costs nothing.
    if (parsed && line.has("--ascii") && line.has("--binary")) {
      error = "--ascii and --binary exclude each other";
      parsed = false;
    }
    if (!parsed) {
      std::fprintf(stderr, "jevmesh %s: %s (see 'jevmesh %s --help')\n", c.name, error.c_str(),
                   c.name);
      return EXIT_BAD_USAGE;
    }
    return c.run(line);
  }
  std::fprintf(stderr, "jevmesh: unknown command '%s' (see 'jevmesh --help')\n", name.c_str());
  return EXIT_BAD_USAGE;
}
