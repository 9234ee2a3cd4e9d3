// Loaded before the program. Gives the X server other memory than the program's, as a server in
// another container may have. At the end, notes in the home folder whether anyone wrote to it.
#include <dlfcn.h>
#include <sys/mman.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xcb/shm.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <vector>

namespace {

constexpr int mark = 0xAB;

struct ForeignMemory {
  std::vector<std::span<std::uint8_t>> blocks;

  void add(void* address, std::size_t size) {
    std::memset(address, mark, size);
    blocks.emplace_back(static_cast<std::uint8_t*>(address), size);
  }
  ~ForeignMemory() {
    const bool untouched = std::ranges::all_of(blocks, [](const auto& block) {
      return std::ranges::all_of(block, [](std::uint8_t byte) { return byte == mark; });
    });
    const std::string note = std::string(std::getenv("HOME")) + "/foreign-memory";
    if (std::FILE* const file = std::fopen(note.c_str(), "w")) {
      std::fputs(blocks.empty() ? "none" : untouched ? "untouched" : "changed", file);
      std::fclose(file);
    }
  }
};
ForeignMemory foreign;

}  // namespace

// The parameters have the names that the library gives them.
extern "C" xcb_void_cookie_t xcb_shm_attach_fd_checked(xcb_connection_t* c, xcb_shm_seg_t shmseg,
                                                       std::int32_t shm_fd,
                                                       std::uint8_t read_only) {
  const auto attach = reinterpret_cast<decltype(&xcb_shm_attach_fd_checked)>(
      dlsym(RTLD_NEXT, "xcb_shm_attach_fd_checked"));
  struct stat facts {};
  fstat(shm_fd, &facts);
  close(shm_fd);
  const int other = memfd_create("foreign", MFD_CLOEXEC);
  const auto size = static_cast<std::size_t>(facts.st_size);
  if (ftruncate(other, facts.st_size) != 0) std::abort();
  foreign.add(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, other, 0), size);
  return attach(c, shmseg, other, read_only);
}

extern "C" xcb_void_cookie_t xcb_shm_attach_checked(xcb_connection_t* c, xcb_shm_seg_t shmseg,
                                                    std::uint32_t shmid, std::uint8_t read_only) {
  const auto attach = reinterpret_cast<decltype(&xcb_shm_attach_checked)>(
      dlsym(RTLD_NEXT, "xcb_shm_attach_checked"));
  shmid_ds facts{};
  shmctl(static_cast<int>(shmid), IPC_STAT, &facts);
  const int other = shmget(IPC_PRIVATE, facts.shm_segsz, IPC_CREAT | 0600);
  foreign.add(shmat(other, nullptr, 0), facts.shm_segsz);
  const auto cookie = attach(c, shmseg, static_cast<std::uint32_t>(other), read_only);
  // After this reply, both have attached the memory.
  std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
  shmctl(other, IPC_RMID, nullptr);
  return cookie;
}
