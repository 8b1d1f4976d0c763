// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/Command.h"

#include <string>
#include <vector>

#include "host/actions/ConfiguredAction.h"

class ActionCatalog;
class InputList;
class ProtectedFiles;
struct RunSettings;

// Runs an action list, or one action, over PDF files.
class RunCommand : public Command {
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
  void CollectInputs(InputList& inputs) const;
  ProtectedFiles OtherInputs() const;
  void CheckReport(const InputList& inputs, const ProtectedFiles& others) const;
  int RunOver(const InputList& inputs, const std::string& outputFolder, ProtectedFiles& protectedFiles,
              const RunSettings& settings) const;

  int jobs_ = 0;
  int timeout_ = 0;
  std::size_t memoryLimit_ = 0;
};
