#include "platform/linux/stream_parameters.h"

#include <spa/param/video/format-utils.h>

#include <array>
#include <cstddef>

namespace tintora::platform {

namespace {

struct PixelFormat {
  spa_video_format format;
  bool redFirst;
};
constexpr std::array<PixelFormat, 4> pixelFormats{{{SPA_VIDEO_FORMAT_BGRx, false},
                                                   {SPA_VIDEO_FORMAT_BGRA, false},
                                                   {SPA_VIDEO_FORMAT_RGBx, true},
                                                   {SPA_VIDEO_FORMAT_RGBA, true}}};

// What a source should report with each frame, and for how many areas.
struct FrameFact {
  spa_meta_type type;
  std::size_t size;
  std::size_t most;
};
constexpr std::array<FrameFact, 4> frameFacts{
    {{SPA_META_Header, sizeof(spa_meta_header), 1},
     {SPA_META_VideoCrop, sizeof(spa_meta_region), 1},
     {SPA_META_VideoTransform, sizeof(spa_meta_videotransform), 1},
     {SPA_META_VideoDamage, sizeof(spa_meta_region), 32}}};

// Holds the memory in which parameters are built one after another.
struct Builder {
  static constexpr std::uint32_t room = 2048;
  std::array<std::byte, room> memory{};
  spa_pod_builder pods{};
  Builder() { spa_pod_builder_init(&pods, memory.data(), room); }
};

const spa_pod* offeredFormats(spa_pod_builder& builder) {
  spa_pod_frame object{};
  spa_pod_frame choice{};
  spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
  spa_pod_builder_prop(&builder, SPA_FORMAT_mediaType, 0);
  spa_pod_builder_id(&builder, SPA_MEDIA_TYPE_video);
  spa_pod_builder_prop(&builder, SPA_FORMAT_mediaSubtype, 0);
  spa_pod_builder_id(&builder, SPA_MEDIA_SUBTYPE_raw);

  spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_format, 0);
  spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Enum, 0);
  spa_pod_builder_id(&builder, pixelFormats[0].format);  // the preferred one, then all
  for (const PixelFormat& format : pixelFormats) spa_pod_builder_id(&builder, format.format);
  spa_pod_builder_pop(&builder, &choice);

  // In this order: the preferred value, the least, the most.
  spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_size, 0);
  spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Range, 0);
  spa_pod_builder_rectangle(&builder, 1920, 1080);
  spa_pod_builder_rectangle(&builder, 1, 1);
  spa_pod_builder_rectangle(&builder, largestFrame, largestFrame);
  spa_pod_builder_pop(&builder, &choice);

  spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_framerate, 0);
  spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Range, 0);
  spa_pod_builder_fraction(&builder, 60, 1);
  spa_pod_builder_fraction(&builder, 0, 1);
  spa_pod_builder_fraction(&builder, 1000, 1);
  spa_pod_builder_pop(&builder, &choice);
  return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

const spa_pod* sharedMemory(spa_pod_builder& builder) {
  spa_pod_frame object{};
  spa_pod_frame choice{};
  spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers);
  spa_pod_builder_prop(&builder, SPA_PARAM_BUFFERS_dataType, 0);
  spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Flags, 0);
  spa_pod_builder_int(&builder, (1 << SPA_DATA_MemPtr) | (1 << SPA_DATA_MemFd));
  spa_pod_builder_pop(&builder, &choice);
  return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

const spa_pod* asked(spa_pod_builder& builder, const FrameFact& fact) {
  const auto size = static_cast<std::int32_t>(fact.size);
  const auto most = static_cast<std::int32_t>(fact.size * fact.most);
  spa_pod_frame object{};
  spa_pod_frame choice{};
  spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta);
  spa_pod_builder_prop(&builder, SPA_PARAM_META_type, 0);
  spa_pod_builder_id(&builder, fact.type);
  spa_pod_builder_prop(&builder, SPA_PARAM_META_size, 0);
  spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Range, 0);
  spa_pod_builder_int(&builder, most);
  spa_pod_builder_int(&builder, size);
  spa_pod_builder_int(&builder, most);
  spa_pod_builder_pop(&builder, &choice);
  return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

}  // namespace

std::optional<FrameFormat> readFormat(const spa_pod& parameter) {
  std::uint32_t type = 0;
  std::uint32_t subtype = 0;
  if (spa_format_parse(&parameter, &type, &subtype) < 0 || type != SPA_MEDIA_TYPE_video ||
      subtype != SPA_MEDIA_SUBTYPE_raw) {
    return std::nullopt;
  }
  spa_video_info_raw info{};
  if (spa_format_video_raw_parse(&parameter, &info) < 0) return std::nullopt;
  const auto& [width, height] = info.size;
  if (width == 0 || height == 0 || width > largestFrame || height > largestFrame) {
    return std::nullopt;
  }
  for (const PixelFormat& known : pixelFormats) {
    if (known.format != info.format) continue;
    return FrameFormat{QSize(static_cast<int>(width), static_cast<int>(height)), known.redFirst};
  }
  return std::nullopt;
}

bool connectStream(pw_stream* stream, std::uint32_t node) {
  Builder builder;
  std::array<const spa_pod*, 1> parameters{offeredFormats(builder.pods)};
  const auto flags = static_cast<pw_stream_flags>(
      PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS);
  return pw_stream_connect(stream, PW_DIRECTION_INPUT, node, flags, parameters.data(),
                           parameters.size()) >= 0;
}

void acceptBuffers(pw_stream* stream) {
  Builder builder;
  std::array<const spa_pod*, 1 + frameFacts.size()> parameters{sharedMemory(builder.pods)};
  for (std::size_t i = 0; i < frameFacts.size(); ++i) {
    parameters[i + 1] = asked(builder.pods, frameFacts[i]);
  }
  pw_stream_update_params(stream, parameters.data(), parameters.size());
}

}  // namespace tintora::platform
