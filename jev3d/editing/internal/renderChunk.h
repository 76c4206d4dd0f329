#pragma once

#include <vector>

#include "jev3d/renderer/vertexBuffer.h"

namespace JEV {
namespace RENDERING {
class renderer;
}
namespace MESH {

class editMesh;

// One piece of an editable mesh's render cache: the faces (as a triangle soup), edges
// (as line pairs) or vertices (as points) of a bounded range of elements, with their
// vertex streams. Soups let a face's colour change without touching its neighbours, so
// a selection rewrites the colour stream alone.
class renderChunk {
 public:
  explicit renderChunk(int mask) : buffer(mask) {}
  std::vector<unsigned int> items;  // face, edge or vertex ids
  RENDERING::vertexBuffer buffer;
  unsigned int vertexCount = 0;
  bool colorStale = false;
};

namespace EDITING {
struct renderCacheCounts;
namespace INTERNAL {

// Splits the live faces into chunks of at most the mesh's chunk vertex limit and caches
// positions, normals (smooth or flat as the mesh says) and colours; writes each face's
// chunk into its record. Hidden faces are left out.
void buildFaceChunks(editMesh& m, RENDERING::renderer* device, renderCacheCounts& counts);
// Rewrites the colour stream of the chunks marked stale, or of all of them.
void refreshFaceColors(editMesh& m, RENDERING::renderer* device, bool all,
                       renderCacheCounts& counts);
void buildEdgeChunks(editMesh& m, RENDERING::renderer* device, renderCacheCounts& counts);
void buildPointChunks(editMesh& m, RENDERING::renderer* device, renderCacheCounts& counts);
// Draws a chunk list as triangles, lines or points.
void drawChunks(const std::vector<renderChunk*>& chunks, RENDERING::renderer* device, int mode);
// Frees every chunk of the mesh. On the drawing thread the device discards the buffers;
// from another thread their names go to the device's discard list. Without a device the
// chunks are only deleted.
void releaseChunks(editMesh& m, RENDERING::renderer* device, bool drawingThread);

}  // namespace INTERNAL
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
