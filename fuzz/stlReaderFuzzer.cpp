#include <cstdint>
#include <cstdlib>

#include "fuzzInput.h"
#include "jev3d/io/stl/ioStl.h"

using JEV::IO::STL::ioStl;
using JEV::MATH::point3;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string& path = fuzzInputFile(data, size);
  std::vector<point3<float>> positions, normals;
  if (ioStl::readStlFromFile(path, positions, normals)) {
    if (positions.size() != 3 * normals.size()) std::abort();
    // Never more facets than the file could hold as text or as binary records.
    if (normals.size() > size / 20 + 1) std::abort();
  }
  std::vector<float> flat, flatNormals;
  ioStl::readStlFromFile(path, flat, flatNormals);
  unsigned vertices = 0, faces = 0;
  ioStl::readStlInfoFromFile(path, vertices, faces);
  return 0;
}
