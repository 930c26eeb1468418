// Variables of the environment for the life of an object.
#pragma once

#include <stdlib.h>

namespace kzb_test {

// Set to `value`, null for unset; unset in the end.
class Environment {
  public:
    Environment(const char* name, const char* value) : name_(name) {
        value == nullptr ? ::unsetenv(name_) : ::setenv(name_, value, 1);
    }
    ~Environment() { ::unsetenv(name_); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

  private:
    const char* name_;
};

}  // namespace kzb_test
