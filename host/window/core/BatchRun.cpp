// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/BatchRun.h"

BatchRun::BatchRun(QObject* parent) : QObject(parent) {}
BatchRun::~BatchRun() = default;
void BatchRun::Start(const QStringList&, const ActionChoice&, const OutputChoice&) {}
bool BatchRun::IsRunning() const {
  return false;
}
void BatchRun::Cancel() {}
int BatchRun::Total() const {
  return 0;
}
int BatchRun::Done() const {
  return 0;
}
QStringList BatchRun::Unfinished() const {
  return {};
}
QStringList BatchRun::OutputFolders() const {
  return {};
}
QString BatchRun::SaveReport(const QString&) const {
  return {};
}
