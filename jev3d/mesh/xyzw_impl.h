#pragma once

namespace JEV {
namespace MESH {
namespace dataExchange {

// Four values carried per vertex through algorithms that renumber vertices: a colour,
// a weight and a mask, or whatever the caller keeps there.
template <class T>
struct xyzw_impl {
  T x = T(0), y = T(0), z = T(0), w = T(0);
};

}  // namespace dataExchange
}  // namespace MESH
}  // namespace JEV
