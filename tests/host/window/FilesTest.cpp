// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QAbstractItemModelTester>
#include <QDir>
#include <QMimeData>
#include <QSignalSpy>

#include "host/window/core/FileTableModel.h"
#include "host/window/core/FolderScanner.h"
#include "tests/host/window/WindowTools.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string Shown(const FileTableModel& model, int row, int column, int role = Qt::DisplayRole) {
  return model.data(model.index(row, column), role).toString().toStdString();
}

QVector<FoundFile> Numbered(int from, int to) {
  QVector<FoundFile> files;
  for (int i = from; i < to; ++i) files.append({QStringLiteral("/f/%1.pdf").arg(i), QString::number(i)});
  return files;
}

struct Found {
  explicit Found(const QStringList& paths) {
    FolderScanner scanner;
    QObject::connect(&scanner, &FolderScanner::found, [this](const QVector<FoundFile>& some) {
      for (const FoundFile& file : some) files += file.path;
    });
    QObject::connect(&scanner, &FolderScanner::problem, [this](const QString& text) { problems += text; });
    QSignalSpy finished(&scanner, &FolderScanner::finished);
    scanner.Scan(paths);
    EXPECT_TRUE(Await([&] { return !finished.isEmpty(); }));
    EXPECT_EQ(finished[0][0].toInt(), files.size());
  }
  QStringList files;
  QStringList problems;
};

}  // namespace

TEST(FileTable, KnowsAFileByAnyOfItsNames) {
  MakePdfs({"a/x.pdf"});
  ASSERT_EQ(symlink("a", "b"), 0);
  ASSERT_EQ(symlink("a/x.pdf", "y.pdf"), 0);
  FileTableModel model;
  const QAbstractItemModelTester tester(&model);
  EXPECT_EQ(model.Add(Files({"a/x.pdf", "b/x.pdf", "y.pdf", "a/x.pdf", "missing.pdf"})), 2);
  EXPECT_EQ(model.Add(Files({Here("b/x.pdf")})), 0);
  EXPECT_EQ(model.RowOf(Here("a/x.pdf")), 0);
  model.Remove({0});
  EXPECT_EQ(model.Add(Files({"y.pdf"})), 1);
}

TEST(FileTable, RemovesRowsAndFindsTheOthers) {
  const struct {
    QVector<int> rows;
    int left;
    int removals;
    int resets;
  } cases[] = {
      {{3}, 199, 1, 0},
      {{5, 3, 4, 4, 99, -1, 200}, 196, 2, 0},
      {[] {
         QVector<int> odd;
         for (int i = 1; i < 200; i += 2) odd += i;
         return odd;
       }(),
       100, 0, 1},
  };
  for (const auto& each : cases) {
    FileTableModel model;
    const QAbstractItemModelTester tester(&model);
    model.Add(Numbered(0, 200));
    const QSignalSpy removals(&model, &QAbstractItemModel::rowsRemoved);
    const QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    model.Remove(each.rows);
    EXPECT_EQ(model.Count(), each.left);
    EXPECT_EQ(removals.size(), each.removals);
    EXPECT_EQ(resets.size(), each.resets);
    for (int row = 0; row < model.Count(); ++row) ASSERT_EQ(model.RowOf(model.Row(row).path), row);
    EXPECT_EQ(model.Add(Numbered(0, 200)), 200 - each.left);
  }
}

TEST(FileTable, AnnouncesChangesOfNeighboursTogether) {
  FileTableModel model;
  model.Add(Numbered(0, 100));
  QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
  QVector<FileStateChange> states{{"/f/unknown.pdf", FileState::kDone, {}}};
  for (const int row : {7, 1, 2, 3, 0, 9, 8, 50}) {
    states.append({model.Row(row).path, FileState::kFailed, "why"});
  }
  model.SetStates(states);
  model.SetStates(states);  // nothing new
  ASSERT_EQ(changes.size(), 3);
  const auto range = [&](int i) {
    return std::pair(changes[i][0].toModelIndex().row(), changes[i][1].toModelIndex().row());
  };
  EXPECT_EQ(range(0), std::pair(0, 3));
  EXPECT_EQ(range(1), std::pair(7, 9));
  EXPECT_EQ(range(2), std::pair(50, 50));
}

