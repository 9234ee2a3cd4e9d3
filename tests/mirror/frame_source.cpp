// tintora_frame_source COMMANDS: sends a PipeWire stream of known frames, as told by lines from a
// named pipe. Prints the number of its node.
//   format NAME WIDTH HEIGHT OFFSET PADDING CROP_X CROP_Y CROP_WIDTH CROP_HEIGHT
//                                  the first two lengths need another format or size
//   frame SEED                     another picture
//   lost TIMES SEED                another picture, but only once the stream has begun anew so many
//                                  times: as if it had got lost before
//   part X Y WIDTH HEIGHT SEED     another picture in this part, which alone is reported as changed
//   lie X Y WIDTH HEIGHT SEED      another picture everywhere; reports only this part as changed
//   solid PIXEL                    a picture of one colour
//   empty                          a buffer without pixels
//   broken                         a buffer whose rows lie outside its memory
//   transform NUMBER               says from now on that pictures are turned or flipped, by
//                                  PipeWire's number
//   buffers COUNT                  has that many from the next format on
//   pace RATE COUNT                sends COUNT greys at RATE a second, each brighter than the last
//                                  or the first again; then prints "sent" and the time of each in
//                                  nanoseconds
#include <fcntl.h>
#include <pipewire/pipewire.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <deque>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "source_stream.h"

