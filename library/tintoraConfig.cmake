# Defines the targets tintora::tintora, a shared library, and tintora::tintora_static.
include(${CMAKE_CURRENT_LIST_DIR}/tintoraTargets.cmake)
