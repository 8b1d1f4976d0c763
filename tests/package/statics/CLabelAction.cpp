// SPDX-License-Identifier: Apache-2.0
#include "CLabelAction.h"

#include <QLabel>

#include "plugin/DialogLoadStruct.h"
#include "utils/CActionUtils.h"
#include "utils/CUtils.h"

namespace {

// A global object uses the kit, as it may, before anything else of the plug-in runs.
struct Early {
  Early() {
    text = QString("%1 %2 %3").arg(CUtils::GetAppName()).arg(CActionUtils::SplitComGetCommandIndex("SkipHeader"));
    text = text.arg(CActionUtils::SplitComGetCommandString(42));
    CUtils::SetAppName("early");
  }
  QString text;
};
const Early gEarly;

}  // namespace

QString CLabelAction::GetDisplayName() {
  return CUtils::GetAppName() == "early" ? gEarly.text : CUtils::GetAppName();
}

int CLabelAction::ShowDialogProc(QWidget* parent, DialogLoadStruct* info) {
  if (auto* label = parent ? parent->findChild<QLabel*>() : nullptr) CActionUtils::SetTargetLabels(label, nullptr);
  CActionUtils::SetCurrentSection(info->settings->value("section").toString());
  return 0;
}
