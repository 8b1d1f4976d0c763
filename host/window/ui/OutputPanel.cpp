// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/OutputPanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "host/window/core/FileTableModel.h"
#include "host/window/ui/WrappingRow.h"
#include "utils/CActionUtils.h"

namespace {

enum Place { kWithBackup, kWithoutBackup, kFolder };
const char* const kOutputKey = "VorlaneActionsOutput";

QString Link(const QString& text, FileState state) {
  return QStringLiteral("<a href=\"%1\">%2</a>").arg(static_cast<int>(state)).arg(text.toHtmlEscaped());
}

}  // namespace

OutputPanel::OutputPanel(QWidget* parent) : QWidget(parent) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(MakeChoice());
  layout->addWidget(MakeStatus());
  UpdateFields();
  ClearSummary();
}

QWidget* OutputPanel::MakeChoice() {
  place_ = new QComboBox;
  place_->setObjectName(QStringLiteral("place"));
  place_->addItem(tr("Change the files, keep the originals as .bak"));
  place_->addItem(tr("Change the files, keep no originals"));
  place_->addItem(tr("Save changed copies in a folder"));
  // Large text in a small window costs the end of a text, not the Run button.
  place_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  place_->setMinimumContentsLength(16);
  place_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  place_->setMaximumWidth(QComboBox().fontMetrics().averageCharWidth() * 52);
  auto* const label = new QLabel(tr("Resul&ts:"));
  label->setBuddy(place_);
  place_->setAccessibleName(tr("Where results go"));
  folder_ = new QLineEdit;
  folder_->setObjectName(QStringLiteral("outputFolder"));
  folder_->setPlaceholderText(tr("Folder"));
  folder_->setAccessibleName(tr("Folder of the results"));
  auto* const browse = new QPushButton(tr("Choose…"));
  browse->setObjectName(QStringLiteral("chooseFolder"));
  browse->setAccessibleName(tr("Choose the folder of the results"));
  folderRow_ = new QWidget;
  noFolder_ = new QWidget;
  auto* const folderLayout = new QHBoxLayout(folderRow_);
  folderLayout->setContentsMargins(0, 0, 0, 0);
  folderLayout->addWidget(folder_, 1);
  folderLayout->addWidget(browse);
  breakSignatures_ = new QCheckBox(tr("Allow breaking si&gnatures"));
  breakSignatures_->setObjectName(QStringLiteral("breakSignatures"));
  breakSignatures_->setToolTip(
      tr("Signed files keep their signatures wherever that is possible. With this, files whose signatures would break "
         "are changed too; otherwise they are left as they are, and the list says so."));
  run_ = new QPushButton;
  run_->setObjectName(QStringLiteral("run"));
  run_->setDefault(true);
  run_->setAutoDefault(true);
  QFont bold = font();
  bold.setBold(true);
  run_->setFont(bold);
  run_->setMinimumHeight(run_->sizeHint().height() * 5 / 4);
  cancel_ = new QPushButton(tr("Cancel"));
  cancel_->setObjectName(QStringLiteral("cancel"));

  auto* const places = new QWidget;
  auto* const layout = new QHBoxLayout(places);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(label);
  layout->addWidget(place_, 5);
  layout->addWidget(folderRow_, 4);
  layout->addWidget(noFolder_, 1);
  auto* const start = new QWidget;
  auto* const startLayout = new QHBoxLayout(start);
  startLayout->setContentsMargins(0, 0, 0, 0);
  startLayout->addWidget(breakSignatures_);
  startLayout->addSpacing(fontMetrics().height());
  startLayout->addWidget(cancel_);
  startLayout->addWidget(run_);

  connect(place_, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] {
    UpdateFields();
    emit outputChanged();
  });
  connect(folder_, &QLineEdit::textChanged, this, &OutputPanel::outputChanged);
  connect(breakSignatures_, &QCheckBox::toggled, this, &OutputPanel::outputChanged);
  connect(browse, &QPushButton::clicked, this, &OutputPanel::ChooseFolder);
  connect(run_, &QPushButton::clicked, this, &OutputPanel::runWanted);
  connect(cancel_, &QPushButton::clicked, this, &OutputPanel::cancelWanted);
  return new WrappingRow(places, start);
}

QWidget* OutputPanel::MakeStatus() {
  progress_ = new QProgressBar;
  progress_->setObjectName(QStringLiteral("progress"));
  progress_->setAccessibleName(tr("Progress"));
  progress_->setTextVisible(false);
  status_ = new QLabel;
  status_->setObjectName(QStringLiteral("status"));
  status_->setWordWrap(true);
  status_->setTextInteractionFlags(Qt::TextBrowserInteraction);
  retry_ = new QPushButton(tr("Tr&y Failed Again"));
  retry_->setObjectName(QStringLiteral("retry"));
  openResults_ = new QPushButton(tr("Ope&n Results"));
  openResults_->setObjectName(QStringLiteral("openResults"));
  saveReport_ = new QPushButton(tr("Save Re&port…"));
  saveReport_->setObjectName(QStringLiteral("saveReport"));
  auto* const state = new QWidget;
  // As high without the buttons, so that nothing moves when they come.
  state->setMinimumHeight(retry_->sizeHint().height());
  auto* const layout = new QHBoxLayout(state);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(progress_, 1);
  layout->addWidget(status_, 2);
  auto* const buttons = new QWidget;
  auto* const buttonLayout = new QHBoxLayout(buttons);
  buttonLayout->setContentsMargins(0, 0, 0, 0);
  for (QPushButton* button : {retry_, openResults_, saveReport_}) buttonLayout->addWidget(button);
  connect(status_, &QLabel::linkActivated, this,
          [this](const QString& link) { emit showWanted(static_cast<FileState>(link.toInt())); });
  connect(retry_, &QPushButton::clicked, this, &OutputPanel::retryWanted);
  connect(openResults_, &QPushButton::clicked, this, &OutputPanel::openResultsWanted);
  connect(saveReport_, &QPushButton::clicked, this, &OutputPanel::saveReportWanted);
  return new WrappingRow(state, buttons);
}

