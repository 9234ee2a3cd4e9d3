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

// Returns a path of an existing file in a form that the shell opens. The shell refuses paths of 260
// characters or more, and the prefix as well, so the folder then has its short name. Where the
// volume has no short names, the path stays as it is.
std::wstring shellPath(const std::wstring& path);

}  // namespace tintora::platform
