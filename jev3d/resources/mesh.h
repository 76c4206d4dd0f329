#pragma once

#include <string>
#include <vector>

#include "jev3d/math/point2.h"
#include "jev3d/math/point3.h"
#include "jev3d/resources/deviceResource.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace MESH {

// A triangle mesh held for drawing: indexed arrays in memory, with the device buffers
// that the renderer makes of them. Read from PLY or STL on any thread; uploaded on the
// drawing thread when a node first draws it.
class mesh : public CORE::deviceResource {
 public:
  explicit mesh(RENDERING::renderer* render);

  // Hands the device buffers back and drops the arrays.
  bool clear() override;

  // Reads a PLY file (told by its "ply" first line) or else an STL file. A PLY file
  // without normals gets area-weighted vertex normals; an STL file gets three corners a
  // facet, each with the facet's normal. On failure, false with the reader's message,
  // and the mesh is as it was. New arrays make an old device copy stale; a success
  // discards it.
  bool readFromFile(const std::wstring& fileName);
  bool readFromFile(const std::string& fileName);

  // One per vertex; normals always, colours and texture coordinates empty or one each.
  const std::vector<MATH::point3<float>>& getPositions() const { return positions; }
  const std::vector<MATH::point3<float>>& getNormals() const { return normals; }
  const std::vector<CORE::color>& getColours() const { return colours; }
  const std::vector<MATH::point2<float>>& getTextureCoordinates() const {
    return textureCoordinates;
  }
  // Three vertex indices a triangle.
  const std::vector<unsigned>& getTriangles() const { return triangles; }
  // The "texture_file" of a PLY file, else empty.
  const std::string& getTextureName() const { return textureName; }
  // Corners of the axis-aligned box around the positions; both zero when empty.
  const MATH::point3<float>& getBoxMin() const { return boxMin; }
  const MATH::point3<float>& getBoxMax() const { return boxMax; }

 private:
  void computeBox();

  std::vector<MATH::point3<float>> positions;
  std::vector<MATH::point3<float>> normals;
  std::vector<CORE::color> colours;
  std::vector<MATH::point2<float>> textureCoordinates;
  std::vector<unsigned> triangles;
  std::string textureName;
  MATH::point3<float> boxMin;
  MATH::point3<float> boxMax;
};

}  // namespace MESH
}  // namespace JEV
