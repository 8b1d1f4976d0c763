// SPDX-License-Identifier: Apache-2.0
// A caller that includes no header of the kit: it declares the kit itself, links it, and reads fields through its own
// declarations. A signature that differs does not link; a field of another size shifts those after it.
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstdarg>
#include <cstring>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QLabel>
#include <QLayout>
#include <QMetaMethod>
#include <QTextEdit>
#include <QToolButton>
#include <QVariant>

using Map = QMap<QString, QVariant>;

// ---- Classes of static functions ----

#define CUTILS_FUNCTIONS(F)                  \
  F(void, SetAppName, (QString))             \
  F(QString, GetAppName, ())                 \
  F(QString, GetAppDataFolder, ())           \
  F(QString, GetAppDataToolsFolder, ())      \
  F(QString, GetSequenceFolder, ())          \
  F(QString, GetReportsFolder, ())           \
  F(QString, GetAppLogFolder, ())            \
  F(QString, GetWFFolder, ())                \
  F(QString, GetSettingsFolder, ())          \
  F(QString, GetCollectionsFolder, ())       \
  F(QString, GetAdvSplitTemplatesFolder, ()) \
  F(QString, GetActionFolder, ())            \
  F(void, SetupFolders, ())                  \
  F(QDir, GetNewTempFolder, (QString*))      \
  F(QString, GetNewTempFile, (char*))        \
  F(bool, CheckOpenGLSupport, ())            \
  F(void, GetInstalationType, ())            \
  F(double, Convert, (long, double, long))

#define CACTIONUTILS_FUNCTIONS(F)                                         \
  F(QString, GetSettingsFolder, ())                                       \
  F(QString, GetCollectionsFolder, ())                                    \
  F(QString, GetSequenceFolder, ())                                       \
  F(QString, GetVorlaneAppDataFolder, ())                                 \
  F(void, SaveAsCustomActionList, (Map*))                                 \
  F(QStringList, GetActionListCategories, ())                             \
  F(bool, GetPageList, (const QString&, int, bool, bool, QList<int>*))    \
  F(void, CollectPageList, (QList<int>*, QList<int>*))                    \
  F(bool, ValidatePageRange, (QString, bool))                             \
  F(bool, ValidateSplitPageRange, (QString))                              \
  F(QStringList, SearchFilesInDir, (QDir, QStringList, bool))             \
  F(QString, GetStringWithLeadingZeroesFromNumber, (int, int))            \
  F(QString, GetStringWithLeadingZeroesFromString, (QString, int))        \
  F(QString, AppendCopyNumberToFilename, (QString))                       \
  F(void, FixStringForFilename, (QString*))                               \
  F(QString, ReplaceEnvironmentPaths, (QString))                          \
  F(int, Round, (double))                                                 \
  F(void, SaveLastVisitedLocation, (QString, QString))                    \
  F(QString, GetLastVisitedLocation, (QString))                           \
  F(void, SaveLastEnteredLink, (QString, QString))                        \
  F(QStringList, GetLastEnteredLinks, (QString))                          \
  F(void, SetupColorPickerComboBox, (QComboBox*, bool))                   \
  F(void, SetupLineStylePickerComboBox, (QComboBox*))                     \
  F(void, SetupUnderlineStylePickerComboBox, (QComboBox*))                \
  F(void, SetupLineWeightPickerComboBox, (QComboBox*))                    \
  F(void, SetupStandardFontsComboBox, (QComboBox*))                       \
  F(void, SetupSystemFontsComboBox, (QComboBox*))                         \
  F(QColor, GetColorPickerColor, (int))                                   \
  F(int, GetColorPickerIndex, (QColor))                                   \
  F(QString, GetBorderDash, (int, double))                                \
  F(double, GetTextItemHeight, (const QFont&, const QString&, double))    \
  F(void, GenerateTextItemIcon, (double, double, const QString&, QIcon*)) \
  F(int, SplitComGetCommandIndex, (QString))                              \
  F(QString, SplitComGetCommandString, (int))                             \
  F(void, SetTargetLabels, (QLabel*, QTextEdit*))                         \
  F(void, SetHelp, (QString))                                             \
  F(void, SetHelpHtml, (QString))                                         \
  F(void, SetCurrentSection, (QString))                                   \
  F(QIcon, GetIconForTool, (QString))

#define DECLARE_STATIC(result, name, arguments) static result name arguments;

struct CUtils {
  CUTILS_FUNCTIONS(DECLARE_STATIC)
  static QString mApplicationName;
  static bool mInstalationTypeCurrentUser;
};

struct CActionUtils {
  CACTIONUTILS_FUNCTIONS(DECLARE_STATIC)
  static QLabel* mNavBarLabel;
  static QTextEdit* mInfoLabel;
};

extern QStringList gCommandsList;

