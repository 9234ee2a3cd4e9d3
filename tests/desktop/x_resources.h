// What the X server holds for a process.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <string>

#include "x_client.h"

namespace tintora::desktop_test {

// Returns the number of resources of each kind over all of the process's connections. Waits until
// the numbers stay the same, because a working process has some only for a moment.
std::map<std::string, std::uint32_t> resourcesOf(const XClient& client, pid_t process);

}  // namespace tintora::desktop_test
