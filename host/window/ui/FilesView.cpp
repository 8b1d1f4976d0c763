// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/FilesView.h"

#include <algorithm>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QStackedWidget>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

#include "host/window/core/FileTableModel.h"
#include "host/window/ui/Desktop.h"
#include "host/window/ui/MutedLabel.h"
#include "host/window/ui/WrappingRow.h"

namespace {

constexpr int kMostOpened = 20;  // files at a time

// Middle tones that are seen on light and on dark ground; the text beside them says the same.
QColor ColorOf(FileState state) {
  switch (state) {
    case FileState::kDone:
      return QColor(0x2e, 0x9e, 0x5b);
    case FileState::kFailed:
    case FileState::kUnreadable:
      return QColor(0xd9, 0x48, 0x3b);
    case FileState::kNeedsPassword:
    case FileState::kCancelled:
      return QColor(0xd9, 0x94, 0x1e);
    case FileState::kReady:
    case FileState::kUnchanged:
      return QColor(0x4a, 0x86, 0xcf);
    default:
      return QColor(0x99, 0x99, 0x99);
  }
}

// Puts a dot in the state's colour before its name.
class StateDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    const int size = option->fontMetrics.height() * 5 / 8;
    option->features |= QStyleOptionViewItem::HasDecoration;
    option->decorationSize = QSize(size, size);
    option->icon = Dot(static_cast<FileState>(index.data(FileTableModel::kStateRole).toInt()), size, *option);
  }

 private:
  static QIcon Dot(FileState state, int size, const QStyleOptionViewItem& option) {
    const qreal density = option.widget != nullptr ? option.widget->devicePixelRatioF() : 1;
    QPixmap pixmap(QSize(size, size) * density);
    pixmap.setDevicePixelRatio(density);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(option.palette.color(QPalette::Base));
    painter.setBrush(ColorOf(state));
    painter.drawEllipse(QRectF(0.5, 0.5, size - 1, size - 1));
    QIcon icon(pixmap);
    icon.addPixmap(pixmap, QIcon::Selected);
    return icon;
  }
};

// The beginning of a reason matters most.
class ReasonDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    option->textElideMode = Qt::ElideRight;
  }
};

// Rows that cannot be seen are not painted when they change, as they do by the thousand while files are read.
class FilesTable : public QTableView {
 public:
  using QTableView::QTableView;

 protected:
  void dataChanged(const QModelIndex& from, const QModelIndex& to, const QVector<int>& roles) override {
    const int first = rowAt(0);
    const int last = rowAt(viewport()->height() - 1);  // -1: below the last row
    const bool isSeen = first >= 0 && to.row() >= first && (last < 0 || from.row() <= last);
    if (isSeen || QAccessible::isActive()) QTableView::dataChanged(from, to, roles);
  }
};

QString TextOf(const QModelIndex& index) {
  return index.data(FileTableModel::kFullTextRole).toString().simplified();
}

}  // namespace

QVariant FilesProxy::headerData(int section, Qt::Orientation orientation, int role) const {
  const bool isNumber = section == FileTableModel::kPages || section == FileTableModel::kLinks;
  if (role == Qt::TextAlignmentRole && orientation == Qt::Horizontal && isNumber) {
    return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
  }
  return QSortFilterProxyModel::headerData(section, orientation, role);
}

FilesView::FilesView(FileTableModel& model, QWidget* parent) : QWidget(parent), model_(model) {
  filter_ = new QLineEdit;
  filter_->setObjectName(QStringLiteral("filter"));
  filter_->setPlaceholderText(tr("Filter files"));
  filter_->setAccessibleName(tr("Filter files"));
  filter_->setToolTip(tr("Shows the files that have this text in one of their columns, such as \"failed\""));
  filter_->setClearButtonEnabled(true);
  count_ = new MutedLabel;
  auto* const search = new QWidget;
  auto* const searchRow = new QHBoxLayout(search);
  searchRow->setContentsMargins(0, 0, 0, 0);
  searchRow->addWidget(count_);
  searchRow->addWidget(filter_);
  filter_->setMinimumWidth(fontMetrics().averageCharWidth() * 32);

  MakeTable();
  pages_ = new QStackedWidget;
  pages_->addWidget(MakeEmptyPage());
  auto* const full = new QWidget;
  auto* const fullLayout = new QVBoxLayout(full);
  fullLayout->setContentsMargins(0, 0, 0, 0);
  fullLayout->addWidget(new WrappingRow(MakeAddButtons("addFiles", "addFolder"), search));
  fullLayout->addWidget(table_);
  pages_->addWidget(full);
  setFocusProxy(pages_->widget(0));
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(pages_);
  MakeActions();

  connect(filter_, &QLineEdit::textChanged, this, [this](const QString& text) {
    proxy_.setFilterFixedString(text);
    UpdatePage();
  });
  connect(&model_, &QAbstractItemModel::dataChanged, this,
          [this](const QModelIndex& from, const QModelIndex& to) { ShowReasons(from.row(), to.row()); });
  connect(&proxy_, &QAbstractItemModel::rowsInserted, this, [this] {
    if (!table_->currentIndex().isValid()) table_->selectRow(0);
  });
  for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved}) {
    connect(&model_, signal, this, &FilesView::UpdatePage);
  }
  connect(&model_, &QAbstractItemModel::modelReset, this, &FilesView::UpdatePage);
  UpdatePage();
}

