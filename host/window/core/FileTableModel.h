// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <QAbstractTableModel>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>
#include <vector>

// What vorlane-run knows of a file. Counts are -1 where they are not known.
struct FileFacts {
  std::optional<QString> baseUrl;  // nothing without one
  int pages = -1;
  int links = -1;
  int relativeLinks = -1;
  int signatures = -1;
  int certification = 0;  // 1 permits no change, 2 filling in forms, 3 also annotating; 0: not certified
  bool encrypted = false;
  QString encryption;  // such as "AES, 256 bits"
  QString saveMode;    // how a change would be saved: "incremental", "rewrite", or empty
};

enum class FileState {
  kNew,            // not looked at yet
  kReading,        // its facts are being read
  kReady,          // its facts are there
  kUnreadable,     // why is in the reason
  kNeedsPassword,  // none of the passwords fits
  kWaiting,        // for its turn in a run
  kDone,
  kUnchanged,  // there was nothing to change
  kFailed,
  kCancelled,
};
Q_DECLARE_METATYPE(FileState)

struct FileStateChange {
  QString path;
  FileState state = FileState::kNew;
  QString reason;  // for people; empty where the state says it all
};

// A file that was found, and its name with all links resolved.
struct FoundFile {
  QString path;  // absolute, without "." parts
  QString canonical;
  int below = 0;  // where the part begins that is below the added folder; 0 for a file that was added by itself
};
Q_DECLARE_METATYPE(QVector<FoundFile>)

// What was read of a file.
struct FileReading {
  QString path;
  std::optional<FileFacts> facts;  // nothing when they are not known any more
  FileState state = FileState::kReady;
  QString reason;
};

struct FileRow : FoundFile {
  std::optional<FileFacts> facts;
  FileState state = FileState::kNew;
  QString reason;
  bool isQueued = false;  // to be read
};

// The files of the window, in the order in which they were added. Rows are found by path in constant time; paths of
// files that are not (or no longer) in the table are passed over everywhere.
class FileTableModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kName, kFolder, kPages, kBaseUrl, kLinks, kSigned, kEncrypted, kState, kReason, kColumnCount };
  enum Role {
    kSortRole = Qt::UserRole,  // numbers as numbers, unknown ones first
    kPathRole,                 // QString
    kStateRole,                // FileState as an int
    kFullTextRole,             // the text of the cell, not cut off, for copying
  };

  explicit FileTableModel(QObject* parent = nullptr);

  // Returns how many are new: files that are in the table already, also by another name, are left out.
  int Add(const QVector<FoundFile>& files);
  void Remove(QVector<int> rows);
  void Clear();

  int Count() const { return static_cast<int>(rows_.size()); }
  const FileRow& Row(int row) const { return *rows_[static_cast<std::size_t>(row)]; }
  // -1 when it is not there.
  int RowOf(const QString& path) const;
  QStringList Paths() const;
  QStringList PathsWith(FileState state) const;
  // The files as vorlane-run takes them so that an output folder repeats the added folders: "/added/./below/a.pdf".
  QStringList NamesForFolder(const QStringList& paths) const;

  // The states change only where they are about reading: what a run has said of a file stays.
  void SetReadings(const QVector<FileReading>& readings);
  void SetReading(const QStringList& paths);  // to kReading, under the same condition
  void SetStates(const QVector<FileStateChange>& changes);
  void SetQueued(int row, bool queued) { rows_[static_cast<std::size_t>(row)]->isQueued = queued; }

  // "Ready", "Failed" and so on, translated.
  static QString StateName(FileState state);

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  bool SetState(FileRow& row, FileState state, const QString& reason);
  void RemoveRange(int first, int last);
  void CountRowsFrom(int first);
  // Reports changed rows to the views, neighbours together.
  void Announce(QVector<int> rows, Column first, Column last);
  static QString FullText(const FileRow& row, int column);
  static QString ToolTip(const FileRow& row, int column);
  static QVariant SortKey(const FileRow& row, int column);

  std::vector<std::unique_ptr<FileRow>> rows_;
  QHash<QString, int> rowOfName_;  // by path and by canonical name
  mutable int lastRow_ = -1;       // of RowOf()
};
