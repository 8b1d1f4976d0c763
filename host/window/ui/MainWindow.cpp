// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/MainWindow.h"

#include <chrono>
#include <cstdlib>
#include <memory>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>
#include <utility>

#include "host/actions/ToolsFolders.h"
#include "host/base/CommandError.h"
#include "host/base/NativeName.h"
#include "host/base/PdfLibrary.h"
#include "host/window/core/RecordTexts.h"
#include "host/window/core/RunArguments.h"
#include "host/window/ui/ActionsPanel.h"
#include "host/window/ui/ChoiceCard.h"
#include "host/window/ui/Desktop.h"
#include "host/window/ui/FavoriteDialog.h"
#include "host/window/ui/FilesView.h"
#include "host/window/ui/HelpWindow.h"
#include "host/window/ui/ListDialog.h"
#include "host/window/ui/Messages.h"
#include "host/window/ui/NoticeBar.h"
#include "host/window/ui/OutputPanel.h"
#include "host/window/ui/PasswordDialog.h"
#include "host/window/ui/PreviewPanel.h"
#include "host/window/ui/RecentSettings.h"
#include "host/window/ui/SettingsText.h"
#include "utils/ActionListFile.h"
#include "utils/CActionUtils.h"

namespace {

constexpr std::chrono::seconds kPendingLimit{3};
constexpr int kMostOpenedFolders = 3;
constexpr qint64 kMostToDecrypt = 20 * 1024 * 1024;  // bytes
const char* const kInputKey = "VorlaneActionsInput";
const char* const kChoiceKey = "VorlaneActionsLists";
const char* const kReportKey = "VorlaneActionsReports";

QSettings WindowSettings() {
  return QSettings(QStringLiteral("vorlane"), QStringLiteral("vorlane-actions"));
}

// A wrong folder in the environment leaves out no more than itself.
QStringList ToolsFolders() {
  try {
    return InstalledToolsFolders() + ToolsFoldersOfEnvironment();
  } catch (const CommandError&) {
    return InstalledToolsFolders();
  }
}

// Themes with dark windows often leave links in the dark blue that light ones have.
void MakeLinksReadable() {
  constexpr int kLeastContrast = 64;
  const QPalette palette = QApplication::palette();
  const int ground = qGray(palette.color(QPalette::Window).rgb());
  if (std::abs(qGray(palette.color(QPalette::Link).rgb()) - ground) >= kLeastContrast) return;
  QPalette readable;
  readable.setColor(QPalette::Link, ground < 128 ? QColor(0x6c, 0xb4, 0xff) : QColor(0x00, 0x00, 0xff));
  QApplication::setPalette(readable);
}

bool IsChoiceFile(const QString& path) {
  return Choices::IsListFile(path) || Choices::IsSettingsFile(path);
}

}  // namespace

MainWindow::MainWindow()
    : catalog_(ToolsFolders()),
      model_(this),
      scanner_(this),
      facts_(model_, this),
      batch_(this),
      preview_(this),
      dialogs_(this) {
  setObjectName(QStringLiteral("VorlaneClass"));
  setWindowTitle(tr("PDF Actions"));
  setAcceptDrops(true);
  MakeLinksReadable();
  MakeLayout();
  MakeMenus();
  ConnectParts();
  RestoreState();
  UpdateLayout();
  UpdateReady();
  UpdateStatus();
  // The window is painted before the plug-ins are loaded.
  actions_->RefreshSoon();
}

MainWindow::~MainWindow() {
  // The model reports the end of its rows when the other parts are gone already.
  disconnect(&model_, nullptr, this, nullptr);
}