QWidget* FilesView::MakeAddButtons(const char* filesName, const char* folderName) {
  auto* const buttons = new QWidget;
  auto* const layout = new QHBoxLayout(buttons);
  layout->setContentsMargins(0, 0, 0, 0);
  const auto add = [&](const QString& text, const char* name, void (FilesView::*wanted)()) {
    auto* const button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    connect(button, &QPushButton::clicked, this, wanted);
    layout->addWidget(button);
  };
  add(tr("A&dd Files…"), filesName, &FilesView::addFilesWanted);
  add(tr("Add F&older…"), folderName, &FilesView::addFolderWanted);
  layout->addStretch(1);
  return buttons;
}

QWidget* FilesView::MakeEmptyPage() {
  auto* const page = new QFrame;
  page->setFrameShape(QFrame::StyledPanel);
  page->setBackgroundRole(QPalette::Base);
  page->setAutoFillBackground(true);
  auto* const title = new QLabel(tr("Drop PDF files or folders here"));
  QFont large = font();
  large.setPointSizeF(large.pointSizeF() * 1.5);
  title->setFont(large);
  title->setWordWrap(true);
  title->setAlignment(Qt::AlignCenter);
  auto* const hint = new MutedLabel(tr("Nothing is changed before you press Run."));
  hint->setWordWrap(true);
  hint->setAlignment(Qt::AlignCenter);
  auto* const layout = new QVBoxLayout(page);
  layout->addStretch(1);
  layout->addWidget(title);
  layout->addWidget(MakeAddButtons("addFirstFiles", "addFirstFolder"), 0, Qt::AlignHCenter);
  layout->addWidget(hint);
  layout->addStretch(1);
  layout->setSpacing(fontMetrics().height());
  page->setFocusProxy(page->findChild<QPushButton*>(QStringLiteral("addFirstFiles")));
  return page;
}

void FilesView::MakeTable() {
  proxy_.setSourceModel(&model_);
  proxy_.setSortRole(FileTableModel::kSortRole);
  proxy_.setFilterKeyColumn(-1);
  proxy_.setFilterCaseSensitivity(Qt::CaseInsensitive);
  proxy_.setSortCaseSensitivity(Qt::CaseInsensitive);
  proxy_.setSortLocaleAware(true);
  // Rows keep their places until Arrange(), so that nothing moves while files are read.
  proxy_.setDynamicSortFilter(false);

  table_ = new FilesTable;
  table_->setObjectName(QStringLiteral("files"));
  table_->setAccessibleName(tr("Files"));
  table_->setModel(&proxy_);
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->setShowGrid(false);
  table_->setAlternatingRowColors(true);
  table_->setWordWrap(false);
  table_->setTabKeyNavigation(false);
  table_->setTextElideMode(Qt::ElideMiddle);
  table_->setContextMenuPolicy(Qt::CustomContextMenu);
  table_->setItemDelegateForColumn(FileTableModel::kState, new StateDelegate(table_));
  table_->setItemDelegateForColumn(FileTableModel::kReason, new ReasonDelegate(table_));
  table_->verticalHeader()->hide();
  table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  table_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 3 / 2);
  QHeaderView* const header = table_->horizontalHeader();
  header->setHighlightSections(false);
  header->setSectionsMovable(true);
  header->setStretchLastSection(true);
  header->setSortIndicator(-1, Qt::AscendingOrder);
  header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  const int letter = fontMetrics().averageCharWidth();
  const QPair<int, int> columns[] = {
      {FileTableModel::kName, 23},    {FileTableModel::kState, 19},     {FileTableModel::kReason, 36},
      {FileTableModel::kBaseUrl, 25}, {FileTableModel::kLinks, 14},     {FileTableModel::kPages, 7},
      {FileTableModel::kSigned, 9},   {FileTableModel::kEncrypted, 11}, {FileTableModel::kFolder, 14}};
  for (int place = 0; place < FileTableModel::kColumnCount; ++place) {
    header->moveSection(header->visualIndex(columns[place].first), place);
    table_->setColumnWidth(columns[place].first, columns[place].second * letter);
  }
  table_->setSortingEnabled(true);

  connect(table_, &QTableView::customContextMenuRequested, this, &FilesView::ShowMenu);
  connect(table_, &QTableView::doubleClicked, this, [this] { open_->trigger(); });
  connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          [this] { emit currentFileChanged(CurrentFile()); });
  connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
    UpdateActions();
    emit selectionChanged();
  });
}

