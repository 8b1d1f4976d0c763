// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QtPlugin>

class QWidget;
struct WorkProcInfoStruct;
struct DialogLoadStruct;

/// What the host asks of every action. The order of the virtual functions is part of the contract with the host.
/// Every call arrives on the host's GUI thread. A host may unload the plug-in and keep its texts and maps, so every
/// text that an action returns or stores has memory of its own: QString("text"), not a QStringLiteral.
class CActionInterface {
 public:
  virtual ~CActionInterface() = default;

  /// Runs the action on one open document; called once for each document and each action of a list. What the result
  /// means is up to the host; 0 when the action found no failure. `info` and what it points to are the host's,
  /// and valid during the call only.
  virtual int WorkProc(WorkProcInfoStruct* info) = 0;
  /// Edits info->settings in a modal dialog; 1 if the user accepted, else 0.
  virtual int ShowDialogProc(QWidget* parent, DialogLoadStruct* info) = 0;
  /// Called once before the documents of a run; `info` may be null. 1 lets the run go on.
  virtual int PreSequenceProc(WorkProcInfoStruct* info) = 0;
  /// Called once after the documents of a run; `info` may be null. 1 for a run that ended well.
  virtual int PostSequenceProc(WorkProcInfoStruct* info) = 0;

  /// The name that action lists store.
  virtual QString GetActionName() = 0;
  /// The name that users read.
  virtual QString GetDisplayName() = 0;
  /// File name of the action's help page, for CActionUtils::SetHelp().
  virtual QString GetActionHelp() = 0;
  /// The group under which the host's catalogue shows the action.
  virtual QString GetGroupName() = 0;
  /// Flag bits whose meaning is the host's.
  virtual int GetActionFlags() = 0;
  /// File names of the normal, selected and disabled image, joined by "#", relative to ":/Vorlane/Resources/Tools/".
  virtual QString GetDefaultIcon() = 0;
};

Q_DECLARE_INTERFACE(CActionInterface, "com.Halvex.Vorlane.ActionInterface_1.0")