TEST(FileTable, ShowsWhatFilesHold) {
  FileTableModel model;
  model.Add(QVector<FoundFile>{{Here("line\nbreak\xFF\xF0\x9F\x98\x80.pdf"), "1"}, {"/f/b.pdf", "2"}});
  FileFacts facts;
  facts.baseUrl = QString(100000, 'x');
  facts.pages = 12;
  facts.links = 3;
  facts.relativeLinks = 1;
  facts.signatures = 1;
  facts.certification = 1;
  facts.encrypted = true;
  model.SetReadings({{"/f/b.pdf", facts, FileState::kReady, {}}});
  EXPECT_EQ(Shown(model, 0, FileTableModel::kName), "line break\xEF\xBF\xBD\xF0\x9F\x98\x80.pdf");
  EXPECT_EQ(Shown(model, 0, FileTableModel::kPages), "");
  EXPECT_EQ(Shown(model, 1, FileTableModel::kFolder), "/f");
  EXPECT_EQ(Shown(model, 1, FileTableModel::kLinks), "1 / 3");
  EXPECT_EQ(Shown(model, 1, FileTableModel::kSigned), "Certified");
  EXPECT_LT(Shown(model, 1, FileTableModel::kBaseUrl).size(), 600U);
  EXPECT_EQ(Shown(model, 1, FileTableModel::kBaseUrl, FileTableModel::kFullTextRole).size(), 100000U);
  EXPECT_GT(model.data(model.index(1, FileTableModel::kPages), FileTableModel::kSortRole),
            model.data(model.index(0, FileTableModel::kPages), FileTableModel::kSortRole));
}

TEST(FolderScanner, FindsPdfFilesAndSaysWhatIsNone) {
  MakePdfs({"site/b.pdf", "site/a.PDF", "site/deep/\xFF\n.pdf", "named-otherwise"});
  WriteFile("site/text.txt", "text");
  WriteFile("text.txt", "text");
  QDir().mkpath("empty");
  ASSERT_EQ(symlink("nowhere", "site/broken.pdf"), 0);
  ASSERT_EQ(mkfifo("pipe.pdf", 0600), 0);
  const Found found({"site/", "named-otherwise", "text.txt", "empty", "missing.pdf", "pipe.pdf"});
  EXPECT_EQ(found.files, (QStringList{Here("site/a.PDF"), Here("site/b.pdf"), Here("site/deep/\xFF\n.pdf"),
                                      Here("named-otherwise")}));
  const std::string problems = found.problems.join('\n').toStdString();
  EXPECT_EQ(found.problems.size(), 5) << problems;
  for (const char* part : {"broken.pdf: the link", "text.txt: not a PDF", "empty: no PDF", "missing.pdf: No such file",
                           "pipe.pdf: not a file"}) {
    EXPECT_THAT(problems, HasSubstr(part));
  }
}

TEST(FolderScanner, WhatIsCancelledFindsNothingMore) {
  MakePdfs({"one/a.pdf", "other/b.pdf"});
  FolderScanner scanner;
  QSignalSpy found(&scanner, &FolderScanner::found);
  QSignalSpy finished(&scanner, &FolderScanner::finished);
  scanner.Scan({"one", "/usr"});
  scanner.Cancel();
  ASSERT_TRUE(Await([&] { return finished.size() == 1; }));
  EXPECT_TRUE(found.isEmpty());
  EXPECT_TRUE(finished[0][1].toBool());
  scanner.Scan({"one", "/usr"});
  scanner.Cancel();
  scanner.Scan({"other"});
  ASSERT_TRUE(Await([&] { return finished.size() == 2; }));
  EXPECT_EQ(finished[1][0].toInt(), 1);
  EXPECT_FALSE(finished[1][1].toBool());
  FolderScanner destroyed;
  destroyed.Scan({"/usr"});
}

TEST(FolderScanner, LimitsWhatItSaysOfProblems) {
  QStringList missing;
  for (int i = 0; i < 1000; ++i) missing += QString::number(i);
  const Found found(missing);
  EXPECT_EQ(found.problems.size(), 101);
  EXPECT_THAT(found.problems.constLast().toStdString(), HasSubstr("900"));
}

TEST(DroppedData, BecomesPaths) {
  const struct {
    const char* format;
    QByteArray data;
    QStringList paths;
  } cases[] = {
      {"text/uri-list",
       "# comment\r\nfile:///a%20b.pdf\r\nhttps://x/c.pdf\r\nfile://localhost/d\r\n",
       {"/a b.pdf", "/d"}},
      {"text/uri-list",
       "file:///%FF.pdf\nfile:///nul%00.pdf\nfile://elsewhere/x.pdf\n",
       {Here("\xFF.pdf").section('/', -1).prepend('/')}},
      {"x-special/gnome-copied-files", "copy\nfile:///a.pdf", {"/a.pdf"}},
      {"text/plain", "/a.pdf\nfile:///b.pdf\nprose\nhttps://x/\n", {"/a.pdf", "/b.pdf"}},
      {"image/png", "x", {}},
  };
  for (const auto& each : cases) {
    QMimeData data;
    data.setData(each.format, each.data);
    EXPECT_EQ(FolderScanner::PathsIn(data), each.paths) << each.data.constData();
  }
}
