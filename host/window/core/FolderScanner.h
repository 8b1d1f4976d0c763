// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <QMimeData>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <thread>

#include "host/window/core/FileTableModel.h"

// Finds the PDF files among given names and below given folders, in a thread of its own.
class FolderScanner : public QObject {
  Q_OBJECT

 public:
  explicit FolderScanner(QObject* parent = nullptr);
  // Cancels and waits for the thread.
  ~FolderScanner() override;

  // Files and folders; relative names are meant from the current folder. While a scan runs, the next one waits.
  void Scan(const QStringList& paths);
  bool IsRunning() const;
  // Gives up the running scan and those that wait: nothing more is found, and finished() comes.
  void Cancel();

  // The local files and folders of what was dropped or pasted: a list of URLs, or a text with a path or file URL on
  // each line. Names that are not UTF-8 stay as they are.
  static QStringList PathsIn(const QMimeData& data);

 signals:
  // Files in batches, in the order of the given names and below a folder in the order of their names.
  void found(const QVector<FoundFile>& files);
  // What could not be read or is not a PDF: a sentence with the name, for people.
  void problem(const QString& message);
  // No scan is running or waits. `files` is how many were found since the first of them began.
  void finished(int files, bool cancelled);

 private:
  class Search;

  void Begin();
  void Deliver();
  void End();

  std::unique_ptr<Search> search_;  // the running one
  std::thread thread_;
  QTimer deliver_;
  QStringList waiting_;
  int found_ = 0;
  bool isGivenUp_ = false;  // the running scan
  bool cancelled_ = false;  // what finished() will say
};