void AddToDebugFile(const char* format, ...);
void StoreErrorToLog(const char* text);

// ---- Classes with objects; public and private fields alike ----

struct CErrorHandler {
  CErrorHandler();
  virtual ~CErrorHandler();
  void Store(QString, va_list);
  void StoreError(QString, ...);
  int GetCount() const;
  QString GetAt(long) const;
  QString GetLast() const;
  void ClearAll();
  void WriteToLog(const char*, bool);
  QList<QString> errors;
  QList<QString>* secondary;
};

struct CActionHistoryAPI {
  explicit CActionHistoryAPI(QString);
  ~CActionHistoryAPI();
  int SaveSettingsToHistory(Map*, QIcon*);
  Map* LoadSettingsFromHistory(int);
  QString prefix;
  QList<QFileInfo> entries;
  QDir folder;
  qint32 cursor;
};

struct CCursorPosCalculator {
  CCursorPosCalculator();
  void reset();
  void recalculate(const QPoint&, const QRect&);
  bool flags[14];
  qint32 borderWidth;
  qint32 edgeInset;
  qint32 moveBarHeight;
};

class CFramelessHandler : public QObject {
  Q_OBJECT
 public:
  explicit CFramelessHandler(QObject*);
  ~CFramelessHandler() override;
  void activateOn(QWidget*);
  void setWidgetMovable(bool);
  bool isWidgetMovable() const;
  void setWidgetResizable(bool);
  bool isWidgetResizable() const;
  void setBorderWidth(int);
  int borderWidth() const;
  void setMoveBarHeight(int);
  int moveBarHeight() const;
  bool eventFilter(QObject*, QEvent*) override;
  CCursorPosCalculator press, hover;
  qint32 windowState;
  QPoint dragOffset;
  QWidget* widget;
  bool movable, resizable, cursorChanged, leftButtonPressed, pressedOnMoveBar, pressedOnEdges;
 Q_SIGNALS:
  void toggleMaximize();
  void movingMaximized();
};

class CVorlaneDialog : public QDialog {
  Q_OBJECT
 public:
  CVorlaneDialog(QWidget*, bool);
  ~CVorlaneDialog() override;
  void VDaddMainWidget(QWidget*, bool);
  void VDaddCloseButton();
  void VDaddTopButtons();
  void VDhideAddToActionListButton();
  int exec() override;
  CFramelessHandler handler;
  bool shellFlag;
  QToolButton *close, *addToActionList, *addToFavorites;
  QGridLayout* grid;
  QFrame* shadows[8];
  QFrame* mainFrame;
  QVBoxLayout* mainLayout;
  QWidget* header;
  QHBoxLayout* headerLayout;
  QLabel *prefix, *title;
  QWidget* content;
  QWidget* previewParent;
  qint32 fixedHeight, extraHeight, extraWidth;
};

class CSaveAsActionlistDialog : public CVorlaneDialog {
  Q_OBJECT
 public:
  CSaveAsActionlistDialog(QWidget*, Qt::WindowFlags);
  ~CSaveAsActionlistDialog() override;
  void LoadPrefsData(Map*);
  void on_Save();
  void on_UpdateUI();
  void keyPressEvent(QKeyEvent*) override;
  void* fields[32];  // room for the form and the pointer to the settings
 Q_SIGNALS:
  void actionListChanged(QString);
};

class CSaveAsCollectionDialog : public CVorlaneDialog {
  Q_OBJECT
 public:
  CSaveAsCollectionDialog(QWidget*, Qt::WindowFlags);
  ~CSaveAsCollectionDialog() override;
  void LoadPrefsData(Map*);
  void on_Save();
  void on_CollectionIcon();
  void on_UpdateUI();
  void on_SaveToFile();
  void* fields[32];  // as above
};

class HalvexPDFLibraryCPDylibCPP1311 {
 public:
  explicit HalvexPDFLibraryCPDylibCPP1311(const std::wstring&);
  ~HalvexPDFLibraryCPDylibCPP1311();
  bool LibraryLoaded() const;
  void (*AttachFunction(const char*, bool))();
  void* WideStringParm(const std::wstring&);
  void* StringParm(const std::string&, int&);
  std::wstring WideStringResult(wchar_t*, int);
#define SERVICE(name)
#define MEMBER(result, name, arguments) result name arguments;
#include "tests/abi/LibraryMembers.inc"
#undef MEMBER
#undef SERVICE
  void* handle;
  qint32 instance;
  bool loadFailed;
  void* functions[856];
};

