// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include "host/window/core/ActionChoice.h"
#include "host/window/core/RunnerProcess.h"

// A relative link with where it would lead. Texts are as ShownText has them, here and in PreviewData.
struct PreviewLink {
  int page = 0;    // from 1; 0: on no page
  QString uri;     // as it stands in the file
  QString target;  // by RFC 3986, 5.2; empty without a base URL
  // By viewer: "pdfjs", "pdfium", "mupdf", "poppler"; empty where that viewer makes no link of it.
  QMap<QString, QString> viewers;
  bool agree = true;  // whether all lead to one place
};

struct PreviewData {
  static constexpr int kMostLinks = 1000;

  QString file;
  bool wouldChange = false;
  QString before;  // base URL; empty without one
  QString after;
  QString saveMode;            // "unchanged", "incremental", "rewrite", or empty
  QStringList warnings;        // hints on the URL and on the links, sentences for people
  QVector<PreviewLink> links;  // at most kMostLinks
  int relativeLinks = 0;       // all of them
  int disagreeing = 0;
  bool needsPassword = false;
  QString error;  // why there is no preview, a sentence for people; empty when there is one
};
Q_DECLARE_METATYPE(PreviewData)

// What would become of one file, found out in the background by a dry run and a listing of its links.
class Preview : public QObject {
  Q_OBJECT

 public:
  explicit Preview(QObject* parent = nullptr);
  ~Preview() override;

  // Begins a quarter of a second after the last call; what an earlier call began is given up.
  void Request(const QString& file, const ActionChoice& action, const OutputChoice& output);
  // Gives up what is going on; changed() does not come for it.
  void Clear();

 signals:
  // A request is being worked on.
  void started(const QString& file);
  void changed(const PreviewData& data);

 private:
  void Begin();
  // Starts the next program in place of the one before it.
  void Run(const QStringList& arguments, void (Preview::*take)(const QVector<RunnerRecord>&),
           void (Preview::*end)(const RunnerResult&));
  void GiveUp();
  void TakeRecord(const QVector<RunnerRecord>& records);
  void EndDryRun(const RunnerResult& result);
  void TakeLinks(const QVector<RunnerRecord>& records);
  void EndLinks(const RunnerResult& result);
  void Finish();

  QTimer delay_;
  ActionChoice action_;
  OutputChoice output_;
  std::unique_ptr<RunnerProcess> runner_;
  bool hasRecord_ = false;
  PreviewData data_;
};
