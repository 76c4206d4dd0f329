#include "jev3d/fields/linkerBase.h"

namespace JEV {
namespace SYSTEM {

template class linkerBase<dummyLinkerType>;

}  // namespace SYSTEM
}  // namespace JEV
