#pragma once

#include <memory>
#include <string>
#include <vector>

#include "jev3d/math/axisAlignedBox3.h"
#include "jev3d/math/capsule3.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/math/plane3.h"
#include "jev3d/math/point3.h"
#include "jev3d/math/pointTree.h"
#include "jev3d/math/ray3.h"
#include "jev3d/math/sphere3.h"
#include "jev3d/math/triangleTree.h"
#include "jev3d/mesh/meshInterface.h"
#include "jev3d/system/color.h"
#include "jev3d/system/flags.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace RENDERING {
class renderingContext;
}
namespace MESH {
namespace POSTPROCESSING {

class triMesh;

// What the renderer plugs into a triMesh to draw it. The core has no renderer: without a
// hook the rendering group of triMesh does nothing and reports nothing cached.
class triMeshRenderHook {
 public:
  virtual ~triMeshRenderHook();
  virtual bool cache(triMesh& mesh) = 0;
  virtual bool isCached(const triMesh& mesh) const = 0;
  virtual void discard(triMesh& mesh) = 0;
  virtual void draw(triMesh& mesh) = 0;
  virtual void render(triMesh& mesh, RENDERING::renderingContext* context) = 0;
  virtual void updateRenderMatrix(triMesh& mesh) = 0;
};

// Bits of a triMesh face's flags.
enum TRIMESH_FACE_FLAG : char {
  TRIMESH_FACE_SELECTED = 0x01,
  TRIMESH_FACE_VISITED = 0x02,  // belongs to one running walk, which clears it
  TRIMESH_FACE_MARK = 0x04,
};

// The flat indexed triangle mesh with which scans are loaded, filtered, merged and drawn:
// positions, optional vertex normals and colours, three indices a face, face normals,
// face flags, face-face adjacency, two boxes, a world matrix and optional spatial
// indexes. Filters compact the arrays at once (nothing is deleted by flag), so ids change
// after each. Normals, adjacency, boxes and indexes are derived: any change of the
// triangles or positions drops them, and the operations that need them rebuild them.
// Counts are limited to 2^32 - 2; indices from files are checked before use.
class triMesh : public meshInterface {
 public:
  static constexpr unsigned int NONE = 0xFFFFFFFFu;

  triMesh();
  triMesh(const triMesh& other);
  triMesh& operator=(const triMesh& other);
  ~triMesh() override;

  // Accessors
  unsigned int vn() const override { return unsigned(vertices.size()); }
  unsigned int fn() const override { return unsigned(faces.size() / 3); }
  MATH::point3<float>& vPos(unsigned int v) override { return vertices[v]; }
  const MATH::point3<float>& vPos(unsigned int v) const override { return vertices[v]; }
  MATH::point3<float>& vNor(unsigned int v) override { return normals[v]; }
  const MATH::point3<float>& vNor(unsigned int v) const override { return normals[v]; }
  CORE::color& vCol(unsigned int v) override { return colors[v]; }
  const CORE::color& vCol(unsigned int v) const override { return colors[v]; }
  // Corner i of face f's position, normal and colour.
  const MATH::point3<float>& vPos(unsigned int f, unsigned int i) const {
    return vertices[fV(f, i)];
  }
  const MATH::point3<float>& vNor(unsigned int f, unsigned int i) const {
    return normals[fV(f, i)];
  }
  const CORE::color& vCol(unsigned int f, unsigned int i) const { return colors[fV(f, i)]; }
  unsigned int fV0(unsigned int f) const { return faces[3 * size_t(f)]; }
  unsigned int fV1(unsigned int f) const { return faces[3 * size_t(f) + 1]; }
  unsigned int fV2(unsigned int f) const { return faces[3 * size_t(f) + 2]; }
  unsigned int fV(unsigned int f, unsigned int i) const override {
    return faces[3 * size_t(f) + i];
  }
  unsigned int f2vNum(unsigned int) const override { return 3; }
  // Neighbours across the edges: f2f(f, i) is the face across edge i (corners i and
  // i + 1), NONE on a border; f2fNum(f) counts the edges that have one. Where three or
  // more faces share an edge, each names the next of them in face order, in a ring.
  unsigned int f2f(unsigned int f, unsigned int i) const {
    const unsigned int w = ff[3 * size_t(f) + i];
    return w == NONE ? NONE : w / 3;
  }
  unsigned int f2fNum(unsigned int f) const;
  MATH::point3<float>& fNor(unsigned int f) override { return faceNormals[f]; }
  const MATH::point3<float>& fNor(unsigned int f) const override { return faceNormals[f]; }
  SYSTEM::flags<char>& fFlags(unsigned int f) { return faceFlags[f]; }
  const SYSTEM::flags<char>& fFlags(unsigned int f) const { return faceFlags[f]; }

