#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTextDocumentFragment>
#include <optional>

#include "Platform/Linux/Session/AppcastUpdater.h"
#include "Tests/Unit/Linux/Session/FeedServer.h"
#include "Tests/Unit/Linux/Session/UrlRecorder.h"

namespace zephlin {
namespace {

class AppcastUpdaterTest : public testing::Test {
 protected:
  static std::vector<QMessageBox*> boxes() {
    std::vector<QMessageBox*> visible;
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
      if (auto* const box = qobject_cast<QMessageBox*>(widget);
          box != nullptr && box->isVisible()) {
        visible.push_back(box);
      }
    }
    return visible;
  }

  static QString plain(const QString& html) {
    return QTextDocumentFragment::fromHtml(html).toPlainText();
  }

  /// Text, information and buttons of the one window.
  static std::string shown() {
    if (boxes().size() != 1) {
      return std::to_string(boxes().size()) + " windows";
    }
    const QMessageBox& box = *boxes().front();
    QString text = plain(box.text()) + "|" + plain(box.informativeText());
    for (const QAbstractButton* const button : box.buttons()) {
      text += "|" + button->text().remove('&');
    }
    return text.toStdString();
  }

  static void click(QMessageBox::StandardButton button) {
    boxes().front()->button(button)->click();
  }

  void offer(const QByteArray& version, const QByteArray& page) {
    server_.answers["/feed"] = test::httpAnswer(
        "<rss xmlns:s=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel><item>"
        "<s:version>" +
        version + "</s:version><link>" + page + "</link></item></channel></rss>");
  }

  std::string check() {
    updater_.checkForUpdates();
    EXPECT_EQ(shown(), "Checking for updates…||Cancel");
    EXPECT_TRUE(test::runUntil([] { return shown() != "Checking for updates…||Cancel"; }));
    return shown();
  }

  test::FeedServer server_;
  test::UrlRecorder browser_;
  AppcastUpdater updater_{server_.url("/feed"), QVersionNumber(0, 9), UPDATES_MODULE};
};

TEST_F(AppcastUpdaterTest, NothingIsAskedBeforeTheUserAsks) {
  int rounds = 0;
  EXPECT_TRUE(test::runUntil([&rounds] { return ++rounds > 20; }));
  EXPECT_EQ(server_.connections, 0);
  EXPECT_TRUE(boxes().empty());
}

TEST_F(AppcastUpdaterTest, ANewerVersionIsOfferedByItsPage) {
  offer("0.10", "https://example.com/new");
  EXPECT_EQ(check(), "Zephlin 0.10 is available|You have version 0.9.|Open Download Page|Later");
  EXPECT_FALSE(boxes().front()->isModal());
  click(QMessageBox::Open);
  EXPECT_EQ(browser_.opened, std::vector<QUrl>{QUrl("https://example.com/new")});
  EXPECT_TRUE(boxes().empty());
}

TEST_F(AppcastUpdaterTest, LaterOpensNothing) {
  offer("0.10", "https://example.com/new");
  check();
  click(QMessageBox::Cancel);
  EXPECT_TRUE(browser_.opened.empty());
  EXPECT_TRUE(boxes().empty());
}

TEST_F(AppcastUpdaterTest, ANewerVersionWithoutASecurePageIsToldAlone) {
  offer("1.0", "http://example.com/new");
  EXPECT_EQ(check(), "Zephlin 1.0 is available|You have version 0.9.|OK");
  click(QMessageBox::Ok);
  EXPECT_TRUE(browser_.opened.empty());
}

TEST_F(AppcastUpdaterTest, TheSameOrAnOlderVersionIsNone) {
  for (const char* const version : {"0.9", "0.9.0", "0.8.99"}) {
    offer(version, "https://example.com/new");
    EXPECT_EQ(check(), "Zephlin is up to date|Version 0.9 is the newest one.|OK") << version;
    click(QMessageBox::Ok);
  }
}

TEST_F(AppcastUpdaterTest, AFailureIsToldWithItsReason) {
  server_.answers["/feed"] = test::httpAnswer("<html/>");
  EXPECT_EQ(check(), "Zephlin could not check for updates|The answer is not a feed of updates.|OK");
}

TEST_F(AppcastUpdaterTest, AMissingModuleIsAFailureThatNamesThePackageToInstall) {
  AppcastUpdater updater(server_.url("/feed"), QVersionNumber(0, 9), "/nonexistent/updates.so");
  updater.checkForUpdates();
  EXPECT_TRUE(test::runUntil([] { return shown() != "Checking for updates…||Cancel"; }));
  EXPECT_EQ(shown().find("Zephlin could not check for updates|A part of Zephlin is missing; "
                         "reinstall the package zephlin-desktop. "),
            0U)
      << shown();
  EXPECT_NE(shown().find("/nonexistent/updates.so"), std::string::npos) << shown();
  EXPECT_EQ(server_.connections, 0);
}

TEST_F(AppcastUpdaterTest, AServersWordsAreNoMarkup) {
  server_.answers["/feed"] =
      "HTTP/1.1 500 <b>Bad</b>\r\nConnection: close\r\nContent-Length: 0\r\n\r\n";
  EXPECT_NE(check().find("<b>Bad</b>"), std::string::npos) << shown();
}

TEST_F(AppcastUpdaterTest, ASecondCheckWhileOneRunsShowsTheSameWindow) {
  updater_.checkForUpdates();
  const QMessageBox* const box = boxes().front();
  EXPECT_TRUE(test::runUntil([this] { return server_.requests == 1; }));
  updater_.checkForUpdates();
  EXPECT_EQ(shown(), "Checking for updates…||Cancel");
  EXPECT_EQ(boxes().front(), box);
  EXPECT_EQ(server_.requests, 1);
}

TEST_F(AppcastUpdaterTest, ASecondCheckBringsAHiddenWindowBack) {
  updater_.checkForUpdates();
  QMessageBox* const box = boxes().front();
  box->hide();
  updater_.checkForUpdates();
  EXPECT_TRUE(box->isVisible());
}

TEST_F(AppcastUpdaterTest, ClosingTheWindowEndsTheCheck) {
  updater_.checkForUpdates();
  EXPECT_TRUE(test::runUntil([this] { return server_.requests == 1; }));
  boxes().front()->close();
  EXPECT_TRUE(test::runUntil([this] { return server_.connections == 0; }));
  EXPECT_TRUE(boxes().empty());
  offer("0.10", "https://example.com/new");
  check();
  EXPECT_EQ(server_.requests, 2);
}

TEST_F(AppcastUpdaterTest, ABuildWithoutAnAddressSaysHowToUpdate) {
  AppcastUpdater updater(QUrl(), QVersionNumber(0, 9), UPDATES_MODULE);
  updater.checkForUpdates();
  updater.checkForUpdates();
  EXPECT_EQ(shown(),
            "Zephlin does not look for updates|This build has no update address. To update, "
            "install a newer package over this one.|OK");
}

}  // namespace
}  // namespace zephlin
