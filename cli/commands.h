// The tool's commands: how each is declared and run.
#pragma once

#include <CLI/App.hpp>
#include <span>

#include "cli/check_command.h"
#include "cli/filter_command.h"
#include "cli/matrix_command.h"
#include "cli/report_command.h"
#include "cli/transform_options.h"

namespace tintora::cli {

// What the command line asks for.
struct Request {
  TransformOptions transform;
  MatrixFormat matrixFormat = MatrixFormat::Text;
  FilterRequest filter;
  CheckRequest check;
  ReportRequest report;
};

struct Command {
  const char* name;
  const char* description;
  void (*declare)(CLI::App& command, Request& request);
  int (*run)(const Request& request);  // returns the exit status
};

std::span<const Command> commands();

// Declares the options that stand before a command, and every command. Parsing fills the request,
// which must outlive the tool.
void declareTool(CLI::App& tool, Request& request);

}  // namespace tintora::cli
