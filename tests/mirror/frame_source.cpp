// tintora_frame_source COMMANDS: sends a PipeWire stream of known frames, as told by lines from a
// named pipe. Prints the number of its node.
//   format NAME WIDTH HEIGHT OFFSET PADDING CROP_X CROP_Y CROP_WIDTH CROP_HEIGHT
//                                  the first two lengths need another format or size
//   frame SEED                     another picture
//   lost SEED [TIMES]              another picture, but only once the stream has begun anew, or so
//                                  many times: as if it had got lost before
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
#include <spa/param/video/format-utils.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <deque>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "../desktop/picture.h"

namespace {

using tintora::desktop_test::Area;
using tintora::desktop_test::noise;
using tintora::desktop_test::Picture;
using tintora::desktop_test::solid;

const std::map<std::string, spa_video_format> formats{{"BGRx", SPA_VIDEO_FORMAT_BGRx},
                                                      {"BGRA", SPA_VIDEO_FORMAT_BGRA},
                                                      {"RGBx", SPA_VIDEO_FORMAT_RGBx},
                                                      {"RGBA", SPA_VIDEO_FORMAT_RGBA}};

struct Source {
  pw_main_loop* loop = nullptr;
  pw_stream* stream = nullptr;
  std::string unread;             // the incomplete line of commands
  std::deque<std::string> waits;  // commands that cannot run yet
  bool agreed = false;            // both sides agree on the format of the last command
  std::set<pw_buffer*> suitable;  // the buffers that were made since then
  bool isFirst = true;            // the next frame is the first in its format
  std::string first;              // the command of the first frame, until another command comes
  std::uint64_t turns = 0;        // since the first frame was last sent
  std::string format = "BGRx";
  int width = 64;
  int height = 48;
  int offset = 0;
  int padding = 0;  // bytes at the end of each row
  Area crop;
  int buffers = 4;
  std::uint32_t transform = 0;
  int beginnings = 0;               // how often the stream began to flow
  int lostIn = 0;                   // the one in which a frame got lost
  Picture shown;                    // the last picture
  spa_source* pace = nullptr;       // the timer of frames at a rate
  int toPace = 0;                   // frames that are still to be sent at that rate
  std::vector<std::int64_t> paced;  // when those before were sent
};
Source source;

int stride() {
  return 4 * source.width + source.padding;
}

// Returns the bytes that a buffer needs for a picture.
int frameSize() {
  return source.offset + stride() * source.height;
}

void setTimer(spa_source* timer, std::int64_t nanoseconds) {
  constexpr std::int64_t second = 1'000'000'000;
  timespec interval{nanoseconds / second, nanoseconds % second};
  pw_loop_update_timer(pw_main_loop_get_loop(source.loop), timer, &interval, &interval, false);
}

struct Builder {
  char memory[1024] = {};
  spa_pod_builder pods{};
  Builder() { spa_pod_builder_init(&pods, memory, sizeof memory); }
};

const spa_pod* offeredFormat(spa_pod_builder& builder) {
  spa_pod_frame object{};
  spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
  spa_pod_builder_prop(&builder, SPA_FORMAT_mediaType, 0);
  spa_pod_builder_id(&builder, SPA_MEDIA_TYPE_video);
  spa_pod_builder_prop(&builder, SPA_FORMAT_mediaSubtype, 0);
  spa_pod_builder_id(&builder, SPA_MEDIA_SUBTYPE_raw);
  spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_format, 0);
  spa_pod_builder_id(&builder, formats.at(source.format));
  spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_size, 0);
  spa_pod_builder_rectangle(&builder, static_cast<std::uint32_t>(source.width),
                            static_cast<std::uint32_t>(source.height));
  spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_framerate, 0);
  spa_pod_builder_fraction(&builder, 0, 1);
  return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