void MainWindow::MakeLayout() {
  actions_ = new ActionsPanel(catalog_);
  card_ = new ChoiceCard;
  files_ = new FilesView(model_);
  previewPanel_ = new PreviewPanel;
  output_ = new OutputPanel;
  notice_ = new NoticeBar;
  count_ = new QLabel;
  reading_ = new QLabel;

  left_ = new QWidget;
  auto* const leftLayout = new QVBoxLayout(left_);
  leftLayout->setContentsMargins(0, 0, 0, 0);
  leftLayout->addWidget(actions_, 1);
  leftLayout->addWidget(card_);
  rows_ = new QSplitter(Qt::Vertical);
  rows_->addWidget(files_);
  rows_->addWidget(previewPanel_);
  rows_->setStretchFactor(0, 1);
  rows_->setStretchFactor(1, 1);
  rows_->setChildrenCollapsible(false);
  columns_ = new QSplitter;
  columns_->addWidget(left_);
  columns_->addWidget(rows_);
  columns_->setStretchFactor(1, 1);
  columns_->setChildrenCollapsible(false);
  // Large text on a small screen needs more room than there is; the button that runs stays in view.
  auto* const area = new QScrollArea;
  area->setFrameShape(QFrame::NoFrame);
  area->setWidgetResizable(true);
  area->setFocusPolicy(Qt::NoFocus);
  area->setWidget(columns_);
  auto* const all = new QWidget;
  auto* const layout = new QVBoxLayout(all);
  layout->addWidget(notice_);
  layout->addWidget(area, 1);
  layout->addWidget(output_);
  setCentralWidget(all);
  files_->setFocus();
  statusBar()->addWidget(reading_, 1);
  statusBar()->addPermanentWidget(count_);
  const int letter = fontMetrics().averageCharWidth();
  columns_->setSizes({38 * letter, 120 * letter});
  const QSize screen = QGuiApplication::primaryScreen()->availableSize();
  resize(QSize(letter * 165, fontMetrics().height() * 48).boundedTo(screen * 9 / 10));
  rows_->setSizes({fontMetrics().height() * 24, fontMetrics().height() * 19});
}

void MainWindow::MakeMenus() {
  const auto add = [this](QMenu* menu, const QString& text, const QKeySequence& shortcut, auto&& work) {
    QAction* const action = menu->addAction(text);
    action->setShortcut(shortcut);
    connect(action, &QAction::triggered, this, work);
    return action;
  };
  QMenu* const file = menuBar()->addMenu(tr("&File"));
  add(file, tr("Add &Files…"), QKeySequence::Open, [this] { AddFiles(); });
  add(file, tr("Add F&older…"), QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_O), [this] { AddFolder(); });
  add(file, tr("Open Action &List or Settings…"), QKeySequence(int{Qt::CTRL} + Qt::Key_L), [this] { OpenChoice(); });
  file->addSeparator();
  add(file, tr("&New Window"), QKeySequence::New, [] {
    auto* const window = new MainWindow;
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
  });
  add(file, tr("&Close"), QKeySequence::Close, [this] { close(); });
  add(file, tr("&Quit"), QKeySequence::Quit, [] { QApplication::closeAllWindows(); });

  QMenu* const edit = menuBar()->addMenu(tr("&Edit"));
  add(edit, tr("&Paste Files"), QKeySequence::Paste, [this] { Paste(); });
  edit->addActions(files_->EditActions());
  edit->addSeparator();
  add(edit, tr("F&ilter"), QKeySequence::Find, [this] { files_->FocusFilter(); });
  edit->addSeparator();
  edit->addActions(files_->FileActions());
  add(edit, tr("Take &All Off the List"), QKeySequence(), [this] {
    if (!running_) model_.Clear();
  });

  QMenu* const action = menuBar()->addMenu(tr("&Action"));
  run_ = add(action, tr("&Run"), QKeySequence(int{Qt::CTRL} + Qt::Key_Return), [this] { Run(model_.Paths()); });
  runSelected_ = add(action, tr("Run on &Selected Files"), QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_Return),
                     [this] { Run(files_->SelectedFiles()); });
  cancel_ = add(action, tr("&Cancel the Run"), QKeySequence::Cancel, [this] {
    output_->ShowCancelling();
    batch_.Cancel();
  });
  action->addSeparator();
  edit_ = add(action, tr("&Edit Settings…"), QKeySequence(int{Qt::CTRL} + Qt::Key_E), [this] { Edit(choice_); });
  favorite_ = add(action, tr("Save as &Favorite…"), QKeySequence(int{Qt::CTRL} + Qt::Key_D),
                  [this] { SaveFavorite(QString(), choice_.icon); });
  password_ = add(action, tr("Enter &Password…"), QKeySequence(), [this] { AskPassword(); });
  action->addSeparator();
  copyCommand_ =
      add(action, tr("Copy as Co&mmand"), QKeySequence(Qt::CTRL + Qt::ALT + Qt::Key_C), [this] { CopyCommand(); });

  QMenu* const view = menuBar()->addMenu(tr("&View"));
  showPreview_ = add(view, tr("&Preview"), QKeySequence(Qt::Key_F7), [this] {
    UpdateLayout();
    UpdatePreview();
  });
  showPreview_->setCheckable(true);
  showPreview_->setChecked(true);
  add(view, tr("&Read Files Again"), QKeySequence::Refresh, [this] { facts_.Refresh(model_.Paths()); });

  QMenu* const help = menuBar()->addMenu(tr("&Help"));
  help_ =
      add(help, tr("&Help on the Action"), QKeySequence::HelpContents, [this] { ShowHelp(choice_.action.actionName); });
  add(help, tr("&About PDF Actions"), QKeySequence(), [this] {
    QMessageBox::about(this, tr("About PDF Actions"),
                       tr("PDF Actions %1\nSets the base URL of PDF files and runs other actions over them.\n"
                          "Licence: Apache-2.0")
                           .arg(QCoreApplication::applicationVersion()));
  });
}

