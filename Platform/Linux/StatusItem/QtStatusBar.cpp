#include "Platform/Linux/StatusItem/QtStatusBar.h"

#include <QGuiApplication>
#include <utility>

#include "Platform/Linux/StatusItem/QtStatusItem.h"
#include "Platform/Linux/StatusItem/SymbolIcons.h"

namespace zephlin {

namespace {

class HiddenStatusItem final : public StatusItem {
 public:
  [[nodiscard]] bool hasButton() const override { return false; }
  void setButtonImage(const std::optional<SymbolImage>& /*image*/) override {}
  void setButtonToolTip(const std::string& /*text*/) override {}
  void setMenu(std::shared_ptr<Menu> /*menu*/) override {}
};

}  // namespace

QtStatusBar::QtStatusBar(std::function<bool()> isTerminating)
    : isTerminating_(std::move(isTerminating)) {}

std::unique_ptr<StatusItem> QtStatusBar::makeStatusItem(double /*length*/) {
  if (QGuiApplication::platformName() == QLatin1String("offscreen")) {
    return std::make_unique<HiddenStatusItem>();
  }
  return std::make_unique<QtStatusItem>(isTerminating_);
}

std::optional<SymbolImage> QtStatusBar::systemSymbol(const std::string& name,
                                                     const std::string& accessibilityDescription) {
  if (!iconNameOf(name)) {
    return std::nullopt;
  }
  return SymbolImage{name, accessibilityDescription, false};
}

}  // namespace zephlin
