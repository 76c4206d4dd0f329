#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "jev3d/fields/fieldBase.h"
#include "jev3d/math/axisAlignedBox3.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/math/point3.h"
#include "jev3d/math/triangleTree.h"

namespace JEV {
namespace GUI {
class widget;
}
namespace IO {
namespace XML {
class xmlElement;
class xmlNode;
}  // namespace XML
}  // namespace IO
namespace MESH {
class meshInterface;
namespace EDITING {

// A curve drawn on mesh surfaces through control points. Each point remembers the face it
// lies on and the index of its mesh in meshes, and updateControlPoint pulls it back onto
// that mesh through the mesh's face index. Copies are deep for the points and share the
// mesh pointers, which the descriptor does not own.
class polylineDescriptor {
 public:
  class polylineControlPoint {
   public:
    polylineControlPoint() = default;
    polylineControlPoint(const MATH::point3<float>& position, unsigned int face,
                         unsigned int meshIndex)
        : pos(position), F(face), MeshIndex(meshIndex) {}
    virtual ~polylineControlPoint() = default;
    polylineControlPoint(const polylineControlPoint&) = default;
    polylineControlPoint& operator=(const polylineControlPoint&) = default;

    // Position, face and mesh; the widget is a view of the point and not compared.
    bool operator==(const polylineControlPoint& o) const {
      return pos == o.pos && F == o.F && MeshIndex == o.MeshIndex;
    }
    bool operator!=(const polylineControlPoint& o) const { return !(*this == o); }

    MATH::point3<float> pos;
    unsigned int F = 0;
    unsigned int MeshIndex = 0;
    // The handle that shows the point in an interface, if any; not owned.
    GUI::widget* widget = nullptr;
  };

  // The limit of updateControlPoint() without an argument: only the count of attempts
  // bounds the search.
  static constexpr float NO_DISTANCE_LIMIT = 3.4028235e+38f;
  // Tries of the growing search for one control point.
  static constexpr unsigned int MAX_ATTEMPTS = 11;

  polylineDescriptor() = default;
  polylineDescriptor(const polylineDescriptor&) = default;
  polylineDescriptor& operator=(const polylineDescriptor&) = default;
  virtual ~polylineDescriptor() = default;

  // Equal control points and current point; the mesh lists are not compared.
  bool operator==(const polylineDescriptor& o) const;
  bool operator!=(const polylineDescriptor& o) const { return !(*this == o); }

  // Moves every control point to the closest point of its mesh found within a radius that
  // starts at 1 and doubles, with at most MAX_ATTEMPTS searches while the radius is below
  // maxDist (and always one). A point whose mesh is missing or whose search finds nothing
  // stays where it is, with one line about it on the error stream. Returns how many
  // points stayed.
  unsigned int updateControlPoint(float maxDist);
  unsigned int updateControlPoint() { return updateControlPoint(NO_DISTANCE_LIMIT); }

  // Inserts cp after the point at index (before the first for a negative index, at the
  // end past the last) and makes it the current point. Returns its index.
  unsigned int addControlPointAfter(int index, const polylineControlPoint& cp);
  void setMeshIndexToAllCP(unsigned int meshIndex);
  // Mean of the control points (the origin for none).
  MATH::point3<float> getBarycenter() const;
  // Sum of the segment lengths, with the closing one when closed.
  float getLength(bool closed) const;
  // A one-line summary: points, length open and closed, meshes, current point.
  std::string getInfo() const;
  // Applies m to the positions (row-vector convention, p * m).
  void transform(const MATH::matrix4<float>& m);
  // Box around the control points; empty for none.
  MATH::axisAlignedBox3<float> computeAxisAlignedBox3f() const;
  // Smallest distance from p to the chain (to the single point when there is one);
  // the largest float for an empty descriptor.
  float distanceFromPoint3(const MATH::point3<float>& p, bool closed = false) const;
  // Smallest distance between the two chains (both taken open or both closed).
  static float distancePolylinePolyline(const polylineDescriptor& a, const polylineDescriptor& b,
                                        bool closed = false);
  // Inserts points so that no segment is longer than maxLength; the new points take the
  // face and mesh of the point before them and are pulled onto that mesh when the
  // descriptor has it.
  void refine(float maxLength, bool closed);
  // Drops the points that lie within tolerance of the chain through the others
  // (Douglas-Peucker). Returns the number dropped; the current point is reset to -1.
  unsigned int simplify(float tolerance, bool closed = false);
  // The uniform cubic B-spline through the control points as samplesPerSpan points a span.
  void exportToSpline(std::vector<MATH::point3<float>>& out, unsigned int samplesPerSpan = 8,
                      bool closed = false) const;

  // The sides of a mesh's faces as a graph over its vertices, for shortest paths over the
  // surface: the neighbours of vertex v are neighbours[offsets[v] .. offsets[v + 1]), each
  // at the length in lengths beside it.
  struct geodesicGraph {
    std::vector<unsigned int> offsets;
    std::vector<unsigned int> neighbours;
    std::vector<float> lengths;
  };
  // The graph of the live faces of mesh.
  static void computeGeodesicGraph(const meshInterface& mesh, geodesicGraph& graph);
  // The graph of the listed faces only (ids out of range or deleted are skipped).
  static void computeGeodesicGraph(const meshInterface& mesh,
                                   const std::vector<unsigned int>& faces, geodesicGraph& graph);
  // The graph of the live faces and the shortest path over it that joins the vertices
  // nearest to the control points, in order (closing the loop when closed): the path's
  // vertices, each once between turns. False, with path empty, for fewer than 2 points or
  // a point whose vertex cannot reach the next one.
  bool computeGeodesicGraph(const meshInterface& mesh, geodesicGraph& graph,
                            std::vector<unsigned int>& path, bool closed = false) const;

  // Files, version "1.0", root "polylineDescriptor". Reading replaces the points and the
  // current point only when the whole file is valid; false leaves the descriptor as it was.
  bool saveToXML(const std::wstring& fileName) const;
  bool saveToXML(const std::string& fileName) const;
  bool openFromXML(const std::wstring& fileName);
  bool openFromXML(const std::string& fileName);
  // The "POLYLINE" element under parent, and its reading, for files that hold several.
  bool saveToXML(IO::XML::xmlNode* parent) const;
  bool openFromXML(const IO::XML::xmlNode* polyline);

  // The face index of mesh meshIndex, built first (leaves of a sixteenth of the faces, at
  // least 1) when the mesh has none that is current; null for a missing mesh, a mesh
  // without faces, or one that keeps no index.
  const MATH::triangleTree* getFaceIndex(unsigned int meshIndex) const;

  // What a copy weighs, for undo limits.
  unsigned int getNumBytes() const;
  // Removes the control points and resets the current point; the meshes stay.
  void clear();

  std::vector<polylineControlPoint> controlPoints;
  std::vector<meshInterface*> meshes;
  SYSTEM::fieldBase<int> CurrCP{-1};

 private:
  // Pulls one point; false when it stayed.
  bool updateOneControlPoint(unsigned int i, float maxDist);
  std::vector<MATH::point3<float>> positions() const;
};

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
