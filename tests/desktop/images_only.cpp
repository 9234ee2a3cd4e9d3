// Loaded before the program. The X server seems to share memory for images but not for pixmaps, as
// servers that draw with graphics cards do. Notes in the home folder that the program asked.
#include <dlfcn.h>
#include <xcb/shm.h>

#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" xcb_shm_query_version_reply_t* xcb_shm_query_version_reply(
    xcb_connection_t* connection, xcb_shm_query_version_cookie_t cookie,
    xcb_generic_error_t** error) {
  const auto ask = reinterpret_cast<decltype(&xcb_shm_query_version_reply)>(
      dlsym(RTLD_NEXT, "xcb_shm_query_version_reply"));
  xcb_shm_query_version_reply_t* const reply = ask(connection, cookie, error);
  if (reply != nullptr) reply->shared_pixmaps = 0;
  const std::string note = std::string(std::getenv("HOME")) + "/images-only";
  if (std::FILE* const file = std::fopen(note.c_str(), "w")) std::fclose(file);
  return reply;
}