namespace {

// Uses kit functions before main(), and this file is linked before the kit.
struct EarlyUser {
  EarlyUser() {
    before = CUtils::GetAppName();
    CUtils::SetAppName("early");
    after = CUtils::GetAppName();
    index = CActionUtils::SplitComGetCommandIndex("SkipHeader");
    command = CActionUtils::SplitComGetCommandString(42);
  }
  QString before, after, command;
  int index = 0;
};
const EarlyUser gEarlyUser;

// Makes the linker look a function up.
template <typename Function>
void Link(Function function) {
  volatile Function linked = function;
  static_cast<void>(linked);
}

// An object in storage of exactly the declared size; what follows it must stay as it is.
template <typename T>
class Guarded {
 public:
  template <typename... A>
  explicit Guarded(A&&... arguments) {
    std::memset(room_, 0xA5, sizeof room_);
    object_ = new (room_) T(std::forward<A>(arguments)...);
  }
  ~Guarded() {
    for (std::size_t i = sizeof(T); i < sizeof room_; ++i) EXPECT_EQ(room_[i], 0xA5) << "byte after the object";
    object_->~T();
  }
  T* operator->() { return object_; }

 private:
  alignas(T) unsigned char room_[sizeof(T) + 64];
  T* object_;
};

}  // namespace

TEST(ForeignCaller, StaticsAreReadyBeforeMain) {
  EXPECT_EQ(gEarlyUser.before, "PDF Tools");
  EXPECT_EQ(gEarlyUser.after, "early");
  EXPECT_EQ(gEarlyUser.index, 7);
  EXPECT_EQ(gEarlyUser.command, "fillinfodictentry");
}

TEST(ForeignCaller, FindsEveryFunction) {
#define LINK_CUTILS(result, name, arguments) Link(&CUtils::name);
#define LINK_CACTIONUTILS(result, name, arguments) Link(&CActionUtils::name);
  CUTILS_FUNCTIONS(LINK_CUTILS)
  CACTIONUTILS_FUNCTIONS(LINK_CACTIONUTILS)
  Link(&AddToDebugFile);
  Link(&StoreErrorToLog);
  Link(&CErrorHandler::WriteToLog);
  Link(&CActionHistoryAPI::SaveSettingsToHistory);
  Link(&CActionHistoryAPI::LoadSettingsFromHistory);
  Link(&CFramelessHandler::toggleMaximize);
  Link(&CFramelessHandler::movingMaximized);
  Link(&CVorlaneDialog::exec);
  Link(&CSaveAsActionlistDialog::on_UpdateUI);
  Link(&CSaveAsActionlistDialog::keyPressEvent);
  Link(&CSaveAsActionlistDialog::actionListChanged);
  Link(&CSaveAsCollectionDialog::on_CollectionIcon);
  Link(&CSaveAsCollectionDialog::on_UpdateUI);
  Link(&CSaveAsCollectionDialog::on_SaveToFile);
  CSaveAsActionlistDialog list(nullptr, Qt::WindowFlags());
  list.LoadPrefsData(nullptr);
  list.on_Save();
  CSaveAsCollectionDialog favorite(nullptr, Qt::WindowFlags());
  favorite.LoadPrefsData(nullptr);
  favorite.on_Save();
  EXPECT_EQ(list.result() + favorite.result(), 0);
}

TEST(ForeignCaller, StaticMembersHaveTheirTypes) {
  QLabel label;
  QTextEdit page;
  CActionUtils::SetTargetLabels(&label, &page);
  EXPECT_EQ(CActionUtils::mNavBarLabel, &label);
  EXPECT_EQ(CActionUtils::mInfoLabel, &page);
  CActionUtils::mNavBarLabel = nullptr;
  CActionUtils::mInfoLabel = nullptr;
  CUtils::SetAppName("name");
  EXPECT_EQ(CUtils::mApplicationName, "name");
  CUtils::mInstalationTypeCurrentUser = true;
  CUtils::GetInstalationType();
  EXPECT_FALSE(CUtils::mInstalationTypeCurrentUser);
  EXPECT_EQ(gCommandsList.size(), 43);
}

TEST(ForeignCaller, ObjectsHaveTheirFields) {
  Guarded<CErrorHandler> errors;
  QList<QString> copies;
  EXPECT_EQ(errors->secondary, nullptr);
  errors->secondary = &copies;
  errors->StoreError("message");
  EXPECT_EQ(errors->errors, QList<QString>{"message"});
  EXPECT_EQ(copies, errors->errors);
  EXPECT_EQ(errors->GetAt(0) + errors->GetLast(), "messagemessage");
  errors->ClearAll();
  EXPECT_EQ(errors->GetCount(), 0);

  Guarded<CActionHistoryAPI> history(QString("prefix"));
  EXPECT_EQ(history->prefix, "prefix");
  EXPECT_TRUE(history->entries.isEmpty());
  EXPECT_EQ(history->folder.nameFilters(), QStringList("prefix*"));
  EXPECT_EQ(history->cursor, -1);

  Guarded<CCursorPosCalculator> cursor;
  EXPECT_EQ(cursor->borderWidth, 5);
  cursor->moveBarHeight = 30;
  cursor->recalculate(QPoint(50, 20), QRect(0, 0, 100, 100));
  EXPECT_TRUE(cursor->flags[13]);
  cursor->reset();
  EXPECT_FALSE(cursor->flags[13]);
  EXPECT_EQ(cursor->moveBarHeight, 30);
}

