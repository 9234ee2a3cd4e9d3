#include "cli/filter_command.h"

#include <unistd.h>

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <functional>
#include <set>
#include <span>
#include <system_error>
#include <thread>

#include "cli/choice_option.h"
#include "cli/filter_stream.h"
#include "cli/output_file.h"
#include "cli/transform_options.h"

namespace tintora::cli {

namespace {

namespace fs = std::filesystem;

std::optional<ImageFormat> formatOf(const fs::path& output) {
  if (output == standardStream) return ImageFormat::Png;
  std::string extension = output.extension().string();
  std::ranges::transform(extension, extension.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  if (extension == ".png") return ImageFormat::Png;
  if (extension == ".jpg" || extension == ".jpeg") return ImageFormat::Jpeg;
  return std::nullopt;
}

std::string unknownFormat(const fs::path& output) {
  return output.string() +
         ": the name ends in neither .png nor .jpg; --output-format says what to write";
}

bool isSameFile(const fs::path& a, const fs::path& b) {
  std::error_code unknown;
  return fs::equivalent(a, b, unknown);
}

bool isFolder(const fs::path& path) {
  std::error_code unknown;
  return !path.has_filename() || fs::is_directory(path, unknown);
}

// Returns the input's name in the folder; its extension follows a format that is given.
fs::path outputIn(const fs::path& folder, const fs::path& input,
                  std::optional<ImageFormat> format) {
  fs::path name = input.filename();
  if (format && formatOf(name) != format) {
    name.replace_extension(*format == ImageFormat::Png ? ".png" : ".jpg");
  }
  return folder / name;
}

// Refuses a quality for PNG, because it would be ignored.
void refuseQualityOfPng(const FilterRequest& request, std::optional<ImageFormat> format) {
  if (request.quality && format == ImageFormat::Png) {
    throw UsageError("--quality: is for JPEG, and the output is PNG; see --output-format");
  }
}

FilterPlan planSingleJob(const FilterRequest& request) {
  const fs::path input = request.paths[0];
  const fs::path output = request.paths[1];
  const auto format = request.outputFormat ? request.outputFormat : formatOf(output);
  if (!format) throw UsageError(unknownFormat(output));
  refuseQualityOfPng(request, format);
  if (output == standardStream && ::isatty(STDOUT_FILENO) == 1) {
    throw UsageError("standard output is a terminal, and pictures are binary; name a file");
  }
  return {{{input, output, format, true}}, std::nullopt};
}

FilterPlan planFolderJobs(const FilterRequest& request, const std::vector<std::string>& inputs,
                          const fs::path& folder) {
  refuseQualityOfPng(request, request.outputFormat);
  FilterPlan plan{{}, folder};
  std::set<fs::path> outputs;
  for (const std::string& path : inputs) {
    const fs::path input = path;
    if (path == standardStream || !input.has_filename()) {
      throw UsageError(path + ": has no file name to write under in " + folder.string());
    }
    const fs::path output = outputIn(folder, input, request.outputFormat);
    if (!outputs.insert(output).second) {
      throw UsageError(output.string() + ": more than one input would be written there");
    }
    const auto format = request.outputFormat ? request.outputFormat : formatOf(output);
    plan.jobs.push_back({input, output, format, request.overwrites});
  }
  for (const FilterJob& job : plan.jobs) {
    for (const std::string& path : inputs) {
      if (isSameFile(job.output, path)) {
        throw UsageError(job.output.string() + ": is an input and would be overwritten");
      }
    }
  }
  return plan;
}

}  // namespace

void addFilterArguments(CLI::App& command, FilterRequest& request) {
  request.threads = std::max(1U, std::thread::hardware_concurrency());
  command
      .add_option("PATH", request.paths,
                  "INPUT OUTPUT, or INPUT... FOLDER; - is standard input or output")
      ->required()
      ->type_name("");
  command
      .add_option_function<std::string>(
          "--output-dir", [&request](const std::string& path) { request.outputDirectory = path; },
          "Write under the inputs' names into this folder")
      ->type_name("FOLDER");
  addChoice<std::optional<ImageFormat>>(command, "--output-format", request.outputFormat,
                                        {{"png", ImageFormat::Png}, {"jpeg", ImageFormat::Jpeg}},
                                        "png or jpeg, whatever the output is called");
  const auto addNumber = [&command](const std::string& name, std::uint64_t least,
                                    std::uint64_t most, const std::string& description,
                                    const std::function<void(std::uint64_t)>& take) {
    command
        .add_option_function<std::string>(
            name, [=](const std::string& text) { take(parseWholeNumber(name, text, least, most)); },
            description)
        ->type_name("N");
  };
  addNumber("--quality", 1, 100,
            "JPEG quality, 1 to 100 (default " + std::to_string(defaultJpegQuality) + ')',
            [&request](std::uint64_t quality) { request.quality = static_cast<int>(quality); });
  addNumber("--jobs", 1, 1024, "Images at a time (default: one for each processor)",
            [&request](std::uint64_t threads) { request.threads = threads; });
  addNumber("--max-pixels", 1, highestPixelLimit,
            "Largest image to accept (default " + std::to_string(defaultPixelLimit) + " pixels)",
            [&request](std::uint64_t pixels) { request.pixelLimit = pixels; });
  command.add_flag("--force", request.overwrites, "Overwrite files in the folder");
}

FilterPlan planFilterJobs(const FilterRequest& request) {
  if (request.outputDirectory) {
    return planFolderJobs(request, request.paths, *request.outputDirectory);
  }
  if (request.paths.size() >= 2 && isFolder(request.paths.back())) {
    return planFolderJobs(request, {request.paths.begin(), request.paths.end() - 1},
                          request.paths.back());
  }
  if (request.paths.size() == 2) return planSingleJob(request);
  throw UsageError("filter takes INPUT and OUTPUT, or any number of inputs and a folder");
}

void filterImage(const FilterJob& job, const FilterRequest& request, const FilterSet& filters) {
  std::error_code unknown;
  if (fs::is_directory(job.input, unknown)) {
    throw RunError(job.input.string() + ": is a folder; name the pictures in it");
  }
  if (!job.format) throw RunError(unknownFormat(job.output));
  if (!job.mayOverwrite && fs::exists(job.output, unknown)) {
    throw RunError(job.output.string() + ": exists; --force overwrites it");
  }
  InputFile input(job.input);
  OutputFile output(job.output);
  try {
    filterStream(input.source, output.sink, filters,
                 {*job.format, request.quality.value_or(defaultJpegQuality), request.pixelLimit});
  } catch (const ImageReadError& error) {
    throw RunError(job.input.string() + ": " + error.what());
  } catch (const ImageWriteError& error) {
    throw RunError(job.output.string() + ": " + error.what());
  }
  output.commit();
}

}  // namespace tintora::cli
