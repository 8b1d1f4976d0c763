// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/ActionsPanel.h"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QInputDialog>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QKeyEvent>
#include <QMap>
#include <QMenu>
#include <QMessageBox>
#include <QScrollBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "host/actions/ActionCatalog.h"
#include "host/actions/ActionList.h"
#include "host/base/CommandError.h"
#include "host/window/core/RecordTexts.h"
#include "host/window/ui/Desktop.h"
#include "host/window/ui/Messages.h"
#include "host/window/ui/MutedLabel.h"
#include "host/window/ui/RecentSettings.h"
#include "host/window/ui/SettingsText.h"
#include "utils/ActionListFile.h"
#include "utils/CActionUtils.h"

namespace {

using Kind = ActionsPanel::Kind;
// A program that writes a file changes its folder several times.
constexpr int kSettleMs = 100;
constexpr int kKindRole = Qt::UserRole;
constexpr int kValueRole = Qt::UserRole + 1;

Kind KindOf(const QTreeWidgetItem* item) {
  return item == nullptr ? Kind::kHeading : static_cast<Kind>(item->data(0, kKindRole).toInt());
}

QString ValueOf(const QTreeWidgetItem* item) {
  return item == nullptr ? QString() : item->data(0, kValueRole).toString();
}

QString TextOf(const RecentSettings::Entry& entry) {
  return QJsonDocument(QJsonArray{entry.actionName, QJsonObject::fromVariantMap(entry.settings)}).toJson();
}

QTreeWidgetItem* AddItem(QTreeWidget* tree, Kind kind, const QString& text, const QIcon& icon, const QVariant& value) {
  auto* const item = new QTreeWidgetItem(tree, {text});
  item->setData(0, kKindRole, static_cast<int>(kind));
  item->setData(0, kValueRole, value);
  item->setIcon(0, icon);
  item->setSizeHint(0, QSize(0, tree->fontMetrics().height() * 7 / 4));
  return item;
}

}  // namespace

ActionsPanel::ActionsPanel(ActionCatalog& catalog, QWidget* parent) : QWidget(parent), catalog_(catalog) {
  tree_ = new QTreeWidget;
  tree_->setObjectName(QStringLiteral("actions"));
  tree_->setAccessibleName(tr("What to do"));
  tree_->setHeaderHidden(true);
  tree_->setRootIsDecorated(false);
  tree_->setIconSize(QSize(fontMetrics().height() * 5 / 4, fontMetrics().height() * 5 / 4));
  tree_->setContextMenuPolicy(Qt::CustomContextMenu);
  tree_->setTextElideMode(Qt::ElideMiddle);
  tree_->installEventFilter(this);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(tree_);

  connect(tree_, &QTreeWidget::itemClicked, this,
          [this](QTreeWidgetItem* item) { Choose(KindOf(item), ValueOf(item)); });
  connect(tree_, &QTreeWidget::customContextMenuRequested, this, &ActionsPanel::ShowMenu);
  refresh_.setSingleShot(true);
  connect(&refresh_, &QTimer::timeout, this, &ActionsPanel::Refresh);
  connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, [this] { refresh_.start(kSettleMs); });
}

void ActionsPanel::Refresh() {
  // An entry that only has the focus is not marked.
  const QString marked = ValueOf(tree_->selectedItems().value(0));
  const int position = tree_->verticalScrollBar()->value();
  tree_->clear();
  favorites_ = Favorites::All();
  AddActions();
  AddFavorites();
  AddLists();
  AddOpenedFiles();
  AddRecent();
  Watch();
  MoveTo(marked);
  tree_->verticalScrollBar()->setValue(position);
}

void ActionsPanel::MoveTo(const QString& value) {
  QTreeWidgetItemIterator item(tree_);
  while (*item != nullptr && (value.isEmpty() || ValueOf(*item) != value)) ++item;
  tree_->setCurrentItem(*item);
  if (*item != nullptr) tree_->scrollToItem(*item);
}

void ActionsPanel::MarkChosen(const QString& value) {
  chosen_ = value;
  MoveTo(value);
}

void ActionsPanel::ShowFile(const QString& file) {
  Refresh();
  MoveTo(file);
}

void ActionsPanel::Watch() {
  for (const QString& folder : {CActionUtils::GetSequenceFolder(), CActionUtils::GetCollectionsFolder()}) {
    const QString path = QDir::cleanPath(folder);
    if (!watcher_.directories().contains(path) && QFileInfo(path).isDir()) watcher_.addPath(path);
  }
}

// A line of its own and not a parent: keys go from entry to entry.
QTreeWidgetItem* ActionsPanel::AddHeading(const QString& text) {
  const bool isFirst = tree_->topLevelItemCount() == 0;
  auto* const heading = new QTreeWidgetItem(tree_, {text});
  heading->setData(0, kKindRole, static_cast<int>(Kind::kHeading));
  heading->setFlags(Qt::NoItemFlags);
  heading->setForeground(0, MutedLabel::ColorOn(palette(), QPalette::Text, QPalette::Base));
  QFont bold = tree_->font();
  bold.setBold(true);
  heading->setFont(0, bold);
  heading->setSizeHint(0, QSize(0, fontMetrics().height() * (isFirst ? 6 : 9) / 4));
  heading->setTextAlignment(0, Qt::AlignLeft | Qt::AlignBottom);
  return heading;
}

