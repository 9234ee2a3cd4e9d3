// Paths of any length.
#pragma once

#include <cstddef>
#include <string>

namespace tintora::platform {

// The most characters that a path may have, with the zero at its end.
constexpr std::size_t longestPath = 32768;

// Returns the whole path in the form in which the desktop opens it however long it is: from 260
// characters on, it begins with the mark of a path that is meant literally.
std::wstring openablePath(const std::wstring& path);

}  // namespace tintora::platform