TEST(ForeignCaller, TheShellHasItsFields) {
  Guarded<CFramelessHandler> handler(nullptr);
  handler->setBorderWidth(7);
  handler->setMoveBarHeight(9);
  handler->setWidgetMovable(false);
  handler->setWidgetResizable(false);
  EXPECT_EQ(handler->press.borderWidth + handler->borderWidth(), 14);
  EXPECT_EQ(handler->hover.moveBarHeight + handler->moveBarHeight(), 18);
  EXPECT_FALSE(handler->movable || handler->resizable || handler->isWidgetMovable() || handler->isWidgetResizable());
  QWidget window;
  handler->activateOn(&window);
  EXPECT_EQ(handler->widget, &window);

  QWidget preview;
  preview.setObjectName("VorlanePreviewClass");
  Guarded<CVorlaneDialog> dialog(&preview, true);
  dialog->VDaddTopButtons();
  dialog->VDaddCloseButton();
  dialog->VDhideAddToActionListButton();
  auto* const form = new QWidget;
  form->resize(300, 200);
  dialog->VDaddMainWidget(form, true);
  EXPECT_TRUE(dialog->shellFlag);
  EXPECT_EQ(dialog->handler.widget, dialog.operator->());
  EXPECT_TRUE(dialog->addToActionList->isHidden());
  EXPECT_EQ(dialog->addToFavorites->parentWidget(), dialog->header);
  EXPECT_EQ(dialog->close->parentWidget(), dialog->header);
  EXPECT_EQ(dialog->grid, dialog->layout());
  EXPECT_EQ(dialog->mainFrame->layout(), dialog->mainLayout);
  EXPECT_EQ(dialog->header->layout(), dialog->headerLayout);
  EXPECT_EQ(dialog->title->objectName(), "VDtitleLabel");
  EXPECT_EQ(form->parentWidget(), dialog->content);
  EXPECT_EQ(dialog->previewParent, &preview);
  EXPECT_EQ(dialog->fixedHeight, 200 + dialog->extraHeight);
  EXPECT_EQ(dialog->width(), 300);
}

// A host may call a dialog's methods by their index.
TEST(ForeignCaller, MetaObjectsHaveTheirMethodsInOrder) {
  const std::pair<const QMetaObject*, QByteArrayList> rows[] = {
      {&CFramelessHandler::staticMetaObject, {"toggleMaximize()", "movingMaximized()"}},
      {&CVorlaneDialog::staticMetaObject, {"exec()"}},
      {&CSaveAsActionlistDialog::staticMetaObject, {"actionListChanged(QString)", "on_Save()", "on_UpdateUI()"}},
      {&CSaveAsCollectionDialog::staticMetaObject,
       {"on_Save()", "on_CollectionIcon()", "on_UpdateUI()", "on_SaveToFile()"}},
  };
  for (const auto& [meta, expected] : rows) {
    QByteArrayList methods;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) methods << meta->method(i).methodSignature();
    EXPECT_EQ(methods, expected) << meta->className();
  }
}

TEST(ForeignCaller, TheWrapperHasTheListedMembersAndSlots) {
#define SERVICE(name)
#define MEMBER(result, name, arguments) Link(&HalvexPDFLibraryCPDylibCPP1311::name);
#include "tests/abi/LibraryMembers.inc"
#undef MEMBER
#undef SERVICE
  const std::string file = HALVEXENGINE_FILE;
  Guarded<HalvexPDFLibraryCPDylibCPP1311> wrapper(std::wstring(file.begin(), file.end()));
  ASSERT_TRUE(wrapper->LibraryLoaded());
  EXPECT_GT(wrapper->instance, 0);
  EXPECT_FALSE(wrapper->loadFailed);
  int slot = 0;
#define SERVICE(name) EXPECT_EQ(wrapper->functions[slot++], dlsym(wrapper->handle, "HPL" #name)) << #name;
#define MEMBER(result, name, arguments) SERVICE(name)
#include "tests/abi/LibraryMembers.inc"
  EXPECT_EQ(slot, 856);
  int release = 0;
  EXPECT_NE(wrapper->StringParm("bytes", release), nullptr);
  EXPECT_EQ(release, 1);
  EXPECT_EQ(wrapper->WideStringParm(L""), nullptr);
  EXPECT_EQ(wrapper->WideStringResult(nullptr, 0), L"");
  EXPECT_NE(wrapper->AttachFunction("HPLPageCount", false), nullptr);
}
