#include "cli/transform_options.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <vector>

#include "cli/option_values.h"
#include "cli/option_words.h"
#include "cli/output_file.h"
#include "cli/text.h"
#include "engine/apply_transform.h"
#include "engine/colour_simulation.h"
#include "engine/custom_transforms.h"
#include "engine/transform_display.h"

namespace tintora::cli {

namespace {

constexpr std::array<NamedValue<TransformMode>, 14> modes{{
    {"protan", TransformMode::Protan, "long-wave deficient"},
    {"deutan", TransformMode::Deutan, "medium-wave deficient"},
    {"tritan", TransformMode::Tritan, "short-wave deficient"},
    {"normal", TransformMode::Normal, "variation of normal colour vision"},
    {"filter", TransformMode::ColourFilter, "colour filter; --filter-colour, strength --severity"},
    {"greyscale", TransformMode::Greyscale, "greyscale"},
    {"invert", TransformMode::Invert, "inverted channels"},
    {"brightness", TransformMode::Brightness, "brightness; --brightness"},
    {"contrast", TransformMode::Contrast, "lowered contrast; --contrast"},
    {"saturation", TransformMode::Saturation, "lowered saturation; --saturation"},
    {"swap", TransformMode::ColourSwap, "exchanged channels; --swap, strength --severity"},
    {"circadian", TransformMode::CircadianLightBlock, "no blue light; brightness --severity"},
    {"red-filter", TransformMode::RedFilter, "red light only"},
    {"custom", TransformMode::Custom, "from --custom-file, entry --custom-index"},
}};

constexpr std::array<NamedValue<SimulationAlgorithm>, 6> algorithms{{
    {"judd", SimulationAlgorithm::Judd1948,
     "Judd 1948, Color perceptions of deuteranopic and protanopic observers, Journal of Research "
     "of the National Bureau of Standards 41, 247-271; the origin of the tritan matrix is not "
     "published"},
    {"yang", SimulationAlgorithm::Yang2008,
     "Yang, Ro, Wong & Lee 2008, Quantification and standardized description of color vision "
     "deficiency caused by anomalous trichromats - Part I: Simulation and measurement, EURASIP "
     "Journal on Image and Video Processing 2008, 487618"},
    {"machado", SimulationAlgorithm::Machado2009,
     "Machado, Oliveira & Fernandes 2009, A physiologically-based model for simulation of color "
     "vision deficiency, IEEE Transactions on Visualization and Computer Graphics 15, 1291-1298"},
    {"vienot1997", SimulationAlgorithm::Vienot1997Approximated,
     "Viénot, Brettel & Mollon 1997, approximated: Computerized simulation of color appearance for "
     "dichromats, Journal of the Optical Society of America A 14, 2647-2655"},
    {"vienot1999", SimulationAlgorithm::Vienot1999,
     "Viénot, Brettel & Mollon 1999, Digital video colourmaps for checking the legibility of "
     "displays by dichromats, Color Research & Application 24, 243-252"},
    {"brettel1997", SimulationAlgorithm::Brettel1997,
     "Brettel, Viénot & Mollon 1997, Computerized simulation of color appearance for dichromats, "
     "Journal of the Optical Society of America A 14, 2647-2655: two half planes in linear light, "
     "no single matrix"},
}};

constexpr std::array<NamedValue<Light>, 2> lights{{
    {"encoded", Light::Encoded, "on the values in the picture, as on the screen"},
    {"linear", Light::Linear, "on the light that an sRGB display gives"},
}};

constexpr std::array<NamedValue<ColourSwap>, 3> swaps{{
    {"red-blue", ColourSwap::RedBlue, "red and blue"},
    {"red-green", ColourSwap::RedGreen, "red and green"},
    {"green-blue", ColourSwap::GreenBlue, "green and blue"},
}};

// Other spellings of names.
constexpr std::array<std::pair<std::string_view, std::string_view>, 1> otherSpellings{{
    {"grayscale", "greyscale"},
}};

// The options that only some modes take.
struct ModeOption {
  std::string_view name;
  bool (*suits)(TransformMode mode);
  std::string_view modes;
};
template <TransformMode Wanted>
bool isMode(TransformMode mode) {
  return mode == Wanted;
}
constexpr std::string_view simulationModes = "protan, deutan, tritan and normal";
constexpr std::array<ModeOption, 10> modeOptions{{
    {"--algorithm", &isSimulation, simulationModes},
    {"--daltonize", &isSimulation, simulationModes},
    {"--inverse", &isSimulation, simulationModes},
    {"--filter-colour", &isMode<TransformMode::ColourFilter>, "filter"},
    {"--swap", &isMode<TransformMode::ColourSwap>, "swap"},
    {"--brightness", &isMode<TransformMode::Brightness>, "brightness"},
    {"--contrast", &isMode<TransformMode::Contrast>, "contrast"},
    {"--saturation", &isMode<TransformMode::Saturation>, "saturation"},
    {"--custom-file", &isMode<TransformMode::Custom>, "custom"},
    {"--custom-index", &isMode<TransformMode::Custom>, "custom"},
}};

std::string_view nameOf(TransformMode mode) {
  return std::ranges::find(modes, mode, &NamedValue<TransformMode>::value)->name;
}

// Returns the entry of a table that bears the name, by what nameOf makes of it.
template <typename Table, typename NameOf>
const auto& choose(std::string_view option, std::string text, const Table& table, NameOf nameOf) {
  for (const auto& [other, ours] : otherSpellings) {
    if (text == other) text = ours;
  }
  return findNamed(option, text, table, nameOf);
}

// Adds an option whose text is handed to `read`, and remembers that it was given.
template <typename Read>
CLI::Option& addOption(CLI::App& command, TransformOptions& options, const std::string& name,
                       const std::string& description, Read read) {
  return *command.add_option_function<std::string>(
      name,
      [name, &options, read](const std::string& text) {
        options.given.insert(name);
        read(text);
      },
      description);
}

void addPercentage(CLI::App& command, TransformOptions& options, const std::string& name,
                   double& fraction, double least, const std::string& description) {
  constexpr double whole = 100.0;
  const auto read = [name, &fraction, least](const std::string& text) {
    fraction = parseNumber(name, text, least, whole) / whole;
  };
  addOption(command, options, name, description + ", " + shortest(least) + " to 100 percent", read)
      .type_name("PERCENT");
}

template <typename Table, typename Value>
void addNamed(CLI::App& command, TransformOptions& options, const std::string& name,
              const Table& table, Value& value, const std::string& description) {
  const auto read = [name, &table, &value](const std::string& text) {
    value = choose(name, text, table, [](const auto& entry) { return entry.name; }).value;
  };
  CLI::Option& option = addOption(command, options, name, description, read);
  option.type_name("NAME");
  noteWords(option, namesIn(table));
}

void addFlag(CLI::App& command, TransformOptions& options, const std::string& name, bool& flag,
             const std::string& description) {
  const auto set = [name, &options, &flag] {
    options.given.insert(name);
    flag = true;
  };
  command.add_flag_callback(name, set, description);
}

// Refuses an option of another mode, and a light or use that the algorithm does not have: they
// would otherwise be ignored.
void checkCombination(const TransformOptions& options) {
  const TransformMode mode = options.settings.Selected;
  for (const ModeOption& option : modeOptions) {
    if (options.given.contains(option.name) && !option.suits(mode)) {
      throw UsageError(std::string(option.name) + ": is for --mode " + std::string(option.modes) +
                       ", not for " + std::string(nameOf(mode)));
    }
  }
  if (!isOnHalfPlanes(options)) return;
  if (options.light == Light::Encoded) {
    throw UsageError("--light encoded: brettel1997 works in linear light only");
  }
  const bool inverts = options.settings.Inversion && !options.settings.Daltonize;
  if (inverts && options.settings.severity >= 1.0 && mode != TransformMode::Normal) {
    throw UsageError("--inverse: brettel1997 at 100 percent has no inverse");
  }
}

constexpr std::uint64_t mostCustomFileBytes = std::uint64_t{16} << 20;

void readCustomFile(const TransformOptions& options) {
  if (!options.customFile) throw UsageError("--mode custom needs --custom-file");
  const std::string path = options.customFile->string();
  const auto bytes = readFileWhole(*options.customFile, mostCustomFileBytes);
  CustomTransformFile file = parseCustomTransforms(std::string(bytes.begin(), bytes.end()));
  if (file.malformed) {
    throw RunError(path + ": line " + std::to_string(file.malformed->number) + ": " +
                   toUtf8(file.malformed->reason));
  }
  if (file.transforms.empty()) throw RunError(path + ": holds no transform");
  if (options.customIndex >= file.transforms.size()) {
    throw UsageError("--custom-index: " + std::to_string(options.customIndex) + " is not below " +
                     std::to_string(file.transforms.size()) + ", the number of transforms in " +
                     path);
  }
  customTransforms = std::move(file.transforms);
}

}  // namespace

std::span<const NamedValue<TransformMode>> modeNames() {
  return modes;
}

std::span<const NamedValue<SimulationAlgorithm>> algorithmNames() {
  return algorithms;
}

std::span<const NamedValue<ColourSwap>> swapNames() {
  return swaps;
}

std::span<const NamedValue<Light>> lightNames() {
  return lights;
}

std::string colourFilterOption(const ColourFilter& filter) {
  std::string name(filter.name);
  name.front() = static_cast<char>(name.front() - 'A' + 'a');
  return name;
}

std::uint64_t parseWholeNumber(std::string_view option, const std::string& text,
                               std::uint64_t least, std::uint64_t most) {
  const double value =
      parseNumber(option, text, static_cast<double>(least), static_cast<double>(most));
  const auto whole = static_cast<std::uint64_t>(value);
  if (static_cast<double>(whole) != value) refuse(option, text + " is not a whole number");
  return whole;
}

void addTransformOptions(CLI::App& command, TransformOptions& options) {
  TransformSettings& settings = options.settings;
  addNamed(command, options, "--mode", modes, settings.Selected,
           "Transform (default deutan); see list");
  addPercentage(command, options, "--severity", settings.severity, 0.0,
                "Severity of the deficiency or strength of the effect (default 100)");
  addNamed(command, options, "--algorithm", algorithms, settings.Option,
           "Simulation algorithm (default judd); see list");
  addNamed(command, options, "--light", lights, options.light,
           "encoded (default) or linear: what the transform works on");
  addFlag(command, options, "--daltonize", settings.Daltonize, "Correct for the deficiency");
  addFlag(command, options, "--inverse", settings.Inversion, "Invert the simulation");
  const auto readFilterColour = [&settings](const std::string& text) {
    chooseColourFilter(settings,
                       choose("--filter-colour", text, colourFilters, colourFilterOption));
  };
  CLI::Option& filterColour = *command.add_option_function<std::string>(
      "--filter-colour,--filter-color",
      [&options, readFilterColour](const std::string& text) {
        options.given.insert("--filter-colour");
        readFilterColour(text);
      },
      "Colour that the filter passes (default none: all); see list");
  filterColour.type_name("NAME");
  std::vector<std::string> colours;
  for (const ColourFilter& filter : colourFilters) colours.push_back(colourFilterOption(filter));
  noteWords(filterColour, colours);
  addNamed(command, options, "--swap", swaps, settings.Swap,
           "Channels to exchange (default red-blue); see list");
  addPercentage(command, options, "--brightness", settings.brightness, -100.0,
                "Brightness (default 0)");
  addPercentage(command, options, "--contrast", settings.contrast, 0.0, "Contrast (default 100)");
  addPercentage(command, options, "--saturation", settings.saturation, 0.0,
                "Saturation (default 100)");
  addOption(command, options, "--custom-file", "File of custom transforms",
            [&options](const std::string& path) { options.customFile = path; })
      .type_name("PATH");
  const auto readIndex = [&options](const std::string& text) {
    options.customIndex = static_cast<std::uint32_t>(
        parseWholeNumber("--custom-index", text, 0, std::numeric_limits<std::uint32_t>::max()));
  };
  addOption(command, options, "--custom-index",
            "Entry of the custom transform file, from 0 (default 0)", readIndex)
      .type_name("N");
}

std::string applyOptions(const TransformOptions& options) {
  static std::string title;

  checkCombination(options);
  transformSettings = options.settings;
  if (options.settings.Selected == TransformMode::Custom) {
    readCustomFile(options);
    transformSettings.customIndex = static_cast<std::int32_t>(options.customIndex);
  }
  if (options.settings.Selected == TransformMode::RedFilter) {
    chooseColourFilter(transformSettings, fullRedFilter);
  }
  initialiseModelContext(modelContext);
  transformDisplay.showTitle = [](std::string_view text) { title = text; };
  applyTransform();
  return toUtf8(title);
}

bool isOnHalfPlanes(const TransformOptions& options) {
  return isSimulation(options.settings.Selected) &&
         options.settings.Option == SimulationAlgorithm::Brettel1997;
}

Light lightOf(const TransformOptions& options) {
  return options.light.value_or(isOnHalfPlanes(options) ? Light::Linear : Light::Encoded);
}

ColourTransform appliedColourTransform(const TransformOptions& options) {
  if (!isOnHalfPlanes(options)) return makeColourTransform(effectMatrix, lightOf(options));
  // The type and severity that applyOptions has handed to the model.
  const ColourSimulation simulation{modelContext.modelCvdType, modelContext.modelSeverity,
                                    SimulationAlgorithm::Brettel1997};
  SimulationUse use = SimulationUse::Simulate;
  if (options.settings.Inversion) use = SimulationUse::Invert;
  if (options.settings.Daltonize) use = SimulationUse::Daltonize;
  return makeSimulation(simulation, use);
}

}  // namespace tintora::cli