const spa_pod* buffers(spa_pod_builder& builder) {
  spa_pod_frame object{};
  spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers);
  const auto number = [&](std::uint32_t key, int value) {
    spa_pod_builder_prop(&builder, key, 0);
    spa_pod_builder_int(&builder, value);
  };
  number(SPA_PARAM_BUFFERS_buffers, source.buffers);
  number(SPA_PARAM_BUFFERS_blocks, 1);
  number(SPA_PARAM_BUFFERS_size, frameSize());
  number(SPA_PARAM_BUFFERS_stride, stride());
  number(SPA_PARAM_BUFFERS_dataType, 1 << SPA_DATA_MemFd);
  return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

const spa_pod* fact(spa_pod_builder& builder, spa_meta_type type, std::size_t size) {
  spa_pod_frame object{};
  spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta);
  spa_pod_builder_prop(&builder, SPA_PARAM_META_type, 0);
  spa_pod_builder_id(&builder, type);
  spa_pod_builder_prop(&builder, SPA_PARAM_META_size, 0);
  spa_pod_builder_int(&builder, static_cast<int>(size));
  return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

void write(std::uint8_t* bytes, const Picture& picture) {
  const bool redFirst = source.format.starts_with("RGB");
  for (int y = 0; y < picture.height; ++y) {
    std::uint8_t* to = bytes + y * stride();
    for (int x = 0; x < picture.width; ++x, to += 4) {
      const std::uint32_t pixel = picture.at(x, y);
      to[redFirst ? 0 : 2] = static_cast<std::uint8_t>(pixel >> 16);
      to[1] = static_cast<std::uint8_t>(pixel >> 8);
      to[redFirst ? 2 : 0] = static_cast<std::uint8_t>(pixel);
      to[3] = static_cast<std::uint8_t>(x * 7 + y);  // has no meaning in any format
    }
  }
}

void set(spa_meta_region* region, const Area& area) {
  if (region == nullptr) return;
  region->region = {
      {area.x, area.y},
      {static_cast<std::uint32_t>(area.width), static_cast<std::uint32_t>(area.height)}};
}

enum class Kind { Whole, Written, Empty, Broken };

void send(pw_buffer* buffer, const Picture& picture, const Area& changed, Kind kind) {
  spa_data& data = buffer->buffer->datas[0];
  auto* const bytes = static_cast<std::uint8_t*>(data.data) + source.offset;
  if (kind == Kind::Whole) write(bytes, picture);
  data.chunk->flags = 0;
  data.chunk->offset = static_cast<std::uint32_t>(source.offset);
  data.chunk->stride = kind == Kind::Broken ? 4 * stride() : stride();
  data.chunk->size = kind == Kind::Empty ? 0 : static_cast<std::uint32_t>(stride() * source.height);
  const auto meta = [&](spa_meta_type type) {
    return static_cast<spa_meta_region*>(
        spa_buffer_find_meta_data(buffer->buffer, type, sizeof(spa_meta_region)));
  };
  set(meta(SPA_META_VideoCrop), source.crop);
  auto* const transform = static_cast<spa_meta_videotransform*>(spa_buffer_find_meta_data(
      buffer->buffer, SPA_META_VideoTransform, sizeof(spa_meta_videotransform)));
  if (transform != nullptr) transform->transform = source.transform;
  spa_meta_region* const damage = meta(SPA_META_VideoDamage);
  set(damage, changed);
  if (damage != nullptr) set(damage + 1, {});
  pw_stream_queue_buffer(source.stream, buffer);
}

void setFormat(std::istringstream& words) {
  const auto agreed = std::tuple(source.format, source.width, source.height);
  words >> source.format >> source.width >> source.height >> source.offset >> source.padding >>
      source.crop.x >> source.crop.y >> source.crop.width >> source.crop.height;
  if (agreed == std::tuple(source.format, source.width, source.height)) return;
  Builder builder;
  const spa_pod* parameters[] = {offeredFormat(builder.pods)};
  source.agreed = false;
  source.suitable.clear();
  pw_stream_update_params(source.stream, parameters, 1);
}

