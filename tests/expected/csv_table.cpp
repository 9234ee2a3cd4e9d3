#include "csv_table.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace tintora {

std::vector<CsvRow> readCsv(const std::string& name) {
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

}  // namespace tintora
