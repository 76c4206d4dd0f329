#pragma once

#include <cstdint>
#include <vector>

namespace JEV {
namespace MESH {
class editMesh;

// The records that cross the border to the mesh boolean: plain vectors behind two
// functors, so that the boolean's side needs nothing of the kernel. They form one family
// and are read together, hence one header.
namespace dataExchange {

template <class T>
struct xyz_impl {
  T x = 0, y = 0, z = 0;
};

class meshInterface {
 public:
  class vertFunctor {
   public:
    virtual ~vertFunctor() = default;
    virtual int allocate(unsigned int n) = 0;
    virtual int addVertex(const float& x, const float& y, const float& z) = 0;
    virtual unsigned int count() const = 0;
    virtual xyz_impl<float> position(unsigned int i) const = 0;
  };
  class faceFunctor {
   public:
    virtual ~faceFunctor() = default;
    virtual int allocateFaces(unsigned int n) = 0;
    virtual int allocateCorners(unsigned int n) = 0;
    // Appends a face of n corners; returns its id.
    virtual int addFace(unsigned int* ids, unsigned int n, bool reserve) = 0;
    virtual unsigned int faceCount() const = 0;
    virtual unsigned int cornerCount() const = 0;
    virtual unsigned int& fV(unsigned int f, unsigned int i) = 0;
    virtual unsigned int fV(unsigned int f, unsigned int i) const = 0;
    virtual unsigned int F2VNUM(unsigned int f) const = 0;
    virtual bool isFaceDeleted(unsigned int f) const = 0;
  };

  meshInterface() = default;
  virtual ~meshInterface() = default;
  meshInterface(const meshInterface&) = delete;
  meshInterface& operator=(const meshInterface&) = delete;

  int allocateVertexArray(unsigned int n) { return vertF->allocate(n); }
  int allocateFaceArray(unsigned int n) { return faceF->allocateFaces(n); }
  int allocateFVArray(unsigned int n) { return faceF->allocateCorners(n); }
  faceFunctor* fFunc() const { return faceF; }
  vertFunctor* vFunc() const { return vertF; }

 protected:
  // The most derived record, set by it (free for the derived class's own use).
  void* owner = nullptr;
  faceFunctor* faceF = nullptr;
  vertFunctor* vertF = nullptr;
};

class mesh : public meshInterface {
 public:
  explicit mesh(faceFunctor* faces) : myVertFunctor(&positions) {
    faceF = faces;
    vertF = &myVertFunctor;
    owner = this;
  }
  std::vector<xyz_impl<float>> positions;

 private:
  class vertStore : public vertFunctor {
   public:
    explicit vertStore(std::vector<xyz_impl<float>>* p) : points(p) {}
    int allocate(unsigned int n) override;
    int addVertex(const float& x, const float& y, const float& z) override;
    unsigned int count() const override { return unsigned(points->size()); }
    xyz_impl<float> position(unsigned int i) const override { return (*points)[i]; }

   private:
    std::vector<xyz_impl<float>>* points;
  };
  vertStore myVertFunctor;
};

// A polygon mesh: corner ids and (first corner, corner count) per face.
class editMesh : public mesh {
 public:
  struct faceRecord {
    uint32_t first = 0;
    uint32_t count = 0;
  };
  editMesh();
  std::vector<uint32_t> corners;
  std::vector<faceRecord> faces;

 private:
  class faceStore : public faceFunctor {
   public:
    faceStore(std::vector<uint32_t>* c, std::vector<faceRecord>* f) : cornerIds(c), records(f) {}
    int allocateFaces(unsigned int n) override;
    int allocateCorners(unsigned int n) override;
    int addFace(unsigned int* ids, unsigned int n, bool reserve) override;
    unsigned int faceCount() const override { return unsigned(records->size()); }
    unsigned int cornerCount() const override { return unsigned(cornerIds->size()); }
    unsigned int& fV(unsigned int f, unsigned int i) override {
      return (*cornerIds)[(*records)[f].first + i];
    }
    unsigned int fV(unsigned int f, unsigned int i) const override {
      return (*cornerIds)[(*records)[f].first + i];
    }
    unsigned int F2VNUM(unsigned int f) const override { return (*records)[f].count; }
    bool isFaceDeleted(unsigned int) const override { return false; }

   private:
    std::vector<uint32_t>* cornerIds;
    std::vector<faceRecord>* records;
  };
  faceStore myFaceFunctor;
};

// The same frame for triangle meshes: three corner ids a face.
class triMesh : public mesh {
 public:
  triMesh();
  std::vector<uint32_t> corners;

 private:
  class triStore : public faceFunctor {
   public:
    explicit triStore(std::vector<uint32_t>* c) : cornerIds(c) {}
    int allocateFaces(unsigned int n) override;
    int allocateCorners(unsigned int n) override;
    // Only triangles are taken: another count returns -1.
    int addFace(unsigned int* ids, unsigned int n, bool reserve) override;
    unsigned int faceCount() const override { return unsigned(cornerIds->size() / 3); }
    unsigned int cornerCount() const override { return unsigned(cornerIds->size()); }
    unsigned int& fV(unsigned int f, unsigned int i) override { return (*cornerIds)[3 * f + i]; }
    unsigned int fV(unsigned int f, unsigned int i) const override {
      return (*cornerIds)[3 * f + i];
    }
    unsigned int F2VNUM(unsigned int) const override { return 3; }
    bool isFaceDeleted(unsigned int) const override { return false; }

   private:
    std::vector<uint32_t>* cornerIds;
  };
  triStore myFaceFunctor;
};

// What the boolean takes: an editMesh record whose corner queries go through its own
// table.
class editMeshNode : public editMesh {
 public:
  virtual unsigned int f2vNum(unsigned int f) const { return fFunc()->F2VNUM(f); }
  virtual unsigned int fV(unsigned int f, unsigned int i) const { return fFunc()->fV(f, i); }
  unsigned int vn() const { return vFunc()->count(); }
  unsigned int fn() const { return fFunc()->faceCount(); }
};

// The live faces of `source` (at least three corners) with the vertices they use,
// renumbered in order of first use.
void fromEditMesh(const MESH::editMesh& source, editMesh& target);
// Replaces `target`'s content with the record's faces and vertices and builds edges, VE
// and unit normals. False, leaving target empty, when a corner names no vertex.
bool toEditMesh(const editMesh& source, MESH::editMesh& target);

}  // namespace dataExchange
}  // namespace MESH
}  // namespace JEV
