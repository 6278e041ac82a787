// Another program with a window, larger than Zephlin's: a magenta one, with this title.

#include <QApplication>
#include <QWidget>

int main(int argc, char* argv[]) {
  const QApplication application(argc, argv);
  QWidget window;
  window.setWindowTitle("Other");
  QPalette palette;
  palette.setColor(QPalette::Window, Qt::magenta);
  window.setPalette(palette);
  // Of a fixed size it floats in a tiling compositor, too.
  constexpr int width = 960;
  constexpr int height = 600;
  window.setFixedSize(width, height);
  window.show();
  return QApplication::exec();
}
