// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/Command.h"
#include "host/run/LinkListing.h"

// Lists the links of files and where viewers lead for them.
class LinksCommand : public Command {
 public:
  LinksCommand();

 protected:
  void Check() override;
  int Execute() override;

 private:
  bool PrintSummary(const LinkListing& listing) const;

  int jobs_ = 0;
  int timeout_ = 0;
  LinkListingOptions options_;
};
