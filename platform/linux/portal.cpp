#include "platform/linux/portal.h"

#include <fcntl.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QTimer>
#include <memory>
#include <optional>
#include <utility>

#include "platform/linux/program.h"

namespace tintora::platform {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString desktopPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString screenCast = QStringLiteral("org.freedesktop.portal.ScreenCast");

// Numbers defined by the portal.
constexpr std::uint32_t screensAndWindows = 1 | 2;
constexpr std::uint32_t cursorEmbedded = 2;
constexpr std::uint32_t persistUntilRevoked = 2;
constexpr std::uint32_t firstVersionWithCursor = 2;
constexpr std::uint32_t firstVersionWithTokens = 4;

QString tokenPath() {
  return configFolder() + "/mirror.token";
}

QString readToken() {
  constexpr qint64 longest = 4096;
  QFile file(tokenPath());
  return file.open(QFile::ReadOnly) ? QString::fromUtf8(file.read(longest)) : QString();
}

// Stores the token for the next request. Each token works once, so an empty one is removed. Only
// the user may read it, because it permits looking at the screen.
void writeToken(const QString& token) {
  if (token.isEmpty()) {
    QFile::remove(tokenPath());
    return;
  }
  QDir().mkpath(configFolder());
  QSaveFile file(tokenPath());
  if (!file.open(QFile::WriteOnly)) return;
  file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
  file.write(token.toUtf8());
  file.commit();
}

// Returns the first node in an array of (node, properties).
std::optional<std::uint32_t> firstNode(const QVariant& streams) {
  if (!streams.canConvert<QDBusArgument>()) return std::nullopt;
  const auto list = streams.value<QDBusArgument>();
  if (list.currentSignature() != "a(ua{sv})") return std::nullopt;
  std::optional<std::uint32_t> node;
  list.beginArray();
  if (!list.atEnd()) {
    std::uint32_t first = 0;
    list.beginStructure();
    list >> first;
    node = first;
    QVariantMap properties;
    list >> properties;
    list.endStructure();
  }
  list.endArray();
  return node;
}

// Returns true if a call has failed because the portal ended meanwhile.
bool isWithoutPortal(const QDBusError& error) {
  return error.type() == QDBusError::NoReply || error.type() == QDBusError::ServiceUnknown;
}

// Runs the steps in order; the answer to each starts the next.
class Session : public QObject {
  Q_OBJECT

 public:
  Session(WId window, bool anew, const PortalEvents& events)
      : window_(window), token_(anew ? QString() : readToken()), events_(events) {
    QObject::connect(&portal_, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
      // A stream that is already granted needs no portal.
      if (!over_ && !request_.isEmpty()) end(PortalEnd::Refused);
    });
    // Hears the answers to all requests: one may come before the reply that names its path.
    listen(QString(), "org.freedesktop.portal.Request", "Response",
           SLOT(onResponse(const QDBusMessage&)));
    askForProperties();
  }

  // Ends the session; nothing is reported after this. It is deleted later, because it may be ended
  // from one of its own functions.
  void close() {
    over_ = true;
    if (!handle_.isEmpty()) bus_.send(callOf(handle_, "org.freedesktop.portal.Session", "Close"));
    deleteLater();
  }

 private Q_SLOTS:
  void onResponse(const QDBusMessage& message) {
    const QList<QVariant> arguments = message.arguments();
    if (over_ || arguments.size() < 2) return;
    if (message.path() != request_) {
      if (!isNamed_) early_ = message;
      return;
    }
    isNamed_ = true;
    request_.clear();
    const std::uint32_t code = arguments[0].toUInt();
    if (code == 1) return end(PortalEnd::Cancelled);
    if (code != 0) return end(PortalEnd::Refused);
    const auto results = qdbus_cast<QVariantMap>(arguments[1]);
    (this->*std::exchange(next_, nullptr))(results);
  }

  void onClosed(const QDBusMessage& /*message*/) {
    if (over_) return;
    handle_.clear();
    end(PortalEnd::Closed);
  }

 private:  // NOLINT(readability-redundant-access-specifiers): Qt reads which functions are slots.
  using Step = void (Session::*)(const QVariantMap& results);

  static QDBusMessage callOf(const QString& path, const QString& interface, const QString& method) {
    return QDBusMessage::createMethodCall(service, path, interface, method);
  }

  template <typename Handle>
  void send(const QDBusMessage& call, Handle handle) {
    auto* const waiting = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    QObject::connect(waiting, &QDBusPendingCallWatcher::finished, this, [=, this] {
      waiting->deleteLater();
      if (!over_) handle(*waiting);
    });
  }

  void listen(const QString& path, const QString& interface, const QString& name,
              const char* slot) {
    bus_.connect(service, path, interface, name, this, slot);
  }

  // Returns the object path that answers a request. Old portals choose another, and name it in
  // their reply.
  QString pathOfRequest(const QString& token) const {
    const QString sender = bus_.baseService().mid(1).replace('.', '_');
    return desktopPath + "/request/" + sender + '/' + token;
  }

