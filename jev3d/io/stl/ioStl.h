#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}

namespace IO {
namespace STL {

// Triangle soup in STL files, binary (little-endian) and ASCII: three positions and one
// normal a facet, no welding. The form is told from the file itself: binary when its
// size is exactly 84 + 50·count for the count at offset 80, or when any of the 128 bytes
// after offset 84 is above 127; otherwise ASCII. The ASCII reader takes tokens by
// position ("facet normal" n n n, "outer loop", three "vertex" v v v, "endloop",
// "endfacet") without comparing the words, except that it steps over "endsolid" and a
// following "solid" line so that files of several solids read whole. A record cut by the
// end of the file is dropped. Every read is checked against the file: a binary file
// shorter than its count, a number that does not parse, or an ASCII file with no line
// break gives false. The callback may be null; it hears 1 at the start, every 5000th
// facet's percent, and 100 at the end.
class ioStl {
 public:
  virtual ~ioStl();

  // Counts without reading the data. Binary: faces is the count of the header and
  // vertices three times that. ASCII: faces is the number of facets and vertices a third
  // of it (kept that way on purpose; callers use faces).
  static bool readStlInfoFromFile(const std::wstring& name, unsigned int& vertices,
                                  unsigned int& faces);
  // Positions three floats a corner, nine a facet; normals three floats a facet.
  static bool readStlFromFile(const std::wstring& name, std::vector<float>& positions,
                              std::vector<float>& normals, SYSTEM::callBack* cb = nullptr);
  // Positions three a facet, normals one a facet.
  static bool readStlFromFile(const std::wstring& name, std::vector<MATH::point3<float>>& positions,
                              std::vector<MATH::point3<float>>& normals,
                              SYSTEM::callBack* cb = nullptr);
  // Writes one facet per nine position floats, with its normal (three floats a facet).
  // False, leaving an empty file, when there are fewer normals than facets.
  static bool writeStlToFile(const std::wstring& name, const std::vector<float>& positions,
                             const std::vector<float>& normals, bool binary,
                             SYSTEM::callBack* cb = nullptr);
  // Writes one facet per three triangle indices into positions, with one normal a facet.
  // False, leaving an empty file, with fewer normals than facets or an index out of range.
  static bool writeStlToFile(const std::wstring& name,
                             const std::vector<MATH::point3<float>>& positions,
                             const std::vector<unsigned int>& triangles,
                             const std::vector<MATH::point3<float>>& normals, bool binary,
                             SYSTEM::callBack* cb = nullptr);

  // A streaming binary writer for models assembled in parts: the header with the total
  // facet count (not patched later), then addDataToFile for each part, then closeFile.
  // Null when the file does not open.
  static FILE* writeStlHeaderToFile(const std::wstring& name, unsigned int faces);
  // Appends the facets of one part as addressed by triangles. False with fewer normals
  // than facets or an index out of range, or on a write error.
  static bool addDataToFile(FILE* file, const std::vector<MATH::point3<float>>& positions,
                            const std::vector<unsigned int>& triangles,
                            const std::vector<MATH::point3<float>>& normals,
                            SYSTEM::callBack* cb = nullptr);
  // Closes the stream; false for a null stream or a failed close.
  static bool closeFile(FILE* file);

  // Narrow overloads: the name is UTF-8.
  static bool readStlInfoFromFile(const std::string& name, unsigned int& vertices,
                                  unsigned int& faces);
  static bool readStlFromFile(const std::string& name, std::vector<float>& positions,
                              std::vector<float>& normals, SYSTEM::callBack* cb = nullptr);
  static bool readStlFromFile(const std::string& name, std::vector<MATH::point3<float>>& positions,
                              std::vector<MATH::point3<float>>& normals,
                              SYSTEM::callBack* cb = nullptr);
  static bool writeStlToFile(const std::string& name, const std::vector<float>& positions,
                             const std::vector<float>& normals, bool binary,
                             SYSTEM::callBack* cb = nullptr);
  static bool writeStlToFile(const std::string& name,
                             const std::vector<MATH::point3<float>>& positions,
                             const std::vector<unsigned int>& triangles,
                             const std::vector<MATH::point3<float>>& normals, bool binary,
                             SYSTEM::callBack* cb = nullptr);
  static FILE* writeStlHeaderToFile(const std::string& name, unsigned int faces);
};

}  // namespace STL
}  // namespace IO
}  // namespace JEV
