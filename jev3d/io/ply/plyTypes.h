#pragma once

#include <string>
#include <vector>

namespace JEV {
namespace IO {
namespace PLY {

// Type codes of the file object; 0 is no type.
enum PLY_TYPE : int {
  PLY_CHAR = 1,
  PLY_SHORT = 2,
  PLY_INT = 3,
  PLY_UCHAR = 4,
  PLY_USHORT = 5,
  PLY_UINT = 6,
  PLY_FLOAT = 7,
  PLY_DOUBLE = 8,
};

// File types, with the codes of the format line's words.
enum PLY_FILE_TYPE : int {
  PLY_ASCII = 1,
  PLY_BINARY_BE = 2,
  PLY_BINARY_LE = 3,
};

// Code of a type name: the eight classic names and the sized ones ("int8" ... "float64")
// that many writers use. 0 for an unknown name.
int plyTypeFromName(const std::string& name);
// The classic name of a type code ("float"); null for a code out of range.
const char* plyTypeName(int type);
// Size in bytes of a type code; 0 for a code out of range.
int plyTypeSize(int type);

// How a property moves between the file and a caller's record: the name, the type code
// in the file and in the record, and where the field (for a list, its count) sits in the
// record. Tables of these describe what a caller recognises.
struct plyPropertyDescription {
  const char* name = nullptr;
  int fileType = 0;
  int recordType = 0;
  int fieldOffset = 0;
  int isList = 0;
  int countFileType = 0;
  int countRecordType = 0;
  int countOffset = 0;
};

// A property as the header declares it. For a list, `type` is the items' type.
struct plyProperty {
  std::string name;
  int type = 0;
  bool isList = false;
  int countType = 0;
  // Set while reading when a caller asked for the property.
  bool store = false;
};

// An element as the header declares it.
struct plyElement {
  std::string name;
  long long count = 0;
  std::vector<plyProperty> properties;

  // Index of the property with this name, or -1.
  int findProperty(const std::string& propertyName) const;
};

}  // namespace PLY
}  // namespace IO
}  // namespace JEV
