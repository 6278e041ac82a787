#include "Platform/Linux/Windows/KeyEquivalents.h"

#include <QApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMetaObject>
#include <QWidget>
#include <utility>

#include "Platform/Linux/Windows/QtWindowServer.h"

namespace zephlin {

namespace {

Qt::KeyboardModifiers realise(ModifierFlags flags) {
  Qt::KeyboardModifiers modifiers;
  modifiers.setFlag(Qt::ControlModifier, (flags & modifierCommand) != 0);
  modifiers.setFlag(Qt::ShiftModifier, (flags & modifierShift) != 0);
  return modifiers;
}

bool isEquivalent(const MenuItem& item, const QKeyEvent& event) {
  const auto keys = QKeySequence::fromString(QString::fromStdString(item.keyEquivalent));
  return !keys.isEmpty() && keys[0].key() == event.key() &&
         realise(item.keyEquivalentModifierMask) ==
             (event.modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier));
}

std::shared_ptr<MenuItem> findItem(const Menu& menu, const QKeyEvent& event) {
  for (const auto& item : menu.items()) {
    if (isEquivalent(*item, event)) {
      return item;
    }
    if (item->submenu) {
      if (auto found = findItem(*item->submenu, event)) {
        return found;
      }
    }
  }
  return nullptr;
}

bool hideWindows() {
  for (QWidget* const window : shownWindows()) {
    window->hide();
  }
  return true;
}

/// False if no widget has the slot.
bool sendToFocus(const char* slot) {
  const QByteArray signature = QByteArray(slot) + "()";
  for (QWidget* widget = QApplication::focusWidget(); widget != nullptr;
       widget = widget->parentWidget()) {
    if (widget->metaObject()->indexOfSlot(signature) >= 0) {
      return QMetaObject::invokeMethod(widget, slot);
    }
  }
  return false;
}

}  // namespace

KeyEquivalents::KeyEquivalents(std::shared_ptr<Menu> mainMenu, std::function<void()> terminate)
    : mainMenu_(std::move(mainMenu)), terminate_(std::move(terminate)) {
  QCoreApplication::instance()->installEventFilter(this);
}

bool KeyEquivalents::eventFilter(QObject* watched, QEvent* event) {
  // A key is delivered to its window first, and then to the widget.
  if (event->type() != QEvent::KeyPress || !watched->isWindowType()) {
    return false;
  }
  const auto item = findItem(*mainMenu_, static_cast<const QKeyEvent&>(*event));
  return item && perform(*item);
}

bool KeyEquivalents::perform(const MenuItem& item) const {
  if (const auto* responderAction = std::get_if<ResponderAction>(&item.action)) {
    return perform(*responderAction);
  }
  return performAction(item.action);
}

bool KeyEquivalents::perform(ResponderAction action) const {
  switch (action) {
    case ResponderAction::Hide:
      return hideWindows();
    case ResponderAction::Terminate:
      terminate_();
      return true;
    case ResponderAction::Undo:
      return sendToFocus("undo");
    case ResponderAction::Redo:
      return sendToFocus("redo");
    case ResponderAction::Cut:
      return sendToFocus("cut");
    case ResponderAction::Copy:
      return sendToFocus("copy");
    case ResponderAction::Paste:
      return sendToFocus("paste");
    case ResponderAction::SelectAll:
      return sendToFocus("selectAll");
  }
  return false;
}

}  // namespace zephlin