  std::vector<MATH::point3<float>>& getVertices() { return vertices; }
  const std::vector<MATH::point3<float>>& getVertices() const { return vertices; }
  std::vector<MATH::point3<float>>& getNormals() { return normals; }
  const std::vector<MATH::point3<float>>& getNormals() const { return normals; }
  std::vector<CORE::color>& getColors() { return colors; }
  const std::vector<CORE::color>& getColors() const { return colors; }
  std::vector<unsigned int>& getFaces() { return faces; }
  const std::vector<unsigned int>& getFaces() const { return faces; }
  std::vector<MATH::point3<float>>& getFaceNormals() { return faceNormals; }
  const std::vector<MATH::point3<float>>& getFaceNormals() const { return faceNormals; }

  bool hasVN() const override { return !vertices.empty() && normals.size() == vertices.size(); }
  bool hasFN() const override { return fn() > 0 && faceNormals.size() == fn(); }
  bool hasVC() const override { return !vertices.empty() && colors.size() == vertices.size(); }
  bool hasFaceFlags() const override { return faceFlags.size() == fn(); }
  bool hasFF() const { return fn() > 0 && ff.size() == faces.size(); }
  bool hasVertexSpatial() const { return vertexTree != nullptr; }
  bool hasFaceSpatial() const { return faceTree != nullptr; }

  // The world transform of the mesh (identity by default); getBoxRef is the box of the
  // positions carried by it, getBoxVert the box of the positions as stored. Both are
  // computed on demand.
  MATH::matrix4<float> world;
  const MATH::axisAlignedBox3<float>& getBoxRef();
  const MATH::axisAlignedBox3<float>& getBoxVert();
  void computedBoundingBoxRef();
  void computedBoundingBoxVert();

  // meshInterface
  void computeFaceFlags() override;
  bool isFaceDeleted(unsigned int) const override { return false; }
  bool isFaceSelected(unsigned int f) const override {
    return f < faceFlags.size() && faceFlags[f].isFlagSet(TRIMESH_FACE_SELECTED);
  }
  bool isVertDeleted(unsigned int) const override { return false; }
  void clearAxisAlignedBoundingBoxRef() override { boxRefValid = false; }
  void clearAxisAlignedBoundingBoxVert() override { boxVertValid = false; }
  void clearVertexNormal() override { normals.clear(); }
  void clearFaceNormal() override { faceNormals.clear(); }
  void clearSpatialIndexing() override;
  void clear() override;
  void vertexReserve(unsigned int n) override { vertices.reserve(n); }
  void faceReserve(unsigned int n) override { faces.reserve(3 * size_t(n)); }
  void vertexNormalResize(unsigned int n) override { normals.resize(n); }
  void vertexColorResize(unsigned int n) override {
    colors.resize(n, CORE::color(255, 255, 255, 255));
  }
  unsigned int addVertex(const MATH::point3<float>& p) override;
  unsigned int addFace(const unsigned int* ids, unsigned int n) override;
  unsigned int addFace(unsigned int a, unsigned int b, unsigned int c);
  void computeVertexFaceNormalizedNormals() override { computeVertexFaceNormalizedNormals(true); }

