#include "cli/report_command.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <span>
#include <system_error>
#include <utility>

#include "cli/orientation.h"
#include "cli/output_file.h"
#include "cli/palette_input.h"
#include "cli/report_page.h"
#include "cli/report_pictures.h"
#include "cli/text.h"
#include "cli/transform_options.h"
#include "palette/palette_readers.h"

namespace tintora::cli {

namespace {

std::span<const std::uint8_t> bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string shownName(const std::string& path) {
  if (path == standardStream) return "standard input";
  return printable(toUtf8(std::filesystem::path(path).filename().string()));
}

ReportSection paletteSection(std::string name, InputPalette input, const PaletteOptions& options) {
  ReportSection section;
  section.name = std::move(name);
  section.checked = checkColours(std::move(input), options);
  return section;
}

ReportSection pictureSection(const std::string& path, const Image& picture,
                             const ReportRequest& request) {
  ReportSection section;
  section.name = shownName(path);
  section.picture = showPicture(uprightPicture(picture), request.options, request.width);
  InputPalette input;
  addMainColours(input, path, picture, request.options.imageColours);
  section.checked = checkColours(std::move(input), request.options);
  return section;
}

// Reads the file only once, because it may be a pipe.
ReportSection fileSection(const std::string& path, const ReportRequest& request) {
  const std::vector<std::uint8_t> contents = readFileWhole(path, mostPictureBytes);
  if (isPicture(contents)) return pictureSection(path, decodePicture(path, contents), request);
  InputPalette input;
  addPaletteText(input, path, contents);
  return paletteSection(shownName(path), std::move(input), request.options);
}

}  // namespace

void addReportArguments(CLI::App& command, ReportRequest& request) {
  command
      .add_option("INPUT", request.inputs,
                  "PNG and JPEG pictures, files of colours, and colours, which together are one "
                  "palette")
      ->required()
      ->type_name("");
  command
      .add_option_function<std::string>(
          "-o,--output", [&request](const std::string& path) { request.output = path; },
          "Where the page goes; - is standard output")
      ->required()
      ->type_name("PATH");
  command.add_option("--title", request.title, "What the page is called")->type_name("TEXT");
  command
      .add_option_function<std::string>(
          "--width",
          [&request](const std::string& text) {
            constexpr std::uint32_t least = 64;
            constexpr std::uint32_t most = 4096;
            request.width =
                static_cast<std::uint32_t>(parseWholeNumber("--width", text, least, most));
          },
          "Pixels that a picture in the page is wide at most (default 960)")
      ->type_name("PIXELS");
  addPaletteOptions(command, request.options);
}

std::string makeReport(const ReportRequest& request) {
  checkCombination(request.options);
  Report report{printable(toUtf8(request.title)), request.options, {}};
  InputPalette colours;
  for (const std::string& input : request.inputs) {
    if (parseColour(input)) {
      addArgument(colours, input);
    } else {
      requireFile(input);
      report.sections.push_back(fileSection(input, request));
    }
  }
  if (!colours.palette.colours.empty()) {
    report.sections.push_back(paletteSection("Colours", std::move(colours), request.options));
  }
  return formatReport(report);
}

void writeReport(const ReportRequest& request) {
  for (const std::string& input : request.inputs) {
    std::error_code unknown;
    if (std::filesystem::equivalent(request.output, input, unknown)) {
      throw UsageError(request.output.string() + ": is an input and would be overwritten");
    }
  }
  const std::string page = makeReport(request);
  if (request.output == standardStream) {
    writeStandardOutput(bytesOf(page));
  } else {
    writeFileWhole(request.output, bytesOf(page));
  }
}

}  // namespace tintora::cli
