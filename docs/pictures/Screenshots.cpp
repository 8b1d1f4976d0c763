// SPDX-License-Identifier: Apache-2.0
// Screenshots FOLDER SUFFIX EXAMPLE: opens the windows of the plug-ins and of the example's, the file EXAMPLE, one
// after the other and saves what the screen shows of each as <window><suffix>.png. Run it through
// docs/pictures/make-screenshots.
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QPluginLoader>
#include <QScreen>
#include <QTextStream>
#include <QTimer>
#include <QToolButton>
#include <QWindow>

#include "plugin/CActionInterface.h"
#include "plugin/DialogLoadStruct.h"

namespace {

struct Picture {
  const char* file;
  const char* context;
  const char* toolbarButton;  // null: the settings dialog itself
  const char* nameField;
  const char* plugin = SETBASEURL_FILE;  // null: the example's
};

constexpr Picture kPictures[] = {
    {"settings-main", "VorlaneClass", nullptr, nullptr},
    {"settings-preview", "VorlanePreviewClass", nullptr, nullptr},
    {"settings-standalone", "", nullptr, nullptr},
    {"add-to-action", "VorlaneClass", "VDtoolbarAddToActionListButton", "actionListNameLineEdit"},
    {"add-to-favorites", "VorlaneClass", "VDtoolbarAddToCollectionsButton", "collectionNameLineEdit"},
    {"make-links-absolute", "VorlaneClass", nullptr, nullptr, MAKELINKSABSOLUTE_FILE},
    {"set-title", "", nullptr, nullptr, nullptr},
};

// Waits for the window that the picture is of, opening it from the settings dialog if need be.
class Photographer : public QObject {
 public:
  Photographer(const Picture& picture, const QString& file) : picture_(picture), file_(file) {
    QObject::connect(&timer_, &QTimer::timeout, this, [this] { step(); });
    timer_.start(50);
  }
  bool saved() const { return saved_; }

 private:
  void step() {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!dialog || !dialog->isActiveWindow() || !dialog->windowHandle()->isExposed()) return;
    const bool settings = dialog->objectName() == QLatin1String("SetBaseURLPrefsDialog");
    if (settings && picture_.toolbarButton) {
      QMetaObject::invokeMethod(dialog->findChild<QToolButton*>(QLatin1String(picture_.toolbarButton)), "click",
                                Qt::QueuedConnection);
      return;
    }
    if (steps_++ == 0 && picture_.nameField) {
      dialog->findChild<QLineEdit*>(QLatin1String(picture_.nameField))->setText(QStringLiteral("Company web site"));
    }
    if (steps_ < 6) return;  // painted, and the caret's state does not matter
    timer_.stop();
    const QRect frame = dialog->frameGeometry();
    saved_ =
        QApplication::primaryScreen()->grabWindow(0, frame.x(), frame.y(), frame.width(), frame.height()).save(file_);
    dialog->reject();
  }

  const Picture& picture_;
  QString file_;
  QTimer timer_;
  int steps_ = 0;
  bool saved_ = false;
};

int takeAll(const QString& folder, const QString& suffix, const QString& example) {
  for (const Picture& picture : kPictures) {
    QPluginLoader loader(picture.plugin != nullptr ? QString::fromUtf8(picture.plugin) : example);
    auto* action = qobject_cast<CActionInterface*>(loader.instance());
    if (!action) {
      QTextStream(stderr) << loader.errorString() << '\n';
      return 1;
    }
    QWidget window;
    window.setObjectName(QLatin1String(picture.context));
    QMap<QString, QVariant> settings{{"baseUrlString", "https://www.example.org/manuals/"},
                                     {"base", "https://www.example.org/manuals/"},
                                     {"titleString", "Spring tide"}};
    DialogLoadStruct info{};
    info.settings = &settings;
    const QString file = QDir(folder).filePath(QLatin1String(picture.file) + suffix + QStringLiteral(".png"));
    const Photographer photographer(picture, file);
    action->ShowDialogProc(&window, &info);
    if (!photographer.saved()) {
      QTextStream(stderr) << "cannot write " << file << '\n';
      return 1;
    }
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() != 4) {
    QTextStream(stderr) << "usage: Screenshots FOLDER SUFFIX EXAMPLE\n";
    return 2;
  }
  return takeAll(arguments.at(1), arguments.at(2), arguments.at(3));
}
