// SPDX-License-Identifier: Apache-2.0
#include <QFileInfo>
#include <vector>

#include "utils/CActionUtils.h"

namespace {

// A folder and the position in its entries.
struct Level {
  explicit Level(QDir folder) : path(folder.absolutePath()) {
    folder.setSorting(QDir::Name);
    folder.setFilter(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    // The listing has the entries' types, so that no entry is examined again.
    entries = folder.entryInfoList();
  }

  QString path;
  QFileInfoList entries;
  int next = 0;
};

}  // namespace

QStringList CActionUtils::SearchFilesInDir(QDir dir, QStringList suffixes, bool recursive) {
  QStringList files;
  std::vector<Level> levels;  // not the call stack: folders nest as deep as they like
  levels.emplace_back(std::move(dir));
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.entries.size()) {
      levels.pop_back();
      continue;
    }
    const QFileInfo entry = level.entries.at(level.next++);
    if (entry.isSymLink()) continue;
    QString path = level.path + u'/' + entry.fileName();
    if (entry.isDir()) {
      if (recursive) levels.emplace_back(QDir(path));
    } else if (suffixes.contains(entry.suffix(), Qt::CaseInsensitive)) {
      files.append(path.replace(u'\\', u'/'));
    }
  }
  return files;
}
