#pragma once

#include <string>
#include <vector>

#include "jev3d/math/point2.h"
#include "jev3d/math/point3.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}

namespace IO {
namespace PLY {

// A polygon mesh as plain arrays, for tools that build their own mesh from a file.
struct plyPolygonMesh {
  std::vector<MATH::point3<float>> positions;
  // Empty, or one per position.
  std::vector<MATH::point3<float>> normals;
  // Empty, or one per position; alpha is 255 when the file has none.
  std::vector<CORE::color> colours;
  // One per face: its number of corners, 3 or more.
  std::vector<unsigned> cornerCounts;
  // The faces' vertex indices, face after face.
  std::vector<unsigned> corners;
  // From a "texture_file" comment naming a file that exists, else empty.
  std::string textureName;
};

// Mesh files in the PLY format, over the element-and-property layer (plyReader,
// plyWriter). Reads take ASCII and binary files of either byte order; every read is
// checked against the file, so a truncated or hostile file gives false, never a crash
// or an allocation beyond the file's size. Reads are triangle only except
// readPlyPolygonsFromFile. All functions may run on several threads at once. The
// callback may be null; it hears 1 at the start, the vertices in 1 to 50, the faces in
// 50 to 100, and 100 at the end. Missing optional vertex properties are reported on the
// error stream ("Warning:  Can't find property ..."); the read goes on.
class ioPly {
 public:
  // Header only: the numbers of vertices and faces (summed over elements of that name),
  // and whether the first vertex element has normals ("nx", "ny", "nz"), colours ("red",
  // "green", "blue") and texture coordinates ("texture_u", "texture_v"). `reserved` is
  // cleared and never set. False when the header does not read.
  static bool readPlyInfoFromFile(const std::wstring& name, unsigned int& vertices,
                                  unsigned int& faces, bool& hasNormals, bool& hasColours,
                                  bool& reserved, bool& hasTextureCoordinates);

  // The lean read: positions and triangles alone; the counts are the numbers of
  // positions and of triangles read. False on a bad file, a face of other than three
  // corners, an index out of range, or a vertex element without "x", "y" and "z".
  static bool readPlyFromFile(const std::wstring& name, std::vector<MATH::point3<float>>& positions,
                              unsigned int& vertexCount, std::vector<unsigned int>& triangles,
                              unsigned int& triangleCount, SYSTEM::callBack* cb = nullptr);

  // The full read. Normals, colours and texture coordinates are filled when the first
  // vertex element has them (one per vertex; later elements lacking them give zeros),
  // else left empty. Faces of several vertex elements are numbered across all of them.
  // textureName comes from a "texture_file" comment naming a file that exists. Fails as
  // the lean read does.
  static bool readPlyFromFile(const std::wstring& name, std::vector<MATH::point3<float>>& positions,
                              std::vector<MATH::point3<float>>& normals,
                              std::vector<CORE::color>& colours,
                              std::vector<MATH::point2<float>>& textureCoordinates,
                              std::vector<unsigned int>& triangles, std::string& textureName,
                              SYSTEM::callBack* cb = nullptr);

  // The full read into flat arrays: three floats a position or normal, four bytes (red,
  // green, blue, alpha) a colour, two floats a texture coordinate.
  static bool readPlyFromFile(const std::wstring& name, std::vector<float>& positions,
                              std::vector<float>& normals, std::vector<unsigned char>& colours,
                              std::vector<float>& textureCoordinates,
                              std::vector<unsigned int>& triangles, std::string& textureName,
                              SYSTEM::callBack* cb = nullptr);

  // Writes positions and triangles, with normals, colours (with alpha) and texture
  // coordinates where those vectors are not empty. ASCII, or big-endian binary when
  // `binary`. False when the file does not open or a write fails, when a non-empty
  // vector has not one entry per position, or when an index is out of range.
  static bool writePlyToFile(const std::wstring& name,
                             const std::vector<MATH::point3<float>>& positions,
                             const std::vector<MATH::point3<float>>& normals,
                             const std::vector<CORE::color>& colours,
                             const std::vector<MATH::point2<float>>& textureCoordinates,
                             const std::vector<unsigned int>& triangles, bool binary,
                             SYSTEM::callBack* cb = nullptr);
  static bool writePlyToFile(const std::wstring& name, const std::vector<float>& positions,
                             const std::vector<float>& normals,
                             const std::vector<unsigned char>& colours,
                             const std::vector<float>& textureCoordinates,
                             const std::vector<unsigned int>& triangles, bool binary,
                             SYSTEM::callBack* cb = nullptr);

  // Reads polygons of any number of corners (3 or more), with positions, normals and
  // colours as the full read gives them. False on a bad file, a face of fewer than three
  // corners or an index out of range. Missing optional properties are not reported.
  static bool readPlyPolygonsFromFile(const std::wstring& name, plyPolygonMesh& mesh,
                                      SYSTEM::callBack* cb = nullptr);
  // Writes a polygon mesh (an "int" corner count per face), ASCII or big-endian binary.
  static bool writePlyPolygonsToFile(const std::wstring& name, const plyPolygonMesh& mesh,
                                     bool binary, SYSTEM::callBack* cb = nullptr);

  // Narrow overloads: the name is UTF-8.
  static bool readPlyInfoFromFile(const std::string& name, unsigned int& vertices,
                                  unsigned int& faces, bool& hasNormals, bool& hasColours,
                                  bool& reserved, bool& hasTextureCoordinates);
  static bool readPlyFromFile(const std::string& name, std::vector<MATH::point3<float>>& positions,
                              unsigned int& vertexCount, std::vector<unsigned int>& triangles,
                              unsigned int& triangleCount, SYSTEM::callBack* cb = nullptr);
  static bool readPlyFromFile(const std::string& name, std::vector<MATH::point3<float>>& positions,
                              std::vector<MATH::point3<float>>& normals,
                              std::vector<CORE::color>& colours,
                              std::vector<MATH::point2<float>>& textureCoordinates,
                              std::vector<unsigned int>& triangles, std::string& textureName,
                              SYSTEM::callBack* cb = nullptr);
  static bool readPlyFromFile(const std::string& name, std::vector<float>& positions,
                              std::vector<float>& normals, std::vector<unsigned char>& colours,
                              std::vector<float>& textureCoordinates,
                              std::vector<unsigned int>& triangles, std::string& textureName,
                              SYSTEM::callBack* cb = nullptr);
  static bool writePlyToFile(const std::string& name,
                             const std::vector<MATH::point3<float>>& positions,
                             const std::vector<MATH::point3<float>>& normals,
                             const std::vector<CORE::color>& colours,
                             const std::vector<MATH::point2<float>>& textureCoordinates,
                             const std::vector<unsigned int>& triangles, bool binary,
                             SYSTEM::callBack* cb = nullptr);
  static bool writePlyToFile(const std::string& name, const std::vector<float>& positions,
                             const std::vector<float>& normals,
                             const std::vector<unsigned char>& colours,
                             const std::vector<float>& textureCoordinates,
                             const std::vector<unsigned int>& triangles, bool binary,
                             SYSTEM::callBack* cb = nullptr);
  static bool readPlyPolygonsFromFile(const std::string& name, plyPolygonMesh& mesh,
                                      SYSTEM::callBack* cb = nullptr);
  static bool writePlyPolygonsToFile(const std::string& name, const plyPolygonMesh& mesh,
                                     bool binary, SYSTEM::callBack* cb = nullptr);
};

}  // namespace PLY
}  // namespace IO
}  // namespace JEV
