#include "source_stream.h"

#include <spa/param/video/format-utils.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <tuple>

namespace tintora::mirror_test {

using desktop_test::Area;
using desktop_test::Picture;

namespace {

const std::map<std::string, spa_video_format> formats{{"BGRx", SPA_VIDEO_FORMAT_BGRx},
                                                      {"BGRA", SPA_VIDEO_FORMAT_BGRA},
                                                      {"RGBx", SPA_VIDEO_FORMAT_RGBx},
                                                      {"RGBA", SPA_VIDEO_FORMAT_RGBA}};

struct Builder {
  char memory[1024] = {};
  spa_pod_builder pods{};
  Builder() { spa_pod_builder_init(&pods, memory, sizeof memory); }
};

const spa_pod* fact(spa_pod_builder& builder, spa_meta_type type, std::size_t size) {
  spa_pod_frame object{};
  spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta);
  spa_pod_builder_prop(&builder, SPA_PARAM_META_type, 0);
  spa_pod_builder_id(&builder, type);
  spa_pod_builder_prop(&builder, SPA_PARAM_META_size, 0);
  spa_pod_builder_int(&builder, static_cast<int>(size));
  return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

void set(spa_meta_region* region, const Area& area) {
  if (region == nullptr) return;
  region->region = {
      {area.x, area.y},
      {static_cast<std::uint32_t>(area.width), static_cast<std::uint32_t>(area.height)}};
}

}  // namespace

SourceStream::SourceStream(pw_main_loop* loop) {
  events_.version = PW_VERSION_STREAM_EVENTS;
  events_.param_changed = [](void* self, std::uint32_t id, const spa_pod* parameter) {
    static_cast<SourceStream*>(self)->onParameterChanged(id, parameter);
  };
  events_.add_buffer = [](void* self, pw_buffer* buffer) {
    static_cast<SourceStream*>(self)->onBufferAdded(buffer);
  };
  events_.remove_buffer = [](void* self, pw_buffer* buffer) {
    static_cast<SourceStream*>(self)->onBufferRemoved(buffer);
  };
  events_.state_changed = [](void* self, pw_stream_state /*before*/, pw_stream_state now,
                             const char* error) {
    static_cast<SourceStream*>(self)->onStateChanged(now, error);
  };
  stream_ = pw_stream_new_simple(
      pw_main_loop_get_loop(loop), "frames",
      pw_properties_new(PW_KEY_MEDIA_CLASS, "Video/Source", PW_KEY_NODE_NAME, "frames", nullptr),
      &events_, this);
  Builder builder;
  const spa_pod* parameters[] = {offeredFormat(builder.pods)};
  pw_stream_connect(
      stream_, PW_DIRECTION_OUTPUT, PW_ID_ANY,
      static_cast<pw_stream_flags>(PW_STREAM_FLAG_DRIVER | PW_STREAM_FLAG_ALLOC_BUFFERS),
      parameters, 1);
}

void SourceStream::setLayout(const FrameLayout& layout) {
  const auto formatOf = [](const FrameLayout& of) {
    return std::tuple(of.format, of.width, of.height);
  };
  const bool isAgreed = formatOf(layout_) == formatOf(layout);
  layout_ = layout;
  if (isAgreed) return;
  Builder builder;
  const spa_pod* parameters[] = {offeredFormat(builder.pods)};
  agreed_ = false;
  suitable_.clear();
  pw_stream_update_params(stream_, parameters, 1);
}

bool SourceStream::flows() const {
  return agreed_ && pw_stream_get_state(stream_, nullptr) == PW_STREAM_STATE_STREAMING;
}

pw_buffer* SourceStream::suitableBuffer() {
  pw_buffer* const buffer = pw_stream_dequeue_buffer(stream_);
  if (buffer == nullptr || suitable_.contains(buffer)) return buffer;
  send(buffer, {}, {}, Kind::Empty);
  return nullptr;
}

std::uint8_t* SourceStream::pixelsOf(const pw_buffer* buffer) const {
  return static_cast<std::uint8_t*>(buffer->buffer->datas[0].data) + layout_.offset;
}

void SourceStream::send(pw_buffer* buffer, const Picture& picture, const Area& changed, Kind kind) {
  spa_data& data = buffer->buffer->datas[0];
  if (kind == Kind::Whole) write(pixelsOf(buffer), picture);
  data.chunk->flags = 0;
  data.chunk->offset = static_cast<std::uint32_t>(layout_.offset);
  data.chunk->stride = kind == Kind::Broken ? 4 * layout_.stride() : layout_.stride();
  data.chunk->size =
      kind == Kind::Empty ? 0 : static_cast<std::uint32_t>(layout_.stride() * layout_.height);
  const auto meta = [&](spa_meta_type type) {
    return static_cast<spa_meta_region*>(
        spa_buffer_find_meta_data(buffer->buffer, type, sizeof(spa_meta_region)));
  };
  set(meta(SPA_META_VideoCrop), layout_.crop);
  auto* const turned = static_cast<spa_meta_videotransform*>(spa_buffer_find_meta_data(
      buffer->buffer, SPA_META_VideoTransform, sizeof(spa_meta_videotransform)));
  if (turned != nullptr) turned->transform = transform;
  spa_meta_region* const damage = meta(SPA_META_VideoDamage);
  set(damage, changed);
  if (damage != nullptr) set(damage + 1, {});
  pw_stream_queue_buffer(stream_, buffer);
}

const spa_pod* SourceStream::offeredFormat(spa_pod_builder& builder) const {
  spa_pod_frame object{};
  spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
  spa_pod_builder_prop(&builder, SPA_FORMAT_mediaType, 0);
  spa_pod_builder_id(&builder, SPA_MEDIA_TYPE_video);
  spa_pod_builder_prop(&builder, SPA_FORMAT_mediaSubtype, 0);
  spa_pod_builder_id(&builder, SPA_MEDIA_SUBTYPE_raw);
  spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_format, 0);
  spa_pod_builder_id(&builder, formats.at(layout_.format));
  spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_size, 0);
  spa_pod_builder_rectangle(&builder, static_cast<std::uint32_t>(layout_.width),
                            static_cast<std::uint32_t>(layout_.height));
  spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_framerate, 0);
  spa_pod_builder_fraction(&builder, 0, 1);
  return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

