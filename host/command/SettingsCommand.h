// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/actions/ConfiguredAction.h"
#include "host/actions/GivenSettings.h"
#include "host/actions/StoredSettings.h"
#include "host/command/Command.h"

class ActionCatalog;

// A command with options for an action and its settings.
class SettingsCommand : public Command {
 protected:
  using Command::Command;

  void AddActionOption();
  void AddSettingsOptions();
  void AddUncheckedOption();
  void AddTemplateOptions();
  // Throws CommandError for mistakes in these options that do not depend on the action.
  void CheckSettingsOptions() const;
  // Whether an option that names an action or settings is given.
  bool HasSettings() const;

  // The settings of --settings. Call it once, because it may read the standard input. Throws CommandError.
  StoredSettings Stored() const;
  // These and the settings of the other options. Throws CommandError.
  GivenSettings Given(const StoredSettings& stored) const;
  // The name that --action or the stored settings give. Throws CommandError for none and for two different ones.
  QString ActionNameWith(const StoredSettings& stored) const;
  // Throws CommandError when the stored settings are for another action.
  static void CheckStoredFor(const StoredSettings& stored, const QString& actionName);
  // The action of --action or of the stored settings, with its settings. Adds to `warnings`. Throws CommandError.
  ConfiguredAction Configure(ActionCatalog& catalog, QStringList& warnings) const;

 private:
  QVector<QPair<QString, QString>> Pairs(const char* option, const char* form) const;
};

// The action with its settings, checked against its description. Adds to `warnings`. Throws CommandError(kExitUsage).
ConfiguredAction ConfigureAction(CActionInterface& action, const GivenSettings& given, QStringList& warnings);
