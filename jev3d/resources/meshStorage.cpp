#include "jev3d/resources/meshStorage.h"

#include "jev3d/io/xml/stringConversion.h"

namespace JEV {
namespace CORE {

meshStorage::meshStorage(RENDERING::renderer* render) : mtResourceStorage(render) {}

meshStorage::~meshStorage() = default;

bool meshStorage::loadMeshFromFile(const std::wstring& fileName, const std::wstring& id,
                                   int memoryManagement, bool forceReload) {
  return loadResource(
      id, memoryManagement, forceReload, [this] { return new MESH::mesh(getRender()); },
      [&](MESH::mesh& target) { return target.readFromFile(fileName); });
}

bool meshStorage::loadMeshFromFile(const std::string& fileName, const std::string& id,
                                   int memoryManagement, bool forceReload) {
  return loadMeshFromFile(IO::XML::utf8ToWstring(fileName), IO::XML::utf8ToWstring(id),
                          memoryManagement, forceReload);
}

}  // namespace CORE
}  // namespace JEV
