#include "shell/main.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QApplication>
#include <QDir>
#include <QIcon>
#include <QLibraryInfo>
#include <QMessageBox>
#include <QSessionManager>
#include <QSocketNotifier>
#include <QStringList>
#include <algorithm>
#include <array>
#include <clocale>
#include <csignal>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/environment.h"
#include "platform/linux/event_loop.h"
#include "platform/linux/mirror.h"
#include "platform/linux/program.h"
#include "platform/linux/screen_place.h"
#include "platform/linux/window_frame.h"
#include "platform/linux/window_manager.h"
#include "platform/linux/x_server.h"
#include "platform/window.h"

namespace {

constexpr const char* help =
    "Usage: tintora [--choose | --x11] [LETTERS]\n"
    "\n"
    "Opens a frame through which the screen beneath is seen through another colour vision. The\n"
    "right mouse button opens the menu. F1 shows the keys.\n"
    "\n"
    "In a Wayland session no program may see what lies beneath its window. There the frame shows "
    "a\n"
    "window or screen that you choose in the desktop's own dialog; the choice is remembered.\n"
    "\n"
    "Letters anywhere in the first 10 characters of the arguments, as in -st:\n"
    "  s    choose among the simulation algorithms in the menu\n"
    "  t    tritan vision in the menu and with key T\n"
    "\n"
    "  --choose     show a window or screen, and ask which one\n"
    "  --x11        show what lies beneath the frame, also in a Wayland session, where only the\n"
    "               windows of X11 programs are seen\n"
    "  -h, --help   show this\n"
    "  --version    show the version\n"
    "\n"
    "Files: tintora/settings.ini and tintora/Tintora_custom.txt in the user's configuration "
    "folder\n"
    "(XDG_CONFIG_HOME, else ~/.config); a Tintora_custom.txt beside the program comes first.\n";

// Returns true if an argument asks for text instead of windows, and prints that text.
bool answers(std::string_view argument) {
  const bool wantsHelp = argument == "--help" || argument == "-h";
  if (wantsHelp) std::cout << help;
  if (argument == "--version") std::cout << "tintora " << TINTORA_VERSION << '\n';
  return wantsHelp || argument == "--version";
}

// Which picture the arguments select; these options are not among the letters.
struct PictureOptions {
  bool choose = false;
  bool x11 = false;
};

PictureOptions takePictureOptions(std::vector<char*>& arguments) {
  PictureOptions options;
  std::erase_if(arguments, [&](std::string_view argument) {
    options.choose = options.choose || argument == "--choose";
    options.x11 = options.x11 || argument == "--x11";
    return argument == "--choose" || argument == "--x11";
  });
  return options;
}

// Returns true if the frame shows a window or screen of the user's choice instead of what lies
// beneath it.
bool showsMirror(const PictureOptions& options) {
  return options.choose || (!options.x11 && !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"));
}

// Prepares Qt before it starts: windows sized in the screen's pixels, whatever scale the desktop
// sets for Qt's own programs; X11; and Qt's own event loop.
void prepareQt() {
  using tintora::platform::setOwnVariable;
  for (const char* const scale :
       {"QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS", "QT_AUTO_SCREEN_SCALE_FACTOR",
        "QT_SCALE_FACTOR_ROUNDING_POLICY", "QT_DEVICE_PIXEL_RATIO", "QT_USE_PHYSICAL_DPI"}) {
    setOwnVariable(scale, std::nullopt);
  }
  setOwnVariable("QT_ENABLE_HIGHDPI_SCALING", "0");
  setOwnVariable("QT_QPA_PLATFORM", "xcb");
  setOwnVariable("QT_NO_GLIB", "1");
  QCoreApplication::setApplicationName("tintora");
  QCoreApplication::setApplicationVersion(TINTORA_VERSION);
  QGuiApplication::setDesktopFileName("tintora");
}

// Has the memory of large pictures returned to the system as soon as they are gone. Among small
// blocks, the space that they leave would stay with the process.
void keepPicturesApart() {
  constexpr int bytes = 1 << 20;
  static_cast<void>(mallopt(M_MMAP_THRESHOLD, bytes));
}

// A signal to end must not lose the settings, so it becomes an event of the loop.
std::array<int, 2> signalPipe{-1, -1};

void onSignal(int /*signal*/) {
  const char byte = 0;
  [[maybe_unused]] const ssize_t written = write(signalPipe[1], &byte, 1);
}

void endOnSignals(QSocketNotifier& notifier) {
  QObject::connect(&notifier, &QSocketNotifier::activated, [&notifier] {
    notifier.setEnabled(false);
    tintora::platform::quit(0);
  });
  for (const int signal : {SIGHUP, SIGINT, SIGTERM})
    static_cast<void>(std::signal(signal, &onSignal));
}

// Ends the program when the session manager says so. Qt would ask each window to close, and those
// that hide instead would keep the program running.
class SessionsEnd : public QObject {
 public:
  bool eventFilter(QObject* /*application*/, QEvent* event) override {
    if (event->type() != QEvent::Quit) return false;
    tintora::platform::quit(0);
    return true;
  }
};

// Follows the session manager's notice that the session ends, and tells it how to start the program
// again. By default, Qt would add an option whose letters would be taken for the program's.
void followSession(QApplication& application, int count, char** arguments) {
  using tintora::platform::tellSessionEnds;
  static SessionsEnd sessionsEnd;
  QGuiApplication::setQuitOnLastWindowClosed(false);
  application.installEventFilter(&sessionsEnd);
  QObject::connect(&application, &QGuiApplication::commitDataRequest, &application,
                   [] { tellSessionEnds(); });
  QStringList command;
  for (int i = 0; i < count; ++i) command << QString::fromLocal8Bit(arguments[i]);
  QObject::connect(&application, &QGuiApplication::saveStateRequest, &application,
                   [command](QSessionManager& manager) { manager.setRestartCommand(command); });
}

// Returns true if the Wayland server that the environment names accepts connections.
bool waylandAnswers() {
  const QString name = qEnvironmentVariable("WAYLAND_DISPLAY");
  if (name.isEmpty()) return false;
  const QByteArray path =
      QDir(qEnvironmentVariable("XDG_RUNTIME_DIR")).filePath(name).toLocal8Bit();
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  if (static_cast<std::size_t>(path.size()) >= sizeof address.sun_path) return false;
  std::ranges::copy(path, address.sun_path);
  const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (connection < 0) return false;
  const bool answers =
      connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(connection);
  return answers;
}

// Returns the Qt platform that can show a window here, or null if there is none.
const char* platformOfDialog() {
  xcb_connection_t* const display = xcb_connect(nullptr, nullptr);
  const bool hasX = xcb_connection_has_error(display) == 0;
  xcb_disconnect(display);
  if (hasX) return "xcb";
  // Checks first, because Qt would end the program if its Wayland plugin or the server were
  // missing.
  const QDir plugins(QLibraryInfo::path(QLibraryInfo::PluginsPath) + "/platforms");
  const bool hasPlugin = !plugins.entryList({"libqwayland*"}, QDir::Files).isEmpty();
  return hasPlugin && waylandAnswers() ? "wayland" : nullptr;
}

// Shows a window that says why the program cannot start, unless a terminal shows it already.
void showObstacle(const std::string& obstacle, int& count, char** arguments) {
  if (isatty(STDERR_FILENO) != 0) return;
  const char* const platform = platformOfDialog();
  if (platform == nullptr) return;
  tintora::platform::setOwnVariable("QT_QPA_PLATFORM", platform);
  const QApplication application(count, arguments);
  const QString text = QString::fromStdString(obstacle);
  QMessageBox(QMessageBox::Critical, "Tintora", "Tintora cannot start: " + text + ".",
              QMessageBox::Close)
      .exec();
}

}  // namespace

int main(int count, char** arguments) {
  for (int i = 1; i < count; ++i) {
    if (answers(arguments[i])) return std::cout.flush() ? 0 : 1;
  }
  if (const auto obstacle = tintora::platform::connectToXServer()) {
    std::cerr << "tintora: " << *obstacle << '\n';
    int ownName = 1;
    showObstacle(*obstacle, ownName, arguments);
    return 1;
  }
  prepareQt();
  keepPicturesApart();
  std::vector<char*> given(arguments, arguments + count);
  const PictureOptions options = takePictureOptions(given);
  tintora::platform::setArguments(static_cast<int>(given.size()), given.data());
  if (showsMirror(options)) tintora::platform::useMirror(options.choose);
  // Keeps the arguments from Qt, because they are the program's.
  int ownName = 1;
  QApplication application(ownName, arguments);
  followSession(application, count, arguments);
  tintora::platform::followWindowManager();
  tintora::platform::followMonitors(&tintora::platform::onMonitorsChanged);
  QApplication::setWindowIcon(QIcon(":/tintora.png"));
  // Numbers in the custom file have decimal points in every locale.
  static_cast<void>(std::setlocale(LC_NUMERIC, "C"));
  if (pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) return 1;
  QSocketNotifier signals(signalPipe[0], QSocketNotifier::Read);
  endOnSignals(signals);
  return tintora::runProgram();
}
