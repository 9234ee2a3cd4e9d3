#include <immintrin.h>

#include <array>

#include "engine/pixel_kernels.h"

namespace tintora {

namespace {

// A pixel is split into two pairs of 16-bit lanes, (B, R) and (G, offset unit), so that a
// multiply-add of pairs takes in two inputs at once. The sums carry the result in their upper
// halves; blue and green, red and alpha are laid side by side, packed with saturation, which
// clamps, and put in order.

// Uses SSE2, which belongs to every x86-64 processor; it has neither byte shuffles nor blends.
void filterBlocksSse2(const FixedPointMatrix& matrix, const std::uint8_t* source,
                      std::uint8_t* destination, std::size_t blocks, bool streaming) {
  const auto pairs = [](std::int16_t low, std::int16_t high) {
    return _mm_set1_epi32(static_cast<std::uint16_t>(low) | static_cast<int>(high) * 65536);
  };
  const auto& [blue, green, red] = matrix.channels;
  const __m128i blueBlueRed = pairs(blue.blue, blue.red);
  const __m128i blueGreenOffset = pairs(blue.green, blue.offset);
  const __m128i greenBlueRed = pairs(green.blue, green.red);
  const __m128i greenGreenOffset = pairs(green.green, green.offset);
  const __m128i redBlueRed = pairs(red.blue, red.red);
  const __m128i redGreenOffset = pairs(red.green, red.offset);

  const __m128i leftShift = _mm_cvtsi32_si128(matrix.inputShift);
  const __m128i rightShift = _mm_cvtsi32_si128(8 - matrix.inputShift);
  const __m128i blueRedMask = _mm_set1_epi32(0x00FF00FF << matrix.inputShift);
  const __m128i greenMask = _mm_set1_epi32(0xFF << matrix.inputShift);
  const __m128i offsetUnit = _mm_set1_epi32(matrix.offsetUnit << 16);

  for (std::size_t i = 0; i < blocks; ++i) {
    const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source) + i);
    const __m128i blueRed = _mm_and_si128(_mm_sll_epi32(pixels, leftShift), blueRedMask);
    const __m128i greenOffset =
        _mm_or_si128(_mm_and_si128(_mm_srl_epi32(pixels, rightShift), greenMask), offsetUnit);

    const __m128i blueSum = _mm_add_epi32(_mm_madd_epi16(blueRed, blueBlueRed),
                                          _mm_madd_epi16(greenOffset, blueGreenOffset));
    const __m128i greenSum = _mm_add_epi32(_mm_madd_epi16(blueRed, greenBlueRed),
                                           _mm_madd_epi16(greenOffset, greenGreenOffset));
    const __m128i redSum = _mm_add_epi32(_mm_madd_epi16(blueRed, redBlueRed),
                                         _mm_madd_epi16(greenOffset, redGreenOffset));

    const __m128i blueThenRed =
        _mm_packs_epi32(_mm_srai_epi32(blueSum, 16), _mm_srai_epi32(redSum, 16));
    const __m128i greenThenAlpha =
        _mm_packs_epi32(_mm_srai_epi32(greenSum, 16), _mm_srli_epi32(pixels, 24));
    const __m128i blueGreenThenRedAlpha =
        _mm_packus_epi16(_mm_unpacklo_epi16(blueThenRed, greenThenAlpha),
                         _mm_unpackhi_epi16(blueThenRed, greenThenAlpha));
    const __m128i filtered =
        _mm_unpacklo_epi16(blueGreenThenRedAlpha, _mm_srli_si128(blueGreenThenRedAlpha, 8));
    __m128i* const target = reinterpret_cast<__m128i*>(destination) + i;
    if (streaming) {
      _mm_stream_si128(target, filtered);
    } else {
      _mm_storeu_si128(target, filtered);
    }
  }
  if (streaming) _mm_sfence();
}

// The upper half of each 32-bit lane, moved to the lower.
constexpr std::array<char, 16> upperHalves{2, 3, 2, 3, 6, 7, 6, 7, 10, 11, 10, 11, 14, 15, 14, 15};
// From B G B G B G B G R A R A R A R A to B G R A, four pixels.
constexpr std::array<char, 16> pixelOrder{0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15};

int pairOf(std::int16_t low, std::int16_t high) {
  return static_cast<std::uint16_t>(low) | static_cast<int>(high) * 65536;
}

__m128i load16(const std::array<char, 16>& bytes) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes.data()));
}

