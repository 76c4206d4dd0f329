// The flat map of the patch passes against a node-based map under heavy churn: inserts,
// reassignments and erases of clustered keys, so that probe runs wrap and the backward
// shift of erase has to move entries across the end of the table.
#include <gtest/gtest.h>

#include <cstdint>
#include <unordered_map>

#include "jev3d/algo/holefilling/internal/flatIndexMap.h"

using JEV::MESH::ALGO::HOLEFILLING_INTERNAL::flatIndexMap;

TEST(FlatIndexMap, AgreesWithAReferenceMapThroughInsertsReassignsAndErases) {
  flatIndexMap map(4);
  std::unordered_map<uint64_t, int> reference;
  uint32_t state = 12345u;
  // The high bits: the low ones of this generator repeat with a short period.
  auto next = [&] {
    state = state * 1664525u + 1013904223u;
    return state >> 12;
  };
  for (int round = 0; round < 200000; ++round) {
    // Keys from a small range, packed like vertex pairs, so the same keys come back.
    const uint64_t key = uint64_t(next() % 41) << 32 | (next() % 37);
    const int value = int(next() % 1000);
    // Twice as many inserts as erases, so the table stays well filled and runs are long.
    switch (next() % 4) {
      case 0:
      case 2: {
        const int stored = map.insert(key, value);
        const auto it = reference.emplace(key, value).first;
        ASSERT_EQ(stored, it->second);
        break;
      }
      case 1:
        map.assign(key, value);
        reference[key] = value;
        break;
      default:
        map.erase(key);
        reference.erase(key);
    }
    ASSERT_EQ(map.size(), reference.size());
    const auto it = reference.find(key);
    ASSERT_EQ(map.find(key), it == reference.end() ? -1 : it->second);
    ASSERT_EQ(map.contains(key), it != reference.end());
  }
  for (const auto& kv : reference) EXPECT_EQ(map.find(kv.first), kv.second);
  // Absent keys are absent, the empty marker's neighbours included.
  EXPECT_EQ(map.find(uint64_t(200) << 32), -1);
  EXPECT_FALSE(map.contains(~uint64_t(0) - 1));
}
