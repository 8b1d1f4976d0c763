// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/Command.h"

#include <QStringList>
#include <string>
#include <vector>

#include "host/run/DocumentProcessor.h"

class ActionCatalog;
class InputList;
class RunPlan;
class RunReporter;

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
  std::vector<RunStep> LoadSteps(ActionCatalog& catalog) const;
  void CollectInputs(InputList& inputs) const;
  void RefuseReportOverInput(const InputList& inputs) const;
  void RunHere(RunPlan& plan, const std::vector<RunStep>& steps, const ProcessingOptions& options,
               RunReporter& reporter) const;
  void RunInWorkers(RunPlan& plan, const std::vector<RunStep>& steps, const ProcessingOptions& options,
                    RunReporter& reporter) const;

  int jobs_ = 0;
  int timeout_ = 0;
  std::size_t memoryLimit_ = 0;
};
