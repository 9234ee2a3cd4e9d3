// Hides libraries of the desktop from the program.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tintora::windows_test {

// Sets where Wine looks for a library of the programs under test; the name has no extension.
// "native" means files, "builtin" means Wine's own.
void setLibraryOrder(const std::string& name, std::string_view order);
void resetLibraryOrders();

// Hides these libraries from programs that are started while this exists.
class WithoutLibraries {
 public:
  explicit WithoutLibraries(const std::vector<std::string>& names);
  ~WithoutLibraries();
  WithoutLibraries(const WithoutLibraries&) = delete;
  WithoutLibraries& operator=(const WithoutLibraries&) = delete;
};

// Returns the names of every version of D3DX.
std::vector<std::string> d3dxLibraries();

}  // namespace tintora::windows_test
