// Loaded before a sanitized program: libraries stay until its end, so that what leaks in them can
// be told from what leaks in the program.
extern "C" int dlclose(void* /*library*/) {
  return 0;
}
