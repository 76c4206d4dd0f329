#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

// The readers take file names: each input is written to one file per process, reused.
inline const std::string& fuzzInputFile(const uint8_t* data, size_t size) {
  static const std::string path = "/tmp/jev3d-fuzz-" + std::to_string(getpid());
  std::remove(path.c_str());
  if (FILE* f = std::fopen(path.c_str(), "wb")) {
    std::fwrite(data, 1, size, f);
    std::fclose(f);
  }
  return path;
}
