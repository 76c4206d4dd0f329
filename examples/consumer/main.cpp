// Makes a torus, writes it as a PLY file and reads it back, with the core library alone.
#include <cstdio>
#include <string>

#include <jev3d/io/ply/ioPly.h>
#include <jev3d/mesh/editMesh.h>

using namespace JEV;

int main(int argc, char** argv) {
  const std::string path = argc > 1 ? argv[1] : "torus.ply";

  MESH::editMesh mesh;
  mesh.makeTorus(24, 12, 1.0f, 0.25f);
  if (!mesh.saveMeshToPly(path)) {
    std::fprintf(stderr, "cannot write %s\n", path.c_str());
    return 1;
  }

  IO::PLY::plyPolygonMesh read;
  if (!IO::PLY::ioPly::readPlyPolygonsFromFile(path, read)) {
    std::fprintf(stderr, "cannot read %s\n", path.c_str());
    return 1;
  }
  std::printf("%s: %zu vertices, %zu faces\n", path.c_str(), read.positions.size(),
              read.cornerCounts.size());
  return read.positions.size() == mesh.vn() && read.cornerCounts.size() == mesh.fn() ? 0 : 1;
}
