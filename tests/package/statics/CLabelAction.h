// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

#include "plugin/CActionInterface.h"

// Hands the parent's label to the kit, if it has one, and shows the setting "section" in the label that the kit has.
class CLabelAction : public QObject, public CActionInterface {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "org.example.label")
  Q_INTERFACES(CActionInterface)

 public:
  int WorkProc(WorkProcInfoStruct*) override { return 0; }
  int ShowDialogProc(QWidget* parent, DialogLoadStruct* info) override;
  int PreSequenceProc(WorkProcInfoStruct*) override { return 1; }
  int PostSequenceProc(WorkProcInfoStruct*) override { return 1; }

  QString GetActionName() override { return "Label"; }
  QString GetDisplayName() override;
  QString GetActionHelp() override { return QString(); }
  QString GetGroupName() override { return "Tests"; }
  int GetActionFlags() override { return 0; }
  QString GetDefaultIcon() override { return QString(); }
};
