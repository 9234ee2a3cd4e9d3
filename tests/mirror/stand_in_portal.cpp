// tintora_stand_in_portal BEHAVIOUR: the part of a desktop portal that offers screen casts. It
// reads its answers from a file of NAME=VALUE lines at each call:
//   answer   grant, cancel, refuse, fail, nothing; mutter: grants what was recorded
//   record   monitor or window: has mutter record, from the portal's start, its one monitor or the
//            window that has the focus then
//   node     the node of PipeWire that is granted
//   version, types, cursors   its properties
//   early    1: it answers a request before it replies to the call
//   paths    own: it chooses the requests' paths itself, as the first portals did
//   select   the code with which it answers SelectSources
//   remote   none: it has no connection to PipeWire; end: it ends when it is asked for one
// Prints one line for each call. SIGUSR1 closes the sessions.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QDebug>
#include <QFile>
#include <QSet>
#include <QSocketNotifier>
#include <QTimer>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>

struct CastStream {
  std::uint32_t node = 0;
  QVariantMap properties;
};
Q_DECLARE_METATYPE(CastStream)

QDBusArgument& operator<<(QDBusArgument& argument, const CastStream& stream) {
  argument.beginStructure();
  argument << stream.node << stream.properties;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, CastStream& stream) {
  argument.beginStructure();
  argument >> stream.node >> stream.properties;
  argument.endStructure();
  return argument;
}

