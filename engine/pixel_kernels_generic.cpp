#include "engine/pixel_kernels.h"

namespace tintora {

std::span<const PixelKernel> pixelKernels() {
  return {&portableKernel, 1};
}

}  // namespace tintora
