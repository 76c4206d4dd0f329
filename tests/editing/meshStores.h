#pragma once

// Store-by-store equality of two meshes, for tests that restore a mesh.

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "jev3d/mesh/editMesh.h"

namespace meshStores {

template <class T>
bool sameBytes(const std::vector<T>& a, const std::vector<T>& b) {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}

// Every store, flag store, counter and selection sum.
inline void expectSameMesh(JEV::MESH::editMesh& a, JEV::MESH::editMesh& b) {
  EXPECT_TRUE(sameBytes(a.vertStore(), b.vertStore()));
  EXPECT_TRUE(sameBytes(a.edgeStore(), b.edgeStore()));
  EXPECT_TRUE(sameBytes(a.faceStore(), b.faceStore()));
  EXPECT_TRUE(sameBytes(a.fvRecords(), b.fvRecords()));
  EXPECT_TRUE(sameBytes(a.efRecords(), b.efRecords()));
  EXPECT_TRUE(sameBytes(a.veRecords(), b.veRecords()));
  EXPECT_TRUE(sameBytes(a.vertFlags(), b.vertFlags()));
  EXPECT_TRUE(sameBytes(a.edgeFlags(), b.edgeFlags()));
  EXPECT_TRUE(sameBytes(a.faceFlags(), b.faceFlags()));
  EXPECT_EQ(a.getDelVn(), b.getDelVn());
  EXPECT_EQ(a.getDelEn(), b.getDelEn());
  EXPECT_EQ(a.getDelFn(), b.getDelFn());
  EXPECT_EQ(a.getDelFvn(), b.getDelFvn());
  EXPECT_EQ(a.getDelVen(), b.getDelVen());
  EXPECT_EQ(a.getDelEfn(), b.getDelEfn());
  EXPECT_EQ(a.getSelFn(), b.getSelFn());
  EXPECT_EQ(a.getSelVn(), b.getSelVn());
  EXPECT_EQ(a.getSelEn(), b.getSelEn());
  EXPECT_EQ(a.getSelFvn(), b.getSelFvn());
  EXPECT_EQ(a.getSelVertSum(), b.getSelVertSum());
}

}  // namespace meshStores
