#include "jev3d/resources/textureStorage.h"

#include <iostream>
#include <utility>
#include <vector>

#include "jev3d/io/image/ioTexture.h"
#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/resources/internal/defaultArchive.h"
#include "jev3d/resources/internal/zipReader.h"

namespace JEV {
namespace CORE {

namespace {

struct defaultTexture {
  const wchar_t* id;
  const char* file;
  bool skin;
};

const defaultTexture defaultTextures[] = {
    {L"JEV3D_SDK_LOGO", "logo.png", false},
    {L"GUI_DEFAULT_SKIN", "defaultSkin.png", true},
    {L"GUI_PLASTIQUE_SKIN", "plastiqueSkin.png", true},
    {L"GUI_XP_SKIN", "xpSkin.png", true},
    {L"GUI_FLAT_SKIN", "flatskin.png", true},
    {L"GUI_RAG_SKIN", "ragSkin.png", true},
    {L"GUI_IBRID_SKIN", "ibrid.png", true},
    {L"GUI_NULL_ICON", "null.png", false},
    {L"GUI_AXIS_ICON", "axis.png", false},
    {L"GUI_BUNNY_ICON", "bunny.png", false},
    {L"GUI_CUT_ICON", "edit_cut.png", false},
    {L"GUI_COPY_ICON", "edit_copy.png", false},
    {L"GUI_PASTE_ICON", "edit_paste.png", false},
    {L"GUI_EXIT_ICON", "exit.png", false},
    {L"GUI_FILE_OPEN_ICON", "file_open.png", false},
    {L"GUI_FILE_NEW_ICON", "file_new.png", false},
    {L"GUI_FILE_SAVE_AS_ICON", "file_save_as.png", false},
    {L"GUI_FILE_SAVE_ICON", "file_save.png", false},
    {L"GUI_HELP_ICON", "help.png", false},
    {L"GUI_FULLSCREEN_ICON", "fullscreen.png", false},
    {L"GUI_LIST_REMOVE_ICON", "list_remove.png", false},
    {L"GUI_LIST_ADD_ICON", "list_add.png", false},
    {L"GUI_PRINT_ICON", "print.png", false},
    {L"GUI_MOUSE_ICON", "mouse.png", false},
    {L"GUI_UNDO_ICON", "undo.png", false},
    {L"GUI_REDO_ICON", "redo.png", false},
    {L"GUI_SEARCH_ICON", "search.png", false},
    {L"GUI_REFRESH_ICON", "refresh.png", false},
    {L"GUI_TRACKBALL_ICON", "trackball.png", false},
    {L"GUI_TOOLS_ICON", "tools.png", false},
    {L"GUI_ARROW_RIGHT_ICON", "arrow_right.png", false},
    {L"GUI_ARROW_LEFT_ICON", "arrow_left.png", false},
    {L"GUI_ARROW_DOWN_ICON", "arrow_down.png", false},
    {L"GUI_ARROW_UP_ICON", "arrow_up.png", false},
};

}  // namespace

textureStorage::textureStorage(RENDERING::renderer* render) : mtResourceStorage(render) {}

textureStorage::~textureStorage() = default;

bool textureStorage::loadTextureFromFile(const std::wstring& fileName, const std::wstring& id,
                                         const TEXTURE::textureDescriptor& parameters,
                                         int memoryManagement, bool forceReload) {
  return loadResource(
      id, memoryManagement, forceReload, [this] { return new TEXTURE::texture(getRender()); },
      [&](TEXTURE::texture& target) {
        if (!target.readFromFile(fileName)) return false;
        target.setParameters(parameters);
        return true;
      });
}

bool textureStorage::loadTextureFromFile(const std::string& fileName, const std::string& id,
                                         const TEXTURE::textureDescriptor& parameters,
                                         int memoryManagement, bool forceReload) {
  return loadTextureFromFile(IO::XML::utf8ToWstring(fileName), IO::XML::utf8ToWstring(id),
                             parameters, memoryManagement, forceReload);
}

bool textureStorage::loadDefaultTexture() {
  return loadDefaultTexture(INTERNAL::defaultArchiveData(), INTERNAL::defaultArchiveSize());
}

bool textureStorage::loadDefaultTexture(const unsigned char* archive, size_t size) {
  // Every picture is decoded before the first enters the storage, so that a damaged
  // archive adds nothing.
  INTERNAL::zipReader zip(archive, size);
  std::vector<std::pair<const defaultTexture*, IO::textureImage>> decoded;
  std::vector<unsigned char> bytes;
  for (const defaultTexture& entry : defaultTextures) {
    IO::textureImage image;
    if (!zip.read(entry.file, bytes)) {
      std::cerr << "jev3d: default textures not loaded: " << zip.error() << std::endl;
      return false;
    }
    // The decoder names the file in its own message.
    if (!IO::ioTexture::readTextureFromMemory(bytes.data(), bytes.size(), image, entry.file)) {
      return false;
    }
    decoded.emplace_back(&entry, std::move(image));
  }
  // A named pair rather than a structured binding: clang before C++20 will not capture
  // a binding in the lambda below.
  for (auto& decodedEntry : decoded) {
    const defaultTexture* entry = decodedEntry.first;
    IO::textureImage& image = decodedEntry.second;
    if (isValid(entry->id)) continue;
    TEXTURE::textureDescriptor parameters;
    if (entry->skin) parameters.filter = 0;
    loadResource(
        entry->id, SRS_KEEP_CACHED, false, [this] { return new TEXTURE::texture(getRender()); },
        [&](TEXTURE::texture& target) {
          target.setImage(std::move(image));
          target.setParameters(parameters);
          return true;
        });
  }
  return true;
}

}  // namespace CORE
}  // namespace JEV