// Replaces a part of the last picture by the same part of another one.
void changePart(const Picture& other, const Area& part) {
  for (int y = part.y; y < part.bottom(); ++y) {
    const auto start = static_cast<std::ptrdiff_t>(y) * other.width + part.x;
    std::copy_n(other.pixels.begin() + start, part.width, source.shown.pixels.begin() + start);
  }
}

void sendFrame(pw_buffer* buffer, const std::string& what, std::istringstream& words) {
  const Area all{0, 0, source.width, source.height};
  Area part = all;
  std::uint32_t number = 0;
  if (what == "part" || what == "lie") words >> part.x >> part.y >> part.width >> part.height;
  words >> number;
  if (what == "empty") return send(buffer, {}, all, Kind::Empty);
  if (what == "broken") return send(buffer, {}, all, Kind::Broken);
  const Picture picture = what == "solid" ? solid(source.width, source.height, number)
                                          : noise(source.width, source.height, number);
  if (what == "lie") return send(buffer, picture, part, Kind::Whole);
  if (what == "part") {
    changePart(picture, part);
  } else {
    source.shown = picture;
  }
  send(buffer, source.shown, part, Kind::Whole);
}

// Returns a buffer for a picture, or null. While both sides agree on a new format, buffers of the
// old one may still come: those go back without pixels.
pw_buffer* suitableBuffer() {
  pw_buffer* const buffer = pw_stream_dequeue_buffer(source.stream);
  if (buffer == nullptr || source.suitable.contains(buffer)) return buffer;
  send(buffer, {}, {}, Kind::Empty);
  return nullptr;
}

int timesLost(const std::string& line) {
  std::istringstream words(line);
  std::string what;
  std::uint32_t seed = 0;
  int times = 1;
  words >> what >> seed;
  if (!words.eof()) words >> times;
  return times;
}

