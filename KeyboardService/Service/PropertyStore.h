#pragma once

#include <map>
#include <string>

#include "KeyboardService/Protocol/Properties.h"
#include "KeyboardService/Service/Log.h"

namespace zephlin {

/// Keeps the properties of keyboards in a file, so that a service that is started again before the
/// machine is can put them back. Nothing here throws: trouble is logged, and without its file the
/// service works as usual.
class PropertyStore {
 public:
  /// By the identities of the keyboards.
  using Properties = std::map<std::string, PropertySet>;

  /// Reads the file, which is ignored, with a line in the log, if it is not this program's or was
  /// written before the machine was started. `bootID` tells one start of the machine from another.
  PropertyStore(std::string path, std::string bootID, Log log);

  /// The properties that an earlier run kept for this keyboard, once.
  PropertySet take(const std::string& identity);

  /// Makes these the properties in the file, in one step. Removes the file if there are no
  /// properties.
  void keep(const Properties& properties);

 private:
  [[nodiscard]] Properties read() const;
  void write(const std::string& text) const;

  std::string path_;
  std::string bootID_;
  Log log_;
  Properties fromEarlierRun_;
  Properties kept_;
  bool isInTrouble_ = false;
};

}  // namespace zephlin
