#include "jev3d/resources/internal/zipReader.h"

#include <unzip.h>

#include <algorithm>
#include <cstring>

namespace JEV {
namespace CORE {
namespace INTERNAL {

namespace {

using memoryFile = zipReader::memoryFile;

// minizip's file functions over a block of memory; the "file name" it passes to open is
// the memoryFile itself.
voidpf openMemory(voidpf, const void* name, int mode) {
  if ((mode & ZLIB_FILEFUNC_MODE_READWRITEFILTER) != ZLIB_FILEFUNC_MODE_READ) return nullptr;
  return const_cast<void*>(name);
}

uLong readMemory(voidpf, voidpf stream, void* buffer, uLong size) {
  auto* f = static_cast<memoryFile*>(stream);
  const size_t left = f->size - f->position;
  const size_t count = size < left ? size_t(size) : left;
  if (count) std::memcpy(buffer, f->data + f->position, count);
  f->position += count;
  return uLong(count);
}

uLong writeMemory(voidpf, voidpf, const void*, uLong) { return 0; }

ZPOS64_T tellMemory(voidpf, voidpf stream) { return static_cast<memoryFile*>(stream)->position; }

long seekMemory(voidpf, voidpf stream, ZPOS64_T offset, int origin) {
  auto* f = static_cast<memoryFile*>(stream);
  ZPOS64_T base = 0;
  switch (origin) {
    case ZLIB_FILEFUNC_SEEK_SET:
      base = 0;
      break;
    case ZLIB_FILEFUNC_SEEK_CUR:
      base = f->position;
      break;
    case ZLIB_FILEFUNC_SEEK_END:
      base = f->size;
      break;
    default:
      return -1;
  }
  if (offset > f->size - base) return -1;
  f->position = size_t(base + offset);
  return 0;
}

int closeMemory(voidpf, voidpf) { return 0; }

int errorMemory(voidpf, voidpf) { return 0; }

}  // namespace

zipReader::zipReader(const unsigned char* data, size_t size) {
  file.data = data;
  file.size = data ? size : 0;
  zlib_filefunc64_def functions{};
  functions.zopen64_file = openMemory;
  functions.zread_file = readMemory;
  functions.zwrite_file = writeMemory;
  functions.ztell64_file = tellMemory;
  functions.zseek64_file = seekMemory;
  functions.zclose_file = closeMemory;
  functions.zerror_file = errorMemory;
  handle = unzOpen2_64(&file, &functions);
  if (!handle) message = "not a ZIP archive, or its directory is damaged";
}

zipReader::~zipReader() {
  if (handle) unzClose(handle);
}

bool zipReader::read(const std::string& name, std::vector<unsigned char>& bytes) {
  if (!handle) return false;
  if (unzLocateFile(handle, name.c_str(), 1) != UNZ_OK) {
    message = "no entry \"" + name + "\"";
    return false;
  }
  unz_file_info64 info{};
  if (unzGetCurrentFileInfo64(handle, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK ||
      info.uncompressed_size > maxEntry) {
    message = "entry \"" + name + "\" is damaged or too large";
    return false;
  }
  if (unzOpenCurrentFile(handle) != UNZ_OK) {
    message = "entry \"" + name + "\" cannot be opened";
    return false;
  }
  bytes.assign(size_t(info.uncompressed_size), 0);
  size_t done = 0;
  int got = 1;
  while (done < bytes.size() && got > 0) {
    const size_t chunk = std::min<size_t>(bytes.size() - done, 1u << 20);
    got = unzReadCurrentFile(handle, bytes.data() + done, unsigned(chunk));
    if (got > 0) done += size_t(got);
  }
  // Reading one byte more tells whether the entry is longer than its header says; closing
  // checks the CRC once the whole entry was read.
  unsigned char extra = 0;
  const bool tooLong = got >= 0 && unzReadCurrentFile(handle, &extra, 1) > 0;
  const int closed = unzCloseCurrentFile(handle);
  if (got < 0 || done != bytes.size() || tooLong || closed != UNZ_OK) {
    message = "entry \"" + name + "\" is damaged";
    bytes.clear();
    return false;
  }
  return true;
}

bool zipReader::names(std::vector<std::string>& out) {
  out.clear();
  if (!handle) return false;
  int status = unzGoToFirstFile(handle);
  while (status == UNZ_OK) {
    char name[512] = {};
    unz_file_info64 info{};
    if (unzGetCurrentFileInfo64(handle, &info, name, sizeof name - 1, nullptr, 0, nullptr, 0) !=
        UNZ_OK) {
      break;
    }
    out.emplace_back(name);
    status = unzGoToNextFile(handle);
  }
  if (status != UNZ_END_OF_LIST_OF_FILE) {
    message = "the archive's directory is damaged";
    return false;
  }
  return true;
}

}  // namespace INTERNAL
}  // namespace CORE
}  // namespace JEV
