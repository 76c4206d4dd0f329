#include "jev3d/system/winBase.h"

#include <unistd.h>

#include <climits>

#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/system/updateContext.h"

namespace JEV {
namespace SYSTEM {

winBase::winBase(application* a)
    : updateNeeded(true), renderNeeded(true), updateCtx(new updateContext), app(a) {
  char buf[PATH_MAX];
  const ssize_t n = ::readlink("/proc/self/exe", buf, sizeof buf - 1);
  if (n <= 0) return;
  const std::string full(buf, static_cast<size_t>(n));
  applicationFileName = IO::XML::utf8ToWstring(full);
  const size_t slash = applicationFileName.find_last_of(L'/');
  applicationPath = applicationFileName.substr(0, slash + 1);
  const std::wstring file = applicationFileName.substr(slash + 1);
  const size_t dot = file.find_last_of(L'.');
  applicationName = dot == std::wstring::npos ? file : file.substr(0, dot);
  applicationExtension = dot == std::wstring::npos ? std::wstring() : file.substr(dot);
}

winBase::~winBase() { delete updateCtx; }

}  // namespace SYSTEM
}  // namespace JEV
