// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDir>
#include <QFileInfo>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

class QIcon;

/// The settings history: an action's settings, each with an icon, as INI files in the collections folder, and one pass
/// of browsing over those whose names begin with a prefix, newest first.
///
/// The entries are taken once, by the constructor; files written later are not seen. GUI thread only.
class CActionHistoryAPI {
 public:
  /// Takes the files of the collections folder that match `prefix` followed by "*". The position is before the newest.
  explicit CActionHistoryAPI(QString prefix);
  ~CActionHistoryAPI();

  /// Writes "<collections folder>/<value of "CollectionName">.ini" anew, with the map under "ActionPrefs" and the
  /// icon's normal image, 42 x 42 pixels with a smaller icon in the middle, under "ActionIcon". A file that cannot be
  /// replaced is kept. Returns 0, also when the file could not be written, and 1 when an exception was caught or a
  /// pointer is null.
  int SaveSettingsToHistory(QMap<QString, QVariant>* settings, QIcon* icon);

  /// Moves by `step` entries towards the older ones (negative: towards the newer) and returns the settings found there,
  /// to be deleted by the caller. Null when the position is outside the entries, where it stays until the next step, or
  /// when the file holds no settings. The first call has to step by 1.
  QMap<QString, QVariant>* LoadSettingsFromHistory(int step);

 private:
  QString mPrefix;
  QList<QFileInfo> mEntries;  // oldest first
  QDir mFolder;
  int mCursor = -1;  // 0 is the newest entry
};
