// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

#include "plugin/CActionInterface.h"

// The action "Set Document Title": writes the setting "titleString" into the document information of every document.
class CSetTitle : public QObject, public CActionInterface {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "org.example.settitle")
  Q_INTERFACES(CActionInterface)

 public:
  int WorkProc(WorkProcInfoStruct* info) override;
  int ShowDialogProc(QWidget* parent, DialogLoadStruct* info) override;
  int PreSequenceProc(WorkProcInfoStruct*) override { return 1; }
  int PostSequenceProc(WorkProcInfoStruct*) override { return 1; }

  QString GetActionName() override { return "Set Document Title"; }
  QString GetDisplayName() override { return "Set Document Title"; }
  QString GetActionHelp() override { return "Action_SetTitle.html"; }
  QString GetGroupName() override { return "Document Properties"; }
  int GetActionFlags() override { return 15; }
  QString GetDefaultIcon() override { return "SetTitle.png#SetTitle_Selected.png#SetTitle_Disabled.png"; }
};
