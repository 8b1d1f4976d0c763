// SPDX-License-Identifier: Apache-2.0
// ForeignHost SETBASEURL MAKELINKSABSOLUTE: a host that uses the actions through its own declarations only. One after
// the other, it loads the plug-in, opens the settings dialog and the two save dialogs, types a base URL, presses OK,
// unloads the plug-in and then reads its map.
#include <memory>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
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

// What each action must be.
struct Expected {
  const char* interfaceId;
  const char* className;
  const char* field;  // of the settings dialog, for the URL
  Map settings;       // after the dialog
  const char* texts;
};

const Expected kSetBaseUrl{"org.halvex.vorlane.setbaseurl",
                           "CSetBaseURL",
                           "lineEdit",
                           {{"ActionName", "Set Base URL"}, {"baseUrlString", "http://new.example/"}, {"mine", 1}},
                           "Set Base URL|Set Base URL|Action_SetBaseUrl.html|Document Properties|"
                           "Action_SetBaseURL.png#Action_SetBaseURL_Selected.png#Action_SetBaseURL_Disabled.png"};
const Expected kMakeLinksAbsolute{"org.halvex.vorlane.makelinksabsolute",
                                  "CMakeLinksAbsolute",
                                  "baseEdit",
                                  {{"ActionName", "Make Links Absolute"},
                                   {"base", "http://new.example/"},
                                   {"baseUrlString", "http://old.example/"},
                                   {"mine", 1},
                                   {"removeBase", false}},
                                  "Make Links Absolute|Make Links Absolute|Action_MakeLinksAbsolute.html|Document "
                                  "Properties|Action_MakeLinksAbsolute.png#Action_MakeLinksAbsolute_Selected.png#"
                                  "Action_MakeLinksAbsolute_Disabled.png"};

// What a person does with the dialog on top. The settings dialog gets a base URL and the button `press`; the dialog
// that this opens gets a name and is saved.
void handle(QDialog& dialog, const char* field, const QString& press) {
  if (auto* edit = dialog.findChild<QLineEdit*>(field)) {
    edit->setText("http://new.example/");
    auto* box = dialog.findChild<QDialogButtonBox*>();
    const bool inBox = press == "okButton" && box;
    (inBox ? box->button(QDialogButtonBox::Ok) : dialog.findChild<QAbstractButton*>(press))->click();
  } else {
    dialog.findChildren<QLineEdit*>(QRegularExpression(".*NameLineEdit")).value(0)->setText("Mine");
    dialog.findChild<QAbstractButton*>("saveButton")->click();
  }
}

// A timer for each dialog: one whose handler is still running does not fire again.
void watch(const char* field, const char* press, const std::shared_ptr<bool>& over) {
  auto* timer = new QTimer(QApplication::instance());
  timer->setSingleShot(true);
  QObject::connect(timer, &QTimer::timeout, [=] {
    timer->deleteLater();
    if (*over) return;
    watch(field, press, over);
    if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) handle(*dialog, field, press);
  });
  timer->start(1);
}

QStringList describe(CActionInterface& action) {
  return {action.name(), action.displayName(), action.help(), action.group(), action.icon()};
}

// Edits the map, first by way of both save dialogs; `texts` gets the action's description of itself.
int edit(QPluginLoader& loader, const char* field, Map& settings, QStringList& texts) {
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
    watch(field, press, over);
    if (action->edit(&window, &info) != (QString(press) == "okButton")) return fail(QString("result of ") + press);
    *over = true;
  }
  return 0;
}

bool isMapped(const QString& file) {
  QFile maps("/proc/self/maps");
  return !maps.open(QFile::ReadOnly) || maps.readAll().contains(QFile::encodeName(file));
}

int run(const QString& file, const Expected& expected) {
  QPluginLoader loader(file);
  loader.setLoadHints(QLibrary::LoadHints());  // Qt would keep the plug-in loaded
  const QJsonObject metadata = loader.metaData();
  if (metadata["IID"] != expected.interfaceId || metadata["className"] != expected.className ||
      !metadata["MetaData"].toObject().isEmpty()) {
    return fail("other metadata");
  }
  Map settings{{"baseUrlString", "http://old.example/"}, {"mine", 1}};
  QStringList texts;
  if (edit(loader, expected.field, settings, texts) != 0) return 1;
  if (!loader.unload() || isMapped(file)) return fail("the plug-in is still loaded");

  if (settings != expected.settings) return fail("the map was not edited");
  if (texts.join('|') != expected.texts) return fail("other texts: " + texts.join('|'));
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
  return argc != 3 || run(QString::fromLocal8Bit(argv[1]), kSetBaseUrl) != 0 ||
         run(QString::fromLocal8Bit(argv[2]), kMakeLinksAbsolute) != 0;
}