void MainWindow::ConnectParts() {
  connect(files_, &FilesView::addFilesWanted, this, &MainWindow::AddFiles);
  connect(files_, &FilesView::addFolderWanted, this, &MainWindow::AddFolder);
  connect(files_, &FilesView::passwordWanted, this, &MainWindow::AskPassword);
  connect(files_, &FilesView::currentFileChanged, this, &MainWindow::UpdatePreview);
  connect(files_, &FilesView::selectionChanged, this, &MainWindow::UpdateReady);
  connect(actions_, &ActionsPanel::actionChosen, this, &MainWindow::ChooseAction);
  connect(actions_, &ActionsPanel::choiceMade, this, &MainWindow::SetChoice);
  connect(actions_, &ActionsPanel::editWanted, this, &MainWindow::Edit);
  connect(actions_, &ActionsPanel::helpWanted, this, &MainWindow::ShowHelp);
  connect(actions_, &ActionsPanel::problem, this, [this](const QString& message) { Messages::Warn(this, message); });
  connect(card_, &ChoiceCard::editWanted, edit_, &QAction::trigger);
  connect(card_, &ChoiceCard::favoriteWanted, favorite_, &QAction::trigger);
  connect(card_, &ChoiceCard::helpWanted, help_, &QAction::trigger);
  connect(previewPanel_, &PreviewPanel::passwordWanted, this, &MainWindow::AskPassword);
  connect(output_, &OutputPanel::outputChanged, this, [this] {
    UpdateReady();
    UpdatePreview();
  });
  connect(output_, &OutputPanel::runWanted, run_, &QAction::trigger);
  connect(output_, &OutputPanel::cancelWanted, cancel_, &QAction::trigger);
  connect(output_, &OutputPanel::retryWanted, this, &MainWindow::Retry);
  connect(output_, &OutputPanel::openResultsWanted, this, &MainWindow::OpenResults);
  connect(output_, &OutputPanel::saveReportWanted, this, &MainWindow::SaveReport);
  connect(output_, &OutputPanel::showWanted, this, [this](FileState state) {
    files_->SetFilter(FileTableModel::StateName(state));
    files_->Arrange();
  });

  connect(&scanner_, &FolderScanner::found, this, [this](const QVector<FoundFile>& files) { model_.Add(files); });
  connect(&scanner_, &FolderScanner::problem, notice_, &NoticeBar::Add);
  connect(&scanner_, &FolderScanner::finished, this, [this](int files, bool cancelled) {
    if (files == 0 && !cancelled && notice_->Messages().isEmpty()) notice_->Add(tr("No PDF file is in there."));
    UpdateStatus();
    StartPending();
  });
  connect(&facts_, &FactsReader::progress, this, [this] {
    UpdateStatus();
    StartPending();
  });
  connect(&facts_, &FactsReader::problem, notice_, &NoticeBar::Add);
  connect(&batch_, &BatchRun::filesChanged, this, &MainWindow::OnOutcomes);
  connect(&batch_, &BatchRun::progress, this, [this](int done, int total) {
    output_->ShowRunning(done, total);
    Desktop::ShowProgress(total > 0 ? static_cast<double>(done) / total : 0);
  });
  connect(&batch_, &BatchRun::finished, this, &MainWindow::OnFinished);
  connect(&batch_, &BatchRun::reportSaved, this, [this](const QString& problem) {
    if (problem.isEmpty()) return statusBar()->showMessage(tr("The report is saved."), 5000);
    Messages::Warn(this, problem);
  });
  connect(&preview_, &Preview::started, previewPanel_, &PreviewPanel::ShowBusy);
  connect(&preview_, &Preview::changed, this, [this](const PreviewData& preview) {
    const bool isAction = choice_.IsEditable();
    previewPanel_->Show(preview, isAction && WithSlash(choice_.action.actionName, choice_.action.settings));
  });
  connect(previewPanel_, &PreviewPanel::slashWanted, this, [this] {
    const auto settings = WithSlash(choice_.action.actionName, choice_.action.settings);
    QString problem;
    if (!settings || running_) return;
    actions_->MarkChosen(choice_.action.actionName);
    SetChoice(Choices::OfAction(catalog_, choice_.action.actionName, *settings, &problem));
  });
  const auto rowsChanged = [this] {
    UpdateLayout();
    UpdateReady();
    UpdateStatus();
  };
  connect(&model_, &QAbstractItemModel::rowsInserted, this, rowsChanged);
  connect(&model_, &QAbstractItemModel::rowsRemoved, this, rowsChanged);
  connect(&model_, &QAbstractItemModel::modelReset, this, rowsChanged);
  pendingLimit_.setSingleShot(true);
  connect(&pendingLimit_, &QTimer::timeout, this, &MainWindow::StartPending);
  connect(this, &MainWindow::dropped, this, &MainWindow::Open, Qt::QueuedConnection);
  connect(this, &MainWindow::actionWanted, this, &MainWindow::ChooseAction, Qt::QueuedConnection);
}

