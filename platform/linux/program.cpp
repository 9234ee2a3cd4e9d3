#include "platform/program.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>
#include <array>

#include "engine/custom_transforms.h"
#include "platform/linux/environment.h"
#include "platform/linux/program.h"
#include "platform/linux/scale.h"
#include "platform/linux/screen_place.h"

namespace tintora::platform {

namespace {

std::string arguments;

// Returns the program's folder if the user's transforms are there, else the user's own folder.
QString folderOfCustomFile() {
  const QString beside = QCoreApplication::applicationDirPath();
  const QString file = beside + '/' + customTransformFileName;
  return QFileInfo::exists(file) ? beside : configFolder();
}

}  // namespace

void setArguments(int count, char** given) {
  arguments.clear();
  for (int i = 1; i < count; ++i) arguments.append(i > 1 ? " " : "").append(given[i]);
}

QString configFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/tintora";
}

// If the arguments contain a slash, the rule applies to the whole command line, as on every
// desktop.
std::filesystem::path customTransformFile() {
  const std::string folder = folderOfCustomFile().toStdString();
  if (arguments.find_first_of("\\/") == std::string::npos) {
    return folder + '/' + customTransformFileName;
  }
  return customTransformPath(folder + "/tintora " + arguments);
}

std::string programArguments() {
  return arguments;
}

Size screenSize() {
  const QSize size = primaryMonitor().size();
  return {size.width(), size.height()};
}

double screenScale() {
  return desktopScale();
}

void openPageBesideProgram(const std::string& fileName) {
  const QString folder = QCoreApplication::applicationDirPath();
  const std::array<QString, 2> places{folder, folder + "/../share/doc/tintora"};
  for (const QString& place : places) {
    const QFileInfo page(place + '/' + QString::fromStdString(fileName));
    if (!page.exists()) continue;
    const UsersEnvironment environment;
    QDesktopServices::openUrl(QUrl::fromLocalFile(page.canonicalFilePath()));
    return;
  }
}

}  // namespace tintora::platform