OutputChoice OutputPanel::Output() const {
  OutputChoice output;
  output.inPlace = place_->currentIndex() != kFolder;
  if (place_->currentIndex() != kWithBackup) output.backupSuffix.clear();
  const QString folder = folder_->text().trimmed();
  if (!output.inPlace && !folder.isEmpty()) output.folder = QDir::cleanPath(QDir::home().absoluteFilePath(folder));
  output.allowBreakingSignatures = breakSignatures_->isChecked();
  return output;
}

void OutputPanel::SetOutput(const OutputChoice& output) {
  const Place inPlace = output.backupSuffix.isEmpty() ? kWithoutBackup : kWithBackup;
  folder_->setText(output.folder);
  place_->setCurrentIndex(output.inPlace ? inPlace : kFolder);
  breakSignatures_->setChecked(output.allowBreakingSignatures);
}

void OutputPanel::SetReady(int files, const QString& problem) {
  run_->setText(files == 0 ? tr("&Run") : tr("&Run on %n File(s)", nullptr, files));
  run_->setEnabled(!running_ && problem.isEmpty());
  run_->setToolTip(problem);
  // What is missing is said where the result of a run will be.
  if (running_) return;
  QStringList lines{summary_, problem.toHtmlEscaped()};
  lines.removeAll(QString());
  status_->setText(lines.join(QStringLiteral("<br>")));
  status_->setVisible(!lines.isEmpty());
}

void OutputPanel::ChooseFolder() {
  const QString key = QLatin1String(kOutputKey);
  const QString start = folder_->text().isEmpty() ? CActionUtils::GetLastVisitedLocation(key) : folder_->text();
  const QString folder = QFileDialog::getExistingDirectory(this, tr("Folder of the Results"), start);
  if (folder.isEmpty()) return;
  CActionUtils::SaveLastVisitedLocation(key, folder);
  folder_->setText(folder);
}

void OutputPanel::UpdateFields() {
  place_->setToolTip(place_->currentText());  // it may be cut off
  folderRow_->setVisible(place_->currentIndex() == kFolder);
  noFolder_->setVisible(place_->currentIndex() != kFolder);
}

void OutputPanel::ShowRunning(int done, int total) {
  if (!running_) {
    running_ = true;
    for (QWidget* widget :
         {static_cast<QWidget*>(retry_), static_cast<QWidget*>(openResults_), static_cast<QWidget*>(saveReport_)}) {
      widget->hide();
    }
    place_->setEnabled(false);
    folderRow_->setEnabled(false);
    breakSignatures_->setEnabled(false);
    run_->setEnabled(false);
    cancel_->setEnabled(true);
    cancel_->show();
    progress_->show();
    status_->show();
  }
  progress_->setMaximum(total);
  progress_->setValue(done);
  if (cancel_->isEnabled()) status_->setText(tr("%1 of %2 done").arg(done).arg(total));
}

void OutputPanel::ShowCancelling() {
  cancel_->setEnabled(false);
  status_->setText(tr("Stopping. Files in hand are finished first."));
}

void OutputPanel::ShowSummary(const BatchSummary& summary, bool hasResults, int unfinished) {
  ClearSummary();
  QStringList parts;
  if (summary.done > 0) parts += Link(tr("%n done", nullptr, summary.done), FileState::kDone);
  if (summary.unchanged > 0) parts += Link(tr("%n already right", nullptr, summary.unchanged), FileState::kUnchanged);
  const int failed = summary.failed - summary.needPassword;
  if (failed > 0) parts += Link(tr("%n failed", nullptr, failed), FileState::kFailed);
  if (summary.needPassword > 0) {
    parts += Link(tr("%n need a password", nullptr, summary.needPassword), FileState::kNeedsPassword);
  }
  if (summary.cancelled > 0) parts += Link(tr("%n not begun", nullptr, summary.cancelled), FileState::kCancelled);
  QString text = parts.join(QStringLiteral(" · "));
  if (!summary.error.isEmpty()) text = summary.error.toHtmlEscaped() + QStringLiteral("<br>") + text;
  summary_ = text;
  status_->setText(text);
  status_->show();
  retry_->setText(summary.failed > 0 ? tr("Tr&y Failed Again") : tr("&Continue"));
  retry_->setVisible(unfinished > 0);
  openResults_->setVisible(hasResults);
  saveReport_->setVisible(true);
}

void OutputPanel::ClearSummary() {
  running_ = false;
  summary_.clear();
  for (QWidget* widget : QList<QWidget*>{cancel_, progress_, status_, retry_, openResults_, saveReport_})
    widget->hide();
  place_->setEnabled(true);
  folderRow_->setEnabled(true);
  breakSignatures_->setEnabled(true);
}
