// What the X server holds for a process.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <string>

#include "x_client.h"

namespace tintora::desktop_test {

// How many of each kind, over all its connections, once the numbers stay the same: while the
// process works, it has some for a moment only.
std::map<std::string, std::uint32_t> resourcesOf(const XClient& client, pid_t process);

}  // namespace tintora::desktop_test