void MainWindow::RestoreState() {
  const QSettings settings = WindowSettings();
  restoreGeometry(settings.value(QStringLiteral("geometry")).toByteArray());
  columns_->restoreState(settings.value(QStringLiteral("columns")).toByteArray());
  rows_->restoreState(settings.value(QStringLiteral("rows")).toByteArray());
  files_->RestoreLayout(settings.value(QStringLiteral("files")).toByteArray());
  showPreview_->setChecked(settings.value(QStringLiteral("preview"), true).toBool());
  // What can lose something is chosen anew each time: no backup, broken signatures.
  OutputChoice output;
  output.inPlace = settings.value(QStringLiteral("inPlace"), true).toBool();
  output.folder = settings.value(QStringLiteral("folder")).toString();
  output_->SetOutput(output);
}

void MainWindow::SaveState() const {
  QSettings settings = WindowSettings();
  settings.setValue(QStringLiteral("geometry"), saveGeometry());
  settings.setValue(QStringLiteral("columns"), columns_->saveState());
  settings.setValue(QStringLiteral("rows"), rows_->saveState());
  settings.setValue(QStringLiteral("files"), files_->SaveLayout());
  settings.setValue(QStringLiteral("preview"), showPreview_->isChecked());
  const OutputChoice output = output_->Output();
  settings.setValue(QStringLiteral("inPlace"), output.inPlace);
  settings.setValue(QStringLiteral("folder"), output.folder);
}

// ---- Files ----

