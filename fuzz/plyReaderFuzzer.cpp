#include <cstdint>
#include <cstdlib>

#include "fuzzInput.h"
#include "jev3d/io/ply/ioPly.h"

using namespace JEV::IO::PLY;
using JEV::MATH::point2;
using JEV::MATH::point3;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string& path = fuzzInputFile(data, size);
  std::vector<point3<float>> positions, normals;
  std::vector<JEV::CORE::color> colours;
  std::vector<point2<float>> texture;
  std::vector<unsigned> triangles;
  std::string textureName;
  if (ioPly::readPlyFromFile(path, positions, normals, colours, texture, triangles, textureName)) {
    for (const unsigned i : triangles)
      if (i >= positions.size()) std::abort();
    if (!normals.empty() && normals.size() != positions.size()) std::abort();
    if (!colours.empty() && colours.size() != positions.size()) std::abort();
  }
  std::vector<float> flatPositions, flatNormals, flatTexture;
  std::vector<unsigned char> flatColours;
  ioPly::readPlyFromFile(path, flatPositions, flatNormals, flatColours, flatTexture, triangles,
                         textureName);
  plyPolygonMesh mesh;
  if (ioPly::readPlyPolygonsFromFile(path, mesh)) {
    size_t corners = 0;
    for (const unsigned n : mesh.cornerCounts) corners += n;
    if (corners != mesh.corners.size()) std::abort();
    for (const unsigned i : mesh.corners)
      if (i >= mesh.positions.size()) std::abort();
  }
  unsigned vertices = 0, faces = 0;
  bool a, b, c, d;
  ioPly::readPlyInfoFromFile(path, vertices, faces, a, b, c, d);
  return 0;
}