void ActionsPanel::AddActions() {
  QMap<QString, QVector<CActionInterface*>> groups;
  for (const ActionCatalog::Entry& entry : catalog_.All())
    groups[ActionText(entry.action->GetGroupName())] += entry.action;
  for (auto group = groups.begin(); group != groups.end(); ++group) {
    AddHeading(group.key());
    for (CActionInterface* const action : group.value()) {
      const QString name = ActionText(action->GetDisplayName());
      AddItem(tree_, Kind::kAction, name, ActionIcon(action->GetDefaultIcon()), action->GetActionName())
          ->setToolTip(0, tr("Enter the settings of \"%1\"").arg(name));
    }
  }
  if (groups.isEmpty()) {
    AddHeading(tr("No action is installed"))->setToolTip(0, catalog_.Problems().join(QLatin1Char('\n')));
  }
}

void ActionsPanel::AddFavorites() {
  if (!favorites_.isEmpty()) AddHeading(tr("Favorites"));
  for (const Favorite& favorite : favorites_) {
    AddItem(tree_, Kind::kFavorite, favorite.name, favorite.icon, favorite.file)
        ->setToolTip(0, ActionText(favorite.actionName) + QLatin1Char('\n') +
                            DescribeSettings(favorite.actionName, favorite.settings));
  }
}

void ActionsPanel::AddLists() {
  QMap<QString, QVector<QPair<QString, ActionListFile>>> categories;  // by their lower-case name
  for (const QString& file : ActionListFile::All()) {
    const ActionListFile list = ActionListFile::Read(file);
    categories[list.category.toLower()] += {file, list};
  }
  for (const auto& lists : categories) {
    const QString category = lists[0].second.category;
    AddHeading(category.isEmpty() ? tr("Action Lists") : tr("Action Lists: %1").arg(category));
    for (const auto& [file, list] : lists) {
      QStringList actions;
      for (const ActionListFile::Entry& entry : list.entries) actions += ActionText(entry.actionName);
      const QString name = list.name.isEmpty() ? QFileInfo(file).completeBaseName() : list.name;
      AddItem(tree_, Kind::kList, name, Choices::ListIcon(), file)->setToolTip(0, actions.join(QLatin1Char('\n')));
    }
  }
}

void ActionsPanel::AddOpenedFiles() {
  const QStringList files = RecentSettings::Files();
  if (!files.isEmpty()) AddHeading(tr("Opened Files"));
  for (const QString& file : files) {
    const QIcon icon = Choices::IsListFile(file) ? Choices::ListIcon() : Choices::SettingsFileIcon();
    AddItem(tree_, Kind::kFile, QFileInfo(file).completeBaseName(), icon, file)->setToolTip(0, file);
  }
}

void ActionsPanel::AddRecent() {
  const QVector<RecentSettings::Entry> entries = RecentSettings::All();
  if (!entries.isEmpty()) AddHeading(tr("Recent"));
  for (const RecentSettings::Entry& entry : entries) {
    CActionInterface* const action = catalog_.Find(entry.actionName);
    if (action == nullptr) continue;
    const QString details = DescribeSettings(entry.actionName, entry.settings);
    QString line = details.section(QLatin1Char('\n'), 0, 0);
    // Of a single setting the value says enough.
    if (!details.contains(QLatin1Char('\n'))) line = line.section(QStringLiteral(": "), 1);
    if (line.isEmpty()) line = details;
    AddItem(tree_, Kind::kRecent, line.isEmpty() ? ActionText(action->GetDisplayName()) : line,
            ActionIcon(action->GetDefaultIcon()), TextOf(entry))
        ->setToolTip(0, ActionText(action->GetDisplayName()) + QLatin1Char('\n') + details);
  }
}

bool ActionsPanel::eventFilter(QObject* object, QEvent* event) {
  if (object != tree_ || event->type() != QEvent::KeyPress) return QWidget::eventFilter(object, event);
  const Kind kind = KindOf(tree_->currentItem());
  const QString value = ValueOf(tree_->currentItem());
  switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
      Choose(kind, value);
      return true;
    case Qt::Key_F2:
      if (kind == Kind::kFavorite) RenameFavorite(FavoriteOf(value));
      return true;
    case Qt::Key_Delete:
      if (kind == Kind::kFavorite) RemoveFavorite(FavoriteOf(value));
      if (kind == Kind::kList) RemoveList(value);
      return true;
    default:
      return QWidget::eventFilter(object, event);
  }
}

Favorite ActionsPanel::FavoriteOf(const QString& file) const {
  for (const Favorite& favorite : favorites_) {
    if (favorite.file == file) return favorite;
  }
  return {};
}

