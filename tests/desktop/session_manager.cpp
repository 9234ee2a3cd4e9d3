#include "session_manager.h"

#include <X11/SM/SMlib.h>
#include <poll.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <span>
#include <stdexcept>

namespace tintora::desktop_test {

// The callbacks and the state of the X session management protocol. Only the manager's thread uses
// them after the start.
struct SessionManager::Protocol {
  SessionManager* manager = nullptr;
  int listenerCount = 0;
  IceListenObj* listeners = nullptr;
  std::vector<IceConn> connections;
  SmsConn program = nullptr;

  static Protocol& of(SmPointer data) { return *static_cast<Protocol*>(data); }

  static Status onRegistered(SmsConn connection, SmPointer data, char* previousId) {
    of(data).program = connection;
    std::free(previousId);
    char* const id = SmsGenerateClientID(connection);
    SmsRegisterClientReply(connection, id);
    std::free(id);
    // The protocol requires this for a program without an earlier session.
    SmsSaveYourself(connection, SmSaveLocal, False, SmInteractStyleNone, False);
    return 1;
  }

  static void onProperties(SmsConn /*connection*/, SmPointer data, int count, SmProp** properties) {
    SessionManager& manager = *of(data).manager;
    for (SmProp* const property : std::span(properties, static_cast<std::size_t>(count))) {
      if (std::strcmp(property->name, SmRestartCommand) == 0) {
        const std::lock_guard lock(manager.mutex_);
        manager.restartCommand_.clear();
        for (const SmPropValue& value :
             std::span(property->vals, static_cast<std::size_t>(property->num_vals))) {
          manager.restartCommand_.emplace_back(static_cast<const char*>(value.value),
                                               static_cast<std::size_t>(value.length));
        }
      }
      SmFreeProperty(property);
    }
    std::free(properties);
  }

  static void onSaved(SmsConn connection, SmPointer data, Bool success) {
    if (success != 0) ++of(data).manager->timesSaved_;
    // At the end of a session, the program waits for one of two messages.
    if (!of(data).manager->endAnnounced_) SmsSaveComplete(connection);
  }

  static void onClosed(SmsConn connection, SmPointer data, int count, char** reasons) {
    of(data).program = nullptr;
    SmFreeReasons(count, reasons);
    IceConn transport = SmsGetIceConnection(connection);
    SmsCleanUp(connection);
    IceSetShutdownNegotiation(transport, False);
    IceCloseConnection(transport);
    std::erase(of(data).connections, transport);
  }

  static Status onNewClient(SmsConn /*connection*/, SmPointer data, unsigned long* mask,
                            SmsCallbacks* callbacks, char** /*failure*/) {
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask |
            SmsSaveYourselfDoneProcMask | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask |
            SmsDeletePropertiesProcMask | SmsGetPropertiesProcMask;
    callbacks->register_client = {&onRegistered, data};
    callbacks->save_yourself_done = {&onSaved, data};
    callbacks->close_connection = {&onClosed, data};
    callbacks->set_properties = {&onProperties, data};
    // The program requests none of these.
    callbacks->interact_request = {[](SmsConn, SmPointer, int) {}, data};
    callbacks->interact_done = {[](SmsConn, SmPointer, Bool) {}, data};
    callbacks->save_yourself_request = {[](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {},
                                        data};
    callbacks->save_yourself_phase2_request = {[](SmsConn, SmPointer) {}, data};
    callbacks->delete_properties = {
        [](SmsConn, SmPointer, int count, char** names) {
          for (char* const name : std::span(names, static_cast<std::size_t>(count))) {
            std::free(name);
          }
          std::free(names);
        },
        data};
    callbacks->get_properties = {[](SmsConn, SmPointer) {}, data};
    return 1;
  }

  void accept(IceListenObj listener) {
    IceAcceptStatus status{};
    IceConn connection = IceAcceptConnection(listener, &status);
    if (connection == nullptr) return;
    while (IceConnectionStatus(connection) == IceConnectPending) {
      IceProcessMessages(connection, nullptr, nullptr);
    }
    if (IceConnectionStatus(connection) == IceConnectAccepted) connections.push_back(connection);
  }

  // Handles what has arrived within a short time.
  void handleMessages() {
    constexpr int milliseconds = 20;
    std::vector<pollfd> files;
    for (int i = 0; i < listenerCount; ++i) {
      files.push_back({IceGetListenConnectionNumber(listeners[i]), POLLIN, 0});
    }
    const std::vector<IceConn> before = connections;
    for (IceConn connection : before) {
      files.push_back({IceConnectionNumber(connection), POLLIN, 0});
    }
    if (poll(files.data(), files.size(), milliseconds) <= 0) return;
    for (std::size_t i = 0; i < files.size(); ++i) {
      if (files[i].revents == 0) continue;
      const auto listening = static_cast<std::size_t>(listenerCount);
      if (i < listening) {
        accept(listeners[i]);
      } else if (IceProcessMessages(before[i - listening], nullptr, nullptr) ==
                 IceProcessMessagesIOError) {
        std::erase(connections, before[i - listening]);
        program = nullptr;
      }
    }
  }
};

SessionManager::SessionManager() : protocol_(std::make_unique<Protocol>()) {
  protocol_->manager = this;
  std::array<char, 256> error{};
  // Without these, errors of the connection would end the tests.
  IceSetIOErrorHandler([](IceConn) {});
  if (SmsInitialize(
          "tests", "1", &Protocol::onNewClient, protocol_.get(), [](char*) -> Bool { return 1; },
          error.size(), error.data()) == 0 ||
      IceListenForConnections(&protocol_->listenerCount, &protocol_->listeners, error.size(),
                              error.data()) == 0) {
    throw std::runtime_error(std::string("The session manager did not start: ") + error.data());
  }
  for (int i = 0; i < protocol_->listenerCount; ++i) {
    IceSetHostBasedAuthProc(protocol_->listeners[i], [](char*) -> Bool { return 1; });
  }
  char* const address = IceComposeNetworkIdList(protocol_->listenerCount, protocol_->listeners);
  address_ = address;
  std::free(address);
  thread_ = std::thread([this] { run(); });
}

SessionManager::~SessionManager() {
  stopped_ = true;
  thread_.join();
  IceFreeListenObjs(protocol_->listenerCount, protocol_->listeners);
}

std::vector<std::string> SessionManager::restartCommand() const {
  const std::lock_guard lock(mutex_);
  return restartCommand_;
}

void SessionManager::run() {
  bool announced = false;
  bool ended = false;
  while (!stopped_) {
    protocol_->handleMessages();
    if (protocol_->program == nullptr) continue;
    if (endAnnounced_ && !announced) {
      announced = true;
      SmsSaveYourself(protocol_->program, SmSaveBoth, True, SmInteractStyleAny, False);
    }
    if (programEnds_ && !ended) {
      ended = true;
      SmsDie(protocol_->program);
    }
  }
}

}  // namespace tintora::desktop_test