  // Files. readFromFile and writeToFile dispatch on the extension, in any letter case:
  // ".STL" to the STL forms; ".PLY", ".TMP", ".OCD" and ".M" to the PLY forms (those are
  // PLY files under other names); writeToFile also takes ".PTS". Any other extension
  // returns false without opening the file. A failed read returns false and leaves the
  // mesh as the reader left it (emptied, or filled up to the failure).
  bool readFromFile(const std::string& name, SYSTEM::callBack* cb = nullptr);
  bool readFromFile(const std::wstring& name, SYSTEM::callBack* cb = nullptr);
  bool writeToFile(const std::string& name, bool binary = true,
                   SYSTEM::callBack* cb = nullptr) const;
  bool writeToFile(const std::wstring& name, bool binary = true,
                   SYSTEM::callBack* cb = nullptr) const;
  // Positions, and normals and colours when the file has them.
  bool readPlyFromFile(const std::string& name, SYSTEM::callBack* cb = nullptr);
  bool writePlyToFile(const std::string& name, bool binary = true,
                      SYSTEM::callBack* cb = nullptr) const;
  // The triangle soup as it is: corner k of the file is vertex k, facet normals go to
  // the face normals. With weld, removeDuplicateVertices follows.
  bool readStlFromFile(const std::string& name, bool weld = true, SYSTEM::callBack* cb = nullptr);
  bool writeStlToFile(const std::string& name, bool binary = true,
                      SYSTEM::callBack* cb = nullptr) const;
  // One text line a vertex: "x y z", then "nx ny nz" when the mesh has normals.
  bool writePtsToFile(const std::string& name, SYSTEM::callBack* cb = nullptr) const;

  // Building. The buildFrom forms replace this mesh with the union of the meshes given
  // (vertices appended in order, faces renumbered; normals and colours kept only when
  // every part has them). buildFromFiles reads each file with readFromFile and merges
  // them; false, leaving this mesh empty, when one does not read.
  void buildFrom(const std::vector<triMesh>& meshes);
  void buildFrom(const std::vector<triMesh*>& meshes);
  void buildFrom(const std::vector<meshInterface*>& meshes);
  bool buildFromFiles(const std::vector<std::string>& names, SYSTEM::callBack* cb = nullptr);
  // Appends another mesh.
  void add(const meshInterface& other);
  // Replaces this mesh with a copy of any mesh: live vertices and faces, polygons as
  // fans from corner 0, corners out of range dropped with their face.
  void importFrom(const meshInterface& other);
  // The listed faces (ids out of range are skipped) with the vertices they use,
  // renumbered in order of first use, into target.
  void subset(const std::vector<unsigned int>& faceIds, triMesh& target) const;
  void subsetFromSelectedFace(triMesh& target) const;
  // The faces whose byte in mask is non-zero (a short mask counts as zeros).
  void subSet(const std::vector<unsigned char>& mask, triMesh& target) const;

  // Primitives, replacing the content, centred on the origin, wound outward.
  // Square of side size in the z = 0 plane facing +z, two triangles.
  void makeQuad(float size = 2.f);
  void makeCube(float size = 2.f);
  // rings latitude bands (at least 2), segments around (at least 3).
  void makeSphere(float radius = 1.f, unsigned int rings = 16, unsigned int segments = 32);
  // Along z from -height/2 to height/2, closed by caps; the cone's apex is on top.
  void makeCone(float radius = 1.f, float height = 2.f, unsigned int segments = 32);
  void makeCylinder(float radius = 1.f, float height = 2.f, unsigned int segments = 32);

