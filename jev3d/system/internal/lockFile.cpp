#include "jev3d/system/internal/lockFile.h"

#include <cstdio>
#include <cstdlib>

namespace JEV {
namespace SYSTEM {
namespace INTERNAL {

std::string lockFilePath(const std::wstring& name, const char* kind) {
  const char* dir = std::getenv("TMPDIR");
  std::string path = (dir && *dir) ? dir : "/tmp";
  path += "/jev3d-";
  path += kind;
  path += '-';
  for (wchar_t c : name) {
    if ((c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || (c >= L'0' && c <= L'9') ||
        c == L'-' || c == L'_' || c == L'.') {
      path += static_cast<char>(c);
    } else {
      char buf[16];
      std::snprintf(buf, sizeof buf, "%%%X", static_cast<unsigned>(c));
      path += buf;
    }
  }
  return path + ".lock";
}

}  // namespace INTERNAL
}  // namespace SYSTEM
}  // namespace JEV
