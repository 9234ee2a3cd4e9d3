// Tables that have an entry for each value of an enumeration, in its order.
#pragma once

#include <array>
#include <cstddef>

namespace tintora::platform {

// Returns the entry of a value.
template <typename Value, std::size_t size, typename Index>
const Value& at(const std::array<Value, size>& table, Index index) {
  return table[static_cast<std::size_t>(index)];
}

}  // namespace tintora::platform
