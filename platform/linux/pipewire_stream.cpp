#include "platform/linux/pipewire_stream.h"

#include <pipewire/pipewire.h>
#include <spa/param/video/format-utils.h>
#include <unistd.h>

#include <QRect>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/linux/buffer_transform.h"
#include "platform/linux/frame_exchange.h"
#include "platform/linux/stream_parameters.h"

namespace tintora::platform {

namespace {

struct Stream {
  StreamEvents events{};
  std::uint32_t node = 0;
  pw_loop* loop = nullptr;
  pw_context* context = nullptr;
  pw_core* core = nullptr;
  pw_registry* registry = nullptr;
  pw_stream* stream = nullptr;
  spa_hook coreHook{};
  spa_hook registryHook{};
  spa_hook streamHook{};
  spa_source* arrival = nullptr;  // wakes the event loop when a frame has come
  std::unique_ptr<QSocketNotifier> notifier;
  bool connected = false;
  bool active = true;
  bool ending = false;
  int usableBuffers = 0;
  bool isReplacedSoon = false;
  int replacements = 0;  // since a frame came
};
Stream stream;

// What PipeWire's thread uses too, under the lock.
struct Reception {
  FrameFormat format;
  QRect crop;  // of the last frame
  BufferTransform transform;
  FrameExchange frames;
};
Reception reception;
std::mutex receptionLock;

QRect frameArea() {
  return {QPoint(), reception.format.size};
}

// Stops the stream later, because PipeWire still runs the callback that reports the end.
void endLater(StreamEnd end) {
  if (stream.ending) return;
  stream.ending = true;
  QTimer::singleShot(0, stream.notifier.get(), [end] {
    const auto ended = stream.events.ended;
    stopStream();
    ended(end);
  });
}

QRect areaOf(const spa_meta_region& meta) {
  const auto& [position, size] = meta.region;
  const auto bounded = [](std::uint32_t length) {
    return static_cast<int>(std::min(length, largestFrame));
  };
  if (position.x < 0 || position.y < 0) return {};
  return QRect(position.x, position.y, bounded(size.width), bounded(size.height)) & frameArea();
}

// Returns the part of the frame that is the picture: for a window, less than the frame.
QRect cropOf(const spa_buffer& buffer) {
  const auto* const meta = static_cast<const spa_meta_region*>(
      spa_buffer_find_meta_data(&buffer, SPA_META_VideoCrop, sizeof(spa_meta_region)));
  const QRect crop = meta == nullptr ? QRect() : areaOf(*meta);
  return crop.isEmpty() ? frameArea() : crop;
}

// Returns where the frame differs from the one before. If the source does not say, that is
// everywhere.
QRegion damageOf(const spa_buffer& buffer) {
  const spa_meta* const meta = spa_buffer_find_meta(&buffer, SPA_META_VideoDamage);
  if (meta == nullptr) return frameArea();
  QRegion damage;
  const auto* const regions = static_cast<const spa_meta_region*>(meta->data);
  const std::size_t count = meta->size / sizeof(spa_meta_region);
  for (std::size_t i = 0; i < count && spa_meta_region_is_valid(&regions[i]); ++i) {
    damage += areaOf(regions[i]);
  }
  return damage.isEmpty() ? frameArea() : damage;
}

// Returns the bytes from one row to the next if all rows lie within the memory.
std::optional<std::ptrdiff_t> strideOf(const spa_data& data) {
  const auto rowBytes = std::int64_t{4} * reception.format.size.width();
  const std::int64_t stride = data.chunk->stride != 0 ? data.chunk->stride : rowBytes;
  const std::int64_t first = data.chunk->offset;
  const std::int64_t last = first + stride * (reception.format.size.height() - 1);
  const bool fits = std::min(first, last) >= 0 && std::max(first, last) + rowBytes <= data.maxsize;
  if (!fits) return std::nullopt;
  return stride;
}

bool isMarkedCorrupted(const spa_buffer& buffer) {
  const auto* const header = static_cast<const spa_meta_header*>(
      spa_buffer_find_meta_data(&buffer, SPA_META_Header, sizeof(spa_meta_header)));
  return header != nullptr && (header->flags & SPA_META_HEADER_FLAG_CORRUPTED) != 0;
}

// Returns true if the buffer has pixels. Some sources send buffers without any, for instance when
// only the pointer has moved.
bool hasPixels(const spa_buffer& buffer) {
  if (reception.format.size.isEmpty()) return false;
  const spa_data& data = buffer.datas[0];
  constexpr auto corrupted = static_cast<std::int32_t>(SPA_CHUNK_FLAG_CORRUPTED);
  return data.chunk->size != 0 && (data.chunk->flags & corrupted) == 0 &&
         !isMarkedCorrupted(buffer) && strideOf(data).has_value();
}

BufferTransform transformOf(const spa_buffer& buffer) {
  const auto* const meta = static_cast<const spa_meta_videotransform*>(
      spa_buffer_find_meta_data(&buffer, SPA_META_VideoTransform, sizeof(spa_meta_videotransform)));
  return bufferTransform(meta == nullptr ? 0 : meta->transform);
}

// Copies the picture in a buffer. Returns false if there is no memory for it.
bool receive(const spa_buffer& buffer) {
  const spa_data& data = buffer.datas[0];
  const QRect crop = cropOf(buffer);
  const BufferTransform transform = transformOf(buffer);
  const bool sameLayout = crop == reception.crop && transform == reception.transform;
  const QRegion changed = sameLayout ? damageOf(buffer) & crop : crop;
  reception.crop = crop;
  reception.transform = transform;
  const std::ptrdiff_t stride = *strideOf(data);
  const auto bytes = [&](const QPoint& step) { return step.y() * stride + 4L * step.x(); };
  const QPoint corner = crop.topLeft() + pictureCorner(transform, crop.size());
  const FramePixels pixels{
      .topLeft = static_cast<const std::uint8_t*>(data.data) + data.chunk->offset + bytes(corner),
      .toRight = bytes(transform.right),
      .down = bytes(transform.down),
      .size = pictureSize(transform, crop.size()),
      .redFirst = reception.format.redFirst};
  return putFrame(reception.frames, pixels,
                  inPicture(transform, crop.size(), changed.translated(-crop.topLeft())));
}

// Runs on PipeWire's thread.
void onProcess(void* /*data*/) {
  const std::lock_guard lock(receptionLock);
  while (pw_buffer* const buffer = pw_stream_dequeue_buffer(stream.stream)) {
    const bool isMapped = buffer->user_data != nullptr;
    if (isMapped && hasPixels(*buffer->buffer) && receive(*buffer->buffer)) {
      pw_loop_signal_event(stream.loop, stream.arrival);
    }
    pw_stream_queue_buffer(stream.stream, buffer);
  }
}

// When a source changes its format, PipeWire 0.3.65 sometimes passes its buffers on before they
// have memory, and leaves it at that: no frame would come any more. A new stream gets new buffers.
void replaceStreamSoon();

// Marks buffers whose memory is there.
void onBufferAdded(void* /*data*/, pw_buffer* buffer) {
  const spa_buffer& content = *buffer->buffer;
  if (content.n_datas == 0 || content.datas[0].data == nullptr) return replaceStreamSoon();
  ++stream.usableBuffers;
  const std::lock_guard lock(receptionLock);
  buffer->user_data = &reception;
}

// Returns when PipeWire's thread does not read the buffer any more.
void onBufferRemoved(void* /*data*/, pw_buffer* buffer) {
  if (buffer->user_data != nullptr) --stream.usableBuffers;
  const std::lock_guard lock(receptionLock);
  buffer->user_data = nullptr;
}

void onArrival(void* /*data*/, std::uint64_t /*count*/) {
  stream.replacements = 0;
  stream.events.frame();
}

void onParameterChanged(void* /*data*/, std::uint32_t id, const spa_pod* parameter) {
  if (id != SPA_PARAM_Format) return;
  const std::optional<FrameFormat> format =
      parameter == nullptr ? std::nullopt : readFormat(*parameter);
  {
    const std::lock_guard lock(receptionLock);
    reception.format = format.value_or(FrameFormat{});
    reception.crop = QRect();
  }
  if (format) acceptBuffers(stream.stream);
}

void onStateChanged(void* /*data*/, pw_stream_state /*before*/, pw_stream_state now,
                    const char* /*error*/) {
  if (now == PW_STREAM_STATE_ERROR) endLater(StreamEnd::Source);
  if (now == PW_STREAM_STATE_UNCONNECTED && stream.connected) endLater(StreamEnd::Source);
  if (now != PW_STREAM_STATE_UNCONNECTED) stream.connected = true;
}

void onCoreError(void* /*data*/, std::uint32_t id, int /*sequence*/, int result,
                 const char* /*message*/) {
  if (id == PW_ID_CORE && result == -EPIPE) endLater(StreamEnd::PipeWire);
}

void onGlobalRemoved(void* /*data*/, std::uint32_t id) {
  if (id == stream.node) endLater(StreamEnd::Source);
}

const pw_stream_events streamEvents = [] {
  pw_stream_events events{};
  events.version = PW_VERSION_STREAM_EVENTS;
  events.state_changed = &onStateChanged;
  events.param_changed = &onParameterChanged;
  events.add_buffer = &onBufferAdded;
  events.remove_buffer = &onBufferRemoved;
  events.process = &onProcess;
  return events;
}();

const pw_core_events coreEvents = [] {
  pw_core_events events{};
  events.version = PW_VERSION_CORE_EVENTS;
  events.error = &onCoreError;
  return events;
}();

const pw_registry_events registryEvents = [] {
  pw_registry_events events{};
  events.version = PW_VERSION_REGISTRY_EVENTS;
  events.global_remove = &onGlobalRemoved;
  return events;
}();

// Casts an object of PipeWire's server to its proxy.
template <typename Object>
pw_proxy* proxy(Object* object) {
  return reinterpret_cast<pw_proxy*>(object);
}

bool connectTo(int connection) {
  stream.loop = pw_loop_new(nullptr);
  if (stream.loop != nullptr) stream.context = pw_context_new(stream.loop, nullptr, 0);
  if (stream.context == nullptr) {
    close(connection);
    return false;
  }
  // Takes ownership of the descriptor, even on failure.
  stream.core = pw_context_connect_fd(stream.context, connection, nullptr, 0);
  return stream.core != nullptr;
}

// Creates the stream without reconnection: the session manager would choose another source, even a
// camera.
bool createStream() {
  pw_properties* const properties = pw_properties_new(
      PW_KEY_MEDIA_TYPE, "Video", PW_KEY_MEDIA_CATEGORY, "Capture", PW_KEY_MEDIA_ROLE, "Screen",
      PW_KEY_NODE_NAME, "tintora", PW_KEY_NODE_DONT_RECONNECT, "true", nullptr);
  stream.stream = pw_stream_new(stream.core, "tintora", properties);
  if (stream.stream == nullptr) return false;
  pw_stream_add_listener(stream.stream, &stream.streamHook, &streamEvents, nullptr);
  return connectStream(stream.stream, stream.node);
}

void replaceStream() {
  stream.isReplacedSoon = false;
  // The source may have changed its format once more meanwhile.
  if (stream.ending || stream.usableBuffers > 0) return;
  ++stream.replacements;
  // The old stream's end is not the source's.
  stream.ending = true;
  pw_stream_destroy(stream.stream);
  stream.ending = false;
  stream.connected = false;
  if (!createStream()) return endLater(StreamEnd::Source);
  pw_stream_set_active(stream.stream, stream.active);
  stream.events.renewed();
}

// Leaves PipeWire a moment in which the source's own buffers get their memory.
void replaceStreamSoon() {
  constexpr int mostReplacements = 10;
  constexpr int milliseconds = 50;
  if (stream.isReplacedSoon) return;
  if (stream.replacements == mostReplacements) return endLater(StreamEnd::Source);
  stream.isReplacedSoon = true;
  QTimer::singleShot(milliseconds, stream.notifier.get(), &replaceStream);
}

void enterEventLoop() {
  pw_loop_enter(stream.loop);
  stream.arrival = pw_loop_add_event(stream.loop, &onArrival, nullptr);
  stream.notifier =
      std::make_unique<QSocketNotifier>(pw_loop_get_fd(stream.loop), QSocketNotifier::Read);
  QObject::connect(stream.notifier.get(), &QSocketNotifier::activated,
                   [] { pw_loop_iterate(stream.loop, 0); });
}

}  // namespace

bool startStream(int connection, std::uint32_t node, const StreamEvents& events) {
  stopStream();
  pw_init(nullptr, nullptr);
  stream.events = events;
  stream.node = node;
  if (!connectTo(connection)) {
    stopStream();
    return false;
  }
  enterEventLoop();
  pw_proxy_add_object_listener(proxy(stream.core), &stream.coreHook, &coreEvents, nullptr);
  stream.registry = pw_core_get_registry(stream.core, PW_VERSION_REGISTRY, 0);
  pw_proxy_add_object_listener(proxy(stream.registry), &stream.registryHook, &registryEvents,
                               nullptr);
  if (createStream()) return true;
  stopStream();
  return false;
}

QRegion takeNewestFrame(QImage& frame) {
  const std::lock_guard lock(receptionLock);
  return takeFrame(reception.frames, frame);
}

void setStreamActive(bool active) {
  stream.active = active;
  if (stream.stream != nullptr) pw_stream_set_active(stream.stream, active);
}

void stopStream() {
  const bool entered = stream.notifier != nullptr;
  stream.notifier.reset();
  stream.ending = true;
  // Nothing runs on PipeWire's thread after this.
  if (stream.stream != nullptr) pw_stream_destroy(stream.stream);
  if (stream.registry != nullptr) pw_proxy_destroy(proxy(stream.registry));
  if (stream.core != nullptr) pw_core_disconnect(stream.core);
  if (stream.context != nullptr) pw_context_destroy(stream.context);
  if (stream.arrival != nullptr) pw_loop_destroy_source(stream.loop, stream.arrival);
  if (entered) pw_loop_leave(stream.loop);
  if (stream.loop != nullptr) pw_loop_destroy(stream.loop);
  stream = {};
  reception = {};
}

}  // namespace tintora::platform
