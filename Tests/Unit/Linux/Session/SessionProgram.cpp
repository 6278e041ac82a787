// Runs one part of the session, for tests that need a process to start or signal:
//
//   instance       becomes the running instance, and prints "instance" and, for each start that is
//                  handed over, "activated", its action and its activation token; or prints
//                  "handed over" and ends. Its own token is XDG_ACTIVATION_TOKEN, and its action
//                  the next argument
//   stranger       takes the instance's name on the bus without its lock, and prints "stranger"
//   caller         calls what else the instance's interface has, and prints how each call ends
//   quit-signals   prints "ready" and runs until it is asked to quit, then prints "quits"
//   display        prints "ready" and runs with a window until its display is gone

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QWidget>
#include <cstdio>
#include <functional>
#include <map>
#include <string>

#include "Platform/Linux/Session/LinuxSystemLog.h"
#include "Platform/Linux/Session/RunningInstance.h"
#include "Platform/Linux/Session/SessionEnd.h"

namespace {

using namespace zephlin;

void print(const char* text) {
  std::fprintf(stderr, "%s\n", text);
}

int runInstance(SystemLog& log) {
  RunningInstance instance(log, [](const InstanceRequest& request) {
    print(("activated" + request.action + request.activationToken).toStdString().c_str());
  });
  if (!instance.becomeTheInstance(
          {.action = QApplication::arguments().value(2),
           .activationToken = qEnvironmentVariable("XDG_ACTIVATION_TOKEN")})) {
    print("handed over");
    return 0;
  }
  print("instance");
  return QApplication::exec();
}

int runStranger() {
  QDBusConnection::sessionBus().registerService(instanceBusName);
  print("stranger");
  return QApplication::exec();
}

void call(const char* method, const QVariantList& arguments) {
  auto message = QDBusMessage::createMethodCall(instanceBusName, instanceBusPath,
                                                instanceBusInterface, method);
  message.setArguments(arguments);
  const QDBusMessage reply = QDBusConnection::sessionBus().call(message);
  print(reply.type() == QDBusMessage::ReplyMessage ? "answered" : "refused");
}

int callOthers() {
  call("Open", {QStringList("file:///x"), QVariantMap()});
  call("Activate", {QVariantMap{{"desktop-startup-id", " by startup id"}}});
  call("ActivateAction", {" for an action", QVariantList(), QVariantMap()});
  call("Activate", {"wrong"});
  return 0;
}

int runUntilSignal() {
  const QuitSignals signals([] { QApplication::exit(0); });
  print("ready");
  const int status = QApplication::exec();
  print("quits");
  return status;
}

int runUntilDisplayIsGone(SystemLog& log) {
  const QtMessages messages(log);
  takeNoPartInSessions();
  QWidget window;
  window.show();
  print("ready");
  return QApplication::exec();
}

}  // namespace

int main(int argc, char* argv[]) {
  QApplication application(argc, argv);
  LinuxSystemLog log;
  const std::map<std::string, std::function<int()>> modes{
      {"instance", [&log] { return runInstance(log); }},
      {"stranger", runStranger},
      {"caller", callOthers},
      {"quit-signals", runUntilSignal},
      {"display", [&log] { return runUntilDisplayIsGone(log); }},
  };
  const auto mode = modes.find(argc > 1 ? argv[1] : "");
  return mode == modes.end() ? 64 : mode->second();
}
