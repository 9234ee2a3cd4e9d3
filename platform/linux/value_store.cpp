#include "platform/value_store.h"

#include <QFileInfo>
#include <QSettings>
#include <QString>
#include <cstdint>
#include <limits>

#include "platform/linux/program.h"

namespace tintora::platform {

namespace {

QString settingsPath() {
  return configFolder() + "/settings.ini";
}

QString nameOf(const StoredValue& value) {
  return QString::fromLatin1(value.name.data(), static_cast<qsizetype>(value.name.size()));
}

// A whole number of 32 bits, with a sign or without.
std::optional<std::uint32_t> parse(const QVariant& text) {
  bool whole = false;
  const qlonglong number = text.toString().toLongLong(&whole);
  if (!whole || number < std::numeric_limits<std::int32_t>::min() ||
      number > std::numeric_limits<std::uint32_t>::max()) {
    return std::nullopt;
  }
  return static_cast<std::uint32_t>(number);
}

}  // namespace

// A store that cannot be written is as good as none, as everywhere.
bool readValues(std::span<StoredValue> values) {
  const QFileInfo file(settingsPath());
  if (!file.isFile() || !file.isReadable() || !file.isWritable()) return false;
  const QSettings settings(settingsPath(), QSettings::IniFormat);
  if (settings.status() != QSettings::NoError) return false;
  for (StoredValue& value : values) value.value = parse(settings.value(nameOf(value)));
  return true;
}

// Whole or not at all: Qt writes a new file beside the old one and puts it in its place.
void writeValues(std::span<const StoredValue> values) {
  const QFileInfo file(settingsPath());
  // A pipe in its place would be waited for.
  if (file.exists() && !file.isFile()) return;
  QSettings settings(settingsPath(), QSettings::IniFormat);
  if (settings.status() == QSettings::FormatError) settings.clear();
  for (const StoredValue& value : values) {
    if (value.value) settings.setValue(nameOf(value), *value.value);
  }
}

}  // namespace tintora::platform
