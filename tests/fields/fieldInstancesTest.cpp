// Every field and engine kind of the library's interface must come from the library
// itself: the declarations below forbid this file to make its own, so a missing one fails
// to link.
#include <gtest/gtest.h>

#include <string>

#include "jev3d/fields/engineBase.h"
#include "jev3d/math/matrix3.h"
#include "jev3d/math/matrix4.h"
#include "jev3d/math/point2.h"
#include "jev3d/math/point3.h"
#include "jev3d/math/point4.h"
#include "jev3d/system/color.h"
#include "jev3d/system/flags.h"

namespace JEV {
namespace MESH {
class editMeshNode;
}  // namespace MESH
namespace SYSTEM {

#define FIELD_FROM_LIBRARY(T)                                      \
  extern template class fieldBase<T, dummyLinkerType, linkerBase>; \
  extern template class fieldBase<T, dummyLinkerType, mtLinker>;
#define ENGINE_FROM_LIBRARY(T)                               \
  FIELD_FROM_LIBRARY(T)                                      \
  extern template class INTERNAL::engineOver<T, linkerBase>; \
  extern template class INTERNAL::engineOver<T, mtLinker>;

ENGINE_FROM_LIBRARY(char)
ENGINE_FROM_LIBRARY(unsigned char)
ENGINE_FROM_LIBRARY(short)
ENGINE_FROM_LIBRARY(unsigned short)
ENGINE_FROM_LIBRARY(int)
ENGINE_FROM_LIBRARY(unsigned int)
ENGINE_FROM_LIBRARY(unsigned long)
ENGINE_FROM_LIBRARY(float)
ENGINE_FROM_LIBRARY(double)
ENGINE_FROM_LIBRARY(bool)
FIELD_FROM_LIBRARY(long long)
FIELD_FROM_LIBRARY(unsigned long long)
ENGINE_FROM_LIBRARY(MATH::point2<int>)
ENGINE_FROM_LIBRARY(MATH::point2<float>)
ENGINE_FROM_LIBRARY(MATH::point2<double>)
ENGINE_FROM_LIBRARY(MATH::point3<int>)
ENGINE_FROM_LIBRARY(MATH::point3<float>)
ENGINE_FROM_LIBRARY(MATH::point3<double>)
ENGINE_FROM_LIBRARY(MATH::point4<int>)
ENGINE_FROM_LIBRARY(MATH::point4<float>)
ENGINE_FROM_LIBRARY(MATH::point4<double>)
ENGINE_FROM_LIBRARY(MATH::matrix3<float>)
ENGINE_FROM_LIBRARY(MATH::matrix3<double>)
ENGINE_FROM_LIBRARY(MATH::matrix4<float>)
ENGINE_FROM_LIBRARY(MATH::matrix4<double>)
ENGINE_FROM_LIBRARY(CORE::color)
ENGINE_FROM_LIBRARY(std::string)
FIELD_FROM_LIBRARY(std::wstring)
FIELD_FROM_LIBRARY(flags<int>)
FIELD_FROM_LIBRARY(MESH::editMeshNode*)

#undef ENGINE_FROM_LIBRARY
#undef FIELD_FROM_LIBRARY

}  // namespace SYSTEM
}  // namespace JEV

using namespace JEV;
using namespace JEV::SYSTEM;

namespace {

struct counter {
  int n = 0;
  void hit() { ++n; }
};

template <class T>
bool same(const T& a, const T& b) {
  return a == b;
}
bool same(const flags<int>& a, const flags<int>& b) { return a.getMask() == b.getMask(); }

// A write is heard, and a following slave of either kind reads it through.
template <class T>
void writeAndFollow(const T& v) {
  counter c;
  fieldBase<T> master;
  fieldBase<T, dummyLinkerType, mtLinker> lockedSlave;
  lockedSlave.connect(&master, true);
  fieldBase<T> slave(&master, true);
  slave.registerEventOnChangeValue(makeDelegate(&c, &counter::hit));
  master = v;
  EXPECT_EQ(c.n, 1);
  EXPECT_TRUE(same(lockedSlave.cV(), v));
  EXPECT_TRUE(same(slave.cV(), v));
}

// An engine over one input copies the input's value when read.
template <class E, class T>
void engineCopies(const T& v) {
  struct copier {
    E engine;
    fieldBase<T> in;
    void compute() { engine.V() = in.cV(); }
  } s;
  s.engine.setComputeDelegate(makeDelegate(&s, &copier::compute));
  s.engine.addEntry("in", &s.in);
  s.in = v;
  EXPECT_TRUE(same(s.engine.cV(), v));
}

template <class M>
M withElement(int index, double value) {
  M m;
  m[index] = static_cast<decltype(m[0] + 0)>(value);
  return m;
}

template <class T>
void fieldAndEngines(const T& v) {
  writeAndFollow(v);
  engineCopies<engineBase<T>>(v);
  engineCopies<MT::engineBase<T>>(v);
}

}  // namespace

TEST(fieldInstances, everyKindOfTheInterfaceIsInTheLibrary) {
  fieldAndEngines<char>('x');
  fieldAndEngines<unsigned char>(200);
  fieldAndEngines<short>(-3);
  fieldAndEngines<unsigned short>(60000);
  fieldAndEngines<int>(-70000);
  fieldAndEngines<unsigned int>(4000000000u);
  fieldAndEngines<unsigned long>(1ul << 40);
  fieldAndEngines<float>(0.25f);
  fieldAndEngines<double>(1e300);
  fieldAndEngines<bool>(true);
  writeAndFollow<long long>(-(1ll << 50));
  writeAndFollow<unsigned long long>(1ull << 63);
  fieldAndEngines(MATH::point2<int>(1, 2));
  fieldAndEngines(MATH::point2<float>(1, 2));
  fieldAndEngines(MATH::point2<double>(1, 2));
  fieldAndEngines(MATH::point3<int>(1, 2, 3));
  fieldAndEngines(MATH::point3<float>(1, 2, 3));
  fieldAndEngines(MATH::point3<double>(1, 2, 3));
  fieldAndEngines(MATH::point4<int>(1, 2, 3, 4));
  fieldAndEngines(MATH::point4<float>(1, 2, 3, 4));
  fieldAndEngines(MATH::point4<double>(1, 2, 3, 4));
  fieldAndEngines(withElement<MATH::matrix3<float>>(4, 2));
  fieldAndEngines(withElement<MATH::matrix3<double>>(4, 2));
  fieldAndEngines(withElement<MATH::matrix4<float>>(13, 5));
  fieldAndEngines(withElement<MATH::matrix4<double>>(13, 5));
  fieldAndEngines(CORE::color(1, 2, 3, 4));
  fieldAndEngines(std::string("text"));
  writeAndFollow(std::wstring(L"wide"));
  writeAndFollow(flags<int>(6));
  writeAndFollow(reinterpret_cast<MESH::editMeshNode*>(0x10));
}
