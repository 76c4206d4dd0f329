#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "jev3d/io/ply/plyTypes.h"

namespace JEV {
namespace IO {
class outputFile;

namespace PLY {

// The writing half of the element-and-property layer: a header of elements and
// properties, then the elements, taken from the caller's records through property
// descriptions (desc.fileType is the type written, desc.recordType the record's).
// Values are written shortest-exact in ASCII, so reals read back unchanged.
class plyWriter {
 public:
  plyWriter();
  ~plyWriter();
  plyWriter(const plyWriter&) = delete;
  plyWriter& operator=(const plyWriter&) = delete;

  // Creates the file (UTF-8 path, "wb") for the named elements, in the order they will be
  // written. A file type other than PLY_ASCII, PLY_BINARY_BE or PLY_BINARY_LE is an
  // internal error: it prints "ply_header_complete: bad file type = %d" and ends the
  // process. False when the file does not open.
  bool open(const std::string& path, int fileType, const std::vector<std::string>& elementNames);
  void addComment(const std::string& text) { comments.push_back(text); }
  void addObjInfo(const std::string& text) { objInfo.push_back(text); }
  // Gives an element its count; properties described next belong to it. An unknown name
  // prints "ply_describe_element: can't find element '%s'" and gives false.
  bool describeElement(const std::string& name, long long count);
  // Adds a property, scalar or list, to the element described last.
  void describeProperty(const plyPropertyDescription& desc);
  // Writes the header. False on a write error.
  bool headerComplete();

  // Starts writing an element's records; each described property then needs a source.
  // An unknown name prints "ply_elements_setup: can't find element '%s'" and gives false.
  bool putElementSetup(const std::string& name);
  // Source of a scalar: its value for element i is at base + desc.fieldOffset + i·stride.
  void setSource(const plyPropertyDescription& desc, const void* base, size_t stride);
  // Source of a list: `counts` gives each element's count, or every element has
  // fixedCount; the items follow one another in `items`.
  void setListSource(const plyPropertyDescription& desc, const unsigned* items,
                     const unsigned* counts, unsigned fixedCount);
  // Writes the next n elements from the sources, which advance past them.
  void putElements(size_t n);
  // Flushes and closes; false if any write failed.
  bool close();

 private:
  struct source {
    const unsigned char* base = nullptr;
    size_t stride = 0;
    const unsigned* items = nullptr;
    const unsigned* counts = nullptr;
    unsigned fixedCount = 0;
  };
  struct element {
    std::string name;
    long long count = 0;
    bool described = false;
    std::vector<plyPropertyDescription> properties;
    std::vector<std::string> names;
  };

  void putValue(int fileType, int recordType, const unsigned char* src, bool last);
  void putCount(int fileType, unsigned count, bool last);

  // Behind a pointer: the buffered file is private to the library.
  std::unique_ptr<outputFile> out;
  int fileType = 0;
  std::vector<element> elements;
  std::vector<std::string> comments;
  std::vector<std::string> objInfo;
  element* describing = nullptr;
  element* writing = nullptr;
  std::vector<source> sources;
};

}  // namespace PLY
}  // namespace IO
}  // namespace JEV
