#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

// Path of a real scan file under the shared data folder, e.g. dataFile("ply/armadillo.ply").
inline std::string dataFile(const std::string& relative) {
  return (std::filesystem::path(JEV3D_DATA_DIR) / relative).string();
}

// Skips the calling test when the shared data folder is not beside the checkout.
#define JEV3D_REQUIRE_DATA(relative)                                   \
  do {                                                                 \
    if (!std::filesystem::exists(dataFile(relative)))                  \
      GTEST_SKIP() << "data file not present: " << dataFile(relative); \
  } while (0)
