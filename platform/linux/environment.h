// The user's environment, and the program's own changes to it.
#pragma once

#include <QByteArray>
#include <optional>

namespace tintora::platform {

// Sets a variable for the program itself, or removes it.
void setOwnVariable(const char* name, const std::optional<QByteArray>& value);

// Restores the user's values of all variables for its lifetime, to start other programs.
class UsersEnvironment {
 public:
  UsersEnvironment();
  ~UsersEnvironment();
  UsersEnvironment(const UsersEnvironment&) = delete;
  UsersEnvironment& operator=(const UsersEnvironment&) = delete;
};

}  // namespace tintora::platform
