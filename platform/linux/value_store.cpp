#include "platform/value_store.h"

#include <QFile>
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

// Parses a whole number of 32 bits, with or without a sign.
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

// A store that cannot be written counts as missing, as on every desktop.
bool readValues(std::span<StoredValue> values) {
  const QFileInfo file(settingsPath());
  if (!file.isFile() || !file.isReadable() || !file.isWritable()) return false;
  const QSettings settings(settingsPath(), QSettings::IniFormat);
  if (settings.status() != QSettings::NoError) return false;
  for (StoredValue& value : values) value.value = parse(settings.value(nameOf(value)));
  return true;
}

// Writes all values or none: Qt writes a new file and then replaces the old one.
void writeValues(std::span<const StoredValue> values) {
  const QFileInfo file(settingsPath());
  // Opening a pipe would block.
  if (file.exists() && !file.isFile()) return;
  // Qt would wait half a minute for the lock of a program that was killed while it saved. Nothing
  // needs the lock, because the file is replaced as a whole.
  QFile::remove(settingsPath() + ".lock");
  QSettings settings(settingsPath(), QSettings::IniFormat);
  if (settings.status() == QSettings::FormatError) settings.clear();
  for (const StoredValue& value : values) {
    if (value.value) settings.setValue(nameOf(value), *value.value);
  }
}

}  // namespace tintora::platform