void MainWindow::Open(const QStringList& paths) {
  QStringList files;
  for (const QString& path : paths) {
    if (IsChoiceFile(path)) {
      OpenChoiceFile(path);
    } else {
      files += path;
    }
  }
  if (files.isEmpty()) return;
  notice_->Clear();
  scanner_.Scan(files);
  UpdateStatus();
}

void MainWindow::AddFiles() {
  const QString key = QLatin1String(kInputKey);
  const QStringList files =
      QFileDialog::getOpenFileNames(this, tr("Add Files"), CActionUtils::GetLastVisitedLocation(key),
                                    tr("PDF files (*.pdf *.PDF)") + QStringLiteral(";;") + tr("All files (*)"));
  if (files.isEmpty()) return;
  CActionUtils::SaveLastVisitedLocation(key, QFileInfo(files[0]).path());
  Open(files);
}

void MainWindow::AddFolder() {
  const QString key = QLatin1String(kInputKey);
  const QString folder =
      QFileDialog::getExistingDirectory(this, tr("Add Folder"), CActionUtils::GetLastVisitedLocation(key));
  if (folder.isEmpty()) return;
  CActionUtils::SaveLastVisitedLocation(key, folder);
  Open({folder});
}

void MainWindow::OpenChoice() {
  const QString key = QLatin1String(kChoiceKey);
  const QString file =
      QFileDialog::getOpenFileName(this, tr("Open Action List or Settings"), CActionUtils::GetLastVisitedLocation(key),
                                   tr("Action lists and settings (*.xqq *.tsf)"));
  if (file.isEmpty()) return;
  CActionUtils::SaveLastVisitedLocation(key, QFileInfo(file).path());
  OpenChoiceFile(file);
}

void MainWindow::OpenChoiceFile(const QString& file) {
  if (running_) return;
  QString problem;
  const Choice choice = Choices::OfFile(catalog_, file, &problem);
  if (!choice.IsSet()) {
    Messages::Warn(this, problem);
    return;
  }
  const QString path = QFileInfo(file).absoluteFilePath();
  const QString sequences = QDir(CActionUtils::GetSequenceFolder()).canonicalPath();
  if (QFileInfo(path).dir().canonicalPath() != sequences) RecentSettings::AddFile(path);
  SetChoice(choice);
  actions_->Refresh();
  actions_->MarkChosen(path);
}

void MainWindow::Paste() {
  const QStringList paths = FolderScanner::PathsIn(*QApplication::clipboard()->mimeData());
  if (paths.isEmpty()) {
    statusBar()->showMessage(tr("The clipboard holds no files. Copy files in the file manager and paste them here."),
                             5000);
    return;
  }
  Open(paths);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls() || event->mimeData()->hasText()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  event->setDropAction(Qt::CopyAction);
  event->accept();
  // The program that the files come from waits for the end of this event, and a message box would not end it.
  emit dropped(FolderScanner::PathsIn(*event->mimeData()));
}

// ---- What to do ----

void MainWindow::StartWith(const QString& actionName) {
  pendingAction_ = actionName;
  const bool hasFiles = scanner_.IsRunning() || model_.Count() > 0;
  pendingLimit_.start(hasFiles ? kPendingLimit : std::chrono::seconds(0));
}

// The settings start with those of the document, once it was read. A slow document is not waited for.
void MainWindow::StartPending() {
  if (pendingAction_.isEmpty()) return;
  const int row = model_.RowOf(files_->CurrentFile());
  const bool isRead =
      row >= 0 && model_.Row(row).state != FileState::kNew && model_.Row(row).state != FileState::kReading;
  if (!isRead && pendingLimit_.isActive()) return;
  pendingLimit_.stop();
  const QString actionName = std::exchange(pendingAction_, QString());
  if (catalog_.Find(actionName) == nullptr) {
    Messages::Warn(this, tr("The action \"%1\" is not installed.").arg(actionName));
    return;
  }
  emit actionWanted(actionName);
}

void MainWindow::ChooseAction(const QString& actionName) {
  RunSettingsDialog(actionName, {}, true);
}

