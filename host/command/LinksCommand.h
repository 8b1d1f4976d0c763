// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/BatchCommand.h"
#include "host/run/LinkListing.h"

// Lists the links of files and where viewers lead for them.
class LinksCommand : public BatchCommand {
 public:
  LinksCommand();

 protected:
  void Check() override;
  int Execute() override;

 private:
  bool PrintSummary(const LinkCounts& counts) const;

  LinkListingOptions options_;
};
