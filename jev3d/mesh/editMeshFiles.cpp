#include "jev3d/io/ply/ioPly.h"
#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/mesh/editMesh.h"

namespace JEV {
namespace MESH {

bool editMesh::saveMeshToPly(const std::wstring& name, bool binary, SYSTEM::callBack* cb) const {
  IO::PLY::plyPolygonMesh out;
  std::vector<unsigned int> renamed(vn(), 0);
  out.positions.reserve(vn() - delVn);
  for (unsigned int v = 0; v < vn(); ++v) {
    if (isVertDeleted(v)) continue;
    renamed[v] = unsigned(out.positions.size());
    out.positions.push_back(vPos(v));
    out.normals.push_back(vNor(v));
    if (hasVC()) out.colours.push_back(vCol(v));
  }
  for (unsigned int f = 0; f < fn(); ++f) {
    const unsigned int n = fVNum(f);
    if (isFaceDeleted(f) || n < 3) continue;
    bool valid = true;
    for (unsigned int i = 0; i < n && valid; ++i) valid = isVertexValid(fV(f, i));
    if (!valid) continue;  // a face on a deleted vertex has nothing to point at
    out.cornerCounts.push_back(n);
    for (unsigned int i = 0; i < n; ++i) out.corners.push_back(renamed[fV(f, i)]);
  }
  return IO::PLY::ioPly::writePlyPolygonsToFile(name, out, binary, cb);
}

bool editMesh::saveMeshToPly(const std::string& name, bool binary, SYSTEM::callBack* cb) const {
  return saveMeshToPly(IO::XML::utf8ToWstring(name), binary, cb);
}

}  // namespace MESH
}  // namespace JEV