void MainWindow::Edit(const Choice& choice) {
  if (choice.IsList()) return EditList(choice.action.file);
  if (!choice.IsEditable()) return;
  const QString favorite = choice.favorite;
  if (RunSettingsDialog(choice.action.actionName, choice.action.settings, false)) choice_.favorite = favorite;
}

void MainWindow::EditList(const QString& file) {
  if (running_ || dialogs_.IsRunning()) return;
  const QString saved = ListDialog::Edit(this, catalog_, file);
  if (saved.isEmpty()) return;
  if (saved != file) RecentSettings::RemoveFile(file);
  OpenChoiceFile(saved);
}

// Only a file that vorlane-run has read and that is quickly opened: a file must neither crash the window nor make it
// wait.
std::unique_ptr<HalvexPDFLibraryCPDylibCPP1311> MainWindow::OpenDocument() {
  const int row = model_.RowOf(files_->CurrentFile());
  if (row < 0 || !model_.Row(row).facts) return nullptr;
  const FileFacts& facts = *model_.Row(row).facts;
  if (facts.saveMode != QLatin1String("incremental")) return nullptr;
  if (facts.encrypted && QFileInfo(model_.Row(row).path).size() > kMostToDecrypt) return nullptr;
  try {
    std::unique_ptr<PdfLibrary::Wrapper> library = PdfLibrary::Open(L"HalvexPDFLibraryCPDylib1311.dylib");
    std::vector<std::wstring> passwords;
    for (const QString& password : passwords_) passwords.push_back(password.toStdWString());
    const std::string file = NativeName::ToBytes(model_.Row(row).path).toStdString();
    return PdfLibrary::LoadDocument(*library, file, passwords).empty() ? std::move(library) : nullptr;
  } catch (const CommandError& error) {
    notice_->Add(RecordTexts::PlainReason(error.Message()));
    return nullptr;
  }
}

bool MainWindow::RunSettingsDialog(const QString& actionName, const QMap<QString, QVariant>& settings,
                                   bool withDocument) {
  CActionInterface* const action = catalog_.Find(actionName);
  if (action == nullptr || running_ || dialogs_.IsRunning()) return false;
  const std::unique_ptr<PdfLibrary::Wrapper> document = withDocument ? OpenDocument() : nullptr;
  const SettingsDialogRunner::Result result = dialogs_.Run(*action, settings, document.get());
  result.accepted ? actions_->MarkChosen(actionName) : actions_->MarkChosenAgain();
  UseResult(actionName, result);
  return result.accepted;
}

void MainWindow::UseResult(const QString& actionName, const SettingsDialogRunner::Result& result) {
  if (!result.settingsFile.isEmpty()) {
    if (QFileInfo(result.settingsFile).isFile()) {
      RecentSettings::AddFile(result.settingsFile);
      actions_->ShowFile(QFileInfo(result.settingsFile).absoluteFilePath());
    } else {
      Messages::Warn(this, tr("The settings could not be written to %1. Check that the folder can be written and that "
                              "the disk is not full.")
                               .arg(result.settingsFile));
    }
  }
  if (!result.accepted) return;
  QString problem;
  SetChoice(Choices::OfAction(catalog_, actionName, result.settings, &problem));
  if (!result.favoriteName.isEmpty()) SaveFavorite(result.favoriteName, result.favoriteIcon);
  if (result.listFile.isEmpty()) return;
  if (result.listFailed) {
    Messages::Warn(this, tr("The action list %1 could not be written. Choose another name, and check that the folder "
                            "can be written and that the disk is not full.")
                             .arg(result.listFile));
    return;
  }
  actions_->ShowFile(result.listFile);
  statusBar()->showMessage(tr("Saved in the action list %1").arg(ActionListFile::Read(result.listFile).name), 5000);
}

void MainWindow::SetChoice(const Choice& choice) {
  choice_ = choice;
  output_->ClearSummary();
  card_->SetChoice(choice);
  UpdateReady();
  UpdatePreview();
}

