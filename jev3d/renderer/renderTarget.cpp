#include "jev3d/renderer/renderTarget.h"

#include <utility>

#include "jev3d/resources/texture.h"

namespace JEV {
namespace RENDERING {

renderTarget::renderTarget(SYSTEM::sharedPointer<TEXTURE::texture> c) : colour(std::move(c)) {}

}  // namespace RENDERING
}  // namespace JEV
