// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/Preview.h"

Preview::Preview(QObject* parent) : QObject(parent) {}
Preview::~Preview() = default;
void Preview::Request(const QString&, const ActionChoice&, const OutputChoice&) {}
void Preview::Clear() {}
bool Preview::IsBusy() const {
  return false;
}
