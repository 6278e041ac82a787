#pragma once

#include <QByteArray>
#include <QtGlobal>

namespace zephlin::test {

/// Gives an environment variable another value, or none where it is null, and its former one at the
/// end.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const QByteArray& value)
      : name_(name), former_(qgetenv(name)) {
    set(value);
  }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
  ~EnvironmentVariable() { set(former_); }

 private:
  void set(const QByteArray& value) const {
    if (value.isNull()) {
      qunsetenv(name_);
    } else {
      qputenv(name_, value);
    }
  }

  const char* name_;
  QByteArray former_;
};

}  // namespace zephlin::test
