#include "jev3d/renderer/vertexDeclaration.h"

namespace JEV {
namespace RENDERING {
namespace {

using VC = vertexDeclaration::VERTEX_COMPONENTS;

// Index (toInt) to component, with its count and bytes a vertex.
struct componentInfo {
  VC bit;
  unsigned count;
  unsigned bytes;
};
const componentInfo components[22] = {
    {VC::POS2, 2, 8},     {VC::POS3, 3, 12},    {VC::POS4, 4, 16},  {VC::NORMAL, 3, 12},
    {VC::NORMAL1, 3, 12}, {VC::NORMAL2, 3, 12}, {VC::COLOR, 4, 4},  {VC::TC0_2, 2, 8},
    {VC::TC1_2, 2, 8},    {VC::TC2_2, 2, 8},    {VC::TC3_2, 2, 8},  {VC::TC4_2, 2, 8},
    {VC::TC0_3, 3, 12},   {VC::TC1_3, 3, 12},   {VC::TC2_3, 3, 12}, {VC::TC3_3, 3, 12},
    {VC::TC4_3, 3, 12},   {VC::TC0_4, 4, 16},   {VC::TC1_4, 4, 16}, {VC::TC2_4, 4, 16},
    {VC::TC3_4, 4, 16},   {VC::TC4_4, 4, 16}};

// The order streams are numbered in: colour, normals, each unit's 2, 3, 4 floats, then
// the positions, so that the position is always the last stream.
const VC streamOrder[22] = {VC::COLOR, VC::NORMAL, VC::NORMAL1, VC::NORMAL2, VC::TC0_2, VC::TC0_3,
                            VC::TC0_4, VC::TC1_2,  VC::TC1_3,   VC::TC1_4,   VC::TC2_2, VC::TC2_3,
                            VC::TC2_4, VC::TC3_2,  VC::TC3_3,   VC::TC3_4,   VC::TC4_2, VC::TC4_3,
                            VC::TC4_4, VC::POS2,   VC::POS3,    VC::POS4};

}  // namespace

const VC vertexDeclaration::walkOrder[22] = {
    VC::POS2,  VC::POS3,  VC::POS4,  VC::NORMAL, VC::NORMAL1, VC::NORMAL2, VC::COLOR, VC::TC0_2,
    VC::TC1_2, VC::TC2_2, VC::TC3_2, VC::TC4_2,  VC::TC0_3,   VC::TC1_3,   VC::TC2_3, VC::TC3_3,
    VC::TC4_3, VC::TC0_4, VC::TC1_4, VC::TC2_4,  VC::TC3_4,   VC::TC4_4};

vertexDeclaration::vertexDeclaration(int m) { setMaskComponent(m); }

bool vertexDeclaration::setMaskComponent(int m) {
  streams.clear();
  mask = m;
  unsigned next = 0;
  for (VC c : streamOrder) {
    if (uint32_t(m) & c) streams[c] = next++;
  }
  componentCount = next;
  return next > 0;
}

bool vertexDeclaration::isVertexComponent(VERTEX_COMPONENTS c) const {
  return c != NONE && (uint32_t(mask) & c) != 0;
}

VC vertexDeclaration::which(VC two, VC three, VC four) const {
  if (isVertexComponent(two)) return two;
  if (isVertexComponent(three)) return three;
  if (isVertexComponent(four)) return four;
  return NONE;
}

VC vertexDeclaration::whichVertexComponentPOS() const { return which(POS2, POS3, POS4); }
VC vertexDeclaration::whichVertexComponentTC0() const { return which(TC0_2, TC0_3, TC0_4); }
VC vertexDeclaration::whichVertexComponentTC1() const { return which(TC1_2, TC1_3, TC1_4); }
VC vertexDeclaration::whichVertexComponentTC2() const { return which(TC2_2, TC2_3, TC2_4); }
VC vertexDeclaration::whichVertexComponentTC3() const { return which(TC3_2, TC3_3, TC3_4); }
VC vertexDeclaration::whichVertexComponentTC4() const { return which(TC4_2, TC4_3, TC4_4); }

VC vertexDeclaration::getVertexComponent(unsigned stream) const {
  for (const auto& entry : streams)
    if (entry.second == stream) return VC(entry.first);
  return NONE;
}

unsigned vertexDeclaration::getVertexComponentPosition(VERTEX_COMPONENTS c) const {
  const auto it = streams.find(c);
  return it == streams.end() ? unsigned(-1) : it->second;
}

void vertexDeclaration::clear() {
  streams.clear();
  componentCount = 0;
  mask = 0;
}

bool vertexDeclaration::isValid() const {
  int positions = 0;
  for (VC p : {POS2, POS3, POS4}) positions += isVertexComponent(p) ? 1 : 0;
  return positions == 1;
}

void vertexDeclaration::getComponentSize(VERTEX_COMPONENTS c, unsigned& count, unsigned& bytes) {
  const int i = toInt(c);
  count = i < 0 ? 0 : components[i].count;
  bytes = i < 0 ? 0 : components[i].bytes;
}

VC vertexDeclaration::toComp(int index) {
  return index < 0 || index >= 22 ? NONE : components[index].bit;
}

int vertexDeclaration::toInt(VERTEX_COMPONENTS c) {
  for (int i = 0; i < 22; ++i)
    if (components[i].bit == c) return i;
  return -1;
}

}  // namespace RENDERING
}  // namespace JEV
