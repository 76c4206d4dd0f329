#pragma once

#include <array>
#include <string>
#include <vector>

#include "jev3d/math/point3.h"

namespace JEV {
namespace MESH {
namespace POSTPROCESSING {

// The triangle model of the geodesic distance code, read from an OBJ or PLY file.
class geodesicModel {
 public:
  std::vector<MATH::point3<double>> vertices;
  std::vector<std::array<unsigned int, 3>> faces;

  // Reads name by the extension after its last dot, lower-cased: "obj" or "ply".
  // Throws std::runtime_error with "File name doesn't contain a dot!", "This format can't
  // be handled!" or "Fail to read file!" (a file that does not open or does not parse;
  // a PLY header problem is first named on the error stream as "fail to read file",
  // "error model" or "error model format"). The model is emptied first. Polygons become
  // fans from their first corner; a PLY "tristrips" element is read as strips with -1
  // restarts. PLY property types are the sized names and "char", "uchar", "short",
  // "ushort", "uint", "float", "double" only.
  void load(const std::string& name);
};

}  // namespace POSTPROCESSING
}  // namespace MESH
}  // namespace JEV