  void request(const QString& method, const QList<QVariant>& arguments, QVariantMap options,
               Step next) {
    static int number = 0;
    const QString token = QStringLiteral("tintora%1").arg(++number);
    options["handle_token"] = token;
    next_ = next;
    const QString expected = pathOfRequest(token);
    request_ = expected;
    isNamed_ = false;
    early_ = QDBusMessage();
    QDBusMessage call = callOf(desktopPath, screenCast, method);
    call.setArguments(arguments + QList<QVariant>{options});
    send(call, [this, expected](const QDBusPendingCall& answer) {
      const QDBusPendingReply<QDBusObjectPath> reply = answer;
      if (reply.isError()) return end(PortalEnd::Refused);
      if (request_ != expected) return;
      request_ = reply.value().path();
      isNamed_ = true;
      if (early_.path() == request_) onResponse(early_);
    });
  }

  void askForProperties() {
    // Without a message bus a call is never answered. Reports that later, because this object is
    // still being created.
    if (!bus_.isConnected()) {
      QTimer::singleShot(0, this, [this] {
        if (!over_) end(PortalEnd::NoPortal);
      });
      return;
    }
    QDBusMessage call = callOf(desktopPath, "org.freedesktop.DBus.Properties", "GetAll");
    call << screenCast;
    send(call, [this](const QDBusPendingCall& answer) {
      const QDBusPendingReply<QVariantMap> reply = answer;
      properties_ = reply.value();  // none on failure
      if ((sourceTypes() & screensAndWindows) == 0) return end(PortalEnd::NoPortal);
      createSession();
    });
  }

  std::uint32_t property(const QString& name) const { return properties_.value(name).toUInt(); }
  std::uint32_t sourceTypes() const { return property("AvailableSourceTypes"); }
  std::uint32_t version() const { return property("version"); }

  void createSession() {
    request("CreateSession", {}, {{"session_handle_token", "tintora"}}, &Session::selectSources);
  }

  void selectSources(const QVariantMap& results) {
    handle_ = results.value("session_handle").toString();
    if (handle_.isEmpty()) return end(PortalEnd::Refused);
    listen(handle_, "org.freedesktop.portal.Session", "Closed",
           SLOT(onClosed(const QDBusMessage&)));
    QVariantMap options{{"types", sourceTypes() & screensAndWindows}, {"multiple", false}};
    const bool embedsCursor = (property("AvailableCursorModes") & cursorEmbedded) != 0;
    if (version() >= firstVersionWithCursor && embedsCursor) {
      options["cursor_mode"] = cursorEmbedded;
    }
    if (version() >= firstVersionWithTokens) {
      options["persist_mode"] = persistUntilRevoked;
      if (!token_.isEmpty()) options["restore_token"] = token_;
    }
    request("SelectSources", {QVariant::fromValue(QDBusObjectPath(handle_))}, options,
            &Session::startCast);
  }

  void startCast(const QVariantMap& /*results*/) {
    const QString parent = "x11:" + QString::number(window_, 16);
    request("Start", {QVariant::fromValue(QDBusObjectPath(handle_)), parent}, {},
            &Session::openRemote);
  }

  void openRemote(const QVariantMap& results) {
    writeToken(results.value("restore_token").toString());
    const std::optional<std::uint32_t> node = firstNode(results.value("streams"));
    if (!node) return end(PortalEnd::Refused);
    QDBusMessage call = callOf(desktopPath, screenCast, "OpenPipeWireRemote");
    call << QVariant::fromValue(QDBusObjectPath(handle_)) << QVariantMap{};
    send(call, [this, node = *node](const QDBusPendingCall& answer) {
      const QDBusPendingReply<QDBusUnixFileDescriptor> reply = answer;
      if (isWithoutPortal(reply.error())) return end(PortalEnd::Refused);
      if (reply.isError() || !reply.value().isValid()) return end(PortalEnd::NoPipeWire);
      // Duplicates the descriptor, because the reply closes its own.
      const int connection = fcntl(reply.value().fileDescriptor(), F_DUPFD_CLOEXEC, 0);
      if (connection < 0) return end(PortalEnd::NoPipeWire);
      events_.granted(connection, node);
    });
  }

  // Reports the end. The receiver may start another session, which ends this one.
  void end(PortalEnd end) const {
    const auto ended = events_.ended;
    endPortalSession();
    ended(end);
  }

  QDBusConnection bus_ = QDBusConnection::sessionBus();
  WId window_;
  QString token_;
  PortalEvents events_;
  QVariantMap properties_;
  QString request_;       // the request that waits for an answer
  bool isNamed_ = false;  // the portal has named its path
  QDBusMessage early_;    // an answer that came before that, on another path
  Step next_ = nullptr;
  QString handle_;  // of the session
  bool over_ = false;
  QDBusServiceWatcher portal_{service, bus_, QDBusServiceWatcher::WatchForUnregistration};
};

struct CloseSession {
  void operator()(Session* session) const { session->close(); }
};
std::unique_ptr<Session, CloseSession> session;

}  // namespace

void askPortal(WId window, bool anew, const PortalEvents& events) {
  session.reset(new Session(window, anew, events));
}

void endPortalSession() {
  session.reset();
}

}  // namespace tintora::platform

#include "portal.moc"
