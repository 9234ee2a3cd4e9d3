// tintora-cli filter: image files through a transform.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/image_file.h"
#include "engine/picture_filter.h"

namespace tintora::cli {

struct FilterJob {
  std::filesystem::path input;   // "-" is standard input
  std::filesystem::path output;  // "-" is standard output
  ImageFormat format;            // of the output
};

// The jobs for "INPUT OUTPUT", or for "INPUT..." with an output directory. The format follows the
// output's file name, and is PNG on standard output, unless one is given. Throws UsageError where
// an output would have no known format, or would overwrite an input or another output.
std::vector<FilterJob> planFilterJobs(const std::vector<std::string>& paths,
                                      const std::optional<std::filesystem::path>& outputDirectory,
                                      std::optional<ImageFormat> format);

// Puts one image through the filter, which is one for 8 bits; its output appears whole or not at
// all. Throws RunError.
void filterImage(const FilterJob& job, const PictureFilter& filter);

}  // namespace tintora::cli