Choice ActionsPanel::ChoiceOf(Kind kind, const QString& value) {
  QString why;
  Choice choice;
  if (kind == Kind::kFavorite) {
    const Favorite favorite = FavoriteOf(value);
    choice = Choices::OfAction(catalog_, favorite.actionName, favorite.settings, &why, favorite.name, favorite.icon);
    choice.favorite = favorite.name;
  } else if (kind == Kind::kList || kind == Kind::kFile) {
    choice = Choices::OfFile(catalog_, value, &why);
  } else if (kind == Kind::kRecent) {
    for (const RecentSettings::Entry& entry : RecentSettings::All()) {
      if (TextOf(entry) == value) choice = Choices::OfAction(catalog_, entry.actionName, entry.settings, &why);
    }
  }
  if (!why.isEmpty()) emit problem(why);
  return choice;
}

void ActionsPanel::Choose(Kind kind, const QString& value) {
  if (kind == Kind::kHeading) return;
  if (kind == Kind::kAction) {
    emit actionChosen(value);
    return;
  }
  const Choice choice = ChoiceOf(kind, value);
  if (!choice.IsSet()) return MarkChosenAgain();
  MarkChosen(value);
  emit choiceMade(choice);
}

// The items may be replaced while the menu is open.
void ActionsPanel::ShowMenu(const QPoint& position) {
  const Kind kind = KindOf(tree_->itemAt(position));
  const QString value = ValueOf(tree_->itemAt(position));
  if (kind == Kind::kHeading) return;
  QMenu menu(this);
  menu.addAction(kind == Kind::kAction ? tr("Enter &Settings…") : tr("&Use"), this, [=] { Choose(kind, value); });
  if (kind == Kind::kAction) menu.addAction(tr("&Help"), this, [=] { emit helpWanted(value); });
  const bool isList = kind == Kind::kList || (kind == Kind::kFile && Choices::IsListFile(value));
  if (isList || kind == Kind::kFavorite || kind == Kind::kRecent) {
    menu.addAction(isList ? tr("&Edit List…") : tr("&Edit Settings…"), this, [=] {
      const Choice choice = ChoiceOf(kind, value);
      if (choice.IsSet()) emit editWanted(choice);
    });
  }
  if (kind == Kind::kFavorite) {
    const Favorite favorite = FavoriteOf(value);
    menu.addAction(tr("&Rename…"), this, [=] { RenameFavorite(favorite); });
    menu.addSeparator();
    menu.addAction(tr("Re&move…"), this, [=] { RemoveFavorite(favorite); });
  }
  if (kind == Kind::kList || kind == Kind::kFile) {
    menu.addAction(tr("Show in &Folder"), this, [=] { Desktop::ShowInFolder({value}); });
    menu.addSeparator();
  }
  if (kind == Kind::kList) menu.addAction(tr("Re&move…"), this, [=] { RemoveList(value); });
  if (kind == Kind::kFile) {
    menu.addAction(tr("&Take Off This List"), this, [=] {
      RecentSettings::RemoveFile(value);
      RefreshSoon();
    });
  }
  if (kind == Kind::kRecent) {
    menu.addSeparator();
    menu.addAction(tr("&Clear Recent Settings"), this, [=] {
      RecentSettings::Clear();
      RefreshSoon();
    });
  }
  menu.exec(tree_->viewport()->mapToGlobal(position));
}

void ActionsPanel::RenameFavorite(const Favorite& favorite) {
  QString name = favorite.name;
  for (bool ok = true; ok;) {
    name = QInputDialog::getText(this, tr("Rename Favorite"), tr("Name:"), QLineEdit::Normal, name, &ok);
    if (!ok || name == favorite.name) return;
    QString why = Favorites::NameProblem(name);
    if (why.isEmpty() && Favorites::Exists(name)) why = tr("There is a favorite of this name. Choose another name.");
    if (why.isEmpty()) {
      why = Favorites::Rename(favorite, name);
      RefreshSoon();
    }
    if (why.isEmpty()) return;
    emit problem(why);
  }
}

void ActionsPanel::RemoveFavorite(const Favorite& favorite) {
  if (!Messages::Confirm(this, tr("Remove the favorite \"%1\"?").arg(favorite.name),
                         tr("Its settings are deleted. Files are not touched."), tr("Remove Favorite"))) {
    return;
  }
  const QString why = Favorites::Remove(favorite);
  if (!why.isEmpty()) emit problem(why);
  RefreshSoon();
}

void ActionsPanel::RemoveList(const QString& file) {
  if (!Messages::Confirm(this, tr("Remove the action list \"%1\"?").arg(ActionListFile::Read(file).name),
                         tr("The file %1 is deleted. Documents are not touched.").arg(file), tr("Remove List"))) {
    return;
  }
  try {
    ActionList::RemoveFile(file);
  } catch (const CommandError& error) {
    emit problem(RecordTexts::PlainReason(error.Message()));
  }
  RefreshSoon();
}
