#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "engine/apply_transform.h"
#include "engine/custom_transforms.h"
#include "engine/effect_matrix.h"
#include "engine/pixel_filter.h"
#include "engine/transform_settings.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

std::size_t linesIn(std::string_view text) {
  std::size_t lines = 1;
  for (const char c : text) lines += c == '\n' || c == '\r' || c == '\0' ? 1 : 0;
  return lines;
}

}  // namespace

// Expects of any text that each of its entries gives a matrix that keeps the identity's alpha
// entries and that the pixel filter accepts.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tintora;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  CustomTransformFile file = parseCustomTransforms(text);
  if (file.malformed) {
    require(file.malformed->number >= 1 && file.malformed->number <= linesIn(text) + 3);
    require(!file.malformed->reason.empty());
  }

  customTransforms = std::move(file.transforms);
  for (std::uint32_t i = 0; i < customTransforms.size(); ++i) {
    transformSettings.severity = i % 2 == 0 ? 0.5 : 0.0;
    applyCustomTransform(i);
    for (std::size_t alpha = 0; alpha < 5; ++alpha) {
      require(effectMatrix[3][alpha] == (alpha == 3 ? 1.0F : 0.0F));
      require(effectMatrix[alpha][3] == (alpha == 3 ? 1.0F : 0.0F));
    }
    std::uint8_t pixels[] = {0, 100, 255, 7, 255, 0, 1, 8};
    filterPixels(makePixelFilter(effectMatrix), pixels, pixels, 2);
    require(pixels[3] == 7 && pixels[7] == 8);
  }
  return 0;
}
