// The smallest application in the tray: Zephlin's size and speed are compared with it.

#include <QApplication>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char* argv[]) {
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QPixmap square(22, 22);
  square.fill(Qt::white);
  QMenu menu;
  QSystemTrayIcon icon{QIcon(square)};
  icon.setContextMenu(&menu);
  icon.show();
  return QApplication::exec();
}
