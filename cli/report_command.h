// tintora-cli report: one web page that shows pictures and palettes as others see them.
#pragma once

#include <CLI/App.hpp>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/palette_options.h"

namespace tintora::cli {

struct ReportRequest {
  PaletteOptions options;
  std::vector<std::string> inputs;  // pictures, palette files and colours
  std::filesystem::path output;
  std::string title = "Seen by other eyes";
  std::uint32_t width = 960;  // of the pictures in the page, at most
};

// Adds the arguments and options of the command; parsing it fills the request, which must outlive
// the command.
void addReportArguments(CLI::App& command, ReportRequest& request);

// Returns the page. Throws UsageError and std::runtime_error.
std::string makeReport(const ReportRequest& request);

// Makes the page and writes it; the file appears whole or not at all.
void writeReport(const ReportRequest& request);

}  // namespace tintora::cli
