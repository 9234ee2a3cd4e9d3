// Replaces pointers to functions that Windows protects from being written: imports and the calls of
// COM classes.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <cstddef>

namespace tintora::windows_test {

// Writes a pointer and returns the previous one.
inline void* replacePointer(void** place, void* function) {
  void* const previous = *place;
  DWORD protection = 0;
  VirtualProtect(place, sizeof *place, PAGE_READWRITE, &protection);
  *place = function;
  VirtualProtect(place, sizeof *place, protection, &protection);
  return previous;
}

// Replaces a pointer until it goes out of scope.
class ReplacedPointer {
 public:
  ReplacedPointer(void** place, void* function)
      : place_(place), original_(replacePointer(place, function)) {}
  ~ReplacedPointer() { replacePointer(place_, original_); }
  ReplacedPointer(const ReplacedPointer&) = delete;
  ReplacedPointer& operator=(const ReplacedPointer&) = delete;

  template <typename Function>
  Function* original() const {
    return reinterpret_cast<Function*>(original_);
  }

 private:
  void** place_;
  void* original_;
};

// Replaces an imported function, given the place of its address.
template <typename Function>
[[nodiscard]] ReplacedPointer replaceImport(Function** place, Function* replacement) {
  return {reinterpret_cast<void**>(place), reinterpret_cast<void*>(replacement)};
}

// Replaces a call of this object and of all others of its class. The new function gets the object
// as its first argument. Calls count from 0 in the order of their declaration.
template <typename Function>
[[nodiscard]] ReplacedPointer replaceCall(IUnknown* object, std::size_t call,
                                          Function* replacement) {
  // An object begins with a pointer to its table of calls.
  void** const calls = *reinterpret_cast<void***>(object);
  return {calls + call, reinterpret_cast<void*>(replacement)};
}

}  // namespace tintora::windows_test
