#pragma once

#include <cstdint>
#include <map>

namespace JEV {
namespace RENDERING {

// Which components a vertex has, one bit a component, and the stream each goes in. The
// streams are numbered in a fixed order: colour first, then normals, the coordinates of
// units 0 to 4, and the position last.
class vertexDeclaration {
 public:
  enum VERTEX_COMPONENTS : uint32_t {
    NONE = 0x200,  // the queries' "absent"; never stored in a mask
    POS2 = 0x400,
    POS3 = 0x800,
    POS4 = 0x1000,
    NORMAL = 0x2000,
    NORMAL1 = 0x4000,
    NORMAL2 = 0x8000,
    COLOR = 0x10000,
    TC0_2 = 0x20000,
    TC1_2 = 0x40000,
    TC2_2 = 0x80000,
    TC3_2 = 0x100000,
    TC4_2 = 0x200000,
    TC0_3 = 0x400000,
    TC1_3 = 0x800000,
    TC2_3 = 0x1000000,
    TC3_3 = 0x2000000,
    TC4_3 = 0x4000000,
    TC0_4 = 0x8000000,
    TC1_4 = 0x10000000,
    TC2_4 = 0x20000000,
    TC3_4 = 0x40000000,
    TC4_4 = 0x80000000
  };

  explicit vertexDeclaration(int mask = 0);
  virtual ~vertexDeclaration() = default;

  // Numbers the streams of `mask`, which is kept as given. True when any component is set.
  bool setMaskComponent(int mask);
  bool isVertexComponent(VERTEX_COMPONENTS component) const;
  // The first set of the 2, 3 and 4 float forms, or NONE.
  VERTEX_COMPONENTS whichVertexComponentPOS() const;
  VERTEX_COMPONENTS whichVertexComponentTC0() const;
  VERTEX_COMPONENTS whichVertexComponentTC1() const;
  VERTEX_COMPONENTS whichVertexComponentTC2() const;
  VERTEX_COMPONENTS whichVertexComponentTC3() const;
  VERTEX_COMPONENTS whichVertexComponentTC4() const;
  // The component in `stream`, NONE past the last.
  VERTEX_COMPONENTS getVertexComponent(unsigned stream) const;
  // The stream of `component`, unsigned(-1) when absent.
  unsigned getVertexComponentPosition(VERTEX_COMPONENTS component) const;
  void clear();

  // True for a mask with exactly one position component.
  bool isValid() const;
  bool isNull() const { return mask == 0; }
  int getMask() const { return mask; }
  unsigned getComponentCount() const { return unsigned(componentCount); }

  // Floats or bytes a vertex and bytes a vertex of `component`; 0 and 0 for a bit that is
  // not a component.
  static void getComponentSize(VERTEX_COMPONENTS component, unsigned& count, unsigned& bytes);
  // The 22 components in the order the back end walks them.
  static const VERTEX_COMPONENTS walkOrder[22];

 protected:
  // Between a component bit and its index 0 to 21 (see the table in the .cpp); -1 and
  // NONE for what is not a component.
  static VERTEX_COMPONENTS toComp(int index);
  static int toInt(VERTEX_COMPONENTS component);

 private:
  VERTEX_COMPONENTS which(VERTEX_COMPONENTS two, VERTEX_COMPONENTS three,
                          VERTEX_COMPONENTS four) const;

  std::map<uint32_t, unsigned> streams;
  uint64_t componentCount = 0;
  int32_t mask = 0;
};

}  // namespace RENDERING
}  // namespace JEV
