#include "Tests/Support/FakePanel.h"

namespace zephlin::test {

bool FakeWatcher::isHostRegistered() {
  ++timesAskedForHost;
  return hasHost_;
}

void FakeWatcher::appear() {
  bus_.registerObject(
      "/StatusNotifierWatcher", this,
      QDBusConnection::ExportScriptableContents | QDBusConnection::ExportAllProperties);
  bus_.registerService("org.kde.StatusNotifierWatcher");
}

void FakeWatcher::disappear() {
  bus_.unregisterService("org.kde.StatusNotifierWatcher");
  bus_.unregisterObject("/StatusNotifierWatcher");
}

void FakeWatcher::registerHost() {
  hasHost_ = true;
  Q_EMIT StatusNotifierHostRegistered();
}

void FakeWatcher::RegisterStatusNotifierItem(const QString& service) {
  item_ = service;
  ++registrations;
}

FakePanel::FakePanel(Host host) : watcher_(new FakeWatcher(bus_.get(), host == Host::Present)) {
  watcher_->moveToThread(&thread_);
  QObject::connect(&thread_, &QThread::finished, watcher_, &QObject::deleteLater);
  thread_.start();
  QMetaObject::invokeMethod(
      watcher_, [this] { watcher_->appear(); }, Qt::BlockingQueuedConnection);
}

FakePanel::~FakePanel() {
  QMetaObject::invokeMethod(
      watcher_, [this] { watcher_->disappear(); }, Qt::BlockingQueuedConnection);
  thread_.quit();
  thread_.wait();
}

void FakePanel::registerHost() {
  QMetaObject::invokeMethod(
      watcher_, [this] { watcher_->registerHost(); }, Qt::BlockingQueuedConnection);
}

QString FakePanel::item() const {
  QString item;
  QMetaObject::invokeMethod(
      watcher_, [this, &item] { item = watcher_->item(); }, Qt::BlockingQueuedConnection);
  return item;
}

}  // namespace zephlin::test
