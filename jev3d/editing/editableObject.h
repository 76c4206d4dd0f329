#pragma once

#include <cstdint>
#include <string>

#include "jev3d/math/matrix4.h"
#include "jev3d/scene/node.h"

namespace JEV {
namespace MESH {
namespace EDITING {

// A scene node that carries a transform and the edit attributes of an object. Its
// children are drawn and updated under its transform.
class editableObject : public SG::node {
 public:
  explicit editableObject(bool active = true);
  ~editableObject() override = default;

  void setActive(bool a) { active = a; }
  bool isActive() const { return active; }
  void setModifiable(bool m) { modifiable = m; }
  bool isModifiable() const { return modifiable; }
  void setName(const std::wstring& n) { name = n; }
  void setName(const std::string& n);
  const std::wstring& getName() const { return name; }
  void setType(uint32_t t) { type = t; }
  uint32_t getType() const { return type; }
  const MATH::matrix4<float>& getTransformMatrix() const { return transform; }
  void setTransformMatrix(const MATH::matrix4<float>& m) { transform = m; }

  // The children's update with the node's transform on the transform stack.
  void update(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc) override;

 protected:
  // Copies the attributes (not links, id or delegates) of another object.
  void copyAttributes(const editableObject& other);

 private:
  bool active = true;
  bool modifiable = true;
  std::wstring name;
  uint32_t type = 0;
  MATH::matrix4<float> transform;
};

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
