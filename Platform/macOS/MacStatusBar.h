#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Platform/StatusBar.h"

namespace zephlin {

/// The system's status bar, with SF Symbols.
class MacStatusBar final : public StatusBar {
 public:
  std::unique_ptr<StatusItem> makeStatusItem() override;
  std::optional<SymbolImage> systemSymbol(const std::string& name,
                                          const std::string& accessibilityDescription) override;
};

}  // namespace zephlin
