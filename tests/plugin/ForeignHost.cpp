// SPDX-License-Identifier: Apache-2.0
// A host that knows the actions by its own declarations only: it loads the plug-in, opens the settings dialog, types a
// base URL, presses OK and reads its map.
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPluginLoader>
#include <QPushButton>
#include <QTextStream>
#include <QTimer>

// The host's own words for the contract. Only the names of the interface and its records are shared with the plug-in.
struct WorkProcInfoStruct {
  void* fields[4];
  QMap<QString, QVariant>* settings;
  void* more[4];  // fields that the action knows nothing of
};

struct DialogLoadStruct {
  void* fields[4];
  QMap<QString, QVariant>* settings;
  void* field6;
  unsigned char hideAddToActionList;
  unsigned char skipDocumentValue;
};

class CActionInterface {
 public:
  virtual ~CActionInterface() = default;
  virtual int work(WorkProcInfoStruct*) = 0;
  virtual int edit(QWidget*, DialogLoadStruct*) = 0;
  virtual int before(WorkProcInfoStruct*) = 0;
  virtual int after(WorkProcInfoStruct*) = 0;
  virtual QString name() = 0;
  virtual QString displayName() = 0;
  virtual QString help() = 0;
  virtual QString group() = 0;
  virtual int flags() = 0;
  virtual QString icon() = 0;
};

namespace {

int fail(const QString& what) {
  QTextStream(stderr) << what << '\n';
  return 1;
}

int run(const QString& file) {
  QPluginLoader loader(file);
  QObject* root = loader.instance();
  if (!root) return fail(loader.errorString());
  auto* action = static_cast<CActionInterface*>(root->qt_metacast("com.Halvex.Vorlane.ActionInterface_1.0"));
  if (!action) return fail("not an action");
  if (action->name() != "Set Base URL" || action->group() != "Document Properties" || action->flags() != 15) {
    return fail("not the action");
  }
  if (action->before(nullptr) != 1 || action->after(nullptr) != 1) return fail("a run may not start or end");

  QWidget window;
  window.setObjectName("VorlaneClass");
  QMap<QString, QVariant> settings{{"baseUrlString", "http://old.example/"}, {"mine", 1}};
  DialogLoadStruct info{};
  info.settings = &settings;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [] {
    QWidget* dialog = QApplication::activeModalWidget();
    if (!dialog) return;
    dialog->findChild<QLineEdit*>()->setText("http://new.example/");
    dialog->findChild<QPushButton*>("okButton")->click();
  });
  timer.start(1);
  if (action->edit(&window, &info) != 1) return fail("the dialog was not accepted");
  const QMap<QString, QVariant> expected{
      {"ActionName", "Set Base URL"}, {"baseUrlString", "http://new.example/"}, {"mine", 1}};
  return settings == expected ? 0 : fail("the map was not edited");
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  return run(QString::fromLocal8Bit(argv[1]));
}