  // Normals and adjacency. Face normals are (1 - 0) x (2 - 0); vertex normals the sum
  // of the face normals around each vertex, so larger faces weigh more.
  void computeVertexFaceNormals();
  // The same, normalised; areaWeighted false weighs every face alike.
  void computeVertexFaceNormalizedNormals(bool areaWeighted);
  void computeFaceFaceTopology();

  // Filters. Each returns the number of elements it removed and leaves the mesh
  // compacted. removeFace is the compaction itself: faces whose mark is non-zero go
  // (a short mark list counts as zeros), in one pass with a remap table.
  unsigned int removeFace(const std::vector<unsigned char>& marks);
  // The same, with remap[f] the new id of face f, NONE for a removed one. Face-face
  // adjacency, when built, is carried through the table instead of being dropped.
  unsigned int removeFace(const std::vector<unsigned char>& marks,
                          std::vector<unsigned int>& remap);
  unsigned int removeUnReferenceVertex();
  // Welds vertices of bit-identical positions (0 and -0 apart), keeping the first of
  // each and its normal and colour; faces are renamed.
  unsigned int removeDuplicateVertices(SYSTEM::callBack* cb = nullptr);
  // Faces on the same three vertices as an earlier face, in any order.
  unsigned int removeDuplicateFaces();
  // Faces with a repeated corner, or a corner out of range.
  unsigned int removeDegenerateFace();
  // Faces of zero area.
  unsigned int removeZeroAreaFace();
  // Faces whose normal is more than maxAngleDeg away from direction (surfaces seen at a
  // grazing angle by the scanner); the normals are recomputed first.
  unsigned int removeFacesByConfidence(const MATH::point3<float>& direction, float maxAngleDeg);
  // Faces whose centroid, carried by tableMatrix, lies farther than radius from the
  // turntable's axis through centre, or below the table (behind centre along axis).
  unsigned int removeFacesOutsideRotaryTable(const MATH::point3<float>& centre,
                                             const MATH::point3<float>& axis, float radius,
                                             const MATH::matrix4<float>& tableMatrix);
  // Faces whose area is below minArea or above maxArea.
  unsigned int removeFaceOutOfRangeArea(float minArea, float maxArea);
  // On every edge shared by more than two faces, the faces after the first two.
  unsigned int removeNotManifoldFlagFaces();
  // At a vertex where the faces form several fans, the faces of all but the largest.
  unsigned int removeNotManifoldVertices();
  // The connected pieces (through shared edges): piece[f] is f's piece, numbered in
  // order of their first face; returns the count, and sizes the faces of each.
  unsigned int getIsolatePieces(std::vector<unsigned int>& piece, std::vector<unsigned int>& sizes);
  // Pieces of fewer than minFaces faces.
  unsigned int removeIsolatePieces(unsigned int minFaces, SYSTEM::callBack* cb = nullptr);
  // All pieces but the largest (the first of equals).
  unsigned int removeMinorIsolatePieces();
  // The mesh as a range map of width x height vertices in rows: each vertex is coloured
  // by the longest squared edge at it, mapped to 0..255 by (value - minimum) / threshold²
  // · 255, and faces with a squared edge above threshold² are removed. removed, filled
  // and total receive the faces removed, kept and present before. False, changing
  // nothing, when the vertex count is not width x height.
  bool filterRangeMap(unsigned int& removed, unsigned int& filled, unsigned int& total,
                      unsigned int width, unsigned int height, float threshold);
  // Faces whose centroid lies above value along axis (0, 1 or 2).
  unsigned int crop(unsigned int axis, float value);
  // Collapses the shortest edges until at most target faces remain, or no edge can go
  // without tearing the surface. Returns the faces removed.
  unsigned int decimate(unsigned int target, SYSTEM::callBack* cb = nullptr);

  // Smoothing. Umbrella Laplacian, simultaneous updates; border vertices stay unless
  // smoothBorder. The HC variant (alpha 0, beta 0.5) pushes each step back toward the
  // previous positions, so the volume shrinks much less.
  void laplacianSmoothing(unsigned int iterations, bool smoothBorder = false);
  void hCLaplacianSmoothing(unsigned int iterations);

