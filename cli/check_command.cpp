#include "cli/check_command.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <map>
#include <utility>

#include "cli/check_formats.h"
#include "cli/choice_option.h"
#include "cli/transform_options.h"

namespace tintora::cli {

void addCheckArguments(CLI::App& command, CheckRequest& request) {
  command
      .add_option("COLOUR|FILE", request.colours,
                  "\"#rgb\", \"#rrggbb\", CSS colour names, and files of colours: GIMP palettes, "
                  "JSON arrays, style sheets and texts; - is standard input")
      ->type_name("");
  command.add_option("--image", request.images, "Take the main colours of this picture")
      ->type_name("PATH")
      ->expected(1)
      ->take_all();
  addPaletteOptions(command, request.options);
  addChoice<CheckFormat>(
      command, "--format", request.format,
      {{"table", CheckFormat::Table}, {"json", CheckFormat::Json}, {"csv", CheckFormat::Csv}},
      "table (default), json or csv");
  addChoice<Swatches>(
      command, "--swatches", request.swatches,
      {{"auto", Swatches::Auto}, {"always", Swatches::Always}, {"never", Swatches::Never}},
      "Show the colours in the table: auto (default, on a true-colour terminal), always or never");
  command.add_flag("--only-findings", request.onlyFindings, "Leave the other pairs out");
}

CheckedInput checkInput(const CheckRequest& request) {
  if (request.colours.empty() && request.images.empty()) {
    throw UsageError(
        "check needs colours, a file of colours or --image; a shell wants quotes around \"#...\"");
  }
  checkCombination(request.options);
  InputPalette input;
  for (const std::string& argument : request.colours) addArgument(input, argument);
  for (const std::string& path : request.images) {
    addMainColours(input, path, readPicture(path), request.options.imageColours);
  }
  requirePairs(input);
  return checkColours(std::move(input), request.options);
}

CheckedInput checkColours(InputPalette input, const PaletteOptions& options) {
  std::vector<Rgb8> colours;
  for (const PaletteColour& colour : input.palette.colours) colours.push_back(colour.rgb);
  std::vector<ColourSimulation> viewers = viewersOf(options);
  PaletteCheck check = checkPalette(colours, viewers, options.limits);
  return {std::move(input), std::move(viewers), std::move(check)};
}

std::string formatCheck(const CheckRequest& request, const CheckedInput& checked) {
  switch (request.format) {
    case CheckFormat::Json:
      return formatCheckJson(request, checked);
    case CheckFormat::Csv:
      return formatCheckCsv(request, checked);
    case CheckFormat::Table:
      break;
  }
  return formatCheckTable(request, checked);
}

}  // namespace tintora::cli
