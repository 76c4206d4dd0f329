#include <cstdint>
#include <cstdlib>
#include <string>

#include "fuzzInput.h"
#include "jev3d/gui/guiController.h"
#include "jev3d/io/xml/stringConversion.h"

using JEV::GUI::guiController;

namespace {

// A controller outside any window, as a program reading a project before its window opens.
guiController* freshController() {
  auto* gc = new guiController(nullptr, nullptr);
  if (!gc->init(false, true, L"fuzz")) std::abort();
  return gc;
}

std::string readBack(const std::string& path) {
  std::string bytes;
  if (FILE* f = std::fopen(path.c_str(), "rb")) {
    char buffer[4096];
    size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0) bytes.append(buffer, n);
    std::fclose(f);
  }
  return bytes;
}

}  // namespace

// A read is all or nothing, and whatever was read saves, reads back and saves again to the
// same bytes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::wstring text =
      JEV::IO::XML::utf8ToWstring(std::string(reinterpret_cast<const char*>(data), size));
  guiController* gc = freshController();
  const int before = gc->getWidgetsCount();
  if (!gc->openFromString(text, nullptr, L"", false)) {
    if (gc->getWidgetsCount() != before || gc->getProjectError().empty()) std::abort();
    delete gc;
    return 0;
  }
  const std::string path = fuzzInputFile(data, 0);
  const std::wstring widePath = JEV::IO::XML::utf8ToWstring(path);
  if (!gc->saveToFile(widePath)) std::abort();
  const std::string first = readBack(path);
  guiController* again = freshController();
  if (!again->openFromFile(widePath, nullptr, L"", false)) std::abort();
  if (!again->saveToFile(widePath)) std::abort();
  if (readBack(path) != first) std::abort();
  delete again;
  delete gc;
  return 0;
}
