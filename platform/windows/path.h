// Paths of any length.
#pragma once

#include <cstddef>
#include <string>

namespace tintora::platform {

// The most characters that a path may have, including the terminating zero.
constexpr std::size_t longestPath = 32768;

// Returns a full path in a form that Windows opens whatever its length: paths of 260 characters or
// more get the prefix that switches off path parsing.
std::wstring openablePath(const std::wstring& path);

}  // namespace tintora::platform
