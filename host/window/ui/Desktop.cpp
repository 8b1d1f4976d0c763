// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/Desktop.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>

#include "host/base/NativeName.h"

namespace {

// To ask for a session bus where there is none would start one, which takes time.
bool HasSessionBus() {
  return qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") && QDBusConnection::sessionBus().isConnected();
}

void OpenFolderOf(const QString& file) {
  Desktop::Open(QFileInfo(file).path());
}

}  // namespace

QUrl Desktop::UrlOf(const QString& path) {
  return QUrl::fromEncoded("file://" + NativeName::ToBytes(path).toPercentEncoding("/"));
}

bool Desktop::Open(const QString& path) {
  return QDesktopServices::openUrl(UrlOf(path));
}

void Desktop::ShowInFolder(const QStringList& files) {
  if (files.isEmpty()) return;
  if (!HasSessionBus()) {
    OpenFolderOf(files[0]);
    return;
  }
  QStringList urls;
  for (const QString& file : files) urls += QString::fromLatin1(UrlOf(file).toEncoded());
  QDBusMessage call = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
  call << urls << QString();
  auto* const watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call));
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, file = files[0]] {
    if (watcher->isError()) OpenFolderOf(file);
    watcher->deleteLater();
  });
}

void Desktop::ShowProgress(double part) {
  if (!HasSessionBus()) return;
  QDBusMessage update =
      QDBusMessage::createSignal(QStringLiteral("/com/canonical/unity/launcherentry/1"),
                                 QStringLiteral("com.canonical.Unity.LauncherEntry"), QStringLiteral("Update"));
  update << QStringLiteral("application://vorlane-actions.desktop")
         << QVariantMap{{QStringLiteral("progress"), qMax(0.0, part)}, {QStringLiteral("progress-visible"), part >= 0}};
  QDBusConnection::sessionBus().send(update);
}