// Asks for the name unless one is given.
void MainWindow::SaveFavorite(const QString& name, const QIcon& icon) {
  if (!choice_.IsEditable()) return;
  const QString start = name.isEmpty() ? choice_.favorite : name;
  const QString saved = FavoriteDialog::Save(
      this, {QString(), start, icon, choice_.action.actionName, choice_.action.settings}, name.isEmpty());
  actions_->Refresh();
  if (!saved.isEmpty()) statusBar()->showMessage(tr("Saved as the favorite \"%1\"").arg(saved), 5000);
}

void MainWindow::ShowHelp(const QString& actionName) {
  if (CActionInterface* const action = catalog_.Find(actionName)) HelpWindow::ShowPage(this, *action);
}

// ---- The run ----

OutputChoice MainWindow::Output() const {
  OutputChoice output = output_->Output();
  output.passwords = passwords_;
  return output;
}

// A folder that was added keeps its shape below the output folder.
QStringList MainWindow::NamesFor(const QStringList& files) const {
  return output_->Output().inPlace ? files : model_.NamesForFolder(files);
}

QString MainWindow::ProblemOfRun() const {
  if (model_.Count() == 0) return tr("Add the files that are to be worked on.");
  if (!choice_.IsSet()) return tr("Choose on the left what is to be done with the files.");
  return ProblemOf(choice_.action, Output());
}

void MainWindow::Run(const QStringList& files, Beginning begin) {
  const OutputChoice output = Output();
  if (running_ || files.isEmpty() || !ProblemOfRun().isEmpty()) return;
  if (output.inPlace && output.backupSuffix.isEmpty() &&
      !Messages::Confirm(this, tr("Change %n file(s) without a backup?", nullptr, files.size()),
                         tr("The originals cannot be brought back."), tr("Change Without Backup"))) {
    return;
  }
  if (choice_.IsEditable()) RecentSettings::Add({choice_.action.actionName, choice_.action.settings});
  notice_->Clear();
  changed_.clear();
  SetRunning(true);
  (batch_.*begin)(NamesFor(files), choice_.action, output);
}

void MainWindow::SetRunning(bool running) {
  running_ = running;
  facts_.SetPaused(running);
  left_->setEnabled(!running);
  files_->SetRunning(running);
  UpdateReady();
  UpdatePreview();
}

void MainWindow::OnOutcomes(const QVector<FileOutcome>& outcomes) {
  QVector<FileStateChange> changes;
  changes.reserve(outcomes.size());
  for (const FileOutcome& outcome : outcomes) {
    changes += outcome.change;
    if (outcome.change.state == FileState::kDone) changed_ += outcome.change.path;
  }
  model_.SetStates(changes);
}

void MainWindow::OnFinished(const BatchSummary& summary) {
  SetRunning(false);
  output_->ShowSummary(summary, !batch_.OutputFolders().isEmpty(), static_cast<int>(batch_.Unfinished().size()));
  UpdateReady();
  Desktop::ShowProgress(-1);
  QApplication::alert(this);
  files_->Arrange();
  actions_->Refresh();
  if (output_->Output().inPlace) facts_.Refresh(changed_);
  for (const QString& message : summary.messages) notice_->Add(message);
  if (closing_) close();
}

void MainWindow::Retry() {
  const QStringList files = batch_.Unfinished();
  const QStringList locked = model_.PathsWith(FileState::kNeedsPassword);
  if (!locked.isEmpty() && !AskPassword() && locked.size() == files.size()) return;
  Run(files, &BatchRun::TryAgain);
}

bool MainWindow::AskPassword() {
  const QStringList locked = model_.PathsWith(FileState::kNeedsPassword);
  if (locked.isEmpty()) return false;
  const QString password = PasswordDialog::Ask(this, locked);
  if (password.isEmpty()) return false;
  if (!passwords_.contains(password)) passwords_ += password;
  facts_.SetPasswords(passwords_);
  UpdatePreview();
  return true;
}

void MainWindow::OpenResults() {
  for (const QString& folder : batch_.OutputFolders().mid(0, kMostOpenedFolders)) {
    if (!Desktop::Open(folder)) notice_->Add(tr("No program is there to open the folder %1.").arg(folder));
  }
}

