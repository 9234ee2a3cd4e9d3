// A custom transform of the numbers from 1 to 12, as text and as it is read.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "engine/custom_transforms.h"

namespace tintora {

using Rows = std::array<std::array<float, 4>, 3>;

inline constexpr Rows countedRows{{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}}};
inline const std::string countedText = "1 2 3 4\n5 6 7 8\n9 10 11 12\n";

inline void expectCounted(const CustomTransform& entry, std::string_view name) {
  EXPECT_EQ(entry.name, name);
  EXPECT_FALSE(entry.adjustable);
  EXPECT_EQ(entry.rows, countedRows);
}

}  // namespace tintora
