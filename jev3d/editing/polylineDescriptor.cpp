#include "jev3d/editing/polylineDescriptor.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>
#include <queue>
#include <sstream>
#include <utility>

#include "jev3d/editing/internal/polylineMath.h"
#include "jev3d/editing/internal/polylineXml.h"
#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/io/xml/xmlDeclaration.h"
#include "jev3d/io/xml/xmlDocument.h"
#include "jev3d/io/xml/xmlElement.h"
#include "jev3d/mesh/meshInterface.h"

namespace JEV {
namespace MESH {
namespace EDITING {

namespace {

using point3f = MATH::point3<float>;
using INTERNAL::asElement;
using INTERNAL::readCoordinate;
using INTERNAL::readIndex;
using IO::XML::xmlElement;
using IO::XML::xmlNode;

bool readControlPoint(const xmlElement& e, polylineDescriptor::polylineControlPoint& cp) {
  if (!readIndex(e, L"F", cp.F) || !readIndex(e, L"MeshIndex", cp.MeshIndex)) return false;
  const xmlElement* pos = asElement(e.findNode(std::wstring(L"POS")), L"POS");
  return pos && readCoordinate(*pos, L"X", cp.pos.x) && readCoordinate(*pos, L"Y", cp.pos.y) &&
         readCoordinate(*pos, L"Z", cp.pos.z);
}

}  // namespace

bool polylineDescriptor::operator==(const polylineDescriptor& o) const {
  return controlPoints == o.controlPoints && CurrCP.cV() == o.CurrCP.cV();
}

unsigned int polylineDescriptor::updateControlPoint(float maxDist) {
  unsigned int stayed = 0;
  for (unsigned int i = 0; i < controlPoints.size(); ++i)
    if (!updateOneControlPoint(i, maxDist)) ++stayed;
  return stayed;
}

bool polylineDescriptor::updateOneControlPoint(unsigned int i, float maxDist) {
  polylineControlPoint& cp = controlPoints[i];
  float r = 1.0f;
  float lastDist = 0.f;
  unsigned int attempts = 0;
  // The search runs while r is below maxDist, but a limit at or below 1 still gets one
  // search: the first is made before the limit is looked at.
  do {
    ++attempts;
    lastDist = r;
    const MATH::triangleTree* index = getFaceIndex(cp.MeshIndex);
    if (!index) {
      r *= 2.f;
      continue;
    }
    MATH::closestPointHit hit;
    const bool found = index->closestPoint(cp.pos, r * r, hit);
    r *= 2.f;
    if (found) {
      cp.pos = hit.point;
      cp.F = hit.face;
      return true;
    }
  } while (attempts < MAX_ATTEMPTS && r < maxDist);
  // No face came back, so the face cannot have stayed the same.
  std::cerr << "updateControlPoint() FAIL i " << i << "   res " << 0 << " dist " << lastDist
            << "  F==F_new " << 0 << "\n";
  return false;
}

const MATH::triangleTree* polylineDescriptor::getFaceIndex(unsigned int meshIndex) const {
  // A mesh index read from a file may name no mesh of this descriptor.
  meshInterface* mesh = meshIndex < meshes.size() ? meshes[meshIndex] : nullptr;
  if (!mesh || mesh->fn() == 0) return nullptr;
  if (!mesh->isFaceIndexValid()) mesh->computeFaceIndex(std::max(1u, mesh->fn() / 16));
  return mesh->getFaceIndex();
}

unsigned int polylineDescriptor::addControlPointAfter(int index, const polylineControlPoint& cp) {
  const size_t at = index < 0 ? 0 : std::min(size_t(index) + 1, controlPoints.size());
  controlPoints.insert(controlPoints.begin() + std::ptrdiff_t(at), cp);
  CurrCP = int(at);
  return unsigned(at);
}

void polylineDescriptor::setMeshIndexToAllCP(unsigned int meshIndex) {
  for (polylineControlPoint& cp : controlPoints) cp.MeshIndex = meshIndex;
}

std::vector<MATH::point3<float>> polylineDescriptor::positions() const {
  std::vector<point3f> p;
  p.reserve(controlPoints.size());
  for (const polylineControlPoint& cp : controlPoints) p.push_back(cp.pos);
  return p;
}

MATH::point3<float> polylineDescriptor::getBarycenter() const {
  if (controlPoints.empty()) return point3f(0.f, 0.f, 0.f);
  double x = 0, y = 0, z = 0;
  for (const polylineControlPoint& cp : controlPoints) x += cp.pos.x, y += cp.pos.y, z += cp.pos.z;
  const double n = double(controlPoints.size());
  return point3f(float(x / n), float(y / n), float(z / n));
}

float polylineDescriptor::getLength(bool closed) const {
  const unsigned int n = unsigned(controlPoints.size());
  double sum = 0.0;
  for (unsigned int i = 0; i < INTERNAL::segmentCount(n, closed); ++i)
    sum += (controlPoints[(i + 1) % n].pos - controlPoints[i].pos).norm();
  return float(sum);
}

std::string polylineDescriptor::getInfo() const {
  std::ostringstream s;
  s << "control points " << controlPoints.size() << ", length " << getLength(false) << " (closed "
    << getLength(true) << "), meshes " << meshes.size() << ", current point " << CurrCP.cV();
  return s.str();
}

void polylineDescriptor::transform(const MATH::matrix4<float>& m) {
  for (polylineControlPoint& cp : controlPoints) cp.pos = cp.pos * m;
}

MATH::axisAlignedBox3<float> polylineDescriptor::computeAxisAlignedBox3f() const {
  MATH::axisAlignedBox3<float> box;
  for (const polylineControlPoint& cp : controlPoints) box.extend(cp.pos);
  return box;
}

float polylineDescriptor::distanceFromPoint3(const MATH::point3<float>& p, bool closed) const {
  const unsigned int n = unsigned(controlPoints.size());
  if (n == 0) return std::numeric_limits<float>::max();
  if (n == 1) return (p - controlPoints[0].pos).norm();
  float best = std::numeric_limits<float>::max();
  for (unsigned int i = 0; i < INTERNAL::segmentCount(n, closed); ++i)
    best = std::min(best, INTERNAL::pointSegmentDistance(p, controlPoints[i].pos,
                                                         controlPoints[(i + 1) % n].pos));
  return best;
}

float polylineDescriptor::distancePolylinePolyline(const polylineDescriptor& a,
                                                   const polylineDescriptor& b, bool closed) {
  const unsigned int na = unsigned(a.controlPoints.size()), nb = unsigned(b.controlPoints.size());
  if (na == 0 || nb == 0) return std::numeric_limits<float>::max();
  if (na == 1) return b.distanceFromPoint3(a.controlPoints[0].pos, closed);
  if (nb == 1) return a.distanceFromPoint3(b.controlPoints[0].pos, closed);
  float best = std::numeric_limits<float>::max();
  for (unsigned int i = 0; i < INTERNAL::segmentCount(na, closed); ++i)
    for (unsigned int j = 0; j < INTERNAL::segmentCount(nb, closed); ++j)
      best = std::min(best, INTERNAL::segmentSegmentDistance(
                                a.controlPoints[i].pos, a.controlPoints[(i + 1) % na].pos,
                                b.controlPoints[j].pos, b.controlPoints[(j + 1) % nb].pos));
  return best;
}

void polylineDescriptor::refine(float maxLength, bool closed) {
  std::vector<point3f> out;
  std::vector<unsigned char> isNew;
  INTERNAL::refinePoints(positions(), maxLength, closed, out, &isNew);
  std::vector<polylineControlPoint> refined;
  refined.reserve(out.size());
  std::vector<unsigned int> added;
  for (size_t i = 0; i < out.size(); ++i) {
    if (isNew[i]) {
      polylineControlPoint cp = refined.back();
      cp.pos = out[i];
      cp.widget = nullptr;
      added.push_back(unsigned(refined.size()));
      refined.push_back(cp);
    } else {
      refined.push_back(controlPoints[refined.size() - added.size()]);
    }
  }
  controlPoints.swap(refined);
  for (unsigned int i : added)
    if (controlPoints[i].MeshIndex < meshes.size()) updateOneControlPoint(i, NO_DISTANCE_LIMIT);
  if (CurrCP.cV() >= int(controlPoints.size())) CurrCP = -1;
}

unsigned int polylineDescriptor::simplify(float tolerance, bool closed) {
  std::vector<unsigned char> keep;
  INTERNAL::simplifyPoints(positions(), tolerance, closed, keep);
  std::vector<polylineControlPoint> kept;
  for (size_t i = 0; i < controlPoints.size(); ++i)
    if (keep[i]) kept.push_back(controlPoints[i]);
  const unsigned int dropped = unsigned(controlPoints.size() - kept.size());
  controlPoints.swap(kept);
  CurrCP = -1;
  return dropped;
}

void polylineDescriptor::exportToSpline(std::vector<MATH::point3<float>>& out,
                                        unsigned int samplesPerSpan, bool closed) const {
  INTERNAL::discretizeBSpline(positions(), samplesPerSpan, closed, out);
}

void polylineDescriptor::computeGeodesicGraph(const meshInterface& mesh, geodesicGraph& graph) {
  std::vector<unsigned int> all;
  for (unsigned int f = 0; f < mesh.fn(); ++f) all.push_back(f);
  computeGeodesicGraph(mesh, all, graph);
}

void polylineDescriptor::computeGeodesicGraph(const meshInterface& mesh,
                                              const std::vector<unsigned int>& faces,
                                              geodesicGraph& graph) {
  // Every side both ways, sorted, so each vertex's neighbours are one run.
  std::vector<std::pair<unsigned int, unsigned int>> sides;
  const unsigned int vn = mesh.vn();
  for (unsigned int f : faces) {
    if (f >= mesh.fn() || mesh.isFaceDeleted(f)) continue;
    const unsigned int n = mesh.f2vNum(f);
    for (unsigned int i = 0; i < n; ++i) {
      const unsigned int a = mesh.fV(f, i), b = mesh.fV(f, (i + 1) % n);
      if (a == b || a >= vn || b >= vn) continue;
      sides.emplace_back(a, b);
      sides.emplace_back(b, a);
    }
  }
  std::sort(sides.begin(), sides.end());
  sides.erase(std::unique(sides.begin(), sides.end()), sides.end());
  graph.offsets.assign(size_t(vn) + 1, 0);
  graph.neighbours.clear();
  graph.lengths.clear();
  for (const auto& s : sides) {
    ++graph.offsets[s.first + 1];
    graph.neighbours.push_back(s.second);
    graph.lengths.push_back((mesh.vPos(s.first) - mesh.vPos(s.second)).norm());
  }
  for (unsigned int v = 0; v < vn; ++v) graph.offsets[v + 1] += graph.offsets[v];
}

namespace {

// Dijkstra from a to b over the graph; appends the path after a (b included). False when
// b cannot be reached.
bool shortestPath(const polylineDescriptor::geodesicGraph& g, unsigned int a, unsigned int b,
                  std::vector<unsigned int>& path) {
  const size_t vn = g.offsets.size() - 1;
  std::vector<float> dist(vn, std::numeric_limits<float>::infinity());
  std::vector<unsigned int> from(vn, 0xFFFFFFFFu);
  using item = std::pair<float, unsigned int>;
  std::priority_queue<item, std::vector<item>, std::greater<item>> open;
  dist[a] = 0.f;
  open.emplace(0.f, a);
  while (!open.empty()) {
    const auto [d, v] = open.top();
    open.pop();
    if (v == b) break;
    if (d > dist[v]) continue;
    for (unsigned int k = g.offsets[v]; k < g.offsets[v + 1]; ++k) {
      const unsigned int w = g.neighbours[k];
      if (d + g.lengths[k] < dist[w]) {
        dist[w] = d + g.lengths[k];
        from[w] = v;
        open.emplace(dist[w], w);
      }
    }
  }
  if (a != b && from[b] == 0xFFFFFFFFu) return false;
  std::vector<unsigned int> back;
  for (unsigned int v = b; v != a; v = from[v]) back.push_back(v);
  path.insert(path.end(), back.rbegin(), back.rend());
  return true;
}

}  // namespace

bool polylineDescriptor::computeGeodesicGraph(const meshInterface& mesh, geodesicGraph& graph,
                                              std::vector<unsigned int>& path, bool closed) const {
  path.clear();
  computeGeodesicGraph(mesh, graph);
  if (controlPoints.size() < 2) return false;
  // The live vertex nearest to each control point.
  std::vector<unsigned int> stops;
  for (const polylineControlPoint& cp : controlPoints) {
    unsigned int best = 0xFFFFFFFFu;
    float bestDistance = std::numeric_limits<float>::max();
    for (unsigned int v = 0; v < mesh.vn(); ++v) {
      if (mesh.isVertDeleted(v) || graph.offsets[v] == graph.offsets[v + 1]) continue;
      const float d = (mesh.vPos(v) - cp.pos).squaredNorm();
      if (d < bestDistance) bestDistance = d, best = v;
    }
    if (best == 0xFFFFFFFFu) return false;
    stops.push_back(best);
  }
  if (closed) stops.push_back(stops.front());
  std::vector<unsigned int> found{stops.front()};
  for (size_t i = 0; i + 1 < stops.size(); ++i)
    if (!shortestPath(graph, stops[i], stops[i + 1], found)) return false;
  if (closed && found.size() > 1) found.pop_back();
  path.swap(found);
  return true;
}

bool polylineDescriptor::saveToXML(IO::XML::xmlNode* parent) const {
  if (!parent) return false;
  xmlElement polyline("POLYLINE");
  polyline.setAttribute("CurrCP", CurrCP.cV());
  xmlElement* root = polyline.connect(parent);
  if (!root) return false;
  for (size_t i = 0; i < controlPoints.size(); ++i) {
    const polylineControlPoint& cp = controlPoints[i];
    xmlElement element("CP" + std::to_string(i));
    element.setAttribute("F", cp.F);
    element.setAttribute("MeshIndex", cp.MeshIndex);
    xmlElement* written = element.connect(root);
    // Written as doubles: seven digits would not bring every float back.
    xmlElement pos("POS");
    pos.setAttribute("X", double(cp.pos.x));
    pos.setAttribute("Y", double(cp.pos.y));
    pos.setAttribute("Z", double(cp.pos.z));
    if (!written || !pos.connect(written)) return false;
  }
  return true;
}

bool polylineDescriptor::openFromXML(const IO::XML::xmlNode* node) {
  const xmlElement* polyline = asElement(node, L"POLYLINE");
  int current = -1;
  if (!polyline || !polyline->queryIntValue(std::wstring(L"CurrCP"), current)) return false;
  std::vector<polylineControlPoint> read;
  for (int c = 0; c < polyline->getChildCount(); ++c) {
    const xmlNode* child = polyline->getChild(c);
    if (!child || child->getType() != IO::XML::XML_ELEMENT) continue;
    const xmlElement* element = asElement(child, (L"CP" + std::to_wstring(read.size())).c_str());
    polylineControlPoint cp;
    if (!element || !readControlPoint(*element, cp)) return false;
    read.push_back(cp);
  }
  if (current < -1 || current >= int(read.size())) return false;
  controlPoints.swap(read);
  CurrCP = current;
  return true;
}

bool polylineDescriptor::saveToXML(const std::wstring& fileName) const {
  IO::XML::xmlDocument doc;
  IO::XML::xmlDeclaration(L"1.0", L"", L"").connect(&doc);
  xmlElement* root = xmlElement("polylineDescriptor").connect(&doc);
  return saveToXML(root) && doc.writeToFile(fileName);
}

bool polylineDescriptor::saveToXML(const std::string& fileName) const {
  return saveToXML(IO::XML::utf8ToWstring(fileName));
}

bool polylineDescriptor::openFromXML(const std::wstring& fileName) {
  IO::XML::xmlDocument doc;
  if (!doc.readFromFile(fileName)) return false;
  const xmlNode* root =
      asElement(doc.findNode(std::wstring(L"polylineDescriptor")), L"polylineDescriptor");
  return root && openFromXML(root->findNode(std::wstring(L"POLYLINE")));
}

bool polylineDescriptor::openFromXML(const std::string& fileName) {
  return openFromXML(IO::XML::utf8ToWstring(fileName));
}

unsigned int polylineDescriptor::getNumBytes() const {
  return unsigned(sizeof(*this) + controlPoints.size() * sizeof(polylineControlPoint) +
                  meshes.size() * sizeof(meshInterface*));
}

void polylineDescriptor::clear() {
  controlPoints.clear();
  CurrCP = -1;
}

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
