#pragma once

#include <string>
#include <vector>

#include "jev3d/editing/polylineDescriptor.h"
#include "jev3d/math/ray3.h"

namespace JEV {
namespace MESH {
class meshInterface;
namespace EDITING {

// A set of named polylines and the edges that tie a control point of one to a control
// point of another (or of the same one): "From" and "To" are control point indices in the
// polylines named "FromName" and "ToName". Files have version "1.0" and the root
// "polylineControlPointPositionModifierManager".
class polylineControlPointPositionModifierManager {
 public:
  struct edge {
    std::wstring FromName;
    unsigned int From = 0;
    std::wstring ToName;
    unsigned int To = 0;
    bool operator==(const edge& o) const {
      return FromName == o.FromName && From == o.From && ToName == o.ToName && To == o.To;
    }
  };
  struct polylineScheme {
    std::wstring name;
    polylineDescriptor descriptor;
    bool operator==(const polylineScheme& o) const {
      return name == o.name && descriptor == o.descriptor;
    }
  };
  struct edgeScheme {
    edge Edge;
    bool operator==(const edgeScheme& o) const { return Edge == o.Edge; }
  };

  // Adds a polyline under name, or under "Polyline" and the first free number when name is
  // empty or taken. Returns its index.
  unsigned int addNewScheme(const polylineDescriptor& d, const std::wstring& name = L"");
  // Ties point from of polyline fromName to point to of polyline toName. False, with
  // nothing added, for an unknown name, a point out of range, a point tied to itself or an
  // edge already there (either way round).
  bool addEdge(const std::wstring& fromName, unsigned int from, const std::wstring& toName,
               unsigned int to);
  // Drops the polylines without control points and the edges that name a polyline or a
  // point no longer there. Returns how many records went.
  unsigned int deleteUnusedPointer();
  // The scheme of that name, or null.
  polylineScheme* findScheme(const std::wstring& name);
  // Gives every polyline these meshes (after reading a file, say).
  void setMeshes(const std::vector<meshInterface*>& meshes);

  // Reading replaces everything only when the whole file is valid (edges naming known
  // polylines and points); false leaves the manager as it was.
  bool saveToXML(const std::wstring& fileName) const;
  bool saveToXML(const std::string& fileName) const;
  bool openFromXML(const std::wstring& fileName);
  bool openFromXML(const std::string& fileName);

  // The first double click picks the control point nearest the ray's origin among those
  // within pickRadius of it; the second, on another point, ties the two with an edge.
  // Returns true when an edge was added; a click on no point forgets the first pick.
  bool onMouseDoubleClick(const MATH::ray3<float>& ray, float pickRadius);

  const std::vector<polylineScheme>& getSchemes() const { return schemes; }
  std::vector<polylineScheme>& getSchemes() { return schemes; }
  const std::vector<edgeScheme>& getEdges() const { return edges; }

 private:
  bool edgeValid(const edge& e) const;

  std::vector<polylineScheme> schemes;
  std::vector<edgeScheme> edges;
  // The first pick of a double-click pair: scheme name and point, or an empty name.
  std::wstring pickedName;
  unsigned int pickedPoint = 0;
};

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
