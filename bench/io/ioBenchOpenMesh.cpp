#include <OpenMesh/Core/IO/MeshIO.hh>
#include <OpenMesh/Core/Mesh/TriMesh_ArrayKernelT.hh>

#include <string>

// Reads a mesh file with OpenMesh; the number of faces, or 0 when the read fails.
size_t openMeshReadFaces(const std::string& path) {
  OpenMesh::TriMesh_ArrayKernelT<> mesh;
  if (!OpenMesh::IO::read_mesh(mesh, path)) return 0;
  return mesh.n_faces();
}
