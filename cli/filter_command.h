// tintora-cli filter: image files through a transform.
#pragma once

#include <CLI/App.hpp>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/filtered_rows.h"
#include "cli/image_file.h"

namespace tintora::cli {

struct FilterRequest {
  std::vector<std::string> paths;
  std::optional<std::filesystem::path> outputDirectory;
  std::optional<ImageFormat> outputFormat;
  std::optional<int> quality;
  bool overwrites = false;
  std::size_t threads = 1;
  std::uint64_t pixelLimit = defaultPixelLimit;
};

struct FilterJob {
  std::filesystem::path input;        // "-" is standard input
  std::filesystem::path output;       // "-" is standard output
  std::optional<ImageFormat> format;  // of the output; none if its name tells none
  bool mayOverwrite;
};

struct FilterPlan {
  std::vector<FilterJob> jobs;
  std::optional<std::filesystem::path> folder;  // to be made for the outputs if it is not there
};

// Adds the arguments and options of the command, without those of the transform; parsing it fills
// the request, which must outlive the command.
void addFilterArguments(CLI::App& command, FilterRequest& request);

// Returns the jobs for "INPUT OUTPUT", for "INPUT... FOLDER" where the folder exists or ends in a
// slash, or for "INPUT..." with an output directory. The format follows the output's file name, and
// is PNG on standard output, unless one is given; in a folder the name then follows the format.
// Throws UsageError if the format of a single output is not known, if an output would overwrite an
// input or another output or would be binary data on a terminal, or if a quality is given and all
// outputs are PNG. Where names decide the format, the quality applies to the JPEG files.
FilterPlan planFilterJobs(const FilterRequest& request);

// Filters one image. Its output appears whole or not at all. Throws RunError.
void filterImage(const FilterJob& job, const FilterRequest& request, const FilterSet& filters);

}  // namespace tintora::cli