[[gnu::target("avx2")]] void filterBlocksAvx2(const FixedPointMatrix& matrix,
                                              const std::uint8_t* source, std::uint8_t* destination,
                                              std::size_t blocks, bool streaming) {
  const auto& [blue, green, red] = matrix.channels;
  const __m256i blueBlueRed = _mm256_set1_epi32(pairOf(blue.blue, blue.red));
  const __m256i blueGreenOffset = _mm256_set1_epi32(pairOf(blue.green, blue.offset));
  const __m256i greenBlueRed = _mm256_set1_epi32(pairOf(green.blue, green.red));
  const __m256i greenGreenOffset = _mm256_set1_epi32(pairOf(green.green, green.offset));
  const __m256i redBlueRed = _mm256_set1_epi32(pairOf(red.blue, red.red));
  const __m256i redGreenOffset = _mm256_set1_epi32(pairOf(red.green, red.offset));

  const __m256i leftShift = _mm256_set1_epi32(matrix.inputShift);
  const __m256i rightShift = _mm256_set1_epi32(8 - matrix.inputShift);
  const __m256i blueRedMask = _mm256_set1_epi32(0x00FF00FF << matrix.inputShift);
  const __m256i greenMask = _mm256_set1_epi32(0xFF << matrix.inputShift);
  const __m256i offsetUnit = _mm256_set1_epi32(matrix.offsetUnit << 16);
  const __m256i toLower = _mm256_broadcastsi128_si256(load16(upperHalves));
  const __m256i toPixels = _mm256_broadcastsi128_si256(load16(pixelOrder));

  for (std::size_t i = 0; i < blocks; ++i) {
    const __m256i pixels = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source) + i);
    const __m256i blueRed = _mm256_and_si256(_mm256_sllv_epi32(pixels, leftShift), blueRedMask);
    const __m256i greenOffset = _mm256_or_si256(
        _mm256_and_si256(_mm256_srlv_epi32(pixels, rightShift), greenMask), offsetUnit);

    const __m256i blueSum = _mm256_add_epi32(_mm256_madd_epi16(blueRed, blueBlueRed),
                                             _mm256_madd_epi16(greenOffset, blueGreenOffset));
    const __m256i greenSum = _mm256_add_epi32(_mm256_madd_epi16(blueRed, greenBlueRed),
                                              _mm256_madd_epi16(greenOffset, greenGreenOffset));
    const __m256i redSum = _mm256_add_epi32(_mm256_madd_epi16(blueRed, redBlueRed),
                                            _mm256_madd_epi16(greenOffset, redGreenOffset));

    constexpr int upper = 0xAA;
    const __m256i blueGreen =
        _mm256_blend_epi16(_mm256_shuffle_epi8(blueSum, toLower), greenSum, upper);
    const __m256i redAlpha = _mm256_blend_epi16(_mm256_shuffle_epi8(redSum, toLower),
                                                _mm256_srli_epi16(pixels, 8), upper);
    const __m256i filtered =
        _mm256_shuffle_epi8(_mm256_packus_epi16(blueGreen, redAlpha), toPixels);
    __m256i* const target = reinterpret_cast<__m256i*>(destination) + i;
    if (streaming) {
      _mm256_stream_si256(target, filtered);
    } else {
      _mm256_storeu_si256(target, filtered);
    }
  }
  if (streaming) _mm_sfence();
}

[[gnu::target("avx512bw,avx512vnni")]] void filterBlocksAvx512(const FixedPointMatrix& matrix,
                                                               const std::uint8_t* source,
                                                               std::uint8_t* destination,
                                                               std::size_t blocks, bool streaming) {
  const auto& [blue, green, red] = matrix.channels;
  const __m512i blueBlueRed = _mm512_set1_epi32(pairOf(blue.blue, blue.red));
  const __m512i blueGreenOffset = _mm512_set1_epi32(pairOf(blue.green, blue.offset));
  const __m512i greenBlueRed = _mm512_set1_epi32(pairOf(green.blue, green.red));
  const __m512i greenGreenOffset = _mm512_set1_epi32(pairOf(green.green, green.offset));
  const __m512i redBlueRed = _mm512_set1_epi32(pairOf(red.blue, red.red));
  const __m512i redGreenOffset = _mm512_set1_epi32(pairOf(red.green, red.offset));

  const __m512i leftShift = _mm512_set1_epi32(matrix.inputShift);
  const __m512i rightShift = _mm512_set1_epi32(8 - matrix.inputShift);
  const __m512i blueRedMask = _mm512_set1_epi32(0x00FF00FF << matrix.inputShift);
  const __m512i greenMask = _mm512_set1_epi32(0xFF << matrix.inputShift);
  const __m512i offsetUnit = _mm512_set1_epi32(matrix.offsetUnit << 16);
  const __m512i toLower = _mm512_broadcast_i32x4(load16(upperHalves));
  const __m512i toPixels = _mm512_broadcast_i32x4(load16(pixelOrder));

  for (std::size_t i = 0; i < blocks; ++i) {
    const __m512i pixels = _mm512_loadu_si512(reinterpret_cast<const __m512i*>(source) + i);
    const __m512i blueRed = _mm512_and_si512(_mm512_sllv_epi32(pixels, leftShift), blueRedMask);
    constexpr int andThenOr = 0xEA;
    const __m512i greenOffset = _mm512_ternarylogic_epi32(_mm512_srlv_epi32(pixels, rightShift),
                                                          greenMask, offsetUnit, andThenOr);

    const __m512i blueSum =
        _mm512_dpwssd_epi32(_mm512_madd_epi16(blueRed, blueBlueRed), greenOffset, blueGreenOffset);
    const __m512i greenSum = _mm512_dpwssd_epi32(_mm512_madd_epi16(blueRed, greenBlueRed),
                                                 greenOffset, greenGreenOffset);
    const __m512i redSum =
        _mm512_dpwssd_epi32(_mm512_madd_epi16(blueRed, redBlueRed), greenOffset, redGreenOffset);

    constexpr __mmask64 lower = 0x3333333333333333;
    const __m512i blueGreen = _mm512_mask_shuffle_epi8(greenSum, lower, blueSum, toLower);
    const __m512i redAlpha =
        _mm512_mask_shuffle_epi8(_mm512_srli_epi16(pixels, 8), lower, redSum, toLower);
    const __m512i filtered =
        _mm512_shuffle_epi8(_mm512_packus_epi16(blueGreen, redAlpha), toPixels);
    __m512i* const target = reinterpret_cast<__m512i*>(destination) + i;
    if (streaming) {
      _mm512_stream_si512(target, filtered);
    } else {
      _mm512_storeu_si512(target, filtered);
    }
  }
  if (streaming) _mm_sfence();
}

