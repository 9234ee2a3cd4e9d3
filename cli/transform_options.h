// The options that choose a transform, shared by the tool's commands.
#pragma once

#include <CLI/App.hpp>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "engine/colour_effects.h"
#include "engine/colour_transform.h"

namespace tintora::cli {

// What the command line asks for could not be done: one line, exit status 1.
struct RunError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The command line asks for something that is not there: one line, exit status 2.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct TransformOptions {
  TransformSettings settings;
  std::optional<Light> light;
  std::optional<std::filesystem::path> customFile;
  std::uint32_t customIndex = 0;
  std::set<std::string, std::less<>> given;  // the options that stood on the command line
};

// What stands for a value on the command line.
template <typename Value>
struct NamedValue {
  std::string_view name;
  Value value;
  std::string_view description;
};

std::span<const NamedValue<TransformMode>> modeNames();
std::span<const NamedValue<SimulationAlgorithm>> algorithmNames();
std::span<const NamedValue<ColourSwap>> swapNames();
std::span<const NamedValue<Light>> lightNames();

// Returns the name of a colour filter as an option: its colour word in lower case.
std::string colourFilterOption(const ColourFilter& filter);

// Returns an argument that is a whole number between two bounds. Anything else is refused with an
// error of the command line that names the option.
std::uint64_t parseWholeNumber(std::string_view option, const std::string& text,
                               std::uint64_t least, std::uint64_t most);

// Adds the options to a command; parsing it fills the given record, which must outlive the command.
void addTransformOptions(CLI::App& command, TransformOptions& options);

// Applies the chosen transform, so that effectMatrix and modelContext hold it, and returns its
// title in UTF-8. Reads the custom transform file if the mode asks for it. Throws RunError, and
// UsageError for options that do not go together.
std::string applyOptions(const TransformOptions& options);

// Returns true if the chosen simulation is one that no matrix can hold.
bool isOnHalfPlanes(const TransformOptions& options);

// Returns the light in which the chosen transform works: the given one, else that of the algorithm.
Light lightOf(const TransformOptions& options);

// Returns the chosen transform for colours and pictures: the effect matrix that applyOptions has
// left, or the half planes.
ColourTransform appliedColourTransform(const TransformOptions& options);

}  // namespace tintora::cli
