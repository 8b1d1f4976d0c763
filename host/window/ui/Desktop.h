// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>

// What the desktop around the window does for it. Names of files are as NativeName has them.
namespace Desktop {

QUrl UrlOf(const QString& path);
// Opens a file or folder with the desktop's program for it; false when there is none.
bool Open(const QString& path);
// Marks the files in the file manager, or opens the first one's folder where it cannot do that.
void ShowInFolder(const QStringList& files);
// Shows the progress on the window's entry in the task bar, where the desktop has that; below 0 takes it away.
void ShowProgress(double part);

}  // namespace Desktop
