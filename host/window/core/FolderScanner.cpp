// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/FolderScanner.h"

FolderScanner::FolderScanner(QObject* parent) : QObject(parent) {}
FolderScanner::~FolderScanner() = default;
void FolderScanner::Scan(const QStringList&) {}
bool FolderScanner::IsRunning() const {
  return false;
}
void FolderScanner::Cancel() {}
QStringList FolderScanner::PathsIn(const QMimeData&) {
  return {};
}
