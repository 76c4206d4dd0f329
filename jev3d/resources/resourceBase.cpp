#include "jev3d/resources/resourceBase.h"

namespace JEV {
namespace CORE {

resourceBase::~resourceBase() = default;

bool resourceBase::cache() { return true; }

bool resourceBase::isCached() const { return true; }

bool resourceBase::discard() { return true; }

bool resourceBase::clear() { return true; }

}  // namespace CORE
}  // namespace JEV
