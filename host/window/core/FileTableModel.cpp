// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/FileTableModel.h"

#include <algorithm>
#include <QLocale>

#include "host/window/core/ShownText.h"

namespace {

bool IsAboutReading(FileState state) {
  switch (state) {
    case FileState::kNew:
    case FileState::kReading:
    case FileState::kReady:
    case FileState::kUnreadable:
    case FileState::kNeedsPassword:
      return true;
    default:
      return false;
  }
}

// Removing more separate ranges than this is shown as one reset: views take long over each of them.
constexpr int kMostRanges = 64;

QString NameOf(const QString& path) {
  return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

QString FolderOf(const QString& path) {
  return path.left(std::max(path.lastIndexOf(QLatin1Char('/')), 1));
}

QString NumberText(int number) {
  return number < 0 ? QString() : QLocale().toString(number);
}

}  // namespace

FileTableModel::FileTableModel(QObject* parent) : QAbstractTableModel(parent) {
  qRegisterMetaType<QVector<FoundFile>>();
}

int FileTableModel::Add(const QVector<FoundFile>& files) {
  std::vector<std::unique_ptr<FileRow>> added;
  for (const FoundFile& file : files) {
    if (rowOfName_.contains(file.canonical) || rowOfName_.contains(file.path)) continue;
    const int row = Count() + static_cast<int>(added.size());
    rowOfName_.insert(file.path, row);
    if (file.canonical != file.path) rowOfName_.insert(file.canonical, row);
    added.push_back(std::make_unique<FileRow>());
    static_cast<FoundFile&>(*added.back()) = file;
  }
  const int count = static_cast<int>(added.size());
  if (count == 0) return 0;
  beginInsertRows({}, Count(), Count() + count - 1);
  std::move(added.begin(), added.end(), std::back_inserter(rows_));
  endInsertRows();
  return count;
}

void FileTableModel::Remove(QVector<int> rows) {
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  rows.erase(std::remove_if(rows.begin(), rows.end(), [this](int row) { return row < 0 || row >= Count(); }),
             rows.end());
  if (rows.isEmpty()) return;
  QVector<QPair<int, int>> ranges;
  for (const int row : qAsConst(rows)) {
    if (ranges.isEmpty() || ranges.constLast().second + 1 != row) ranges.append({row, row});
    ranges.last().second = row;
  }
  const bool many = ranges.size() > kMostRanges;
  if (many) beginResetModel();
  for (auto range = ranges.crbegin(); range != ranges.crend(); ++range) {
    if (!many) beginRemoveRows({}, range->first, range->second);
    RemoveRange(range->first, range->second);
    if (!many) {
      CountRowsFrom(range->first);
      endRemoveRows();
    }
  }
  if (!many) return;
  CountRowsFrom(0);
  endResetModel();
}

void FileTableModel::RemoveRange(int first, int last) {
  for (int row = first; row <= last; ++row) {
    rowOfName_.remove(Row(row).path);
    rowOfName_.remove(Row(row).canonical);
  }
  rows_.erase(rows_.begin() + first, rows_.begin() + last + 1);
}

void FileTableModel::CountRowsFrom(int first) {
  for (int row = first; row < Count(); ++row) rowOfName_[Row(row).path] = rowOfName_[Row(row).canonical] = row;
}

void FileTableModel::Clear() {
  beginResetModel();
  rows_.clear();
  rowOfName_.clear();
  endResetModel();
}

// Mostly rows are asked for one after the other.
int FileTableModel::RowOf(const QString& path) const {
  const int next = lastRow_ + 1;
  if (next < Count() && Row(next).path == path) return lastRow_ = next;
  const int row = rowOfName_.value(path, -1);
  if (row < 0 || Row(row).path != path) return -1;  // not by a canonical name
  return lastRow_ = row;
}

QStringList FileTableModel::Paths() const {
  QStringList paths;
  for (const auto& row : rows_) paths += row->path;
  return paths;
}

QStringList FileTableModel::PathsWith(FileState state) const {
  QStringList paths;
  for (const auto& row : rows_) {
    if (row->state == state) paths += row->path;
  }
  return paths;
}

QStringList FileTableModel::NamesForFolder(const QStringList& paths) const {
  QStringList names;
  for (const QString& path : paths) {
    const int row = RowOf(path);
    const int below = row < 0 ? 0 : Row(row).below;
    names += below == 0 ? path : QString(path).insert(below, QStringLiteral("./"));
  }
  return names;
}

void FileTableModel::SetReadings(const QVector<FileReading>& readings) {
  QVector<int> changed;
  for (const FileReading& reading : readings) {
    const int row = RowOf(reading.path);
    if (row < 0) continue;
    FileRow& file = *rows_[static_cast<std::size_t>(row)];
    file.facts = reading.facts;
    if (IsAboutReading(file.state)) SetState(file, reading.state, reading.reason);
    changed += row;
  }
  Announce(changed, kPages, kReason);
}

void FileTableModel::SetReading(const QStringList& paths) {
  QVector<int> changed;
  for (const QString& path : paths) {
    const int row = RowOf(path);
    if (row < 0 || !IsAboutReading(Row(row).state)) continue;
    if (SetState(*rows_[static_cast<std::size_t>(row)], FileState::kReading, {})) changed += row;
  }
  Announce(changed, kState, kReason);
}

void FileTableModel::SetStates(const QVector<FileStateChange>& changes) {
  QVector<int> changed;
  for (const FileStateChange& change : changes) {
    const int row = RowOf(change.path);
    if (row < 0) continue;
    if (SetState(*rows_[static_cast<std::size_t>(row)], change.state, change.reason)) changed += row;
  }
  Announce(changed, kState, kReason);
}

// Whether that is a change.
bool FileTableModel::SetState(FileRow& row, FileState state, const QString& reason) {
  if (row.state == state && row.reason == reason) return false;
  row.state = state;
  row.reason = reason;
  return true;
}

void FileTableModel::Announce(QVector<int> rows, Column first, Column last) {
  std::sort(rows.begin(), rows.end());
  for (int begin = 0; begin < rows.size();) {
    int end = begin + 1;
    while (end < rows.size() && rows[end] <= rows[end - 1] + 1) ++end;
    emit dataChanged(index(rows[begin], first), index(rows[end - 1], last));
    begin = end;
  }
}

QString FileTableModel::StateName(FileState state) {
  switch (state) {
    case FileState::kNew:
      return tr("New");
    case FileState::kReading:
      return tr("Reading");
    case FileState::kReady:
      return tr("Ready");
    case FileState::kUnreadable:
      return tr("Unreadable");
    case FileState::kNeedsPassword:
      return tr("Needs password");
    case FileState::kWaiting:
      return tr("Waiting");
    case FileState::kDone:
      return tr("Done");
    case FileState::kUnchanged:
      return tr("Unchanged");
    case FileState::kFailed:
      return tr("Failed");
    case FileState::kCancelled:
      return tr("Cancelled");
  }
  return {};
}

int FileTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : Count();
}

int FileTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumnCount;
}

QVariant FileTableModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const FileRow& row = Row(index.row());
  switch (role) {
    case Qt::DisplayRole:
      return ShownText(FullText(row, index.column()));
    case Qt::ToolTipRole:
      return ToolTip(row, index.column());
    case Qt::TextAlignmentRole: {
      const bool isNumber = index.column() == kPages || index.column() == kLinks;
      return static_cast<int>((isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    case kSortRole:
      return SortKey(row, index.column());
    case kPathRole:
      return row.path;
    case kStateRole:
      return static_cast<int>(row.state);
    case kFullTextRole:
      return FullText(row, index.column());
    default:
      return {};
  }
}

QString FileTableModel::FullText(const FileRow& row, int column) {
  switch (column) {
    case kName:
      return NameOf(row.path);
    case kFolder:
      return FolderOf(row.path);
    case kState:
      return StateName(row.state);
    case kReason:
      return row.reason;
    default:
      break;
  }
  if (!row.facts) return {};
  const FileFacts& facts = *row.facts;
  switch (column) {
    case kPages:
      return NumberText(facts.pages);
    case kBaseUrl:
      return facts.baseUrl.value_or(QString());
    case kLinks:
      return facts.links < 0 ? QString()
                             : NumberText(facts.relativeLinks) + QStringLiteral(" / ") + NumberText(facts.links);
    case kSigned:
      return facts.signatures > 0 ? (facts.certification > 0 ? tr("Certified") : tr("Signed")) : QString();
    case kEncrypted:
      return facts.encrypted ? tr("Encrypted") : QString();
    default:
      return {};
  }
}

QString FileTableModel::ToolTip(const FileRow& row, int column) {
  if (column == kName || column == kFolder) return ShownText(row.path);
  if (!row.facts) return ShownText(FullText(row, column));
  const FileFacts& facts = *row.facts;
  switch (column) {
    case kLinks:
      if (facts.links < 0) return tr("The links could not be counted.");
      return tr("Links: %1. Relative ones, which need a base URL: %2.").arg(facts.links).arg(facts.relativeLinks);
    case kSigned:
      if (facts.certification == 1) return tr("The certification permits no change.");
      if (facts.certification == 2) return tr("The certification permits filling in forms only.");
      if (facts.certification > 2) return tr("The certification permits filling in forms and annotating.");
      return facts.signatures > 0 ? tr("Signatures: %1").arg(facts.signatures) : QString();
    case kEncrypted:
      return facts.encryption;
    default:
      return ShownText(FullText(row, column));
  }
}

QVariant FileTableModel::SortKey(const FileRow& row, int column) {
  const FileFacts facts = row.facts.value_or(FileFacts());
  switch (column) {
    case kPages:
      return facts.pages;
    case kLinks:
      return facts.relativeLinks;
    case kSigned:
      return facts.signatures > 0 ? facts.certification + 1 : 0;
    case kEncrypted:
      return facts.encrypted ? 1 : 0;
    case kState:
      return static_cast<int>(row.state);
    default:
      return FullText(row, column);
  }
}

QVariant FileTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  switch (section) {
    case kName:
      return tr("Name");
    case kFolder:
      return tr("Folder");
    case kPages:
      return tr("Pages");
    case kBaseUrl:
      return tr("Base URL");
    case kLinks:
      return tr("Relative links");
    case kSigned:
      return tr("Signed");
    case kEncrypted:
      return tr("Encrypted");
    case kState:
      return tr("State");
    case kReason:
      return tr("Reason");
    default:
      return {};
  }
}
