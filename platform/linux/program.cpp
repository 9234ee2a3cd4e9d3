#include "platform/program.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>
#include <QStandardPaths>
#include <QUrl>
#include <array>

#include "platform/linux/program.h"

namespace tintora::platform {

namespace {

std::string arguments;

// Where the user's transforms are looked for: beside the program, else among the user's own files.
QString folderOfCustomFile() {
  const QString beside = QCoreApplication::applicationDirPath();
  const QString file = "/Tintora_custom.txt";
  return QFileInfo::exists(beside + file) ? beside : configFolder();
}

}  // namespace

void setArguments(int count, char** given) {
  arguments.clear();
  for (int i = 1; i < count; ++i) arguments.append(i > 1 ? " " : "").append(given[i]);
}

QString configFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/tintora";
}

// The program's path stands in the folder that holds the user's custom transforms: what the line is
// asked for.
std::string commandLine() {
  const QString path = folderOfCustomFile() + "/tintora";
  return path.toStdString() + (arguments.empty() ? "" : " " + arguments);
}

std::string programArguments() {
  return arguments;
}

Size screenSize() {
  const QSize size = QGuiApplication::primaryScreen()->size();
  return {size.width(), size.height()};
}

void openPageBesideProgram(const std::string& fileName) {
  const QString folder = QCoreApplication::applicationDirPath();
  const std::array<QString, 2> places{folder, folder + "/../share/doc/tintora"};
  for (const QString& place : places) {
    const QFileInfo page(place + '/' + QString::fromStdString(fileName));
    if (!page.exists()) continue;
    QDesktopServices::openUrl(QUrl::fromLocalFile(page.canonicalFilePath()));
    return;
  }
}

}  // namespace tintora::platform
