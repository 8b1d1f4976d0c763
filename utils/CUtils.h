// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDir>
#include <QString>

/// The host's folder layout, fresh temporary names, the application name, the installation type, the OpenGL check and
/// length units.
///
/// All members are static and for the GUI thread (Convert() and IsOpenGLSufficient() are pure). Paths have forward
/// slashes. The folder accessors neither create nor check anything. Errors are not reported: what cannot be made is
/// left out.
///
/// Five accessors return a path with a doubled slash ("…/PDF Tools//Settings"). Hosts rely on it.
class CUtils {
 public:
  CUtils() = delete;

  /// Stores the application name; the host calls it once at its start.
  static void SetAppName(QString name);
  /// The stored name, or "PDF Tools" when it is empty.
  static QString GetAppName();

  /// The user's generic application-data location, without a trailing slash.
  static QString GetAppDataFolder();
  /// "<application data>/nolva software/PDF Tools/", with a trailing slash.
  static QString GetAppDataToolsFolder();
  /// The action lists (".xqq"): "…/PDF Tools/Actions".
  static QString GetSequenceFolder();
  /// "…/PDF Tools//Reports/Action Reports".
  static QString GetReportsFolder();
  /// "…/PDF Tools//Reports/App Log".
  static QString GetAppLogFolder();
  /// "…/PDF Tools/WF".
  static QString GetWFFolder();
  /// "…/PDF Tools//Settings".
  static QString GetSettingsFolder();
  /// The favourites and the settings history: "…/PDF Tools//Settings/Favorites".
  static QString GetCollectionsFolder();
  /// "…/PDF Tools//Settings/AdvSplitTemplates".
  static QString GetAdvSplitTemplatesFolder();
  /// The plug-ins: "./Tools", relative to the working directory.
  static QString GetActionFolder();

  /// Creates the missing folders of the tree above, and "<documents>/<QCoreApplication::applicationName()>" with
  /// "Input" and "Output" in it. Each step makes one level; one that fails is skipped. Safe to repeat.
  static void SetupFolders();

  /// Makes a new folder in the system's temporary folder. `*name` is the wanted name before and the folder's full path
  /// after. A name that is taken gets "_0", "_1", … "_99999" appended; when all are taken, the last one is returned as
  /// if it were new. When the folder cannot be made, the temporary folder itself is returned, with a trailing slash in
  /// `*name`. A null `name` makes nothing and returns the temporary folder.
  ///
  /// When a name is taken, the temporary folder's path and the name are a printf format for the number: do not pass a
  /// name with a percent sign (ExpandNumberFormat() describes what becomes of it).
  static QDir GetNewTempFolder(QString* name);

  /// A path "<temporary folder>/<baseName>_<n>.pdf" that does not exist, with the lowest n of 1 to 9999; empty when all
  /// are taken. `baseName` is UTF-8 and is not changed; null counts as empty. Nothing is created, so two callers may
  /// get the same path.
  static QString GetNewTempFile(char* baseName);

  /// True when this machine's OpenGL is good enough for the translucent dialog frame. False, without a crash, where no
  /// OpenGL context can be made current, for example without a QGuiApplication or on a platform without OpenGL.
  static bool CheckOpenGLSupport();
  /// The rule on QGLFormat's version flags: OpenGL 2.0 alone (32 to 64), OpenGL 3.0 and later, or any OpenGL ES 2.0
  /// (2048 and above). 65 to 2047, a desktop OpenGL 2.1 without more among them, is not enough.
  static bool IsOpenGLSufficient(int versionFlags);

  /// Sets mInstalationTypeCurrentUser from "InstallType" in the installation's native settings: true exactly for 1.
  static void GetInstalationType();

  /// Converts a length between the units 0 inch, 1 centimetre, 2 millimetre and 3 point (1/72 inch). Equal or unknown
  /// units return `value` unchanged. The order of the operations is fixed, so results are the same to the last bit.
  static double Convert(long fromUnit, double value, long toUnit);

  /// Set by SetAppName(); empty until then, and usable before main() too.
  static QString mApplicationName;
  /// Set by GetInstalationType(); false until then.
  static bool mInstalationTypeCurrentUser;
};
