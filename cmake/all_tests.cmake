# Runs the tests of all builds together, compares the two desktops' programs, and checks the sources
# for Windows with a plugin for this machine.
subdirs(linux linux-sanitize fuzz windows arm64)

add_test(views.same_on_both_desktops linux/tests/desktop/tintora_views_comparison linux/tintora)
set_tests_properties(
  views.same_on_both_desktops
  PROPERTIES ENVIRONMENT TINTORA_OTHER_PICTURES=windows/tests/pictures FIXTURES_REQUIRED
             windows_pictures TIMEOUT 120)

add_test(style.lint_of_windows nice python3 -B ../tests/style/lint.py --build windows --plugin
         linux/tests/style/libtintora_own_code_only.so --target x86_64-w64-mingw32 --only
         ../platform/windows --only ../tests/windows)
set_tests_properties(style.lint_of_windows PROPERTIES TIMEOUT 3600 COST 79)
