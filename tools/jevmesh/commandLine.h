#pragma once

#include <map>
#include <string>
#include <vector>

namespace JEVMESH {

// One option a command accepts: its name with the dashes ("--scheme") and how many values
// follow it (0 for a switch).
struct optionSpec {
  std::string name;
  unsigned values;
};

// The words after the command name, split into positional arguments and options.
// Options may stand anywhere; "--" ends them.
class commandLine {
 public:
  // False, with a one-line reason in `error`, for an unknown option or one missing its
  // values.
  bool parse(const std::vector<std::string>& words, const std::vector<optionSpec>& accepted,
             std::string& error);

  const std::vector<std::string>& positional() const { return args; }
  bool has(const std::string& option) const { return options.count(option) != 0; }
  // The values given to an option (empty when absent).
  const std::vector<std::string>& values(const std::string& option) const;

  // Number parsing for option values; false when the whole word is not a number.
  static bool toInt(const std::string& word, long& out);
  static bool toFloat(const std::string& word, float& out);

 private:
  std::vector<std::string> args;
  std::map<std::string, std::vector<std::string>> options;
};

}  // namespace JEVMESH
