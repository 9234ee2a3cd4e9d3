# Runs the tests of all builds together, and compares the two desktops' programs.
subdirs(linux linux-sanitize fuzz windows arm64)

add_test(views.same_on_both_desktops linux/tests/desktop/tintora_views_comparison linux/tintora)
set_tests_properties(
  views.same_on_both_desktops
  PROPERTIES ENVIRONMENT TINTORA_OTHER_PICTURES=windows/tests/pictures FIXTURES_REQUIRED
             windows_pictures TIMEOUT 120)
