#include "commandLine.h"

#include <cctype>
#include <charconv>

namespace JEVMESH {

bool commandLine::parse(const std::vector<std::string>& words,
                        const std::vector<optionSpec>& accepted, std::string& error) {
  bool optionsEnded = false;
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string& w = words[i];
    if (optionsEnded || w.size() < 2 || w[0] != '-' || (w[1] != '-' && !std::isalpha(w[1]))) {
      args.push_back(w);  // "-1.5" is a value, not an option
      continue;
    }
    if (w == "--") {
      optionsEnded = true;
      continue;
    }
    const optionSpec* known = nullptr;
    for (const auto& s : accepted)
      if (s.name == w) known = &s;
    if (!known) {
      error = "unknown option " + w;
      return false;
    }
    if (i + known->values >= words.size()) {
      error = "option " + w + " needs " + std::to_string(known->values) +
              (known->values == 1 ? " value" : " values");
      return false;
    }
    auto& out = options[w];
    out.assign(words.begin() + long(i) + 1, words.begin() + long(i + 1 + known->values));
    i += known->values;
  }
  return true;
}

const std::vector<std::string>& commandLine::values(const std::string& option) const {
  static const std::vector<std::string> none;
  auto it = options.find(option);
  return it == options.end() ? none : it->second;
}

bool commandLine::toInt(const std::string& word, long& out) {
  const char* end = word.data() + word.size();
  auto r = std::from_chars(word.data(), end, out);
  return r.ec == std::errc() && r.ptr == end && !word.empty();
}

bool commandLine::toFloat(const std::string& word, float& out) {
  const char* end = word.data() + word.size();
  auto r = std::from_chars(word.data(), end, out);
  return r.ec == std::errc() && r.ptr == end && !word.empty();
}

}  // namespace JEVMESH
