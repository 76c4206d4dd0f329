#include "jev3d/io/ply/plyWriter.h"

#include <cstdio>
#include <cstdlib>

#include "jev3d/io/internal/outputFile.h"
#include "jev3d/io/internal/textNumbers.h"
#include "jev3d/io/ply/internal/plyConvert.h"

namespace JEV {
namespace IO {
namespace PLY {

using namespace INTERNAL;

plyWriter::plyWriter() : out(std::make_unique<outputFile>()) {}
plyWriter::~plyWriter() = default;

bool plyWriter::open(const std::string& path, int type, const std::vector<std::string>& names) {
  if (type != PLY_ASCII && type != PLY_BINARY_BE && type != PLY_BINARY_LE) {
    std::fprintf(stderr, "ply_header_complete: bad file type = %d\n", type);
    std::abort();
  }
  fileType = type;
  elements.clear();
  for (const std::string& n : names) {
    element e;
    e.name = n;
    elements.push_back(e);
  }
  describing = writing = nullptr;
  return out->open(path);
}

bool plyWriter::describeElement(const std::string& name, long long count) {
  for (element& e : elements) {
    if (e.name == name) {
      e.count = count;
      e.described = true;
      describing = &e;
      return true;
    }
  }
  std::fprintf(stderr, "ply_describe_element: can't find element '%s'\n", name.c_str());
  return false;
}

void plyWriter::describeProperty(const plyPropertyDescription& desc) {
  if (!describing) return;
  if (!plyTypeName(desc.fileType)) {
    std::fprintf(stderr, "write_scalar_type: bad data code = %d\n", desc.fileType);
    std::abort();
  }
  if (desc.isList && !plyTypeName(desc.countFileType)) {
    std::fprintf(stderr, "write_scalar_type: bad data code = %d\n", desc.countFileType);
    std::abort();
  }
  describing->properties.push_back(desc);
  describing->names.push_back(desc.name);
  // The caller's name pointer need not outlive this call: the element keeps a copy.
  describing->properties.back().name = nullptr;
}

bool plyWriter::headerComplete() {
  out->put("ply\n");
  out->put(fileType == PLY_ASCII       ? "format ascii 1.0\n"
           : fileType == PLY_BINARY_BE ? "format binary_big_endian 1.0\n"
                                       : "format binary_little_endian 1.0\n");
  for (const std::string& c : comments) out->put("comment " + c + "\n");
  for (const std::string& o : objInfo) out->put("obj_info " + o + "\n");
  for (element& e : elements) {
    if (!e.described) continue;
    out->put("element " + e.name + " " + std::to_string(e.count) + "\n");
    for (size_t k = 0; k < e.properties.size(); ++k) {
      const plyPropertyDescription& p = e.properties[k];
      if (p.isList) {
        out->put(std::string("property list ") + plyTypeName(p.countFileType) + " " +
                 plyTypeName(p.fileType) + " " + e.names[k] + "\n");
      } else {
        out->put(std::string("property ") + plyTypeName(p.fileType) + " " + e.names[k] + "\n");
      }
    }
  }
  out->put("end_header\n");
  return out->flush();
}

bool plyWriter::putElementSetup(const std::string& name) {
  for (element& e : elements) {
    if (e.name == name) {
      writing = &e;
      sources.assign(e.properties.size(), source());
      return true;
    }
  }
  std::fprintf(stderr, "ply_elements_setup: can't find element '%s'\n", name.c_str());
  return false;
}

void plyWriter::setSource(const plyPropertyDescription& desc, const void* base, size_t stride) {
  if (!writing) return;
  for (size_t k = 0; k < writing->names.size(); ++k) {
    if (writing->names[k] == desc.name) {
      sources[k].base = static_cast<const unsigned char*>(base) + desc.fieldOffset;
      sources[k].stride = stride;
    }
  }
}

void plyWriter::setListSource(const plyPropertyDescription& desc, const unsigned* items,
                              const unsigned* counts, unsigned fixedCount) {
  if (!writing) return;
  for (size_t k = 0; k < writing->names.size(); ++k) {
    if (writing->names[k] == desc.name) {
      sources[k].items = items;
      sources[k].counts = counts;
      sources[k].fixedCount = fixedCount;
    }
  }
}

void plyWriter::putValue(int type, int recordType, const unsigned char* src, bool last) {
  withType(recordType, "get_stored_item", [&](auto r) {
    using R = decltype(r);
    R value;
    std::memcpy(&value, src, sizeof value);
    withType(type, fileType == PLY_ASCII ? "write_ascii_item" : "write_binary_item", [&](auto f) {
      using F = decltype(f);
      const F v = convert<F>(value);
      if (fileType == PLY_ASCII) {
        char* p = out->reserve(40);
        if constexpr (std::is_floating_point_v<F>) {
          p = TEXT::printReal(p, v);
        } else {
          p = TEXT::printInteger(p, v);
        }
        *p++ = last ? '\n' : ' ';
        out->commit(p);
      } else {
        const bool swap = (fileType == PLY_BINARY_BE) != hostIsBigEndian;
        const F w = swap ? byteSwapped(v) : v;
        out->put(&w, sizeof w);
      }
    });
  });
}

void plyWriter::putCount(int type, unsigned count, bool last) {
  putValue(type, PLY_UINT, reinterpret_cast<const unsigned char*>(&count), last);
}

void plyWriter::putElements(size_t n) {
  if (!writing) return;
  const size_t nprops = writing->properties.size();
  for (size_t i = 0; i < n; ++i) {
    for (size_t k = 0; k < nprops; ++k) {
      const plyPropertyDescription& p = writing->properties[k];
      source& s = sources[k];
      const bool lastProperty = k + 1 == nprops;
      if (!p.isList) {
        putValue(p.fileType, p.recordType, s.base, lastProperty);
        s.base += s.stride;
        continue;
      }
      const unsigned count = s.counts ? *s.counts++ : s.fixedCount;
      putCount(p.countFileType, count, lastProperty && count == 0);
      for (unsigned j = 0; j < count; ++j)
        putValue(p.fileType, PLY_UINT, reinterpret_cast<const unsigned char*>(s.items++),
                 lastProperty && j + 1 == count);
    }
  }
}

bool plyWriter::close() { return out->close(); }

}  // namespace PLY
}  // namespace IO
}  // namespace JEV
