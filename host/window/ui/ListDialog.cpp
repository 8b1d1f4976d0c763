// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/ListDialog.h"

#include <QFile>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "host/actions/ActionCatalog.h"
#include "host/actions/ActionList.h"
#include "host/base/CommandError.h"
#include "host/window/core/RecordTexts.h"
#include "host/window/ui/FavoriteDialog.h"
#include "host/window/ui/Messages.h"
#include "host/window/ui/SaveFooter.h"
#include "host/window/ui/SettingsText.h"

namespace {

bool IsSame(const ActionListFile& one, const ActionListFile& other) {
  const auto isSame = [](const ActionListFile::Entry& a, const ActionListFile::Entry& b) {
    return a.actionName == b.actionName && a.settings == b.settings;
  };
  return one.name == other.name && one.category == other.category &&
         std::equal(one.entries.begin(), one.entries.end(), other.entries.begin(), other.entries.end(), isSame);
}

}  // namespace

ListDialog::ListDialog(QWidget* parent, ActionCatalog& catalog, const QString& file)
    : QDialog(parent),
      catalog_(catalog),
      file_(file),
      before_(ActionListFile::Read(file)),
      list_(before_),
      dialogs_(this) {
  setObjectName(QStringLiteral("listDialog"));
  setWindowTitle(tr("Edit Action List"));
  name_ = new QLineEdit(list_.name);
  name_->setObjectName(QStringLiteral("listName"));
  auto* const label = new QLabel(tr("&Name:"));
  label->setBuddy(name_);
  steps_ = new QListWidget;
  steps_->setObjectName(QStringLiteral("steps"));
  steps_->setAccessibleName(tr("Actions of the list"));
  steps_->setTextElideMode(Qt::ElideRight);
  steps_->setIconSize(QSize(fontMetrics().height() * 5 / 4, fontMetrics().height() * 5 / 4));
  steps_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  steps_->setMinimumWidth(fontMetrics().averageCharWidth() * 60);
  footer_ = new SaveFooter(*this);
  auto* const layout = new QGridLayout(this);
  layout->addWidget(label, 0, 0);
  layout->addWidget(name_, 0, 1, 1, 2);
  layout->addWidget(steps_, 1, 0, 1, 2);
  layout->addWidget(MakeButtons(), 1, 2);
  layout->addWidget(footer_, 2, 0, 1, 3);
  layout->setColumnStretch(1, 1);
  connect(name_, &QLineEdit::textChanged, this, &ListDialog::Update);
  connect(steps_, &QListWidget::currentRowChanged, this, &ListDialog::Update);
  connect(steps_, &QListWidget::itemActivated, this, &ListDialog::EditSettings);
  connect(footer_, &SaveFooter::saveWanted, this, &ListDialog::Save);
  Show(0);
}

QWidget* ListDialog::MakeButtons() {
  auto* const column = new QWidget;
  auto* const layout = new QVBoxLayout(column);
  layout->setContentsMargins(0, 0, 0, 0);
  const auto make = [&](const QString& text, const char* name) {
    auto* const button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(false);
    layout->addWidget(button);
    return button;
  };
  settings_ = make(tr("&Settings…"), "stepSettings");
  up_ = make(tr("&Up"), "stepUp");
  down_ = make(tr("&Down"), "stepDown");
  remove_ = make(tr("&Remove"), "stepRemove");
  add_ = make(tr("&Add"), "stepAdd");
  layout->addStretch(1);
  auto* const menu = new QMenu(add_);
  for (const ActionCatalog::Entry& entry : catalog_.All()) {
    const QString name = entry.action->GetActionName();
    menu->addAction(ActionIcon(entry.action->GetDefaultIcon()), ActionText(entry.action->GetDisplayName()), this,
                    [this, name] { Add(name); });
  }
  add_->setMenu(menu);
  connect(settings_, &QPushButton::clicked, this, &ListDialog::EditSettings);
  connect(up_, &QPushButton::clicked, this, [this] { Move(-1); });
  connect(down_, &QPushButton::clicked, this, [this] { Move(1); });
  connect(remove_, &QPushButton::clicked, this, &ListDialog::Remove);
  return column;
}

