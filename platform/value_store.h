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

// Reads each value by its name, in order. Missing values stay empty. Returns false and reads
// nothing if there is no store.
bool readValues(std::span<StoredValue> values);

// Writes the values in order. Creates the store if there is none. Does not report failure.
void writeValues(std::span<const StoredValue> values);

}  // namespace tintora::platform