void FilesView::MakeActions() {
  const auto make = [this](const QString& text, const QKeySequence& shortcut, auto&& work) {
    auto* const action = new QAction(text, this);
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, &QAction::triggered, this, work);
    table_->addAction(action);
    return action;
  };
  open_ = make(tr("&Open"), QKeySequence(Qt::Key_Return), [this] {
    for (const QString& file : SelectedFiles().mid(0, kMostOpened)) Desktop::Open(file);
  });
  showInFolder_ = make(tr("Show in &Folder"), QKeySequence(), [this] { Desktop::ShowInFolder(SelectedFiles()); });
  remove_ = make(tr("&Take Off the List"), QKeySequence::Delete, [this] { RemoveSelected(); });
  remove_->setToolTip(tr("The files themselves stay"));
  copy_ = make(tr("&Copy Rows"), QKeySequence::Copy, [this] { CopyRows(); });
  copyCell_ = make(tr("Copy C&ell"), QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_C), [this] { CopyCell(); });
  selectAll_ = make(tr("Select &All"), QKeySequence::SelectAll, [this] { table_->selectAll(); });
  UpdateActions();
}

QString FilesView::CurrentFile() const {
  return table_->currentIndex().data(FileTableModel::kPathRole).toString();
}

QStringList FilesView::SelectedFiles() const {
  QStringList files;
  for (const QModelIndex& index : table_->selectionModel()->selectedRows()) {
    files += index.data(FileTableModel::kPathRole).toString();
  }
  return files;
}

void FilesView::FocusFilter() {
  filter_->setFocus(Qt::ShortcutFocusReason);
  filter_->selectAll();
}

void FilesView::SetFilter(const QString& text) {
  filter_->setText(text);
}

void FilesView::Arrange() {
  proxy_.invalidate();
  UpdatePage();
}

void FilesView::SetRunning(bool running) {
  running_ = running;
  UpdateActions();
}

QByteArray FilesView::SaveLayout() const {
  return table_->horizontalHeader()->saveState();
}

void FilesView::RestoreLayout(const QByteArray& layout) {
  table_->horizontalHeader()->restoreState(layout);
  table_->setColumnHidden(FileTableModel::kReason, true);
}

void FilesView::ShowMenu(const QPoint& position) {
  QMenu menu(this);
  menu.addActions({open_, showInFolder_});
  menu.addSeparator();
  menu.addActions({copy_, copyCell_, selectAll_});
  const QStringList locked = model_.PathsWith(FileState::kNeedsPassword);
  if (!locked.isEmpty()) {
    menu.addSeparator();
    menu.addAction(tr("Enter &Password…"), this, &FilesView::passwordWanted);
  }
  menu.addSeparator();
  menu.addAction(remove_);
  menu.exec(table_->viewport()->mapToGlobal(position));
}

// Tab-separated in the order in which the columns are shown, as spreadsheets take it.
void FilesView::CopyRows() const {
  QModelIndexList rows = table_->selectionModel()->selectedRows();
  std::sort(rows.begin(), rows.end());
  QStringList lines;
  for (const QModelIndex& row : rows) {
    QStringList cells;
    for (int visual = 0; visual < FileTableModel::kColumnCount; ++visual) {
      cells += TextOf(row.siblingAtColumn(table_->horizontalHeader()->logicalIndex(visual)));
    }
    lines += cells.join(QLatin1Char('\t'));
  }
  if (!lines.isEmpty()) QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

void FilesView::CopyCell() const {
  const QModelIndex cell = table_->currentIndex();
  if (cell.isValid()) QApplication::clipboard()->setText(cell.data(FileTableModel::kFullTextRole).toString());
}

void FilesView::RemoveSelected() {
  QVector<int> rows;
  int next = -1;
  for (const QModelIndex& index : table_->selectionModel()->selectedRows()) {
    rows += proxy_.mapToSource(index).row();
    next = std::max(next, index.row());
  }
  next -= static_cast<int>(rows.size()) - 1;
  model_.Remove(rows);
  if (proxy_.rowCount() > 0) table_->selectRow(std::min(std::max(0, next), proxy_.rowCount() - 1));
}

void FilesView::UpdateActions() {
  const bool any = table_->selectionModel()->hasSelection();
  for (QAction* action : {open_, showInFolder_, copy_, copyCell_}) action->setEnabled(any);
  remove_->setEnabled(any && !running_);
}

// The column of the reasons takes room only once there is one.
void FilesView::ShowReasons(int first, int last) {
  for (int row = first; row <= last && table_->isColumnHidden(FileTableModel::kReason); ++row) {
    table_->setColumnHidden(FileTableModel::kReason, model_.Row(row).reason.isEmpty());
  }
}

void FilesView::ShowPage(int page) {
  const QWidget* const focus = QApplication::focusWidget();
  const bool hadFocus = focus != nullptr && page != pages_->currentIndex() && pages_->isAncestorOf(focus);
  pages_->setCurrentIndex(page);
  if (!hadFocus) return;
  page == 0 ? pages_->widget(0)->setFocus() : table_->setFocus();
}

void FilesView::UpdatePage() {
  if (model_.Count() == 0) table_->setColumnHidden(FileTableModel::kReason, true);
  ShowPage(model_.Count() == 0 ? 0 : 1);
  const int shown = proxy_.rowCount();
  count_->setText(shown == model_.Count() ? QString() : tr("%1 of %2 shown").arg(shown).arg(model_.Count()));
  UpdateActions();
}
