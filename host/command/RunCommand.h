// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/BatchCommand.h"

#include <string>
#include <vector>

#include "host/actions/ConfiguredAction.h"

class ActionCatalog;
class InputList;
class ProtectedFiles;
class ResumedReport;
class RunPlan;
struct ProcessingOptions;
struct RunSettings;

// Runs an action list, or one action, over PDF files.
class RunCommand : public BatchCommand {
 public:
  RunCommand();

  bool NeedsWindowSystem() const override { return IsSet("gui"); }
  void PrepareWindowSystem() const override;

 protected:
  void Check() override;
  int Execute() override;

 private:
  std::vector<ConfiguredAction> LoadActions(ActionCatalog& catalog) const;
  QString ListFile() const;
  ProtectedFiles OtherInputs() const;
  void CheckReport(const InputList& inputs, const ProtectedFiles& others) const;
  ResumedReport ReadEarlierReport(bool isSameFile) const;
  void CheckOutputOptions() const;
  ProcessingOptions Processing() const;
  void WarnOfRedone(const RunPlan& plan) const;
  int RunOver(const InputList& inputs, const std::string& outputFolder, ProtectedFiles& protectedFiles,
              const RunSettings& settings) const;
};
