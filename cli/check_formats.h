// The verdict on a palette as text: a table for people, JSON and CSV for machines.
#pragma once

#include <string>

#include "cli/check_command.h"

namespace tintora::cli {

std::string formatCheckTable(const CheckRequest& request, const CheckedInput& checked);
std::string formatCheckJson(const CheckRequest& request, const CheckedInput& checked);
std::string formatCheckCsv(const CheckRequest& request, const CheckedInput& checked);

// Returns the number with that many decimals.
std::string fixed(double value, int decimals);

// Returns true if the viewer at that place loses the pair.
bool isLostTo(const Finding* finding, std::size_t viewer);

// Returns the finding about a pair, or null if there is none. Findings come in the order of the
// pairs: `next` is 0 at first and moves to the finding behind the one returned.
const Finding* findingOf(const PaletteCheck& check, std::size_t pair, std::size_t& next);

}  // namespace tintora::cli
