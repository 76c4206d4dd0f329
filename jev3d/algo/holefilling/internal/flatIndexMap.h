#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace JEV {
namespace MESH {
namespace ALGO {
namespace HOLEFILLING_INTERNAL {

// A map from non-negative integer keys (vertex ids, packed vertex pairs) to int values
// in one flat array with linear probing: the patch passes look up a few hundred to a few
// hundred thousand keys each and never iterate, so a node-based map only costs them
// allocations and cache misses. Erasing shifts the following entries back, so no
// tombstones build up in the flip pass's churn.
class flatIndexMap {
 public:
  explicit flatIndexMap(size_t expected = 16) { rehash(expected); }

  // The value of key, or -1 (values stored are not negative).
  int find(uint64_t key) const {
    for (size_t i = slot(key);; i = (i + 1) & mask) {
      if (keys[i] == key) return values[i];
      if (keys[i] == EMPTY) return -1;
    }
  }
  bool contains(uint64_t key) const { return findSlot(key) != NOT_FOUND; }
  // Inserts key with value unless present; returns the value stored for key.
  int insert(uint64_t key, int value) {
    if (2 * (count + 1) > keys.size()) rehash(2 * (count + 1));
    size_t i = slot(key);
    for (; keys[i] != EMPTY; i = (i + 1) & mask)
      if (keys[i] == key) return values[i];
    keys[i] = key, values[i] = value, ++count;
    return value;
  }
  // Sets key to value, inserting it if needed.
  void assign(uint64_t key, int value) {
    const size_t i = findSlot(key);
    if (i != NOT_FOUND)
      values[i] = value;
    else
      insert(key, value);
  }
  void erase(uint64_t key) {
    size_t i = findSlot(key);
    if (i == NOT_FOUND) return;
    // Backward shift: move later entries of the probe run into the gap when their home
    // slot does not lie between the gap and them.
    for (size_t j = (i + 1) & mask; keys[j] != EMPTY; j = (j + 1) & mask) {
      const size_t home = slot(keys[j]);
      if (((j - home) & mask) >= ((j - i) & mask)) {
        keys[i] = keys[j], values[i] = values[j];
        i = j;
      }
    }
    keys[i] = EMPTY;
    --count;
  }
  size_t size() const { return count; }

 private:
  static constexpr uint64_t EMPTY = ~uint64_t(0);
  static constexpr size_t NOT_FOUND = ~size_t(0);

  size_t slot(uint64_t key) const { return size_t((key * 0x9E3779B97F4A7C15ull) >> shift) & mask; }
  size_t findSlot(uint64_t key) const {
    for (size_t i = slot(key);; i = (i + 1) & mask) {
      if (keys[i] == key) return i;
      if (keys[i] == EMPTY) return NOT_FOUND;
    }
  }
  void rehash(size_t expected) {
    size_t capacity = 16;
    unsigned int bits = 4;
    while (capacity < 2 * expected) capacity *= 2, ++bits;
    std::vector<uint64_t> oldKeys(capacity, EMPTY);
    std::vector<int> oldValues(capacity);
    oldKeys.swap(keys);
    oldValues.swap(values);
    mask = capacity - 1;
    shift = 64 - bits;
    count = 0;
    for (size_t i = 0; i < oldKeys.size(); ++i)
      if (oldKeys[i] != EMPTY) insert(oldKeys[i], oldValues[i]);
  }

  std::vector<uint64_t> keys;
  std::vector<int> values;
  size_t mask = 0, count = 0;
  unsigned int shift = 60;
};

}  // namespace HOLEFILLING_INTERNAL
}  // namespace ALGO
}  // namespace MESH
}  // namespace JEV
