#include "cli/filter_command.h"

#include <algorithm>
#include <set>
#include <span>
#include <system_error>

#include "cli/output_file.h"
#include "cli/transform_options.h"

namespace tintora::cli {

namespace {

constexpr std::string_view standardStream = "-";
constexpr std::uint64_t mostImageBytes = std::uint64_t{4} << 30;

ImageFormat formatOf(const std::filesystem::path& output) {
  if (output == standardStream) return ImageFormat::Png;
  std::string extension = output.extension().string();
  std::ranges::transform(extension, extension.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  if (extension == ".png") return ImageFormat::Png;
  if (extension == ".jpg" || extension == ".jpeg") return ImageFormat::Jpeg;
  throw UsageError(output.string() + ": the name ends in neither .png nor .jpg; --output-format " +
                   "says what to write");
}

bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
  std::error_code unknown;
  return std::filesystem::equivalent(a, b, unknown);
}

}  // namespace

std::vector<FilterJob> planFilterJobs(const std::vector<std::string>& paths,
                                      const std::optional<std::filesystem::path>& outputDirectory,
                                      std::optional<ImageFormat> format) {
  const auto job = [&](const std::filesystem::path& input, const std::filesystem::path& output) {
    return FilterJob{input, output, format ? *format : formatOf(output)};
  };
  if (!outputDirectory) {
    if (paths.size() != 2) {
      throw UsageError("filter takes INPUT and OUTPUT, or any number of inputs with --output-dir");
    }
    return {job(paths[0], paths[1])};
  }

  std::vector<FilterJob> jobs;
  std::set<std::filesystem::path> outputs;
  for (const std::string& path : paths) {
    const std::filesystem::path input = path;
    if (path == standardStream || !input.has_filename()) {
      throw UsageError(path + ": has no file name to write under in the --output-dir");
    }
    const std::filesystem::path output = *outputDirectory / input.filename();
    if (!outputs.insert(output).second) {
      throw UsageError(output.string() + ": more than one input would be written there");
    }
    jobs.push_back(job(input, output));
  }
  for (const FilterJob& each : jobs) {
    for (const std::string& path : paths) {
      if (isSameFile(each.output, path)) {
        throw UsageError(each.output.string() + ": is an input and would be overwritten");
      }
    }
  }
  return jobs;
}

void filterImage(const FilterJob& job, const PictureFilter& filter) {
  // Each step names the file it works on.
  const auto named = [](const std::filesystem::path& path, const auto& step) {
    try {
      return step();
    } catch (const ImageError& error) {
      throw RunError(path.string() + ": " + error.what());
    }
  };
  Image image =
      named(job.input, [&] { return decodeImage(readFileWhole(job.input, mostImageBytes)); });
  const std::size_t pixels = std::size_t{image.width} * image.height;
  filterPicture(filter, image.pixels.data(), pixels);
  const std::vector<std::uint8_t> encoded =
      named(job.output, [&] { return encodeImage(image, job.format); });

  if (job.output == standardStream) {
    writeStandardOutput(encoded);
  } else {
    writeFileWhole(job.output, encoded);
  }
}

}  // namespace tintora::cli
