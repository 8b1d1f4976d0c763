// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/ActionChoice.h"

ActionChoice ActionChoice::Action(const QString&, const QMap<QString, QVariant>&) {
  return {};
}
ActionChoice ActionChoice::List(const QString&) {
  return {};
}
ActionChoice ActionChoice::SettingsFile(const QString&) {
  return {};
}
bool ActionChoice::operator==(const ActionChoice&) const {
  return false;
}
bool OutputChoice::operator==(const OutputChoice&) const {
  return false;
}
QString ProblemOf(const ActionChoice&, const OutputChoice&) {
  return {};
}