void ListDialog::Show(int current) {
  steps_->clear();
  for (const ActionListFile::Entry& entry : list_.entries) {
    CActionInterface* const action = catalog_.Find(entry.actionName);
    const QString settings = DescribeSettings(entry.actionName, entry.settings);
    auto* const item = new QListWidgetItem(
        action == nullptr ? tr("%1 (not installed)").arg(entry.actionName)
                          : ActionText(action->GetDisplayName()) + QStringLiteral(" – ") + settings.simplified(),
        steps_);
    if (action != nullptr) item->setIcon(ActionIcon(action->GetDefaultIcon()));
    item->setToolTip(settings);
  }
  steps_->setCurrentRow(qBound(0, current, steps_->count() - 1));
  Update();
}

void ListDialog::Update() {
  const int row = steps_->currentRow();
  const QString why = Problem();
  settings_->setEnabled(row >= 0 && catalog_.Find(EntryAt(row).actionName) != nullptr);
  up_->setEnabled(row > 0);
  down_->setEnabled(row >= 0 && row + 1 < steps_->count());
  remove_->setEnabled(row >= 0);
  footer_->Update(why, why.isEmpty());
}

QString ListDialog::Problem() const {
  if (list_.entries.empty()) return tr("Add an action: a list has at least one.");
  return name_->text() == before_.name ? QString() : Favorites::NameProblem(name_->text());
}

bool ListDialog::Ask(ActionListFile::Entry& entry) {
  CActionInterface* const action = catalog_.Find(entry.actionName);
  if (action == nullptr) return false;
  const SettingsDialogRunner::Result result = dialogs_.Run(*action, entry.settings, nullptr);
  if (!result.accepted) return false;
  entry.settings = result.settings;
  if (!result.favoriteName.isEmpty()) {
    FavoriteDialog::Save(this, {QString(), result.favoriteName, result.favoriteIcon, entry.actionName, entry.settings});
  }
  return true;
}

void ListDialog::Add(const QString& actionName) {
  ActionListFile::Entry entry;
  entry.actionName = actionName;
  if (!Ask(entry)) return;
  list_.entries.push_back(entry);
  Show(steps_->count());
}

void ListDialog::EditSettings() {
  const int row = steps_->currentRow();
  if (row >= 0 && Ask(EntryAt(row))) Show(row);
}

void ListDialog::Move(int by) {
  const int row = steps_->currentRow();
  std::swap(EntryAt(row), EntryAt(row + by));
  Show(row + by);
}

void ListDialog::Remove() {
  const int row = steps_->currentRow();
  list_.entries.erase(list_.entries.begin() + row);
  Show(row);
}

bool ListDialog::MayReplace() {
  const QString file = ActionList::FileAfterRename(file_, list_.name);
  if (file != file_ && QFile::exists(file)) {
    return Messages::Confirm(this, tr("Replace the action list \"%1\"?").arg(list_.name),
                             tr("There is another list of this name. It is lost."), tr("Replace"));
  }
  if (IsSame(ActionListFile::Read(file_), before_)) return true;
  return Messages::Confirm(this, tr("Replace the action list \"%1\"?").arg(list_.name),
                           tr("Another program has changed or removed it since it was opened here."), tr("Replace"));
}

void ListDialog::Save() {
  list_.name = name_->text();
  if (!MayReplace()) return;
  try {
    file_ = ActionList::Store(file_, list_);
    accept();
  } catch (const CommandError& error) {
    Messages::Warn(this, RecordTexts::PlainReason(error.Message()));
  }
}

QString ListDialog::Edit(QWidget* parent, ActionCatalog& catalog, const QString& file) {
  try {
    QStringList leftOut;
    ActionList::Read(file, &leftOut);
    if (!leftOut.isEmpty()) {
      Messages::Warn(parent, tr("The list %1 is damaged: saving it would lose what cannot be read in it.").arg(file));
      return {};
    }
  } catch (const CommandError& error) {
    Messages::Warn(parent, RecordTexts::PlainReason(error.Message()));
    return {};
  }
  ListDialog dialog(parent, catalog, file);
  return dialog.exec() == QDialog::Accepted ? dialog.file_ : QString();
}
