#include "jev3d/editing/editableObject.h"

#include "jev3d/io/xml/stringConversion.h"
#include "jev3d/renderer/renderingContext.h"
#include "jev3d/renderer/transformStack.h"
#include "jev3d/renderer/transformState.h"

namespace JEV {
namespace MESH {
namespace EDITING {

editableObject::editableObject(bool isActive) : active(isActive) {}

void editableObject::setName(const std::string& n) { name = IO::XML::utf8ToWstring(n); }

void editableObject::update(RENDERING::renderingContext* rc, SYSTEM::updateContext* uc) {
  RENDERING::transformState state(transform);
  RENDERING::transformStack* stack = rc ? rc->getTransformStack() : nullptr;
  if (stack) stack->push(&state, false);
  SG::node::update(rc, uc);
  if (stack) stack->pop(false);
}

void editableObject::copyAttributes(const editableObject& other) {
  active = other.active;
  modifiable = other.modifiable;
  name = other.name;
  type = other.type;
  transform = other.transform;
}

}  // namespace EDITING
}  // namespace MESH
}  // namespace JEV
