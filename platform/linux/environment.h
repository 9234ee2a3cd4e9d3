// The environment as the user set it, and what the program changes in it for itself.
#pragma once

#include <QByteArray>
#include <optional>

namespace tintora::platform {

// Sets a variable for the program itself, or removes it.
void setOwnVariable(const char* name, const std::optional<QByteArray>& value);

// While it lives, all variables that were set for the program itself are as the user set them:
// for starting other programs.
class UsersEnvironment {
 public:
  UsersEnvironment();
  ~UsersEnvironment();
  UsersEnvironment(const UsersEnvironment&) = delete;
  UsersEnvironment& operator=(const UsersEnvironment&) = delete;
};

}  // namespace tintora::platform
