#include "commands.h"

#include <cstdio>
#include <iostream>

#include "commandSupport.h"
#include "jev3d/algo/postprocessing/triMesh.h"
#include "jev3d/mesh/editMesh.h"
#include "jev3d/mesh/editMeshInterface.h"
#include "meshFiles.h"
#include "meshReport.h"
#include "progressBar.h"

namespace JEVMESH {

using JEV::MESH::editMesh;

namespace {

int runInfo(const commandLine& line) {
  int status = EXIT_OK;
  if (!checkFiles("info", line, 1, status)) return status;
  editMesh mesh;
  if ((status = load(line, line.positional()[0], mesh)) != EXIT_OK) return status;
  std::cout << "file:               " << line.positional()[0] << "\n";
  meshReport::of(mesh).print(std::cout);
  return EXIT_OK;
}

int runConvert(const commandLine& line) {
  return transform("convert", line, [](editMesh&) { return int(EXIT_OK); });
}

int runTriangulate(const commandLine& line) {
  return transform("triangulate", line, [&](editMesh& mesh) {
    progressBar bar("triangulating", quiet(line));
    mesh.triangulate(bar.reporter());
    mesh.computeNormalizedVertexNormals();
    return int(EXIT_OK);
  });
}

int runSubdivide(const commandLine& line) {
  const std::string scheme =
      line.has("--scheme") ? line.values("--scheme")[0] : std::string("catmull-clark");
  if (scheme != "catmull-clark" && scheme != "refine" && scheme != "midpoint" &&
      !isRemeshingScheme(scheme))
    return usageError("subdivide", "unknown scheme '" + scheme + "'");
  long steps = 1;
  if (line.has("-n") &&
      (!commandLine::toInt(line.values("-n")[0], steps) || steps < 0 || steps > 10))
    return usageError("subdivide", "-n takes a whole number from 0 to 10");
  return transform("subdivide", line, [&](editMesh& mesh) {
    for (long i = 0; i < steps; ++i) {
      progressBar bar("step " + std::to_string(i + 1) + "/" + std::to_string(steps), quiet(line));
      if (scheme == "catmull-clark")
        mesh.catmullClarkSubdivideVE(true, bar.reporter());
      else if (scheme == "refine")
        mesh.refine(true, bar.reporter());
      else if (scheme == "midpoint")
        mesh.midpointTriangulate(false, true, bar.reporter());
      else
        remeshingStep(scheme, mesh, bar.reporter());
    }
    return int(EXIT_OK);
  });
}

// Joins the halves that mirrorMesh left apart: a copy lying on its original (within
// 1e-5 of the box diagonal, so on the plane) is replaced by it, faces lying in the plane
// are dropped on both sides, and the stores are compacted and rebuilt. vertices and
// faces are the counts before mirroring: copy ids are theirs plus these.
void weldMirrorSeam(editMesh& m, unsigned vertices, unsigned faces) {
  using JEV::MESH::FACE_STATE_T;
  using JEV::MESH::VERT_STATE_T;
  m.computeBBox();
  const float eps = 1e-5f * (m.getBBoxMax() - m.getBBoxMin()).norm();
  std::vector<unsigned> to(m.vn());
  for (unsigned v = 0; v < m.vn(); ++v) to[v] = v;
  for (unsigned v = 0; v < vertices; ++v) {
    const unsigned c = vertices + v;
    if (m.isVertDeleted(v) || m.isVertDeleted(c)) continue;
    if ((m.vPos(c) - m.vPos(v)).norm() > eps) continue;
    to[c] = v;
    m.setVertFlag(c, VERT_STATE_T::DELETED);
    m.setDelVn(m.getDelVn() + 1);
  }
  for (unsigned f = 0; f < faces; ++f) {
    const unsigned g = faces + f;
    if (m.isFaceDeleted(g)) continue;
    bool flat = m.fVNum(g) > 0;
    for (unsigned i = 0; i < m.fVNum(g); ++i) {
      const unsigned v = m.fV(g, i);
      if (v >= m.vn()) continue;
      flat = flat && to[v] != v;
      m.F2W(g, i).vertId = to[v];
    }
    if (!flat) continue;
    m.deleteFace(f);  // it would sit between the halves, doubled
    m.deleteFace(g);
  }
  m.compactFaces();
  m.compactVertices();
  m.setDelVn(0);
  m.setDelFn(0);
  m.setDelFvn(0);
  m.computeEdges(false);
  m.computeVE();
  m.computeNormalizedFaceNormals();
  m.computeNormalizedVertexNormals();
}

int runMirror(const commandLine& line) {
  if (!line.has("--face") || !line.has("--normal"))
    return usageError("mirror", "--face and --normal are required");
  long face = 0;
  if (!commandLine::toInt(line.values("--face")[0], face) || face < 0)
    return usageError("mirror", "--face takes a face id");
  JEV::MATH::point3<float> normal;
  for (int i = 0; i < 3; ++i)
    if (!commandLine::toFloat(line.values("--normal")[size_t(i)], normal[i]))
      return usageError("mirror", "--normal takes three numbers");
  if (normal.squaredNorm() == 0.f) return usageError("mirror", "--normal must not be zero");
  const bool weld = line.has("--weld");
  return transform("mirror", line, [&](editMesh& mesh) {
    if (!mesh.isFaceValid(unsigned(face)))
      return fileError(line.positional()[0], "has no face " + std::to_string(face));
    const unsigned vertices = mesh.vn(), faces = mesh.fn();
    mesh.mirrorMesh(unsigned(face), normal);
    if (weld) weldMirrorSeam(mesh, vertices, faces);
    return int(EXIT_OK);
  });
}

// Welds, drops degenerate and duplicate faces, pieces below minFaces and unreferenced
// vertices, as a triangle mesh. Prints what went unless quiet.
int runClean(const commandLine& line) {
  long minFaces = 1;
  if (line.has("--min-faces") &&
      (!commandLine::toInt(line.values("--min-faces")[0], minFaces) || minFaces < 1))
    return usageError("clean", "--min-faces takes a whole number from 1 up");
  return transform("clean", line, [&](editMesh& mesh) {
    JEV::MESH::POSTPROCESSING::triMesh scan;
    {
      JEV::MESH::editMeshInterface view(mesh);
      scan.importFrom(view);
    }
    progressBar bar("cleaning", quiet(line));
    JEV::SYSTEM::callBack* cb = bar.reporter();
    if (cb) cb->setValue(1.f);
    const unsigned welded = scan.removeDuplicateVertices();
    if (cb) cb->setValue(20.f);
    const unsigned degenerate = scan.removeDegenerateFace();
    const unsigned duplicates = scan.removeDuplicateFaces();
    if (cb) cb->setValue(40.f);
    const unsigned smallPieces = scan.removeIsolatePieces(unsigned(minFaces));
    if (cb) cb->setValue(80.f);
    const unsigned unreferenced = scan.removeUnReferenceVertex();
    if (cb) cb->setValue(100.f);
    bar.finish();
    if (!quiet(line))
      std::cout << "welded vertices:       " << welded << "\n"
                << "degenerate faces:      " << degenerate << "\n"
                << "duplicate faces:       " << duplicates << "\n"
                << "faces of small pieces: " << smallPieces << "\n"
                << "unreferenced vertices: " << unreferenced << "\n";
    mesh.clear(false);
    JEV::MESH::editMeshInterface out(mesh);
    scan.copyTo(out);
    mesh.checkMeshState();
    mesh.computeEdges(true);
    mesh.computeVE();
    mesh.computeNormalizedFaceNormals();
    if (!scan.hasVN()) mesh.computeNormalizedVertexNormals();
    return int(EXIT_OK);
  });
}

// The shapes `make` knows, each built from the segment count it is given.
const std::vector<std::pair<std::string, void (*)(editMesh&, unsigned)>>& shapes() {
  static const std::vector<std::pair<std::string, void (*)(editMesh&, unsigned)>> table = {
      {"cube", [](editMesh& m, unsigned) { m.makeCube(); }},
      {"tetrahedron", [](editMesh& m, unsigned) { m.makeTetrahedron(); }},
      {"octahedron", [](editMesh& m, unsigned) { m.makeOctahedron(); }},
      {"dodecahedron", [](editMesh& m, unsigned) { m.makeDodecahedron(); }},
      {"sphere", [](editMesh& m, unsigned n) { m.makeSphere(n / 2, n); }},
      {"torus", [](editMesh& m, unsigned n) { m.makeTorus(n, n / 2, 1.f, 0.35f); }},
      {"cylinder", [](editMesh& m, unsigned n) { m.makeCylinder(n, 1); }},
      {"cone", [](editMesh& m, unsigned n) { m.makeCone(n, 1.f, 2.f); }},
  };
  return table;
}

int runMake(const commandLine& line) {
  if (line.positional().size() != 2)
    return usageError("make", "expected a shape and an output file");
  const std::string& shape = line.positional()[0];
  const std::string& path = line.positional()[1];
  if (kindOfPath(path) == fileKind::UNKNOWN)
    return usageError("make", "'" + path + "' is neither .ply nor .stl");
  long segments = 16;
  if (line.has("--segments") && (!commandLine::toInt(line.values("--segments")[0], segments) ||
                                 segments < 4 || segments > 4096))
    return usageError("make", "--segments takes a whole number from 4 to 4096");
  for (const auto& [name, build] : shapes()) {
    if (name != shape) continue;
    editMesh mesh;
    build(mesh, unsigned(segments));
    return save(line, path, mesh);
  }
  return usageError("make", "unknown shape '" + shape + "'");
}

std::vector<command> withRemeshing(std::vector<command> list) {
  list.insert(list.end(), remeshingCommands().begin(), remeshingCommands().end());
  return list;
}

}  // namespace

const std::vector<command>& allCommands() {
  static const std::vector<command> commands = withRemeshing({
      {"info",
       "FILE",
       "Describe a mesh: counts, border, pieces, size.",
       "Prints vertices, faces by corner count, edges, boundary edges and loops with\n"
       "their sizes, non-manifold edges, isolated vertices, connected components, the\n"
       "bounding box, the surface area, and the volume of a closed mesh.\n",
       {},
       runInfo},
      {"convert", "IN OUT [--ascii|--binary]", "Convert between PLY and STL by extension.",
       "Keeps vertex normals and colours where the target holds them (PLY); STL takes\n"
       "the faces as triangles with their face normals.\n",
       withWriteOptions(), runConvert},
      {"triangulate", "IN OUT [--ascii|--binary]", "Split every face into triangles.",
       "Each face of n corners becomes a fan of n - 2 triangles from its first corner.\n",
       withWriteOptions(), runTriangulate},
      {"subdivide", "IN OUT --scheme catmull-clark|refine|midpoint|loop|butterfly -n N",
       "Subdivide every face N times (default: catmull-clark, once).",
       "  --scheme catmull-clark  smooth quads (Catmull-Clark)\n"
       "  --scheme refine         quads through edge midpoints, shape kept\n"
       "  --scheme midpoint       triangles through edge midpoints\n"
       "  --scheme loop           smooth triangles (Loop), faces taken as triangles\n"
       "  --scheme butterfly      triangles through the old vertices (modified butterfly)\n"
       "  -n N                    number of steps, 0 to 10\n",
       withWriteOptions({{"--scheme", 1}, {"-n", 1}}), runSubdivide},
      {"mirror", "IN OUT --face F --normal X Y Z [--weld]",
       "Add a mirrored copy across the plane through face F's centre.",
       "Every vertex and face is copied, so the halves meet without sharing vertices.\n"
       "  --face F            the face whose barycentre the plane passes through\n"
       "  --normal X Y Z      the plane's normal (need not be unit length)\n"
       "  --weld              join the halves: vertices on the plane are shared, faces\n"
       "                      lying in the plane are dropped\n",
       withWriteOptions({{"--face", 1}, {"--normal", 3}, {"--weld", 0}}), runMirror},
      {"clean", "IN OUT [--min-faces N]", "Clean a scan: weld, drop bad faces and specks.",
       "Welds vertices at exactly equal positions, drops faces with a repeated corner,\n"
       "faces repeating another on the same three vertices, pieces (joined through edges)\n"
       "of fewer than N faces, and vertices no face uses. Polygons become triangles.\n"
       "  --min-faces N       smallest piece kept, in faces (default 1: keep all)\n",
       withWriteOptions({{"--min-faces", 1}}), runClean},
      fillHolesCommand(),
      {"make", "SHAPE OUT [--segments N]", "Write a generated mesh.",
       "  SHAPE               cube, tetrahedron, octahedron, dodecahedron, sphere, torus,\n"
       "                      cylinder or cone\n"
       "  --segments N        segments around the round shapes, 4 to 4096 (default 16)\n",
       withWriteOptions({{"--segments", 1}}), runMake},
      distanceCommand(),
      smoothCommand(),
      snapshotCommand(),
  });
  return commands;
}

}  // namespace JEVMESH
