// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/BatchCommand.h"

#include <string>
#include <vector>

class ActionCatalog;
class InputList;
class ProtectedFiles;
class ResumedReport;
class RunPlan;
struct PlanOptions;
struct ProcessingOptions;
struct RunSettings;

// Runs an action list, or one action, over PDF files.
class RunCommand : public BatchCommand {
 public:
  RunCommand();

  bool NeedsWindowSystem() const override { return IsSet("gui"); }
  void PrepareWindowSystem() const override;

 protected:
  // Adds the options for files, outputs and settings, but not those that name the action.
  RunCommand(const QString& name, const QString& summary);

  void Check() override;
  // Throws CommandError when no action is given.
  virtual void CheckAction() const;
  int Execute() override;

  // All actions with their checked settings. Adds to `warnings`. Throws CommandError.
  virtual std::vector<ConfiguredAction> LoadActions(ActionCatalog& catalog, QStringList& warnings) const;

 private:
  std::vector<ConfiguredAction> LoadList(ActionCatalog& catalog, QStringList& warnings) const;
  QString ListFile() const;
  ProtectedFiles OtherInputs() const;
  void CheckReport(const InputList& inputs, const ProtectedFiles& others) const;
  ResumedReport ReadEarlierReport(bool isSameFile) const;
  void CheckOutputOptions() const;
  void CheckCondition() const;
  void RefuseToReplaceOutput(const InputList& inputs, const ResumedReport& resumed) const;
  ProcessingOptions Processing() const;
  void WarnOfRedone(const RunPlan& plan) const;
  PlanOptions Plan(const InputList& inputs, const std::vector<ConfiguredAction>& actions) const;
  void NameLeftovers(const InputList& inputs, const RunPlan& plan) const;
  int RunOver(const InputList& inputs, const PlanOptions& options, ProtectedFiles& protectedFiles,
              const RunSettings& settings) const;

  QStringList warnings_;  // of the settings
};
