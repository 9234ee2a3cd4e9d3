#pragma once

namespace tintora::windows_test {

// The environment variable that names the file in which a planted library writes its own path.
constexpr const char* plantedNoteVariable = "TINTORA_PLANTED_NOTE";

}  // namespace tintora::windows_test