  // Selection. The shape forms select (add) the faces that meet the shape.
  void selectAllFaces();
  void deselectAllFaces();
  void invertSelectedFaces();
  void selectFace(unsigned int f, bool selected = true);
  void selectFacesWithAxisAlignedBox(const MATH::axisAlignedBox3<float>& box);
  void selectFacesWithCapsule(const MATH::capsule3<float>& capsule);
  void selectFacesWithSphere(const MATH::sphere3<float>& sphere);
  // Faces whose corners, carried by viewProjection (rows, p · m), all fall inside the
  // rectangle of normalised device coordinates [x0, x1] x [y0, y1].
  void selectFacesWithRect(const MATH::matrix4<float>& viewProjection, float x0, float y0, float x1,
                           float y1);
  unsigned int eraseSelectedFaces();
  // Selects the faces of the pieces of fewer than minFaces faces; returns how many.
  unsigned int selectIsolatePieces(unsigned int minFaces);
  unsigned int getSelectedFaceCount() const;

  // Queries. The ray form takes the face index when one is built, else tests every face;
  // face and point receive the first hit.
  bool getRayIntersect(const MATH::ray3<float>& ray, unsigned int& face,
                       MATH::point3<float>& point) const;
  // The segments where the faces cross the plane, two points each; returns how many.
  unsigned int getPlaneIntersect(const MATH::plane3<float>& plane,
                                 std::vector<MATH::point3<float>>& segments) const;
  // Whether face f turns away from a viewer looking along viewDirection.
  bool isABackFace(unsigned int f, const MATH::point3<float>& viewDirection) const;

  // Transforms and colour. transform moves positions by m (p · m) and carries normals.
  void transform(const MATH::matrix4<float>& m);
  void reverseFaceOrder();
  void setVertexColor(const CORE::color& c);
  void setVertexColorAlpha(unsigned char alpha);

  // Spatial indexes over vertices and faces, destroying the old ones first.
  void computeVABBTree(unsigned int leafSize = 8);
  void computeFABBTree(unsigned int leafSize = 8);
  const MATH::pointTree* getVertexSpatial() const { return vertexTree.get(); }
  const MATH::triangleTree* getFaceSpatial() const { return faceTree.get(); }

  // Rendering, through the hook the renderer sets; without one these do nothing and
  // cache and isCached return false.
  void setRenderHook(triMeshRenderHook* hook) { renderHook = hook; }
  bool cache();
  bool isCached() const;
  void discard();
  void draw();
  void render(RENDERING::renderingContext* context);
  void updateRenderMatrix();

 private:
  // After faces changed: adjacency, face normals and flags follow the faces, indexes
  // and boxes go.
  void facesChanged();
  void positionsChanged();
  // Keeps the vertices whose keep byte is set, renumbering faces (faces on a dropped
  // vertex must be gone already); returns the count dropped.
  unsigned int keepVertices(const std::vector<unsigned char>& keep);
  void ensureFaceFace();

  std::vector<MATH::point3<float>> vertices;
  std::vector<MATH::point3<float>> normals;
  std::vector<CORE::color> colors;
  std::vector<unsigned int> faces;
  std::vector<MATH::point3<float>> faceNormals;
  std::vector<SYSTEM::flags<char>> faceFlags;
  std::vector<unsigned int> ff;
  MATH::axisAlignedBox3<float> boxRef, boxVert;
  bool boxRefValid = false, boxVertValid = false;
  std::unique_ptr<MATH::pointTree> vertexTree;
  std::unique_ptr<MATH::triangleTree> faceTree;
  triMeshRenderHook* renderHook = nullptr;
};

}  // namespace POSTPROCESSING
}  // namespace MESH
}  // namespace JEV
