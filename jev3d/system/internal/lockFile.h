#pragma once

#include <string>

namespace JEV {
namespace SYSTEM {
namespace INTERNAL {

// Path of the lock file that stands for a named object of one kind ("mutex",
// "instance") in the temporary directory. Printable ASCII of the name is kept and
// everything else hex-escaped, so any wide name maps to one file and never leaves the
// directory.
std::string lockFilePath(const std::wstring& name, const char* kind);

}  // namespace INTERNAL
}  // namespace SYSTEM
}  // namespace JEV
