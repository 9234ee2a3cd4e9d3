#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <new>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "cli/batch.h"
#include "cli/check_command.h"
#include "cli/choice_option.h"
#include "cli/curves_command.h"
#include "cli/filter_command.h"
#include "cli/list_command.h"
#include "cli/matrix_command.h"
#include "cli/messages.h"
#include "cli/output_file.h"
#include "cli/progress_bar.h"
#include "cli/report_command.h"
#include "cli/transform_options.h"

namespace tintora::cli {

namespace {

constexpr int exitRun = 1;
constexpr int exitUsage = 2;
constexpr int exitFindings = 3;

struct Request {
  TransformOptions transform;
  MatrixFormat matrixFormat = MatrixFormat::Text;
  FilterRequest filter;
  CheckRequest check;
  ReportRequest report;
};

void print(const std::string& text) {
  writeStandardOutput(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

int runMatrix(const Request& request) {
  print(formatMatrix(request.matrixFormat, request.transform));
  return 0;
}

int runCurves(const Request& request) {
  print(formatCurves(request.transform));
  return 0;
}

int runList(const Request& /*request*/) {
  print(formatList());
  return 0;
}

// Every image is tried; the status tells whether all came through.
int runFilter(const Request& request) {
  const FilterPlan plan = planFilterJobs(request.filter);
  applyOptions(request.transform);
  const FilterSet filters(appliedColourTransform(request.transform));
  if (plan.folder) std::filesystem::create_directories(*plan.folder);

  std::vector<std::string> names;
  for (const FilterJob& job : plan.jobs) names.push_back(job.input.filename().string());
  const bool showsProgress = names.size() > 1 && standardErrorIsTerminal();
  const std::size_t failed =
      runBatch(names, request.filter.threads, showsProgress,
               [&](std::size_t i) { filterImage(plan.jobs[i], request.filter, filters); });
  if (failed == 0) return 0;
  if (names.size() > 1) {
    complain(std::to_string(failed) + " of " + std::to_string(names.size()) +
             " images could not be filtered");
  }
  return exitRun;
}

void addFilterOptions(CLI::App& command, FilterRequest& request) {
  request.threads = std::max(1U, std::thread::hardware_concurrency());
  command
      .add_option("paths", request.paths,
                  "INPUT OUTPUT, or INPUT... FOLDER; - is standard input or output")
      ->required()
      ->type_name("PATH");
  command
      .add_option_function<std::string>(
          "--output-dir", [&request](const std::string& path) { request.outputDirectory = path; },
          "Write under the inputs' names into this folder")
      ->type_name("PATH");
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

// Options of a transform may stand before a command, but some commands have none.
void refuseTransformOptions(const Request& request, const std::string& command) {
  if (request.transform.given.empty()) return;
  throw UsageError(*request.transform.given.begin() + ": is not taken before " + command);
}

int runCheck(const Request& request) {
  refuseTransformOptions(request, "check");
  const CheckedInput checked = checkInput(request.check);
  print(formatCheck(request.check, checked));
  return checked.check.findings.empty() ? 0 : exitFindings;
}

int runReport(const Request& request) {
  refuseTransformOptions(request, "report");
  writeReport(request.report);
  return 0;
}

int parseAndRun(int argc, const char* const* argv) {
  Request request;
  CLI::App app("Colour vision deficiency transforms: matrices, curves and image files");
  app.name("tintora-cli");
  app.set_version_flag("--version", std::string("tintora-cli ") + TINTORA_VERSION);
  app.require_subcommand(0, 1);
  addTransformOptions(app, request.transform);

  using Run = int (*)(const Request&);
  Run run = nullptr;
  const auto addCommand = [&](const std::string& name, const std::string& description,
                              Run function) -> CLI::App& {
    CLI::App& command = *app.add_subcommand(name, description);
    command.callback([&run, function] { run = function; });
    return command;
  };

  CLI::App& matrix = addCommand("matrix", "Print the title and the 5x5 effect matrix", &runMatrix);
  addTransformOptions(matrix, request.transform);
  addChoice<MatrixFormat>(matrix, "--format", request.matrixFormat,
                          {{"text", MatrixFormat::Text},
                           {"json", MatrixFormat::Json},
                           {"csv", MatrixFormat::Csv},
                           {"svg", MatrixFormat::Svg}},
                          "text (default), json, csv, or svg: a filter element for web pages");

  CLI::App& filter =
      addCommand("filter", "Put PNG and JPEG images through the transform", &runFilter);
  addTransformOptions(filter, request.transform);
  addFilterOptions(filter, request.filter);

  CLI::App& curves = addCommand(
      "curves", "Print the response curves of the simulated observer as CSV", &runCurves);
  addTransformOptions(curves, request.transform);
  addCheckArguments(
      addCommand("check", "Check a palette for colours that are lost to viewers with a deficiency",
                 &runCheck),
      request.check);
  addReportArguments(
      addCommand("report", "Write a web page that shows pictures and palettes as others see them",
                 &runReport),
      request.report);
  addCommand("list", "List modes, algorithms with their sources, filters and swaps", &runList);

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& help) {
    std::ostringstream text;
    const int status = app.exit(help, text, text);
    print(text.str());
    return status;
  } catch (const CLI::ParseError& error) {
    complain(error.what());
    return exitUsage;
  }
  if (run == nullptr)
    throw UsageError("a subcommand is needed: matrix, filter, curves, check, report or list");
  return run(request);
}

}  // namespace

}  // namespace tintora::cli

int main(int argc, char** argv) {
  using namespace tintora::cli;
  try {
    return parseAndRun(argc, argv);
  } catch (const UsageError& error) {
    complain(error.what());
    return exitUsage;
  } catch (const std::bad_alloc&) {
    complain("out of memory");
  } catch (const std::exception& error) {
    complain(error.what());
  }
  return exitRun;
}