namespace {

const QString screenCast = "org.freedesktop.portal.ScreenCast";
const QString mutter = "org.gnome.Mutter.ScreenCast";

int signalPipe[2];

void onSignal(int /*signal*/) {
  [[maybe_unused]] const ssize_t written = write(signalPipe[1], "c", 1);
}

void print(const QString& line) {
  std::printf("%s\n", line.toUtf8().constData());
  std::fflush(stdout);
}

int connectionToPipeWire() {
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  const QByteArray path = qgetenv("XDG_RUNTIME_DIR") + "/pipewire-0";
  std::copy(path.begin(), path.end(), address.sun_path);
  const int end = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (connect(end, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return end;
  close(end);
  return -1;
}

class Portal : public QDBusVirtualObject {
  Q_OBJECT

 public:
  explicit Portal(QString behaviour) : behaviour_(std::move(behaviour)) {
    const QString what = value("record");
    if (!what.isEmpty()) record(what);
  }

  QString introspect(const QString& /*path*/) const override { return {}; }

  bool handleMessage(const QDBusMessage& call, const QDBusConnection& /*bus*/) override {
    const QString method = call.member();
    const QList<QVariant> arguments = call.arguments();
    if (method == "GetAll") return answerProperties(call);
    if (method == "Close") {
      print("Close");
      sessions_.remove(call.path());
      return reply(call, {});
    }
    if (call.interface() != screenCast) return false;
    if (method == "OpenPipeWireRemote") return answerRemote(call);
    const auto options = qdbus_cast<QVariantMap>(arguments.last());
    QStringList words{method};
    for (auto i = options.begin(); i != options.end(); ++i) {
      if (!i.key().contains("handle")) words << i.key() + '=' + i.value().toString();
    }
    if (method == "Start") words << "parent=" + arguments[1].toString();
    print(words.join(' '));
    if (method == "Start" && value("answer") == "fail") {
      return bus().send(call.createErrorReply("org.freedesktop.portal.Error.Failed", "No."));
    }
    const QString sender = call.service().mid(1).replace('.', '_');
    const QString token = value("paths") == "own" ? QString("own%1").arg(++requests_)
                                                  : options["handle_token"].toString();
    const QString request = "/org/freedesktop/portal/desktop/request/" + sender + '/' + token;
    const QVariant handle = QVariant::fromValue(QDBusObjectPath(request));
    if (value("early") != "1") reply(call, {handle});
    respond(call, request, options);
    if (value("early") == "1") reply(call, {handle});
    return true;
  }

  void closeSessions() {
    for (const QString& path : sessions_) {
      QDBusMessage closed =
          QDBusMessage::createSignal(path, "org.freedesktop.portal.Session", "Closed");
      closed << QVariantMap{};
      bus().send(closed);
    }
    sessions_.clear();
  }

 public Q_SLOTS:  // NOLINT(readability-redundant-access-specifiers): Qt reads which are slots.
  void onStreamAdded(uint node) {
    recorded_ = node;
    print("recorded");
  }
  void onMutterClosed() { closeSessions(); }

 private:
  static QDBusConnection bus() { return QDBusConnection::sessionBus(); }

  QString value(const QString& name) const {
    QFile file(behaviour_);
    if (!file.open(QFile::ReadOnly)) return {};
    for (const QString& line : QString::fromUtf8(file.readAll()).split('\n')) {
      if (line.startsWith(name + '=')) return line.mid(name.size() + 1);
    }
    return {};
  }
  std::uint32_t number(const QString& name, std::uint32_t otherwise) const {
    const QString text = value(name);
    return text.isEmpty() ? otherwise : text.toUInt();
  }

  static bool reply(const QDBusMessage& call, const QList<QVariant>& arguments) {
    return bus().send(call.createReply(arguments));
  }

  bool answerProperties(const QDBusMessage& call) const {
    return reply(call, {QVariantMap{{"version", number("version", 4)},
                                    {"AvailableSourceTypes", number("types", 7)},
                                    {"AvailableCursorModes", number("cursors", 7)}}});
  }

  bool answerRemote(const QDBusMessage& call) const {
    print("OpenPipeWireRemote");
    if (value("remote") == "end") std::_Exit(0);
    const int end = value("remote") == "none" ? -1 : connectionToPipeWire();
    if (end < 0) {
      return bus().send(call.createErrorReply("org.freedesktop.portal.Error.Failed", "No."));
    }
    QDBusUnixFileDescriptor descriptor;
    descriptor.giveFileDescriptor(end);
    return reply(call, {QVariant::fromValue(descriptor)});
  }

  static void sendResponse(const QString& to, const QString& request, std::uint32_t code,
                           const QVariantMap& results) {
    QDBusMessage response = QDBusMessage::createTargetedSignal(
        to, request, "org.freedesktop.portal.Request", "Response");
    response << code << results;
    bus().send(response);
  }

  void respond(const QDBusMessage& call, const QString& request, const QVariantMap& options) {
    const QString method = call.member();
    if (method == "CreateSession") {
      const QString path =
          "/org/freedesktop/portal/desktop/session/x/" + options["session_handle_token"].toString();
      sessions_.insert(path);
      return sendResponse(call.service(), request, 0, {{"session_handle", path}});
    }
    if (method == "SelectSources") {
      return sendResponse(call.service(), request, number("select", 0), {});
    }
    asker_ = call.service();
    request_ = request;
    const QString answer = value("answer");
    if (answer == "cancel") return sendResponse(asker_, request_, 1, {});
    if (answer == "refuse") return sendResponse(asker_, request_, 2, {});
    if (answer == "grant") return grant(number("node", 0));
    if (answer == "mutter") return grant(recorded_);
  }

  void grant(std::uint32_t node) {
    const QList<CastStream> streams{{node, {}}};
    QVariantMap results{{"streams", QVariant::fromValue(streams)}};
    if (number("version", 4) >= 4) {
      results["restore_token"] = QString("token-%1").arg(++granted_);
    }
    sendResponse(asker_, request_, 0, results);
  }

  static QString pathFrom(const QString& path, const QString& interface, const QString& method,
                          const QList<QVariant>& arguments) {
    QDBusMessage call = QDBusMessage::createMethodCall(mutter, path, interface, method);
    call.setArguments(arguments);
    const QDBusMessage answer = bus().call(call);
    if (answer.type() == QDBusMessage::ErrorMessage) qWarning() << answer.errorMessage();
    return answer.arguments().value(0).value<QDBusObjectPath>().path();
  }

  // Tries again until a window has the focus.
  void record(const QString& what) {
    const QString session =
        pathFrom("/org/gnome/Mutter/ScreenCast", mutter, "CreateSession", {QVariantMap{}});
    const QString interface = mutter + ".Session";
    constexpr std::uint32_t embedded = 1;
    const QVariantMap options{{"cursor-mode", embedded}};
    const QString stream = what == "monitor"
                               ? pathFrom(session, interface, "RecordMonitor", {QString(), options})
                               : pathFrom(session, interface, "RecordWindow", {options});
    if (stream.isEmpty()) {
      QTimer::singleShot(std::chrono::milliseconds(100), this, [this, what] { record(what); });
      return;
    }
    bus().connect(mutter, stream, mutter + ".Stream", "PipeWireStreamAdded", this,
                  SLOT(onStreamAdded(uint)));
    bus().connect(mutter, session, interface, "Closed", this, SLOT(onMutterClosed()));
    pathFrom(session, interface, "Start", {});
  }

  QString behaviour_;
  QString asker_;
  QString request_;
  QSet<QString> sessions_;
  int granted_ = 0;
  int requests_ = 0;
  std::uint32_t recorded_ = 0;  // the node of mutter's stream
};

}  // namespace

int main(int count, char** arguments) {
  const QCoreApplication application(count, arguments);
  if (count != 2 || pipe(signalPipe) != 0) return 2;
  qDBusRegisterMetaType<CastStream>();
  qDBusRegisterMetaType<QList<CastStream>>();
  Portal portal(arguments[1]);
  QSocketNotifier closing(signalPipe[0], QSocketNotifier::Read);
  QObject::connect(&closing, &QSocketNotifier::activated, [&portal] {
    char byte = 0;
    if (read(signalPipe[0], &byte, 1) == 1) portal.closeSessions();
  });
  static_cast<void>(std::signal(SIGUSR1, &onSignal));
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.registerVirtualObject("/org/freedesktop/portal/desktop", &portal,
                                 QDBusConnection::SubPath) ||
      !bus.registerService("org.freedesktop.portal.Desktop")) {
    return 1;
  }
  print("ready");
  return QCoreApplication::exec();
}

#include "stand_in_portal.moc"
