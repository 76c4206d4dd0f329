#include "jev3d/editing/modifier/polylineControlPointPositionModifierManager.h"

#include <algorithm>
#include <limits>
#include <set>

#include "jev3d/editing/internal/polylineMath.h"
#include "jev3d/editing/internal/polylineXml.h"
#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/io/xml/xmlDeclaration.h"
#include "jev3d/io/xml/xmlDocument.h"
#include "jev3d/io/xml/xmlElement.h"

namespace JEV {
namespace MESH {
namespace EDITING {

namespace {

using INTERNAL::asElement;
using INTERNAL::readIndex;
using INTERNAL::readName;
using IO::XML::xmlElement;
using IO::XML::xmlNode;

// The element children of e, which must all be called name.
bool elementChildren(const xmlElement& e, const wchar_t* name,
                     std::vector<const xmlElement*>& out) {
  for (int i = 0; i < e.getChildCount(); ++i) {
    const xmlNode* child = e.getChild(i);
    if (!child || child->getType() != IO::XML::XML_ELEMENT) continue;
    const xmlElement* element = asElement(child, name);
    if (!element) return false;
    out.push_back(element);
  }
  return true;
}

}  // namespace

unsigned int polylineControlPointPositionModifierManager::addNewScheme(const polylineDescriptor& d,
                                                                       const std::wstring& name) {
  std::wstring chosen = name;
  for (unsigned int k = unsigned(schemes.size()); chosen.empty() || findScheme(chosen); ++k)
    chosen = L"Polyline" + std::to_wstring(k);
  schemes.push_back(polylineScheme{chosen, d});
  return unsigned(schemes.size() - 1);
}

polylineControlPointPositionModifierManager::polylineScheme*
polylineControlPointPositionModifierManager::findScheme(const std::wstring& name) {
  for (polylineScheme& s : schemes)
    if (s.name == name) return &s;
  return nullptr;
}

bool polylineControlPointPositionModifierManager::edgeValid(const edge& e) const {
  auto points = [&](const std::wstring& name) -> size_t {
    for (const polylineScheme& s : schemes)
      if (s.name == name) return s.descriptor.controlPoints.size();
    return 0;
  };
  return e.From < points(e.FromName) && e.To < points(e.ToName) &&
         !(e.FromName == e.ToName && e.From == e.To);
}

bool polylineControlPointPositionModifierManager::addEdge(const std::wstring& fromName,
                                                          unsigned int from,
                                                          const std::wstring& toName,
                                                          unsigned int to) {
  const edge e{fromName, from, toName, to};
  const edge reversed{toName, to, fromName, from};
  if (!edgeValid(e)) return false;
  for (const edgeScheme& s : edges)
    if (s.Edge == e || s.Edge == reversed) return false;
  edges.push_back(edgeScheme{e});
  return true;
}

unsigned int polylineControlPointPositionModifierManager::deleteUnusedPointer() {
  const size_t before = schemes.size() + edges.size();
  schemes.erase(
      std::remove_if(schemes.begin(), schemes.end(),
                     [](const polylineScheme& s) { return s.descriptor.controlPoints.empty(); }),
      schemes.end());
  edges.erase(std::remove_if(edges.begin(), edges.end(),
                             [&](const edgeScheme& s) { return !edgeValid(s.Edge); }),
              edges.end());
  return unsigned(before - schemes.size() - edges.size());
}

void polylineControlPointPositionModifierManager::setMeshes(
    const std::vector<meshInterface*>& meshes) {
  for (polylineScheme& s : schemes) s.descriptor.meshes = meshes;
}

bool polylineControlPointPositionModifierManager::saveToXML(const std::wstring& fileName) const {
  IO::XML::xmlDocument doc;
  IO::XML::xmlDeclaration(L"1.0", L"", L"").connect(&doc);
  xmlElement* root = xmlElement("polylineControlPointPositionModifierManager").connect(&doc);
  xmlElement* polylines = root ? xmlElement("Polylines").connect(root) : nullptr;
  if (!polylines) return false;
  for (const polylineScheme& s : schemes) {
    xmlElement element("PolylineDescriptor");
    element.setAttribute(L"Name", s.name);
    xmlElement* written = element.connect(polylines);
    if (!written || !s.descriptor.saveToXML(written)) return false;
  }
  xmlElement* edgeList = xmlElement("Edges").connect(root);
  if (!edgeList) return false;
  for (const edgeScheme& s : edges) {
    xmlElement element("Edge");
    element.setAttribute(L"FromName", s.Edge.FromName);
    element.setAttribute(L"From", s.Edge.From);
    element.setAttribute(L"ToName", s.Edge.ToName);
    element.setAttribute(L"To", s.Edge.To);
    if (!element.connect(edgeList)) return false;
  }
  return doc.writeToFile(fileName);
}

bool polylineControlPointPositionModifierManager::saveToXML(const std::string& fileName) const {
  return saveToXML(IO::XML::utf8ToWstring(fileName));
}

bool polylineControlPointPositionModifierManager::openFromXML(const std::wstring& fileName) {
  IO::XML::xmlDocument doc;
  if (!doc.readFromFile(fileName)) return false;
  const wchar_t* rootName = L"polylineControlPointPositionModifierManager";
  const xmlElement* root = asElement(doc.findNode(std::wstring(rootName)), rootName);
  if (!root) return false;
  const xmlElement* polylines = asElement(root->findNode(std::wstring(L"Polylines")), L"Polylines");
  const xmlElement* edgeList = asElement(root->findNode(std::wstring(L"Edges")), L"Edges");
  std::vector<const xmlElement*> schemeElements, edgeElements;
  if (!polylines || !edgeList ||
      !elementChildren(*polylines, L"PolylineDescriptor", schemeElements) ||
      !elementChildren(*edgeList, L"Edge", edgeElements))
    return false;

  // Read into a fresh manager, so that a bad file leaves this one untouched.
  polylineControlPointPositionModifierManager read;
  std::set<std::wstring> names;
  for (const xmlElement* e : schemeElements) {
    polylineScheme s;
    // Names are keys of the edges, and the empty one marks "no pick".
    if (!readName(*e, L"Name", s.name) || s.name.empty() || !names.insert(s.name).second ||
        !s.descriptor.openFromXML(e->findNode(std::wstring(L"POLYLINE"))))
      return false;
    read.schemes.push_back(s);
  }
  for (const xmlElement* e : edgeElements) {
    edge x;
    if (!readName(*e, L"FromName", x.FromName) || !readIndex(*e, L"From", x.From) ||
        !readName(*e, L"ToName", x.ToName) || !readIndex(*e, L"To", x.To) ||
        !read.addEdge(x.FromName, x.From, x.ToName, x.To))
      return false;
  }
  schemes.swap(read.schemes);
  edges.swap(read.edges);
  pickedName.clear();
  return true;
}

bool polylineControlPointPositionModifierManager::openFromXML(const std::string& fileName) {
  return openFromXML(IO::XML::utf8ToWstring(fileName));
}

bool polylineControlPointPositionModifierManager::onMouseDoubleClick(const MATH::ray3<float>& ray,
                                                                     float pickRadius) {
  const float r2 = pickRadius * pickRadius;
  const polylineScheme* bestScheme = nullptr;
  unsigned int bestPoint = 0;
  float bestT = std::numeric_limits<float>::max();
  for (const polylineScheme& s : schemes)
    for (size_t i = 0; i < s.descriptor.controlPoints.size(); ++i)
      if (INTERNAL::nearerOnRay(ray, s.descriptor.controlPoints[i].pos, r2, bestT))
        bestScheme = &s, bestPoint = unsigned(i);
  if (!bestScheme) {
    pickedName.clear();
    return false;
  }
  if (pickedName.empty()) {
    pickedName = bestScheme->name;
    pickedPoint = bestPoint;
    return false;
  }
  const bool added = addEdge(pickedName, pickedPoint, bestScheme->name, bestPoint);
  pickedName.clear();
  return added;
}

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
