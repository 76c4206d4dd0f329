#pragma once

#include <string>

#include "jev3d/resources/mesh.h"
#include "jev3d/resources/mtResourceStorage.h"
#include "jev3d/system/sharedPointer.h"

namespace JEV {
namespace CORE {

using meshServer = sharedResourceServer<SYSTEM::sharedPointer<MESH::mesh>>;
using meshClient = sharedResourceClient<SYSTEM::sharedPointer<MESH::mesh>>;

// The meshes of one rendering context by name. Loading reads the file on the calling
// thread, any thread; nothing touches the device until a node first draws the mesh.
class meshStorage : public mtResourceStorage<SYSTEM::sharedPointer<MESH::mesh>> {
 public:
  explicit meshStorage(RENDERING::renderer* render);
  ~meshStorage() override;

  // Loads a PLY or STL file under `id` with the server policy `memoryManagement`
  // (SRS_MEMORY_MANAGEMENT). With `id` taken: false unless `forceReload`, which reads the
  // file into the stored mesh. False, leaving nothing new behind and the old mesh in
  // place, when the file does not read or `id` is empty.
  bool loadMeshFromFile(const std::wstring& fileName, const std::wstring& id,
                        int memoryManagement = SRS_DISCARD_WITHOUT_CLIENTS,
                        bool forceReload = false);
  // Names in UTF-8.
  bool loadMeshFromFile(const std::string& fileName, const std::string& id,
                        int memoryManagement = SRS_DISCARD_WITHOUT_CLIENTS,
                        bool forceReload = false);
};

}  // namespace CORE
}  // namespace JEV
