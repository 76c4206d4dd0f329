#include "jev3d/fields/mtLinker.h"

namespace JEV {
namespace SYSTEM {

template class mtLinker<dummyLinkerType>;

}  // namespace SYSTEM
}  // namespace JEV
