// Where a build has its tool and what the tool made. The tests themselves are compiled once for
// several builds.
#pragma once

namespace tintora {

extern const char* const toolPath;
extern const char* const toolDocumentsFolder;

}  // namespace tintora
