// Errors of libjpeg, which leaves its caller by a jump, and the markers that both ways use.
#pragma once

#include <array>
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <type_traits>

// After <cstdio>, which it needs.
#include <jpeglib.h>

// After <jpeglib.h>: its message numbers depend on how the library was built.
#include <jerror.h>

namespace tintora::cli {

inline constexpr int exifMarker = JPEG_APP0 + 1;
inline constexpr int iccMarker = JPEG_APP0 + 2;
inline constexpr std::string_view exifTag{"Exif\0\0", 6};
inline constexpr std::size_t longestMarker = 65533;

// A JFIF density, of pixels per inch or centimetre or only their ratio.
inline constexpr UINT8 jfifRatio = 0;
inline constexpr UINT8 jfifInch = 1;
inline constexpr UINT8 jfifCentimetre = 2;

struct JpegFault {
  std::jmp_buf jump{};
  std::array<char, JMSG_LENGTH_MAX> text{};
};

template <typename Codec>
[[noreturn]] void fail(Codec* codec, const char* text) {
  auto& fault = *static_cast<JpegFault*>(codec->client_data);
  fault.text.fill('\0');
  std::string_view(text).copy(fault.text.data(), fault.text.size() - 1);
  std::longjmp(fault.jump, 1);  // NOLINT(cert-err52-cpp)
}

// Takes an error from libjpeg. Jumps, because libjpeg must not be returned to.
[[noreturn]] inline void jpegFailed(j_common_ptr codec) {
  auto& fault = *static_cast<JpegFault*>(codec->client_data);
  codec->err->format_message(codec, fault.text.data());
  std::longjmp(fault.jump, 1);  // NOLINT(cert-err52-cpp)
}

// Refuses a damaged picture: libjpeg only warns about damage, and fills in missing pixels. The
// warnings listed here are harmless: every viewer shows the same pixels.
inline void jpegWarned(j_common_ptr codec, int level) {
  if (level >= 0) return;
  switch (codec->err->msg_code) {
    case JWRN_ADOBE_XFORM:
    case JWRN_BOGUS_ICC:
    case JWRN_EXTRANEOUS_DATA:
    case JWRN_JFIF_MAJOR:
    case JWRN_NOT_SEQUENTIAL:
      return;
    default:
      jpegFailed(codec);
  }
}

// Fills in the handlers. Those of the library that would print are among the replaced ones.
inline jpeg_error_mgr* handlersInto(jpeg_error_mgr& handlers) {
  jpeg_std_error(&handlers);
  handlers.error_exit = jpegFailed;
  handlers.emit_message = jpegWarned;
  return &handlers;
}

// Runs a step that calls libjpeg, and returns whether it came to its end. On an error the step is
// left by a jump that runs no destructors, so it must not own anything: it works on objects of its
// caller.
template <typename Step>
[[nodiscard]] bool completes(JpegFault& fault, const Step& step) {
  static_assert(std::is_trivially_destructible_v<Step>);
  if (setjmp(fault.jump) != 0) return false;  // NOLINT(cert-err52-cpp)
  step();
  return true;
}

}  // namespace tintora::cli
