// What reading and writing by libpng have in common: the handles of a file, and errors, at which
// the library leaves its caller by a jump.
#pragma once

#include <png.h>

#include <array>
#include <csetjmp>
#include <cstddef>
#include <new>
#include <string_view>
#include <type_traits>

namespace tintora::cli {

using FaultText = std::array<char, 200>;

// Takes an error from libpng. Jumps, because libpng cannot go on if this returns.
[[noreturn]] inline void pngFailed(png_structp png, png_const_charp text) {
  auto& fault = *static_cast<FaultText*>(png_get_error_ptr(png));
  fault.fill('\0');
  std::string_view(text).copy(fault.data(), fault.size() - 1);
  png_longjmp(png, 1);
}

// Ignores warnings: oddities that leave the picture as it is; damage to it arrives as an error.
inline void pngWarned(png_structp /*png*/, png_const_charp /*text*/) {}

// Runs a step that calls libpng. Returns true if it came to its end. An error ends the step by a
// jump that runs no destructors, so the step must not own anything.
template <typename Step>
[[nodiscard]] bool completes(png_structp png, const Step& step) {
  static_assert(std::is_trivially_destructible_v<Step>);
  if (setjmp(png_jmpbuf(png)) != 0) return false;  // NOLINT(cert-err52-cpp)
  step();
  return true;
}

// What libpng needs to read or write one file. Creating it throws std::bad_alloc.
template <auto create, auto destroy>
struct PngHandles {
  png_structp png = nullptr;
  png_infop info = nullptr;
  FaultText fault{};

  PngHandles() : png(create(PNG_LIBPNG_VER_STRING, &fault, pngFailed, pngWarned)) {
    if (png != nullptr) info = png_create_info_struct(png);
    if (info == nullptr) {
      destroy(&png, &info);
      throw std::bad_alloc();
    }
  }
  PngHandles(const PngHandles&) = delete;
  PngHandles& operator=(const PngHandles&) = delete;
  ~PngHandles() { destroy(&png, &info); }
};

}  // namespace tintora::cli
