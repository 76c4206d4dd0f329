#pragma once

#include <cstddef>

namespace JEV {
namespace CORE {
namespace INTERNAL {

// The ZIP archive of skins and icons that the build draws and compiles into the library.
const unsigned char* defaultArchiveData();
size_t defaultArchiveSize();

}  // namespace INTERNAL
}  // namespace CORE
}  // namespace JEV
