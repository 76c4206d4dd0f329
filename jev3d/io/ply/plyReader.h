#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "jev3d/io/ply/plyTypes.h"

namespace JEV {
namespace IO {
namespace PLY {

// The reading half of the element-and-property layer. It knows nothing of meshes: it
// parses the header, then moves the elements of the file, kind by kind in the file's
// order, into the caller's records through property descriptions. Elements are read in
// runs straight into caller arrays: a record is `stride` bytes and each asked-for field
// sits at its description's offset, so one record or a whole array are the same case.
//
// The data is taken from a read-only mapping of the file, ASCII as tokens split at
// blanks, binary in either byte order. Everything read is checked against the file: a
// count that the file's size cannot hold, a list count that is negative or too long, or
// a value that is not a number fails the read; nothing allocates beyond what the file
// can fill. Each reader is independent, so readers on several threads need no lock.
class plyReader {
 public:
  plyReader();
  ~plyReader();
  plyReader(const plyReader&) = delete;
  plyReader& operator=(const plyReader&) = delete;

  // Opens a file (UTF-8 path) and reads its header. False, with no message, when the file
  // does not open, its first word is not "ply", the format line is missing or names
  // another format, an element or property line is malformed (a negative or unreadable
  // count, an unknown type, a property before any element) or "end_header" never comes.
  // Lines with other keywords are skipped.
  bool open(const std::string& path);
  void close();

  // PLY_ASCII, PLY_BINARY_BE or PLY_BINARY_LE.
  int getFileType() const { return fileType; }
  float getVersion() const { return version; }
  const std::vector<plyElement>& getElements() const { return elements; }
  // Comment and obj_info lines, without their keyword.
  const std::vector<std::string>& getComments() const { return comments; }
  const std::vector<std::string>& getObjInfo() const { return objInfo; }
  // The first element with this name, or null.
  const plyElement* findElement(const std::string& name) const;

  // Moves to the next element kind in the file's order, skipping what is left of the
  // current one, and forgets what was asked of it. Null when all are done or on failure
  // (see failed()). Fails, with "ply_get_element: unexpected end of file", when the rest
  // of the file is too short for the element's count.
  const plyElement* nextElement();
  // Asks for a scalar property of the current element: each value is converted to
  // desc.recordType and written at base + desc.fieldOffset, base stepping `stride` bytes
  // per element. A real number stored into a PLY_UCHAR field is taken as a fraction of
  // 255 (colours written as reals). False when the element has no scalar of that name.
  bool storeProperty(const plyPropertyDescription& desc, void* base, size_t stride);
  // Asks for a list property: each element's items are appended to `items` as 32-bit
  // integers (desc.recordType PLY_INT or PLY_UINT) and its count to `counts` if given.
  // With requiredCount non-zero, any other count fails the read. False when the element
  // has no list of that name.
  bool storeList(const plyPropertyDescription& desc, std::vector<unsigned>& items,
                 std::vector<unsigned>* counts, unsigned requiredCount);
  // Reads the next n elements of the current kind (at most those left) into what was
  // asked for. False, for good, when the file ends inside them, a value is not a number,
  // or a list count is negative or not the required one.
  bool getElements(size_t n);
  // Bytes of element data not yet read.
  size_t dataBytesLeft() const;
  // Elements of the current kind not yet read.
  size_t elementsLeft() const { return left; }
  // Smallest and largest item stored into lists since open(); when none was, the
  // smallest is the largest long long and the largest the smallest.
  long long getListItemMin() const { return itemMin; }
  long long getListItemMax() const { return itemMax; }
  bool failed() const { return hasFailed; }

 private:
  struct scalarBinding;
  struct listBinding;
  struct dataState;

  bool parseHeader();
  bool fail();
  bool readFixedBinary(size_t n);
  bool readTriangleLists(size_t n);
  bool readGeneric(size_t n);
  bool readAscii(size_t n);
  bool readAsciiTriangles(const char*& p, const char* end, size_t n, std::vector<unsigned>& items);
  bool endOfFile();
  bool badListCount(const plyElement& e);
  void storeItem(listBinding& b, long long item);

  int fileType = 0;
  float version = 0;
  std::vector<plyElement> elements;
  std::vector<std::string> comments;
  std::vector<std::string> objInfo;

  std::unique_ptr<dataState> data;
  int current = -1;
  size_t left = 0;
  long long itemMin = 0x7fffffffffffffffLL;
  long long itemMax = -0x7fffffffffffffffLL - 1;
  bool hasFailed = false;
};

}  // namespace PLY
}  // namespace IO
}  // namespace JEV
