#pragma once

namespace JEV {
namespace RENDERING {

// The second device of a rendering context. It has no operations yet; a null pointer is
// a valid audio renderer.
class audioRenderer {
 public:
  audioRenderer() = default;
  virtual ~audioRenderer() = default;
};

}  // namespace RENDERING
}  // namespace JEV
