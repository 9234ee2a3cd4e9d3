// The published tables as files, to compare the compiled ones with.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tintora {

using CsvRow = std::vector<std::string>;

// Returns the rows below the header of a file in tests/data; throws if it cannot be read.
std::vector<CsvRow> readCsv(const std::string& name);

inline double csvNumber(const CsvRow& row, std::size_t column) {
  return std::stod(row.at(column));
}

}  // namespace tintora
