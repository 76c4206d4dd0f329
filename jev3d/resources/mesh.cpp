#include "jev3d/resources/mesh.h"

#include <cstdio>
#include <cstring>
#include <utility>

#include "jev3d/io/ply/ioPly.h"
#include "jev3d/io/stl/ioStl.h"
#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace MESH {
namespace {

bool startsWithPly(const std::string& fileName) {
  FILE* file = std::fopen(fileName.c_str(), "rb");
  if (!file) return false;
  char head[3] = {};
  const bool ply = std::fread(head, 1, 3, file) == 3 && std::memcmp(head, "ply", 3) == 0;
  std::fclose(file);
  return ply;
}

// Sums the triangles' cross products at their corners, so that larger faces weigh more.
std::vector<MATH::point3<float>> areaWeightedNormals(
    const std::vector<MATH::point3<float>>& positions, const std::vector<unsigned>& triangles) {
  std::vector<MATH::point3<float>> normals(positions.size(), MATH::point3<float>::ZERO());
  for (size_t t = 0; t + 2 < triangles.size(); t += 3) {
    const unsigned a = triangles[t];
    const unsigned b = triangles[t + 1];
    const unsigned c = triangles[t + 2];
    const MATH::point3<float> n = (positions[b] - positions[a]).cross(positions[c] - positions[a]);
    normals[a] += n;
    normals[b] += n;
    normals[c] += n;
  }
  for (auto& n : normals) n = n.getNormalized();
  return normals;
}

}  // namespace

mesh::mesh(RENDERING::renderer* render) : deviceResource(render) {}

bool mesh::clear() {
  discard();
  positions.clear();
  normals.clear();
  colours.clear();
  textureCoordinates.clear();
  triangles.clear();
  textureName.clear();
  computeBox();
  return true;
}

bool mesh::readFromFile(const std::wstring& fileName) {
  return readFromFile(IO::XML::wstringToUtf8(fileName));
}

bool mesh::readFromFile(const std::string& fileName) {
  std::vector<MATH::point3<float>> newPositions;
  std::vector<MATH::point3<float>> newNormals;
  std::vector<CORE::color> newColours;
  std::vector<MATH::point2<float>> newCoordinates;
  std::vector<unsigned> newTriangles;
  std::string newTextureName;
  if (startsWithPly(fileName)) {
    if (!IO::PLY::ioPly::readPlyFromFile(fileName, newPositions, newNormals, newColours,
                                         newCoordinates, newTriangles, newTextureName)) {
      return false;
    }
    if (newNormals.size() != newPositions.size()) {
      newNormals = areaWeightedNormals(newPositions, newTriangles);
    }
  } else {
    std::vector<MATH::point3<float>> facetNormals;
    if (!IO::STL::ioStl::readStlFromFile(fileName, newPositions, facetNormals)) return false;
    newNormals.resize(newPositions.size());
    newTriangles.resize(newPositions.size());
    for (size_t i = 0; i < newPositions.size(); ++i) {
      newNormals[i] = facetNormals[i / 3];
      newTriangles[i] = unsigned(i);
    }
  }
  discard();
  positions = std::move(newPositions);
  normals = std::move(newNormals);
  colours = std::move(newColours);
  textureCoordinates = std::move(newCoordinates);
  triangles = std::move(newTriangles);
  textureName = std::move(newTextureName);
  computeBox();
  return true;
}

void mesh::computeBox() {
  MATH::point3<float>::computeExtremes(int(positions.size()), positions.data(), boxMin, boxMax);
}

}  // namespace MESH
}  // namespace JEV