namespace {

using tintora::desktop_test::Area;
using tintora::desktop_test::noise;
using tintora::desktop_test::Picture;
using tintora::desktop_test::replacePart;
using tintora::desktop_test::solid;
using tintora::mirror_test::FrameLayout;
using tintora::mirror_test::SourceStream;
using Kind = SourceStream::Kind;

struct Source {
  pw_main_loop* loop = nullptr;
  std::unique_ptr<SourceStream> stream;
  std::string unread;               // the incomplete line of commands
  std::deque<std::string> waits;    // commands that cannot run yet
  bool isFirst = true;              // the next frame is the first in its format
  std::string first;                // the command of the first frame, until another command comes
  std::uint64_t turns = 0;          // since the first frame was last sent
  int lostIn = 0;                   // the beginning of the stream in which a frame got lost
  Picture shown;                    // the last picture
  spa_source* pace = nullptr;       // the timer of frames at a rate
  int toPace = 0;                   // frames that are still to be sent at that rate
  std::vector<std::int64_t> paced;  // when those before were sent
};
Source source;

void setTimer(spa_source* timer, std::int64_t nanoseconds) {
  constexpr std::int64_t second = 1'000'000'000;
  timespec interval{nanoseconds / second, nanoseconds % second};
  pw_loop_update_timer(pw_main_loop_get_loop(source.loop), timer, &interval, &interval, false);
}

FrameLayout readLayout(std::istringstream& words) {
  FrameLayout layout;
  words >> layout.format >> layout.width >> layout.height >> layout.offset >> layout.padding >>
      layout.crop.x >> layout.crop.y >> layout.crop.width >> layout.crop.height;
  return layout;
}

void sendFrame(pw_buffer* buffer, const std::string& what, std::istringstream& words) {
  SourceStream& stream = *source.stream;
  const int width = stream.layout().width;
  const int height = stream.layout().height;
  const Area all{0, 0, width, height};
  Area part = all;
  std::uint32_t number = 0;
  if (what == "part" || what == "lie") words >> part.x >> part.y >> part.width >> part.height;
  words >> number;
  if (what == "empty") return stream.send(buffer, {}, all, Kind::Empty);
  if (what == "broken") return stream.send(buffer, {}, all, Kind::Broken);
  const Picture picture =
      what == "solid" ? solid(width, height, number) : noise(width, height, number);
  if (what == "lie") return stream.send(buffer, picture, part, Kind::Whole);
  if (what == "part") {
    replacePart(source.shown, picture, part);
  } else {
    source.shown = picture;
  }
  stream.send(buffer, source.shown, part, Kind::Whole);
}

// Runs a command. Returns false if it must wait: for a reader, for agreement on the format, or for
// a buffer.
bool run(const std::string& line) {
  std::istringstream words(line);
  std::string what;
  words >> what;
  if (what == "format") {
    source.stream->setLayout(readLayout(words));
    return true;
  }
  if (what == "transform" || what == "buffers") {
    if (what == "transform") words >> source.stream->transform;
    if (what == "buffers") words >> source.stream->buffers;
    return true;
  }
  if (what == "pace") {
    int rate = 1;
    words >> rate >> source.toPace;
    source.paced.clear();
    setTimer(source.pace, 1'000'000'000 / rate);
    return true;
  }
  if (!source.stream->flows()) return false;
  if (what == "lost") {
    int times = 1;
    words >> times;
    const int beginnings = source.stream->beginnings();
    if (source.lostIn == 0) source.lostIn = beginnings;
    if (beginnings < source.lostIn + times) return false;
  }
  pw_buffer* const buffer = source.stream->suitableBuffer();
  if (buffer == nullptr) return false;
  sendFrame(buffer, what, words);
  return true;
}

// Sends the first frame again until another command comes. A frame may get lost while both sides
// agree on a new format. Real desktops send more frames anyway.
void repeatFirst(std::uint64_t turns) {
  constexpr std::uint64_t turnsBetween = 25;
  source.turns += turns;
  if (source.first.empty() || source.turns < turnsBetween) return;
  source.turns = 0;
  run(source.first);
}

void runWaiting(void* /*data*/, std::uint64_t turns) {
  while (!source.waits.empty()) {
    const std::string line = source.waits.front();
    if (!run(line)) return;
    source.waits.pop_front();
    // The others send frames.
    const bool sets =
        line.starts_with("format") || line.starts_with("transform") || line.starts_with("buffers");
    source.first = source.isFirst && !sets ? line : "";
    source.isFirst = sets;
  }
  repeatFirst(turns);
}

void onCommands(void* /*data*/, int descriptor, std::uint32_t /*mask*/) {
  char text[512];
  const ssize_t length = read(descriptor, text, sizeof text);
  if (length > 0) source.unread.append(text, static_cast<std::size_t>(length));
  for (std::size_t end = 0; (end = source.unread.find('\n')) != std::string::npos;) {
    source.waits.push_back(source.unread.substr(0, end));
    source.unread.erase(0, end + 1);
  }
}

void printPaced() {
  std::printf("sent");
  for (const std::int64_t time : source.paced) std::printf(" %lld", static_cast<long long>(time));
  std::printf("\n");
  std::fflush(stdout);
}

// Sends the next grey. A turn for which there is no buffer is left out.
void sendPaced(void* /*data*/, std::uint64_t /*turns*/) {
  if (source.toPace == 0) {
    setTimer(source.pace, 0);
    return printPaced();
  }
  --source.toPace;
  SourceStream& stream = *source.stream;
  pw_buffer* const buffer = stream.suitableBuffer();
  if (buffer == nullptr) return;
  constexpr std::size_t greys = 200;
  const std::size_t grey = 20 + source.paced.size() % greys;
  const FrameLayout& layout = stream.layout();
  std::memset(stream.pixelsOf(buffer), static_cast<int>(grey),
              static_cast<std::size_t>(layout.stride() * layout.height));
  source.paced.push_back(std::chrono::steady_clock::now().time_since_epoch().count());
  stream.send(buffer, {}, {0, 0, layout.width, layout.height}, Kind::Written);
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  pw_init(nullptr, nullptr);
  source.loop = pw_main_loop_new(nullptr);
  pw_loop* const loop = pw_main_loop_get_loop(source.loop);
  source.stream = std::make_unique<SourceStream>(source.loop);
  // Opened for writing too, so that reading does not end when the test closes its side.
  const int commands = open(arguments[1], O_RDWR | O_CLOEXEC | O_NONBLOCK);
  pw_loop_add_io(loop, commands, SPA_IO_IN, true, &onCommands, nullptr);
  spa_source* const timer = pw_loop_add_timer(loop, &runWaiting, nullptr);
  setTimer(timer, 4'000'000);
  source.pace = pw_loop_add_timer(loop, &sendPaced, nullptr);
  return pw_main_loop_run(source.loop);
}
