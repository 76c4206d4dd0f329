#pragma once

#include <memory>
#include <vector>

#include "jev3d/math/point3.h"
#include "jev3d/system/color.h"

namespace JEV {
namespace SYSTEM {
class callBack;
}
namespace MESH {
class meshInterface;
namespace ALGO {
namespace MEASUREMENT {

namespace INTERNAL {
struct surfaceIndex;
}

// How far models are from each other, per vertex, and those distances as colours.
//
// The static functions measure from the vertices of a (or a list of points) to the surface
// of b: result vectors are sized for a's vertices and start at MAX_T (distances, closest
// points) and 0xFFFFFFFF (faces); a vertex that is deleted, or farther than maxDistance
// from every face of b, keeps them. They report 1.0 first, the share of vertices done, and
// 100 last, and return false only for a null mesh. Long lists are measured in runs on
// several threads; the meshes must not change meanwhile.
//
// The per-model service keeps a list of models, each with its per-vertex distance to the
// nearest of the others measured so far, and the range of those distances, which the
// colours span.
class distance {
 public:
  // Unsigned distance from each vertex of a to the surface b.
  static bool computeDistance(const meshInterface* a, const meshInterface* b, float maxDistance,
                              std::vector<float>& distances, SYSTEM::callBack* cb = nullptr);
  // The same with the closest point on b and its face.
  static bool computeClosestPoint(const meshInterface* a, const meshInterface* b, float maxDistance,
                                  std::vector<float>& distances,
                                  std::vector<MATH::point3<float>>& closest,
                                  std::vector<unsigned int>& faces, SYSTEM::callBack* cb = nullptr);

  // Signed distance: negative where the point lies behind b's surface, as told by b's
  // vertex normals blended at the closest point (computed first when b holds none). A
  // point on the surface gets 0, counted as outside. With useNormals false the distance is
  // unsigned.
  static bool computeSignedDistance(const meshInterface* a, meshInterface* b, bool useNormals,
                                    float maxDistance, std::vector<float>& distances,
                                    std::vector<MATH::point3<float>>& closest,
                                    std::vector<unsigned int>& faces,
                                    SYSTEM::callBack* cb = nullptr);
  static bool computeSignedDistance(const meshInterface* a, meshInterface* b, bool useNormals,
                                    float maxDistance, std::vector<float>& distances,
                                    SYSTEM::callBack* cb = nullptr);
  // From a list of points instead of a mesh's vertices; no point counts as deleted.
  static bool computeSignedDistance(const std::vector<MATH::point3<float>>& points,
                                    meshInterface* b, bool useNormals, float maxDistance,
                                    std::vector<float>& distances,
                                    std::vector<MATH::point3<float>>& closest,
                                    std::vector<unsigned int>& faces,
                                    SYSTEM::callBack* cb = nullptr);
  static bool computeSignedDistance(const std::vector<MATH::point3<float>>& points,
                                    meshInterface* b, bool useNormals, float maxDistance,
                                    std::vector<float>& distances, SYSTEM::callBack* cb = nullptr);

  // The one-sided Hausdorff distance: the largest distance from a live vertex of a to the
  // surface b, into result. Vertices that cannot raise the largest distance found so far
  // are passed over without a full search. False for a null mesh or when a has no live
  // vertex; MAX_T when b has no face.
  static bool computeMaxDistance(const meshInterface* a, const meshInterface* b, float& result,
                                 SYSTEM::callBack* cb = nullptr);

  // The colour of value among five equal bands from minimum to maximum: value below the
  // first inner boundary takes band 0, at or above the last takes band 4. MAX_T (nothing
  // measured) takes the colour for no value.
  static CORE::color getColor(float minimum, float maximum, float value);
  // The band colours, nearest first, and the colour of vertices without a value.
  static const CORE::color* getBandColors();
  static CORE::color getNoValueColor();

  distance();
  ~distance();
  distance(const distance&) = delete;
  distance& operator=(const distance&) = delete;

  // Adds a model, which must outlive its place in the list; returns its index. Its
  // distances start at MAX_T.
  unsigned int addModel(meshInterface* model);
  unsigned int getModelCount() const { return unsigned(models.size()); }
  // Drops every model.
  void clear();
  // Every model's distances back to MAX_T and the range emptied.
  void resetDistance();
  // The model moved or changed shape: its face index is rebuilt at the next use and its
  // distances start again.
  void updateModel(unsigned int model);

  // Search limit of updateDistance (MAX_T by default) and whether it signs its distances.
  void setMaxDistance(float d) { maxDistance = d; }
  float getMaxDistance() const { return maxDistance; }
  void setUseNormals(bool use) { useNormals = use; }

  // Measures the vertices of model a against model b, keeping at each vertex the distance
  // of smaller size, and widens the range. The pair is skipped, without any per-vertex
  // work, when the boxes of the two models lie farther apart than the search limit.
  // Returns whether the vertices were measured.
  bool updateDistance(unsigned int a, unsigned int b, SYSTEM::callBack* cb = nullptr);

  // Tests the models as solids against each other, through voxels of `resolution` along
  // each one's longest side: each model's distances become the depth of its vertices
  // inside the others (negative), 0 where they lie inside none. Returns whether any two
  // intersect.
  bool computeSolidIntersection(SYSTEM::callBack* cb = nullptr, unsigned int resolution = 64);

  // Writes the band colours of every model's distances over the present range into the
  // models' vertex colours; updateColorTo does it for one model.
  void updateColor();
  void updateColorTo(unsigned int model);

  const std::vector<float>& getModelDistPerVert(unsigned int model) const;
  // The smallest and largest distance measured; MAX_T and -MAX_T while none is.
  void getMinMaxValue(float& minimum, float& maximum) const;

 private:
  struct model;
  std::vector<std::unique_ptr<model>> models;
  float maxDistance;
  bool useNormals = true;
  float minValue, maxValue;
};

}  // namespace MEASUREMENT
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
