# Runs the tests of all builds together, compares the two desktops' programs, and checks the sources
# that the preset linux does not build.
subdirs(linux linux-sanitize fuzz windows arm64)

add_test(views.same_on_both_desktops linux/tests/desktop/tintora_views_comparison linux/tintora)
set_tests_properties(
  views.same_on_both_desktops
  PROPERTIES ENVIRONMENT TINTORA_OTHER_PICTURES=windows/tests/pictures FIXTURES_REQUIRED
             windows_pictures TIMEOUT 120)

set(lint nice python3 -B ../tests/style/lint.py --plugin
         linux/tests/style/libtintora_own_code_only.so --build)
add_test(style.lint_of_windows ${lint} windows --target x86_64-w64-mingw32 --only ../platform/windows
         --only ../tests/windows)
set_tests_properties(style.lint_of_windows PROPERTIES TIMEOUT 3600 COST 81)
add_test(style.lint_of_benchmarks ${lint} bench --only ../bench)
add_test(style.lint_of_fuzz_targets ${lint} fuzz --only ../tests/fuzz)
add_test(style.lint_of_arm ${lint} arm64 --target aarch64-linux-gnu ../engine/pixel_kernels_neon.cpp)
add_test(style.lint_of_sanitized ${lint} linux-sanitize ../tests/desktop/keep_libraries.cpp)
