#include "cli/messages.h"

#include <iostream>

#include "cli/text.h"

namespace tintora::cli {

void complain(std::string_view message) {
  std::cerr << "tintora-cli: " + printable(message) + '\n' << std::flush;
}

}  // namespace tintora::cli
