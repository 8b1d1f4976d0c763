// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDir>
#include <QFileInfo>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

class QIcon;

/// The settings history: INI files in the collections folder, each with an action's settings and an icon. One object
/// browses once over the files whose names begin with a prefix, newest first.
///
/// The constructor lists the files; those written later are not seen. GUI thread only.
class CActionHistoryAPI {
 public:
  /// Lists the files of the collections folder that match `prefix` followed by "*". The position is before the newest.
  explicit CActionHistoryAPI(QString prefix);
  ~CActionHistoryAPI();

  /// Writes "<collections folder>/<value of "CollectionName">.ini" anew, with the map under "ActionPrefs" and the
  /// icon's normal image, 42 x 42 pixels with a smaller icon in the middle, under "ActionIcon". A file that cannot be
  /// replaced is kept. Returns 0, also when the file could not be written, and 1 when an exception was caught or a
  /// pointer is null.
  int SaveSettingsToHistory(QMap<QString, QVariant>* settings, QIcon* icon);

  /// Moves by `step` entries towards the older ones (negative: towards the newer) and returns the settings there, which
  /// the caller deletes. Null when the position is outside the entries (it stays there until the next step) or the file
  /// has no settings. The first call has to step by 1.
  QMap<QString, QVariant>* LoadSettingsFromHistory(int step);

 private:
  QString mPrefix;
  QList<QFileInfo> mEntries;  // oldest first
  QDir mFolder;
  int mCursor = -1;  // 0 is the newest entry
};
