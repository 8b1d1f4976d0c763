// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/RunnerProcess.h"

RunnerProcess::RunnerProcess(QObject* parent) : QObject(parent) {}
RunnerProcess::~RunnerProcess() = default;
QString RunnerProcess::ProgramFile() {
  return {};
}
void RunnerProcess::Start(const RunnerRequest&) {}
bool RunnerProcess::IsRunning() const {
  return false;
}
void RunnerProcess::Cancel() {}
void RunnerProcess::Kill() {}
