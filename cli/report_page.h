// The page of a report: HTML that stands alone, with its style and script in it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/check_command.h"
#include "cli/palette_options.h"
#include "cli/report_pictures.h"

namespace tintora::cli {

// One input: a picture with its main colours, or a palette.
struct ReportSection {
  std::string name;  // UTF-8
  std::optional<ReportPicture> picture;
  CheckedInput checked;
};

struct Report {
  std::string title;  // UTF-8
  PaletteOptions options;
  std::vector<ReportSection> sections;
};

std::string formatReport(const Report& report);

}  // namespace tintora::cli