// Runs a command. Returns false if it must wait: for a reader, for agreement on the format, or for
// a buffer.
bool run(const std::string& line) {
  std::istringstream words(line);
  std::string what;
  words >> what;
  if (what == "format") {
    setFormat(words);
    return true;
  }
  if (what == "transform" || what == "buffers") {
    if (what == "transform") words >> source.transform;
    if (what == "buffers") words >> source.buffers;
    return true;
  }
  if (what == "pace") {
    int rate = 1;
    words >> rate >> source.toPace;
    source.paced.clear();
    setTimer(source.pace, 1'000'000'000 / rate);
    return true;
  }
  const bool flows = pw_stream_get_state(source.stream, nullptr) == PW_STREAM_STATE_STREAMING;
  if (!flows || !source.agreed) return false;
  if (what == "lost") {
    if (source.lostIn == 0) source.lostIn = source.beginnings;
    if (source.beginnings < source.lostIn + timesLost(line)) return false;
  }
  pw_buffer* const buffer = suitableBuffer();
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
  pw_buffer* const buffer = suitableBuffer();
  if (buffer == nullptr) return;
  constexpr std::size_t greys = 200;
  const std::size_t grey = 20 + source.paced.size() % greys;
  auto* const bytes = static_cast<std::uint8_t*>(buffer->buffer->datas[0].data) + source.offset;
  std::memset(bytes, static_cast<int>(grey), static_cast<std::size_t>(stride() * source.height));
  source.paced.push_back(std::chrono::steady_clock::now().time_since_epoch().count());
  send(buffer, {}, {0, 0, source.width, source.height}, Kind::Written);
}

bool isWanted(const spa_pod& parameter) {
  std::uint32_t type = 0;
  std::uint32_t subtype = 0;
  spa_video_info_raw info{};
  return spa_format_parse(&parameter, &type, &subtype) >= 0 &&
         spa_format_video_raw_parse(&parameter, &info) >= 0 &&
         info.format == formats.at(source.format) &&
         info.size.width == static_cast<std::uint32_t>(source.width) &&
         info.size.height == static_cast<std::uint32_t>(source.height);
}

void onParameterChanged(void* /*data*/, std::uint32_t id, const spa_pod* parameter) {
  if (id != SPA_PARAM_Format || parameter == nullptr) return;
  source.agreed = isWanted(*parameter);
  Builder builder;
  const spa_pod* parameters[] = {
      buffers(builder.pods), fact(builder.pods, SPA_META_VideoCrop, sizeof(spa_meta_region)),
      fact(builder.pods, SPA_META_VideoTransform, sizeof(spa_meta_videotransform)),
      fact(builder.pods, SPA_META_VideoDamage, 8 * sizeof(spa_meta_region))};
  pw_stream_update_params(source.stream, parameters, 4);
}

// Gives a buffer its memory, as desktops do: PipeWire itself may still take the size of the last
// format, and then makes no other buffers.
void onBufferAdded(void* /*data*/, pw_buffer* buffer) {
  spa_data& data = buffer->buffer->datas[0];
  data.type = SPA_DATA_MemFd;
  data.flags = SPA_DATA_FLAG_READWRITE;
  data.mapoffset = 0;
  data.maxsize = static_cast<std::uint32_t>(frameSize());
  const int file = memfd_create("frame", MFD_CLOEXEC);
  data.fd = file;
  void* const bytes = ftruncate(file, data.maxsize) == 0
                          ? mmap(nullptr, data.maxsize, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0)
                          : MAP_FAILED;
  data.data = bytes == MAP_FAILED ? nullptr : bytes;
  if (source.agreed && data.data != nullptr) source.suitable.insert(buffer);
}

void onBufferRemoved(void* /*data*/, pw_buffer* buffer) {
  source.suitable.erase(buffer);
  const spa_data& data = buffer->buffer->datas[0];
  if (data.data != nullptr) munmap(data.data, data.maxsize);
  close(static_cast<int>(data.fd));
}

void onStateChanged(void* /*data*/, pw_stream_state /*before*/, pw_stream_state now,
                    const char* error) {
  if (now == PW_STREAM_STATE_STREAMING) ++source.beginnings;
  if (now == PW_STREAM_STATE_PAUSED && pw_stream_get_node_id(source.stream) != SPA_ID_INVALID) {
    std::printf("node %u\n", pw_stream_get_node_id(source.stream));
    std::fflush(stdout);
  }
  std::fprintf(stderr, "%s %s\n", pw_stream_state_as_string(now), error == nullptr ? "" : error);
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  pw_init(nullptr, nullptr);
  source.loop = pw_main_loop_new(nullptr);
  pw_loop* const loop = pw_main_loop_get_loop(source.loop);
  pw_stream_events events{};
  events.version = PW_VERSION_STREAM_EVENTS;
  events.param_changed = &onParameterChanged;
  events.add_buffer = &onBufferAdded;
  events.remove_buffer = &onBufferRemoved;
  events.state_changed = &onStateChanged;
  source.stream = pw_stream_new_simple(
      loop, "frames",
      pw_properties_new(PW_KEY_MEDIA_CLASS, "Video/Source", PW_KEY_NODE_NAME, "frames", nullptr),
      &events, nullptr);
  Builder builder;
  const spa_pod* parameters[] = {offeredFormat(builder.pods)};
  pw_stream_connect(
      source.stream, PW_DIRECTION_OUTPUT, PW_ID_ANY,
      static_cast<pw_stream_flags>(PW_STREAM_FLAG_DRIVER | PW_STREAM_FLAG_ALLOC_BUFFERS),
      parameters, 1);
  // Opened for writing too, so that reading does not end when the test closes its side.
  const int commands = open(arguments[1], O_RDWR | O_CLOEXEC | O_NONBLOCK);
  pw_loop_add_io(loop, commands, SPA_IO_IN, true, &onCommands, nullptr);
  spa_source* const timer = pw_loop_add_timer(loop, &runWaiting, nullptr);
  setTimer(timer, 4'000'000);
  source.pace = pw_loop_add_timer(loop, &sendPaced, nullptr);
  return pw_main_loop_run(source.loop);
}
