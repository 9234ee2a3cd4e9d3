// Loaded before a sanitized program. Keeps libraries loaded until the end, so that leaks in them
// can be told from leaks in the program.
extern "C" int dlclose(void* /*library*/) {
  return 0;
}
