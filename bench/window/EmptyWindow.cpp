// SPDX-License-Identifier: Apache-2.0
// The least that a program with a window of Qt Widgets can be.
#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv) {
  QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
  QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
  const QApplication application(argc, argv);
  QMainWindow window;
  window.resize(1100, 720);
  window.show();
  return QApplication::exec();
}
