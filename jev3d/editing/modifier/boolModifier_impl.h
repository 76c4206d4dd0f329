#pragma once

#include "jev3d/editing/modifier/dataExchange.h"

namespace JEV {
namespace MESH {
namespace EDITING {
namespace MODIFIER {

// The mesh boolean. The intersection of two closed meshes (polygons are triangulated
// first) by corefinement with exact predicates.
template <class M>
class boolModifier_impl {
 public:
  // The solid common to a and b, written into result (emptied first). False, with a
  // message on the error stream and result empty, when an input is empty, open,
  // self-intersecting or bounds no volume, or when the kernel fails; never throws.
  bool and_(const M& a, const M& b, M& result) const;
};

extern template class boolModifier_impl<dataExchange::editMeshNode>;

}  // namespace MODIFIER
}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
