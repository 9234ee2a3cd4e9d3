#include "cli/tool.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdint>
#include <exception>
#include <new>
#include <span>
#include <sstream>
#include <string>

#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/messages.h"
#include "cli/output_file.h"

namespace tintora::cli {

namespace {

int parseAndRun(int argc, const char* const* argv) {
  Request request;
  CLI::App tool;
  declareTool(tool, request);
  try {
    tool.parse(argc, argv);
  } catch (const CLI::Success& help) {
    std::ostringstream stream;
    const int status = tool.exit(help, stream, stream);
    const std::string text = stream.str();
    writeStandardOutput(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    return status;
  } catch (const CLI::ParseError& error) {
    complain(error.what());
    return exitUsage;
  }
  for (const Command& command : commands()) {
    if (tool.got_subcommand(command.name)) return command.run(request);
  }
  throw UsageError("a subcommand is needed: matrix, filter, curves, check, report or list");
}

}  // namespace

int runTool(int argc, const char* const* argv) {
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
  return exitFailed;
}

}  // namespace tintora::cli
