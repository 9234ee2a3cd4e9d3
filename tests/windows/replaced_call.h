// Replaces a call of a COM interface for a while.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <cstddef>

namespace tintora::windows_test {

// Replaces a call of this object, and of all others of its class, until it goes out of scope. The
// new function gets the object as its first argument. Calls count from 0 in the order of their
// declaration.
class ReplacedCall {
 public:
  template <typename Function>
  ReplacedCall(IUnknown* object, std::size_t call, Function* replacement)
      : place_(placeOf(object, call)), original_(*place_) {
    write(reinterpret_cast<void*>(replacement));
  }
  ~ReplacedCall() { write(original_); }
  ReplacedCall(const ReplacedCall&) = delete;
  ReplacedCall& operator=(const ReplacedCall&) = delete;

  template <typename Function>
  Function* original() const {
    return reinterpret_cast<Function*>(original_);
  }

 private:
  // An object begins with a pointer to its table of calls.
  static void** placeOf(IUnknown* object, std::size_t call) {
    return *reinterpret_cast<void***>(object) + call;
  }
  void write(void* function) {
    DWORD protection = 0;
    VirtualProtect(place_, sizeof function, PAGE_READWRITE, &protection);
    *place_ = function;
    VirtualProtect(place_, sizeof function, protection, &protection);
  }

  void** place_;
  void* original_;
};

}  // namespace tintora::windows_test
