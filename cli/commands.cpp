#include "cli/commands.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/batch.h"
#include "cli/choice_option.h"
#include "cli/curves_command.h"
#include "cli/exit_status.h"
#include "cli/list_command.h"
#include "cli/messages.h"
#include "cli/output_file.h"
#include "cli/progress_bar.h"

namespace tintora::cli {

namespace {

void print(const std::string& text) {
  writeStandardOutput(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

void declareMatrix(CLI::App& command, Request& request) {
  addTransformOptions(command, request.transform);
  addChoice<MatrixFormat>(command, "--format", request.matrixFormat,
                          {{"text", MatrixFormat::Text},
                           {"json", MatrixFormat::Json},
                           {"csv", MatrixFormat::Csv},
                           {"svg", MatrixFormat::Svg}},
                          "text (default), json, csv, or svg: a filter element for web pages");
}

int runMatrix(const Request& request) {
  print(formatMatrix(request.matrixFormat, request.transform));
  return 0;
}

void declareFilter(CLI::App& command, Request& request) {
  addTransformOptions(command, request.transform);
  addFilterArguments(command, request.filter);
}

// Tries every image; the status tells whether all came through.
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
  return exitFailed;
}

void declareCurves(CLI::App& command, Request& request) {
  addTransformOptions(command, request.transform);
}

int runCurves(const Request& request) {
  print(formatCurves(request.transform));
  return 0;
}

// Refuses options of a transform, which may stand before any command, for one that has none.
void refuseTransformOptions(const Request& request, const std::string& command) {
  if (request.transform.given.empty()) return;
  throw UsageError(*request.transform.given.begin() + ": is not taken before " + command);
}

void declareCheck(CLI::App& command, Request& request) {
  addCheckArguments(command, request.check);
}

int runCheck(const Request& request) {
  refuseTransformOptions(request, "check");
  const CheckedInput checked = checkInput(request.check);
  print(formatCheck(request.check, checked));
  return checked.check.findings.empty() ? exitDone : exitFindings;
}

void declareReport(CLI::App& command, Request& request) {
  addReportArguments(command, request.report);
}

int runReport(const Request& request) {
  refuseTransformOptions(request, "report");
  writeReport(request.report);
  return 0;
}

void declareList(CLI::App& /*command*/, Request& /*request*/) {}

int runList(const Request& /*request*/) {
  print(formatList());
  return 0;
}

constexpr std::array<Command, 6> allCommands{{
    {"matrix", "Print the title and the 5x5 effect matrix", &declareMatrix, &runMatrix},
    {"filter", "Put PNG and JPEG images through the transform", &declareFilter, &runFilter},
    {"curves", "Print the response curves of the simulated observer as CSV", &declareCurves,
     &runCurves},
    {"check", "Check a palette for colours that are lost to viewers with a deficiency",
     &declareCheck, &runCheck},
    {"report", "Write a web page that shows pictures and palettes as others see them",
     &declareReport, &runReport},
    {"list", "List modes, algorithms with their sources, filters and swaps", &declareList,
     &runList},
}};

}  // namespace

std::span<const Command> commands() {
  return allCommands;
}

void declareTool(CLI::App& tool, Request& request) {
  tool.description("Colour vision deficiency transforms: matrices, curves and image files");
  tool.name("tintora-cli");
  tool.set_version_flag("--version", std::string("tintora-cli ") + TINTORA_VERSION);
  tool.require_subcommand(0, 1);
  addTransformOptions(tool, request.transform);
  for (const Command& command : allCommands) {
    command.declare(*tool.add_subcommand(command.name, command.description), request);
  }
}

}  // namespace tintora::cli
