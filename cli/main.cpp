#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <map>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cli/curves_command.h"
#include "cli/filter_command.h"
#include "cli/list_command.h"
#include "cli/matrix_command.h"
#include "cli/output_file.h"
#include "cli/progress_bar.h"
#include "cli/transform_options.h"

namespace tintora::cli {

namespace {

constexpr int exitRun = 1;
constexpr int exitUsage = 2;

struct Request {
  TransformOptions transform;
  MatrixFormat matrixFormat = MatrixFormat::Text;
  std::vector<std::string> paths;
  std::optional<std::filesystem::path> outputDirectory;
  std::optional<ImageFormat> outputFormat;
};

// One line on standard error.
void complain(std::string message) {
  std::ranges::replace(message, '\n', ' ');
  std::cerr << "tintora-cli: " << message << std::endl;
}

void print(const std::string& text) {
  writeStandardOutput(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

template <typename Value>
void addChoice(CLI::App& command, const std::string& name, Value& value,
               const std::map<std::string, Value>& choices, const std::string& description) {
  command
      .add_option_function<std::string>(
          name,
          [name, &value, choices](const std::string& text) {
            const auto choice = choices.find(text);
            if (choice != choices.end()) {
              value = choice->second;
              return;
            }
            std::string known;
            for (const auto& [word, ignored] : choices) known += (known.empty() ? "" : ", ") + word;
            throw CLI::ValidationError(name, "\"" + text + "\" is none of " + known);
          },
          description)
      ->type_name("NAME");
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
  const std::vector<FilterJob> jobs =
      planFilterJobs(request.paths, request.outputDirectory, request.outputFormat);
  applyOptions(request.transform);
  const PictureFilter filter =
      makePictureFilter(appliedColourTransform(request.transform), SampleDepth::Bits8);
  if (request.outputDirectory) std::filesystem::create_directories(*request.outputDirectory);

  const bool showsProgress = jobs.size() > 1 && standardErrorIsTerminal();
  int status = 0;
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    if (showsProgress) drawProgressBar(i, jobs.size(), jobs[i].input.filename().string());
    try {
      filterImage(jobs[i], filter);
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {
      if (showsProgress) clearProgressBar();
      complain(error.what());
      status = exitRun;
    }
  }
  if (showsProgress) clearProgressBar();
  return status;
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
  filter
      .add_option("paths", request.paths,
                  "INPUT OUTPUT, or INPUT... with --output-dir; - is standard input or output")
      ->required()
      ->type_name("PATH");
  filter
      .add_option_function<std::string>(
          "--output-dir", [&request](const std::string& path) { request.outputDirectory = path; },
          "Write under the inputs' names into this directory")
      ->type_name("PATH");
  addChoice<std::optional<ImageFormat>>(filter, "--output-format", request.outputFormat,
                                        {{"png", ImageFormat::Png}, {"jpeg", ImageFormat::Jpeg}},
                                        "png or jpeg, whatever the output is called");

  CLI::App& curves = addCommand(
      "curves", "Print the response curves of the simulated observer as CSV", &runCurves);
  addTransformOptions(curves, request.transform);
  addCommand("list", "List modes, algorithms with their sources, filters and swaps", &runList);

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& help) {
    return app.exit(help);
  } catch (const CLI::ParseError& error) {
    complain(error.what());
    return exitUsage;
  }
  if (run == nullptr) throw UsageError("a subcommand is needed: matrix, filter, curves or list");
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
