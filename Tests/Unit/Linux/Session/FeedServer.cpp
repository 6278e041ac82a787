#include "Tests/Unit/Linux/Session/FeedServer.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFile>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <QTimer>
#include <stdexcept>

#include "Tests/Support/TestProcess.h"

namespace zephlin::test {

namespace {

QByteArray read(const std::string& path) {
  QFile file(QString::fromStdString(path));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

FeedServer::FeedServer() : previous_(QSslConfiguration::defaultConfiguration()) {
  const std::string key = directory_.file("key.pem");
  const std::string certificate = directory_.file("certificate.pem");
  const Outcome outcome =
      run({"/usr/bin/openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
           "ec_paramgen_curve:prime256v1", "-nodes", "-days", "2", "-subj", "/CN=localhost",
           "-addext", "subjectAltName=DNS:localhost", "-keyout", key, "-out", certificate});
  const QSslCertificate own(read(certificate));
  if (outcome.status != 0 || own.isNull()) {
    throw std::runtime_error("openssl: " + outcome.errors);
  }
  QSslConfiguration trusting = previous_;
  trusting.setCaCertificates({own});
  QSslConfiguration::setDefaultConfiguration(trusting);
  QSslConfiguration serving = previous_;
  serving.setLocalCertificate(own);
  serving.setPrivateKey(QSslKey(read(key), QSsl::Ec));
  server_.setSslConfiguration(serving);
  QObject::connect(&server_, &QTcpServer::pendingConnectionAvailable, &server_,
                   [this] { serve(); });
  if (!server_.listen(QHostAddress::LocalHost)) {
    throw std::runtime_error("the server cannot listen");
  }
}

FeedServer::~FeedServer() {
  QSslConfiguration::setDefaultConfiguration(previous_);
}

QUrl FeedServer::url(const QString& path) const {
  return QUrl("https://localhost:" + QString::number(server_.serverPort()) + path);
}

void FeedServer::becomeUntrusted() {
  QSslConfiguration::setDefaultConfiguration(previous_);
}

void FeedServer::serve() {
  QTcpSocket* const socket = server_.nextPendingConnection();
  ++connections;
  QObject::connect(socket, &QTcpSocket::disconnected, socket, [this, socket] {
    --connections;
    socket->deleteLater();
  });
  QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
    if (!socket->peek(65536).contains("\r\n\r\n")) {
      return;
    }
    ++requests;
    const auto answer = answers.find(socket->readAll().split(' ').value(1));
    if (answer != answers.end()) {
      socket->write(answer->second);
      socket->disconnectFromHost();
    }
  });
}

QByteArray httpAnswer(const QByteArray& content) {
  return "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " +
         QByteArray::number(content.size()) + "\r\n\r\n" + content;
}

bool runUntil(const std::function<bool()>& condition) {
  const QDeadlineTimer deadline(60'000);
  while (!condition()) {
    if (deadline.hasExpired()) {
      return false;
    }
    QEventLoop loop;
    QTimer::singleShot(5, &loop, &QEventLoop::quit);
    loop.exec();
  }
  return true;
}

}  // namespace zephlin::test
