// Sets an environment variable for the length of a test.
#pragma once

#ifdef _WIN32
#include <windows.h>
#endif

#include <cstdlib>
#include <string>

namespace fe::test {

class ScopedVariable {
 public:
  ScopedVariable(const char* name, const char* value) : name_(name) {
    const char* old = std::getenv(name);
    had_ = old != nullptr;
    if (had_) old_ = old;
    Set(value);
  }
  ~ScopedVariable() { Set(had_ ? old_.c_str() : nullptr); }
  ScopedVariable(const ScopedVariable&) = delete;
  ScopedVariable& operator=(const ScopedVariable&) = delete;

 private:
  void Set(const char* value) {
#ifdef _WIN32
    SetEnvironmentVariableA(name_, value);
#else
    if (value) {
      setenv(name_, value, 1);
    } else {
      unsetenv(name_);
    }
#endif
  }
  const char* name_;
  bool had_ = false;
  std::string old_;
};

}  // namespace fe::test
