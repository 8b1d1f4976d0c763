// SPDX-License-Identifier: Apache-2.0
#include "utils/CUtils.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include "utils/EarlyStatic.h"
#include "utils/NumberFormat.h"

namespace {

const QLatin1String kToolsName("PDF Tools");
const QLatin1String kVendorFolder("/nolva software");

// One level only.
void MakeFolder(const QString& path) {
  if (!QDir(path).exists()) QDir().mkdir(path);
}

}  // namespace

VORLANE_EARLY_STATIC QString CUtils::mApplicationName;
bool CUtils::mInstalationTypeCurrentUser = false;

void CUtils::SetAppName(QString name) {
  mApplicationName = std::move(name);
}

QString CUtils::GetAppName() {
  return mApplicationName.isEmpty() ? QString(kToolsName) : mApplicationName;
}

QString CUtils::GetAppDataFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

QString CUtils::GetAppDataToolsFolder() {
  return GetAppDataFolder() + kVendorFolder + QLatin1Char('/') + kToolsName + QLatin1Char('/');
}

QString CUtils::GetSequenceFolder() {
  return GetAppDataToolsFolder() + QLatin1String("Actions");
}

QString CUtils::GetReportsFolder() {
  return GetAppDataToolsFolder() + QLatin1String("/Reports/Action Reports");
}

QString CUtils::GetAppLogFolder() {
  return GetAppDataToolsFolder() + QLatin1String("/Reports/App Log");
}

QString CUtils::GetWFFolder() {
  return GetAppDataToolsFolder() + QLatin1String("WF");
}

QString CUtils::GetSettingsFolder() {
  return GetAppDataToolsFolder() + QLatin1String("/Settings");
}

QString CUtils::GetCollectionsFolder() {
  return GetAppDataToolsFolder() + QLatin1String("/Settings/Favorites");
}

QString CUtils::GetAdvSplitTemplatesFolder() {
  return GetAppDataToolsFolder() + QLatin1String("/Settings/AdvSplitTemplates");
}

QString CUtils::GetActionFolder() {
  return QString("./Tools");
}

void CUtils::SetupFolders() {
  const QString vendor = GetAppDataFolder() + kVendorFolder;
  const QString tools = vendor + QLatin1Char('/') + kToolsName;
  MakeFolder(vendor);
  MakeFolder(tools);
  // Parents before their children.
  for (const char* name : {"/Actions", "/Reports", "/Scripts", "/Reports/Action Reports", "/Reports/App Log", "/WF",
                           "/Settings", "/Settings/Favorites", "/Settings/AdvSplitTemplates"}) {
    MakeFolder(tools + QLatin1String(name));
  }

  // The running application's own name, not the one of SetAppName().
  const QString own = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + QLatin1Char('/') +
                      QCoreApplication::applicationName();
  MakeFolder(own);
  MakeFolder(own + QLatin1String("/Input"));
  MakeFolder(own + QLatin1String("/Output"));
}

QDir CUtils::GetNewTempFolder(QString* name) {
  if (!name) return QDir::temp();
  const QString temp = QDir::tempPath() + QLatin1Char('/');
  const QString format = temp + *name + QLatin1String("_%d");
  QString candidate = temp + *name;
  for (int i = 0; i < 100000 && QFileInfo::exists(candidate); ++i) candidate = ExpandNumberFormat(format, i);
  if (!QFileInfo::exists(candidate)) QDir().mkpath(candidate);
  if (!QFileInfo::exists(candidate)) {
    *name = temp;
    return QDir::temp();
  }
  *name = candidate;
  return QDir(candidate);
}

QString CUtils::GetNewTempFile(char* baseName) {
  for (int n = 1; n <= 9999; ++n) {
    QString path = QDir::tempPath() + QString::asprintf("/%s_%d.pdf", baseName ? baseName : "", n);
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (!QFileInfo::exists(path)) return path;
  }
  return QString();
}

void CUtils::GetInstalationType() {
  const QSettings installation(QString("HKEY_LOCAL_MACHINE\\Software\\Halvex\\Halvex PDF Tools Pro"),
                               QSettings::NativeFormat);
  mInstalationTypeCurrentUser = installation.value(QString("InstallType"), 0).toInt() == 1;
}
