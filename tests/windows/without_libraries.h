// Libraries of the desktop that the program is not to find.
#pragma once

#include <string>
#include <vector>

namespace tintora::windows_test {

// For as long as it lives, programs that are started have to do without these libraries.
class WithoutLibraries {
 public:
  explicit WithoutLibraries(const std::vector<std::string>& names);
  ~WithoutLibraries();
  WithoutLibraries(const WithoutLibraries&) = delete;
  WithoutLibraries& operator=(const WithoutLibraries&) = delete;
};

// Of D3DX, all that there ever were.
std::vector<std::string> d3dxLibraries();

}  // namespace tintora::windows_test
