#include "cli/documents/command_texts.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace tintora::cli {

namespace {

const std::vector<CommandText> texts{
    {"tintora-cli",
     {"Simulates and corrects colour vision deficiencies without a desktop: in pictures, palettes "
      "and matrices. Each command has a manual page of its own.",
      "The options that choose a transform may stand before the commands matrix, filter and curves "
      "or after them. An option that the mode does not take is refused."},
     {{"tintora-cli filter --mode deutan photo.jpg seen.png", "shows a photograph as seen"},
      {"tintora-cli check '#e69f00' '#56b4e9' tomato", "finds colours that some viewers confuse"},
      {"tintora-cli report chart.png -o report.html", "makes a page to show to others"}}},
    {"matrix",
     {"Prints the title of the transform and its matrix: five rows for input red, green, blue, "
      "alpha and offset, and a column for each output channel.",
      "csv has the title in its first record. json also has the 3x3 matrices that act on column "
      "vectors. svg is a filter element for web pages. Every number reads back to the same float "
      "or double.",
      "The algorithm brettel1997 is no single matrix and refused here."},
     {{"tintora-cli matrix --mode deutan --severity 60", "prints a matrix for people"},
      {"tintora-cli matrix --mode protan --format svg", "prints a filter for web pages"}}},
    {"filter",
     {"Reads PNG and JPEG pictures row by row, puts them through the transform and writes PNG or "
      "JPEG. Each sample is rounded once, to the nearest step of the result in double precision.",
      "Pictures stay what they are: palettes, greys and 16 bits per channel, alpha, colour "
      "profile, EXIF data and resolution. EXIF thumbnails are cut off. Animations, CMYK, and "
      "transparency in JPEG are refused.",
      "The name of the output decides its format. An output file appears whole or not at all. In "
      "a folder existing files are kept unless --force is given. Each picture is tried, and those "
      "that fail are named."},
     {{"tintora-cli filter --mode deutan photo.jpg seen.png", "filters one picture"},
      {"tintora-cli filter --algorithm brettel1997 photo.png seen.png", "simulates most truly"},
      {"tintora-cli filter --mode tritan a.png b.png --output-dir out", "filters many pictures"},
      {"tintora-cli filter --mode greyscale - -", "filters standard input to standard output"}}},
    {"curves",
     {"Prints the response curves of the observer that the transform simulates: a row for each "
      "nanometre from 360 to 760, with the three cones and the three opponent channels."},
     {{"tintora-cli curves --mode protan --severity 40",
       "prints the curves of a mild deficiency"}}},
    {"check",
     {"Compares every two colours of a palette as they are and as viewers with a deficiency see "
      "them, by CIEDE2000 and by the contrast of WCAG 2. A pair that is told apart and is lost to "
      "a viewer is a finding. With it comes the nearest change of one colour that mends it, in "
      "lightness first.",
      "Colours are #rgb, #rrggbb and CSS names. Files are GIMP palettes, JSON arrays, style sheets "
      "and other texts."},
     {{"tintora-cli check '#e69f00' '#56b4e9' tomato", "checks three colours"},
      {"tintora-cli check --algorithm brettel1997 brand.gpl", "judges a palette most truly"},
      {"tintora-cli check --image chart.png --format csv", "checks the colours of a picture"}}},
    {"report",
     {"Writes one web page that needs nothing beside it. A slider wipes between each picture and "
      "what others see of it; below are the steps of severity, the algorithms side by side, and "
      "the findings among the colours."},
     {{"tintora-cli report photo.jpg brand.gpl -o report.html", "shows a picture and a palette"}}},
    {"list",
     {"Prints what the options can name, with the source of each algorithm."},
     {{"tintora-cli list", "prints the names"}}},
};

}  // namespace

const CommandText& textOf(std::string_view command) {
  const auto text = std::ranges::find(texts, command, &CommandText::command);
  if (text == texts.end()) throw std::runtime_error(std::string(command) + ": has no text");
  return *text;
}

}  // namespace tintora::cli
