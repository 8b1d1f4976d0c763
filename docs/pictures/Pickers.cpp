// SPDX-License-Identifier: Apache-2.0
// Pickers FOLDER: opens each picker in a real window, pops it up and saves what the screen shows. Run it through
// docs/pictures/make-screenshots.
#include <functional>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QScreen>
#include <QTextStream>
#include <QVBoxLayout>

#include "utils/CActionUtils.h"

namespace {

struct Exhibit {
  const char* name;
  const char* title;
  int width, current;
  std::function<void(QComboBox*)> setUp;
};

void WaitForScreen() {
  QElapsedTimer timer;
  for (timer.start(); timer.elapsed() < 400;) QApplication::processEvents(QEventLoop::AllEvents, 20);
}

bool Photograph(const Exhibit& exhibit, const QString& path) {
  QWidget window;
  auto* layout = new QVBoxLayout(&window);
  layout->addWidget(new QLabel(QLatin1String(exhibit.title)));
  auto* combo = new QComboBox;
  layout->addWidget(combo, 0, Qt::AlignLeft);
  layout->addStretch();
  combo->setFixedWidth(exhibit.width);
  window.setWindowFlags(Qt::FramelessWindowHint);
  window.setFixedSize(2 * exhibit.width + 50, 240);
  window.move(20, 20);
  window.show();
  WaitForScreen();
  exhibit.setUp(combo);
  combo->setCurrentIndex(exhibit.current);
  combo->showPopup();
  WaitForScreen();
  // Beside the combo box, so that the picture shows both.
  combo->view()->window()->move(combo->mapToGlobal(QPoint(combo->width() + 10, 0)).x(), window.y() + 10);
  WaitForScreen();
  const QPixmap picture =
      QApplication::primaryScreen()->grabWindow(0, window.x(), window.y(), window.width(), window.height());
  return !picture.isNull() && picture.save(path);
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  if (argc != 2 || QGuiApplication::platformName() != QLatin1String("xcb")) {
    QTextStream(stderr) << "usage: Pickers FOLDER, on an X server\n";
    return 2;
  }
  const Exhibit exhibits[] = {
      {"picker-color-none", "Fill colour:", 140, 0,
       [](QComboBox* c) { CActionUtils::SetupColorPickerComboBox(c, true); }},
      {"picker-color", "Line colour:", 140, 3, [](QComboBox* c) { CActionUtils::SetupColorPickerComboBox(c, false); }},
      {"picker-line-style", "Line style:", 120, 1, CActionUtils::SetupLineStylePickerComboBox},
      {"picker-underline", "Underline:", 120, 2, CActionUtils::SetupUnderlineStylePickerComboBox},
      {"picker-line-weight", "Line weight:", 110, 4, CActionUtils::SetupLineWeightPickerComboBox},
      {"picker-standard-fonts", "Font:", 160, 1, CActionUtils::SetupStandardFontsComboBox},
      {"picker-system-fonts", "Font:", 200, 0, CActionUtils::SetupSystemFontsComboBox},
  };
  for (const Exhibit& exhibit : exhibits) {
    if (!Photograph(exhibit, QDir(QString::fromLocal8Bit(argv[1])).filePath(exhibit.name + QStringLiteral(".png")))) {
      QTextStream(stderr) << "cannot save " << exhibit.name << '\n';
      return 1;
    }
  }
  return 0;
}
