// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <functional>
#include <optional>
#include <QSettings>
#include <QString>
#include <QTemporaryDir>

/// An INI settings file as it is on disk now.
///
/// QSettings objects of one path share a cache for the life of the process: it keeps what one of them has read, and
/// what it could not write. So each object of this class opens the file through a symbolic link of its own. It always
/// sees what another process wrote, and a later write does not store what an earlier one could not.
class SettingsFile {
 public:
  explicit SettingsFile(const QString& path);

  /// The values; read only. A file that is missing or cannot be read has none.
  const QSettings& Values() const { return *mSettings; }

  /// Calls `change` with the values of the file at `path`, creating the file and its folder if needed, and writes it at
  /// once. Waits for another process that is writing the file through QSettings or this class. False when the file
  /// cannot be written (a full disk, a read-only file or folder): it is then as it was.
  static bool Change(const QString& path, const std::function<void(QSettings&)>& change);

  /// Writes a file of exactly the values that `fill` sets, in that order, creating its folder if needed. An existing
  /// file, also a read-only one, is replaced in one step and only by a complete one. False when that fails: it is then
  /// as it was.
  static bool Replace(const QString& path, const std::function<void(QSettings&)>& fill);

 private:
  std::optional<QTemporaryDir> mFolder;
  bool mIsPrivate = false;  // false when the link cannot be made
  std::optional<QSettings> mSettings;
};
