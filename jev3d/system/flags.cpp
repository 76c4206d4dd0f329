#include "jev3d/system/flags.h"

namespace JEV {
namespace SYSTEM {

template class flags<char>;
template class flags<unsigned char>;
template class flags<short>;
template class flags<unsigned short>;
template class flags<int>;
template class flags<unsigned int>;
template class flags<int64_t>;

}  // namespace SYSTEM
}  // namespace JEV
