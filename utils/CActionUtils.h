// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QIcon>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

// What actions and their dialogs share. All members are static. Those that take or make widgets, fonts, icons or
// settings files belong to the GUI thread; the others are pure. Nothing is reported but by the results, and no member
// keeps a settings file open. Settings maps belong to the caller.
class CActionUtils {
 public:
  CActionUtils() = delete;

  // ---- Folders: the accessors of CUtils ----

  static QString GetSettingsFolder();
  static QString GetCollectionsFolder();
  static QString GetSequenceFolder();
  // CUtils::GetAppDataToolsFolder(), with a trailing slash.
  static QString GetVorlaneAppDataFolder();

  // ---- Action lists ----

  // Stores an action in an action list, "<sequence folder>/<name with each space as "_">.xqq". `*prefs` holds the
  // action's settings, its "ActionName", and what the user chose: "ActionListName" ("Action" when missing; no character
  // but the space is changed or checked, so a "/" leads into a folder), "ActionListCategory" and "ActionListOverwrite".
  //
  // Without overwriting, an existing list gets the action, with the whole map, under the lowest free number; its name
  // and category stay. Otherwise the list is made anew with this one action, and the four keys named above are removed
  // from `*prefs` and not stored with the action.
  //
  // Errors are not reported. A list that cannot be read is not appended to. One that cannot be replaced (a full disk, a
  // read-only folder) stays as it was, and so does `*prefs`: the new file is complete before it takes the old one's
  // place. A null map does nothing.
  static void SaveAsCustomActionList(QMap<QString, QVariant>* prefs);

  // "Default", "Favorites" and then every other category found in the sequence folder's lists, in directory order,
  // not sorted. Of spellings that differ in case only the first one met is listed.
  static QStringList GetActionListCategories();

  // ---- Tool icons ----

  // The icon ":/Vorlane/Resources/Tools/<fileName>"; null when there is none of that name.
  static QIcon GetIconForTool(QString fileName);
};
