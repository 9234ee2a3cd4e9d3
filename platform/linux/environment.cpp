#include "platform/linux/environment.h"

#include <QtGlobal>
#include <utility>
#include <vector>

namespace tintora::platform {

namespace {

struct Variable {
  const char* name;
  std::optional<QByteArray> other;  // the value that is not in force now
};
std::vector<Variable> ownVariables;

std::optional<QByteArray> valueOf(const char* name) {
  if (!qEnvironmentVariableIsSet(name)) return std::nullopt;
  return qgetenv(name);
}

void setVariable(const char* name, const std::optional<QByteArray>& value) {
  if (value) {
    qputenv(name, *value);
  } else {
    qunsetenv(name);
  }
}

void exchangeVariables() {
  for (auto& [name, other] : ownVariables) {
    std::optional<QByteArray> now = valueOf(name);
    setVariable(name, other);
    other = std::move(now);
  }
}

}  // namespace

void setOwnVariable(const char* name, const std::optional<QByteArray>& value) {
  ownVariables.push_back({name, valueOf(name)});
  setVariable(name, value);
}

UsersEnvironment::UsersEnvironment() {
  exchangeVariables();
}

UsersEnvironment::~UsersEnvironment() {
  exchangeVariables();
}

}  // namespace tintora::platform
