// Libraries of the desktop that the program is not to find.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tintora::windows_test {

// Where Wine is to look for a library that programs under test load, without its ending: "native"
// is files, "builtin" is Wine itself.
void setLibraryOrder(const std::string& name, std::string_view order);
void resetLibraryOrders();

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
