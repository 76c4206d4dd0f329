#pragma once

#include <cstdint>
#include <string>

namespace JEV {
namespace SYSTEM {

// The error code that tells a name was already held by another instance.
constexpr uint32_t ERROR_ALREADY_EXISTS = 183;

// Tells whether another process already runs under the same instance name. Each
// instance holds a shared lock on a file named after the name; the name exists while
// any process holds it, and the system drops a dead process's hold.
class limitSingleInstance {
 public:
  limitSingleInstance() = default;
  virtual ~limitSingleInstance();
  limitSingleInstance(const limitSingleInstance&) = delete;
  limitSingleInstance& operator=(const limitSingleInstance&) = delete;

  // Drops an earlier hold, then takes a hold on `name` and records whether another
  // process held it already (ERROR_ALREADY_EXISTS), 0, or the system's error number.
  void setOn(const std::wstring& name);
  void setOn(const std::string& name);
  // Drops the hold. The recorded answer stays.
  void setOff();
  // True when the last setOn found the name held by another process.
  bool isAnotherInstanceRunning() const { return lastError == ERROR_ALREADY_EXISTS; }
  uint32_t getLastError() const { return lastError; }

 private:
  uint32_t lastError = 0;
  int handle = -1;
};

}  // namespace SYSTEM
}  // namespace JEV
