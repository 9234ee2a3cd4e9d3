// Bytes of files, for the tests of the codecs and of whole files.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace tintora::cli {

using Bytes = std::vector<std::uint8_t>;

inline Bytes bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

}  // namespace tintora::cli
