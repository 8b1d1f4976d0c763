// SPDX-License-Identifier: Apache-2.0
#include "CLabelAction.h"

#include <QLabel>

#include "plugin/DialogLoadStruct.h"
#include "utils/CActionUtils.h"

int CLabelAction::ShowDialogProc(QWidget* parent, DialogLoadStruct* info) {
  if (auto* label = parent ? parent->findChild<QLabel*>() : nullptr) CActionUtils::SetTargetLabels(label, nullptr);
  CActionUtils::SetCurrentSection(info->settings->value("section").toString());
  return 0;
}
