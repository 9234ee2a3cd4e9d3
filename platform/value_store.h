// Named 32-bit values that outlive the program.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace tintora::platform {

struct StoredValue {
  std::string_view name;
  std::optional<std::uint32_t> value;
};

// Reads each value by its name, in order; leaves those empty that are not there. False, with
// nothing read, where there is no store.
bool readValues(std::span<StoredValue> values);

// Writes the values in order, making the store where there is none. A failure is not reported.
void writeValues(std::span<const StoredValue> values);

}  // namespace tintora::platform
