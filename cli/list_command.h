// tintora-cli list: what the options can name.
#pragma once

#include <string>

namespace tintora::cli {

std::string formatList();

}  // namespace tintora::cli
