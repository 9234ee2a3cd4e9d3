// Reads the published tables from files, to compare the compiled ones with them.
#pragma once

#include <cstddef>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace tintora {

using CsvRow = std::vector<std::string>;

// Returns the rows below the header.
inline std::vector<CsvRow> readCsv(const std::string& name) {
  std::ifstream file(std::string(TINTORA_TEST_DATA) + "/" + name);
  std::string line;
  if (!std::getline(file, line)) throw std::runtime_error("cannot read " + name);
  std::vector<CsvRow> rows;
  while (std::getline(file, line)) {
    std::istringstream cells(line);
    CsvRow row;
    for (std::string cell; std::getline(cells, cell, ',');) row.push_back(cell);
    rows.push_back(row);
  }
  return rows;
}

inline double csvNumber(const CsvRow& row, std::size_t column) {
  return std::stod(row.at(column));
}

}  // namespace tintora
