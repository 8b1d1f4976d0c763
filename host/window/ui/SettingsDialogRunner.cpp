// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/SettingsDialogRunner.h"

#include <QApplication>
#include <QCompleter>
#include <QDateTime>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QToolButton>
#include <QVector>

#include "host/actions/StoredSettings.h"
#include "host/window/ui/SettingsText.h"
#include "plugin/CActionInterface.h"
#include "plugin/DialogLoadStruct.h"
#include "utils/ActionListFile.h"
#include "utils/CActionUtils.h"

namespace {

constexpr int kFavoriteIconSize = 128;

bool HasDialogFrame(const QDialog& dialog) {
  return dialog.findChild<QWidget*>(QStringLiteral("VDmainFrame")) != nullptr;
}

bool IsListDialog(const QDialog& dialog) {
  return dialog.objectName() == QLatin1String("saveAsActionlistDialog");
}

bool IsFavoriteDialog(const QDialog& dialog) {
  return dialog.objectName() == QLatin1String("saveAsCollectionDialog");
}

// When each action list was written.
QMap<QString, qint64> ListTimes() {
  QMap<QString, qint64> times;
  for (const QString& path : ActionListFile::All()) {
    times.insert(path, QFileInfo(path).lastModified().toMSecsSinceEpoch());
  }
  return times;
}

}  // namespace

SettingsDialogRunner::Result SettingsDialogRunner::Run(CActionInterface& action,
                                                       const QMap<QString, QVariant>& settings,
                                                       HalvexPDFLibraryCPDylibCPP1311* document) {
  result_ = Result();
  result_.settings = settings;
  actionName_ = action.GetActionName();
  running_ = true;
  QApplication::instance()->installEventFilter(this);
  bool again = true;
  while (again) {
    settingsDialog_ = nullptr;
    headerDialogClosed_ = saved_ = false;
    DialogLoadStruct info{};
    info.document = document;
    info.settings = &result_.settings;
    info.skipDocumentValue = document == nullptr || !result_.settings.isEmpty();
    result_.accepted = action.ShowDialogProc(window_, &info) == 1;
    // A header button whose own dialog was cancelled, or that wrote a file, leads back to the settings.
    again = result_.accepted && headerDialogClosed_ && !saved_;
  }
  QApplication::instance()->removeEventFilter(this);
  running_ = false;
  // Some window managers leave no window active when two dialogs close at once.
  window_->activateWindow();
  for (const QString& key : StoredSettings::KeysOfDialogs()) result_.settings.remove(key);
  if (result_.accepted) RememberLinks(actionName_, result_.settings);
  return result_;
}

bool SettingsDialogRunner::eventFilter(QObject* object, QEvent* event) {
  const QEvent::Type type = event->type();
  if (headerDialogClosed_ && (type == QEvent::MouseButtonPress || type == QEvent::KeyPress || type == QEvent::Close)) {
    // The settings dialog outlived its header dialog; what the user does now is an answer of its own.
    const auto* const widget = qobject_cast<QWidget*>(object);
    if (widget != nullptr && widget->window() == settingsDialog_) headerDialogClosed_ = false;
  }
  if (auto* const dialog = qobject_cast<QDialog*>(object)) {
    if (type == QEvent::Polish) Polish(*dialog);
    if (type == QEvent::Show) Watch(dialog);
  }
  return false;
}

void SettingsDialogRunner::Polish(QDialog& dialog) const {
  // Their fixed style sheets are made for dark text on light ground.
  const bool isDark = QApplication::palette().color(QPalette::Window).lightness() < 128;
  if (!isDark || !HasDialogFrame(dialog)) return;
  const QPalette light(QColor(0xef, 0xef, 0xef));
  dialog.setPalette(light);
  // Widgets below a style sheet do not inherit it.
  for (QWidget* const widget : dialog.findChildren<QWidget*>()) widget->setPalette(light);
}

void SettingsDialogRunner::Watch(QDialog* dialog) {
  if (auto* files = qobject_cast<QFileDialog*>(dialog)) {
    if (files->acceptMode() != QFileDialog::AcceptSave) return;
    connect(files, &QFileDialog::fileSelected, this, [this](const QString& file) { result_.settingsFile = file; });
  } else if (IsListDialog(*dialog) || IsFavoriteDialog(*dialog)) {
    listsBefore_ = ListTimes();
    connect(dialog, &QDialog::finished, this, [this, dialog](int code) { OnHeaderDialogFinished(*dialog, code); });
  } else if (settingsDialog_.isNull() && dialog->parentWidget() == window_) {
    settingsDialog_ = dialog;
    OfferLinks(*dialog);
    dialog->move(window_->geometry().center() - dialog->rect().center());
    // The shell rejects the dialog as soon as this was reported; its settings are read when the result is another one.
    connect(dialog, &QDialog::rejected, this, [this, dialog] {
      if (headerDialogClosed_) dialog->setResult(QDialog::Accepted);
    });
  }
}

void SettingsDialogRunner::OnHeaderDialogFinished(QDialog& dialog, int code) {
  headerDialogClosed_ = true;
  if (code != QDialog::Accepted) return;
  saved_ = true;
  if (IsFavoriteDialog(dialog)) {
    if (auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("collectionNameLineEdit"))) {
      result_.favoriteName = name->text();
    }
    if (auto* icon = dialog.findChild<QToolButton*>(QStringLiteral("icon_toolButton"))) {
      result_.favoriteIcon = QIcon(icon->icon().pixmap(kFavoriteIconSize));
    }
  } else if (auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("actionListNameLineEdit"))) {
    result_.listFile = ActionListFile::PathOf(name->text());
    const QMap<QString, qint64> now = ListTimes();
    const QString listed = QFileInfo(result_.listFile).absoluteFilePath();
    result_.listFailed = true;
    for (auto list = now.begin(); list != now.end(); ++list) {
      const bool isNew = listsBefore_.value(list.key(), -1) != list.value();
      if (isNew && QFileInfo(list.key()).absoluteFilePath() == listed) result_.listFailed = false;
    }
  }
}

void SettingsDialogRunner::OfferLinks(QDialog& dialog) const {
  const QStringList links = RememberedLinks(actionName_);
  QList<QLineEdit*> fields = dialog.findChildren<QLineEdit*>();
  if (links.isEmpty() || fields.size() != 1) return;
  auto* const completer = new QCompleter(links, fields[0]);
  completer->setFilterMode(Qt::MatchContains);
  completer->setCaseSensitivity(Qt::CaseInsensitive);
  fields[0]->setCompleter(completer);
}
