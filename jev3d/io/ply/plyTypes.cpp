#include "jev3d/io/ply/plyTypes.h"

#include <cstring>

namespace JEV {
namespace IO {
namespace PLY {

namespace {

const char* const classicNames[] = {nullptr,  "char", "short", "int",   "uchar",
                                    "ushort", "uint", "float", "double"};
const char* const sizedNames[] = {nullptr,  "int8",   "int16",   "int32",  "uint8",
                                  "uint16", "uint32", "float32", "float64"};
const int sizes[] = {0, 1, 2, 4, 1, 2, 4, 4, 8};

}  // namespace

int plyTypeFromName(const std::string& name) {
  for (int t = PLY_CHAR; t <= PLY_DOUBLE; ++t)
    if (name == classicNames[t] || name == sizedNames[t]) return t;
  return 0;
}

const char* plyTypeName(int type) {
  return type >= PLY_CHAR && type <= PLY_DOUBLE ? classicNames[type] : nullptr;
}

int plyTypeSize(int type) { return type >= PLY_CHAR && type <= PLY_DOUBLE ? sizes[type] : 0; }

int plyElement::findProperty(const std::string& propertyName) const {
  for (size_t i = 0; i < properties.size(); ++i)
    if (properties[i].name == propertyName) return int(i);
  return -1;
}

}  // namespace PLY
}  // namespace IO
}  // namespace JEV
