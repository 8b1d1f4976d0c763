// SPDX-License-Identifier: Apache-2.0
// A host that uses the actions through its own declarations only: it loads the plug-in, opens the settings dialog and
// the two save dialogs, types a base URL, presses OK, unloads the plug-in and then reads its map.
#include <memory>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QLineEdit>
#include <QPluginLoader>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>
#include <QToolButton>
#include <QVariant>

// The host's own declarations of the contract. Only the names of the interface and its records are shared with the
// plug-in.
struct WorkProcInfoStruct {
  void* fields[4];
  QMap<QString, QVariant>* settings;
  void* more[4];  // fields that the action does not use
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

using Map = QMap<QString, QVariant>;

// What a person does with the dialog on top. The settings dialog gets a base URL and the button `press`; the dialog
// that this opens gets a name and is saved.
void handle(QDialog& dialog, const QString& press) {
  const QString name = dialog.objectName();
  if (name == "SetBaseURLPrefsDialog") {
    dialog.findChild<QLineEdit*>("lineEdit")->setText("http://new.example/");
    dialog.findChild<QAbstractButton*>(press)->click();
  } else {
    dialog.findChildren<QLineEdit*>(QRegularExpression(".*NameLineEdit")).value(0)->setText("Mine");
    dialog.findChild<QAbstractButton*>("saveButton")->click();
  }
}

// A timer for each dialog: one whose handler is still running does not fire again.
void watch(const char* press, const std::shared_ptr<bool>& over) {
  QTimer::singleShot(1, [press, over] {
    if (*over) return;
    watch(press, over);
    if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) handle(*dialog, press);
  });
}

QStringList describe(CActionInterface& action) {
  return {action.name(), action.displayName(), action.help(), action.group(), action.icon()};
}

// Edits the map, first by way of both save dialogs; `texts` gets the action's description of itself.
int edit(QPluginLoader& loader, Map& settings, QStringList& texts) {
  QObject* root = loader.instance();
  if (!root) return fail(loader.errorString());
  auto* action = static_cast<CActionInterface*>(root->qt_metacast("com.Halvex.Vorlane.ActionInterface_1.0"));
  if (!action || action->flags() != 15) return fail("not the action");
  texts = describe(*action);
  if (action->before(nullptr) != 1 || action->after(nullptr) != 1) return fail("a run may not start or end");

  QWidget window;
  window.setObjectName("VorlanePreviewClass");  // whose dialogs write their place to a settings file
  DialogLoadStruct info{};
  info.settings = &settings;
  info.skipDocumentValue = 1;
  for (const char* press : {"VDtoolbarAddToActionListButton", "VDtoolbarAddToCollectionsButton", "okButton"}) {
    const auto over = std::make_shared<bool>(false);
    watch(press, over);
    if (action->edit(&window, &info) != (QString(press) == "okButton")) return fail(QString("result of ") + press);
    *over = true;
  }
  return 0;
}

bool isMapped(const QString& file) {
  QFile maps("/proc/self/maps");
  return !maps.open(QFile::ReadOnly) || maps.readAll().contains(QFile::encodeName(file));
}

int run(const QString& file) {
  QPluginLoader loader(file);
  loader.setLoadHints(QLibrary::LoadHints());  // Qt would keep the plug-in loaded
  const QJsonObject metadata = loader.metaData();
  if (metadata["IID"] != "org.halvex.vorlane.setbaseurl" || metadata["className"] != "CSetBaseURL" ||
      !metadata["MetaData"].toObject().isEmpty()) {
    return fail("other metadata");
  }
  Map settings{{"baseUrlString", "http://old.example/"}, {"mine", 1}};
  QStringList texts;
  if (edit(loader, settings, texts) != 0) return 1;
  if (!loader.unload() || isMapped(file)) return fail("the plug-in is still loaded");

  const Map expected{{"ActionName", "Set Base URL"}, {"baseUrlString", "http://new.example/"}, {"mine", 1}};
  if (settings != expected) return fail("the map was not edited");
  if (texts.join('|') !=
      "Set Base URL|Set Base URL|Action_SetBaseUrl.html|Document Properties|"
      "Action_SetBaseURL.png#Action_SetBaseURL_Selected.png#Action_SetBaseURL_Disabled.png") {
    return fail("other texts: " + texts.join('|'));
  }
  // Qt keeps the keys of settings files that were open lately.
  for (const QString name : {"Settings/VorlaneViewerSettings.vsf", "Actions/Mine.xqq"}) {
    const QString path = QDir(qEnvironmentVariable("XDG_DATA_HOME")).filePath("nolva software/PDF Tools/" + name);
    if (QSettings(path, QSettings::IniFormat).allKeys().isEmpty()) return fail(path + " was not written");
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const QTemporaryDir home;
  for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME"}) qputenv(name, QFile::encodeName(home.path()));
  QDir(home.path()).mkpath("nolva software/PDF Tools/Actions");
  QDir(home.path()).mkpath("nolva software/PDF Tools/Settings");
  QApplication application(argc, argv);
  return run(QString::fromLocal8Bit(argv[1]));
}