// Returns one output channel of four pixels.
[[gnu::target("avx2")]] inline __m128i exactChannel(const ExactMatrix::Channel& c, __m256d red,
                                                    __m256d green, __m256d blue) {
  const __m256d redGreen = _mm256_add_pd(_mm256_mul_pd(red, _mm256_set1_pd(c.red)),
                                         _mm256_mul_pd(green, _mm256_set1_pd(c.green)));
  const __m256d sum =
      _mm256_add_pd(_mm256_add_pd(redGreen, _mm256_mul_pd(blue, _mm256_set1_pd(c.blue))),
                    _mm256_set1_pd(c.offset));
  // Of a number and what is not one, the maximum is its second operand.
  const __m256d atLeast = _mm256_max_pd(sum, _mm256_setzero_pd());
  const __m256d clamped = _mm256_min_pd(atLeast, _mm256_set1_pd(255.0));
  return _mm256_cvttpd_epi32(_mm256_add_pd(clamped, _mm256_set1_pd(0.5)));
}

[[gnu::target("avx2")]] void filterExactlyAvx2(const ExactMatrix& matrix,
                                               const std::uint8_t* source,
                                               std::uint8_t* destination, std::size_t pixels) {
  const auto [toBlue, toGreen, toRed] = matrix.channels;
  constexpr std::size_t atOnce = 4;
  const __m128i channelMask = _mm_set1_epi32(0xFF);
  const __m128i alphaMask = _mm_slli_epi32(channelMask, 24);
  const std::size_t blocks = pixels / atOnce;
  for (std::size_t i = 0; i < blocks; ++i) {
    const __m128i words = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source) + i);
    const __m128i greenUp = _mm_srli_epi32(words, 8);
    const __m128i redUp = _mm_srli_epi32(words, 16);
    const __m256d blue = _mm256_cvtepi32_pd(_mm_and_si128(words, channelMask));
    const __m256d green = _mm256_cvtepi32_pd(_mm_and_si128(greenUp, channelMask));
    const __m256d red = _mm256_cvtepi32_pd(_mm_and_si128(redUp, channelMask));

    const __m128i shownBlue = exactChannel(toBlue, red, green, blue);
    const __m128i shownGreen = _mm_slli_epi32(exactChannel(toGreen, red, green, blue), 8);
    const __m128i shownRed = _mm_slli_epi32(exactChannel(toRed, red, green, blue), 16);
    const __m128i filtered = _mm_or_si128(_mm_or_si128(shownBlue, shownGreen),
                                          _mm_or_si128(shownRed, _mm_and_si128(words, alphaMask)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(destination) + i, filtered);
  }
  const std::size_t done = blocks * atOnce;
  filterExactlyPortably(matrix, source + done * bytesPerPixel, destination + done * bytesPerPixel,
                        pixels - done);
}

constexpr std::array<PixelKernel, 4> kernels{{
    {"AVX-512 VNNI", 16, &filterBlocksAvx512, &filterExactlyAvx2},
    {"AVX2", 8, &filterBlocksAvx2, &filterExactlyAvx2},
    {"SSE2", 4, &filterBlocksSse2, &filterExactlyPortably},
    portableKernel,
}};

std::size_t fastestKernel() {
  __builtin_cpu_init();
  // GCC's function returns an int, Clang's a bool.
  // NOLINTBEGIN(readability-implicit-bool-conversion)
  if (__builtin_cpu_supports("avx512bw") != 0 && __builtin_cpu_supports("avx512vnni") != 0) {
    return 0;
  }
  return __builtin_cpu_supports("avx2") != 0 ? 1 : 2;
  // NOLINTEND(readability-implicit-bool-conversion)
}

}  // namespace

std::span<const PixelKernel> pixelKernels() {
  static const std::size_t fastest = fastestKernel();
  return std::span(kernels).subspan(fastest);
}

}  // namespace tintora