void MainWindow::SaveReport() {
  const QString key = QLatin1String(kReportKey);
  const QString start = CActionUtils::GetLastVisitedLocation(key) + QStringLiteral("/report.csv");
  const QStringList forms{tr("Tables for spreadsheets (*.csv)"), tr("Reports (*.json)"),
                          tr("Reports, one line for each file (*.jsonl)")};
  QString form = forms[0];
  QString file = QFileDialog::getSaveFileName(this, tr("Save Report"), start, forms.join(QStringLiteral(";;")), &form);
  if (file.isEmpty()) return;
  CActionUtils::SaveLastVisitedLocation(key, QFileInfo(file).path());
  if (QFileInfo(file).suffix().isEmpty()) file += form.mid(form.lastIndexOf(QLatin1Char('.'))).chopped(1);
  batch_.SaveReport(file);
}

void MainWindow::CopyCommand() {
  QApplication::clipboard()->setText(CommandText(choice_.action, Output(), NamesFor(model_.Paths())));
  statusBar()->showMessage(tr("The command is in the clipboard."), 5000);
}

// ---- What is shown ----

void MainWindow::UpdatePreview() {
  const QString file = files_->CurrentFile();
  preview_.Clear();
  if (!previewPanel_->isVisibleTo(this)) return;
  if (running_) {
    previewPanel_->ShowHint(tr("The preview comes back after the run."));
  } else if (file.isEmpty()) {
    previewPanel_->ShowHint(tr("Select a file to see what would change in it."));
  } else if (!choice_.IsSet()) {
    previewPanel_->ShowHint(
        tr("Choose on the left what is to be done: here you see then what would change in the file, "
           "and where its links lead."));
  } else {
    preview_.Request(file, choice_.action, Output());
  }
}

void MainWindow::UpdateReady() {
  const QString problem = ProblemOfRun();
  const bool isReady = !running_ && problem.isEmpty();
  output_->SetReady(model_.Count(), problem);
  run_->setEnabled(isReady);
  runSelected_->setEnabled(isReady && !files_->SelectedFiles().isEmpty());
  cancel_->setEnabled(running_);
  edit_->setEnabled(!running_ && (choice_.IsEditable() || choice_.IsList()));
  favorite_->setEnabled(!running_ && choice_.IsEditable());
  help_->setEnabled(choice_.IsEditable());
  copyCommand_->setEnabled(problem.isEmpty());
}

void MainWindow::UpdateStatus() {
  count_->setText(model_.Count() == 0 ? QString() : tr("%n file(s)", nullptr, model_.Count()));
  if (scanner_.IsRunning()) {
    reading_->setText(tr("Looking for PDF files…"));
  } else if (facts_.Left() > 0) {
    reading_->setText(tr("Reading, %n file(s) left…", nullptr, facts_.Left()));
  } else {
    reading_->clear();
  }
  password_->setEnabled(facts_.Left() > 0 || !model_.PathsWith(FileState::kNeedsPassword).isEmpty());
}

void MainWindow::UpdateLayout() {
  const bool wasVisible = previewPanel_->isVisibleTo(this);
  previewPanel_->setVisible(showPreview_->isChecked() && model_.Count() > 0);
  if (!wasVisible && previewPanel_->isVisibleTo(this)) UpdatePreview();
}

void MainWindow::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  // Pictures and colours that were taken from the palette.
  if (event->type() != QEvent::PaletteChange || !isVisible()) return;
  MakeLinksReadable();
  actions_->RefreshSoon();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (dialogs_.IsRunning()) return;
  if (running_ && !closing_) {
    const bool stop = Messages::Confirm(
        this, tr("Stop the run and close the window?"),
        tr("Files in hand are finished first. The files after them are left as they are."), tr("Stop and Close"));
    if (!stop) return;
    closing_ = true;
    if (running_) {
      output_->ShowCancelling();
      batch_.Cancel();
      return;
    }
  }
  SaveState();
  event->accept();
}