const spa_pod* SourceStream::offeredBuffers(spa_pod_builder& builder) const {
  spa_pod_frame object{};
  spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers);
  const auto number = [&](std::uint32_t key, int value) {
    spa_pod_builder_prop(&builder, key, 0);
    spa_pod_builder_int(&builder, value);
  };
  number(SPA_PARAM_BUFFERS_buffers, buffers);
  number(SPA_PARAM_BUFFERS_blocks, 1);
  number(SPA_PARAM_BUFFERS_size, layout_.size());
  number(SPA_PARAM_BUFFERS_stride, layout_.stride());
  number(SPA_PARAM_BUFFERS_dataType, 1 << SPA_DATA_MemFd);
  return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

bool SourceStream::isWanted(const spa_pod& parameter) const {
  std::uint32_t type = 0;
  std::uint32_t subtype = 0;
  spa_video_info_raw info{};
  return spa_format_parse(&parameter, &type, &subtype) >= 0 &&
         spa_format_video_raw_parse(&parameter, &info) >= 0 &&
         info.format == formats.at(layout_.format) &&
         info.size.width == static_cast<std::uint32_t>(layout_.width) &&
         info.size.height == static_cast<std::uint32_t>(layout_.height);
}

void SourceStream::write(std::uint8_t* bytes, const Picture& picture) const {
  const bool redFirst = layout_.format.starts_with("RGB");
  for (int y = 0; y < picture.height; ++y) {
    std::uint8_t* to = bytes + y * layout_.stride();
    for (int x = 0; x < picture.width; ++x, to += 4) {
      const std::uint32_t pixel = picture.at(x, y);
      to[redFirst ? 0 : 2] = static_cast<std::uint8_t>(pixel >> 16);
      to[1] = static_cast<std::uint8_t>(pixel >> 8);
      to[redFirst ? 2 : 0] = static_cast<std::uint8_t>(pixel);
      to[3] = static_cast<std::uint8_t>(x * 7 + y);  // has no meaning in any format
    }
  }
}

void SourceStream::onParameterChanged(std::uint32_t id, const spa_pod* parameter) {
  if (id != SPA_PARAM_Format || parameter == nullptr) return;
  agreed_ = isWanted(*parameter);
  Builder builder;
  const spa_pod* parameters[] = {
      offeredBuffers(builder.pods), fact(builder.pods, SPA_META_VideoCrop, sizeof(spa_meta_region)),
      fact(builder.pods, SPA_META_VideoTransform, sizeof(spa_meta_videotransform)),
      fact(builder.pods, SPA_META_VideoDamage, 8 * sizeof(spa_meta_region))};
  pw_stream_update_params(stream_, parameters, 4);
}

// Gives a buffer its memory, as desktops do: PipeWire itself may still take the size of the last
// format, and then makes no other buffers.
void SourceStream::onBufferAdded(pw_buffer* buffer) {
  spa_data& data = buffer->buffer->datas[0];
  data.type = SPA_DATA_MemFd;
  data.flags = SPA_DATA_FLAG_READWRITE;
  data.mapoffset = 0;
  data.maxsize = static_cast<std::uint32_t>(layout_.size());
  const int file = memfd_create("frame", MFD_CLOEXEC);
  data.fd = file;
  void* const bytes = ftruncate(file, data.maxsize) == 0
                          ? mmap(nullptr, data.maxsize, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0)
                          : MAP_FAILED;
  data.data = bytes == MAP_FAILED ? nullptr : bytes;
  if (agreed_ && data.data != nullptr) suitable_.insert(buffer);
}

void SourceStream::onBufferRemoved(pw_buffer* buffer) {
  suitable_.erase(buffer);
  const spa_data& data = buffer->buffer->datas[0];
  if (data.data != nullptr) munmap(data.data, data.maxsize);
  close(static_cast<int>(data.fd));
}

void SourceStream::onStateChanged(pw_stream_state now, const char* error) {
  if (now == PW_STREAM_STATE_STREAMING) ++beginnings_;
  if (now == PW_STREAM_STATE_PAUSED && pw_stream_get_node_id(stream_) != SPA_ID_INVALID) {
    std::printf("node %u\n", pw_stream_get_node_id(stream_));
    std::fflush(stdout);
  }
  std::fprintf(stderr, "%s %s\n", pw_stream_state_as_string(now), error == nullptr ? "" : error);
}

}  // namespace tintora::mirror_test
