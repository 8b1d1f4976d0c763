// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/FactsReader.h"

FactsReader::FactsReader(FileTableModel&, QObject* parent) : QObject(parent) {}
FactsReader::~FactsReader() = default;
void FactsReader::Refresh(const QStringList&) {}
void FactsReader::SetPasswords(const QStringList&) {}
void FactsReader::SetPaused(bool) {}
bool FactsReader::IsReading() const {
  return false;
}
int FactsReader::Left() const {
  return 0;
}
