// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <QString>
#include <string>
#include <vector>

#include "host/base/PdfLibrary.h"
#include "host/files/InputList.h"
#include "host/links/LinkCheck.h"
#include "host/links/ListedLink.h"
#include "host/run/WorkerTask.h"

struct LinkListingOptions {
  enum class Format { kTable, kJson, kCsv };

  std::wstring libraryFile;
  std::wstring password;
  std::size_t memoryLimit = 0;  // bytes for each process; 0: no limit
  Format format = Format::kTable;
  bool all = false;               // also links that are not relative
  std::optional<QString> base;    // instead of the documents' own
  std::vector<LinkCheck> checks;  // lists only the links whose files are missing in a folder
};

// What was counted over all documents.
struct LinkCounts {
  std::size_t files = 0;
  std::size_t links = 0;
  std::size_t relative = 0;
  std::size_t disagreeing = 0;  // of the relative ones, where viewers lead
  std::size_t withoutBase = 0;  // of the relative ones
  std::size_t checked = 0;
  std::size_t missing = 0;
};

// Lists the links of documents in the order of the input files, whichever is read first.
class LinkListing : public WorkerTask {
 public:
  // Keeps references.
  LinkListing(const LinkListingOptions& options, const InputList& inputs) : options_(options), inputs_(inputs) {}

  void Begin() override;
  std::string Work(std::size_t item) override;
  void Take(std::size_t item, std::string_view result) override;
  void Lose(std::size_t item, const std::string& reason) override;
  void Flush() override {}

  const LinkCounts& Counts() const { return counts_; }
  std::size_t Failed() const { return failed_; }
  // False when the standard output could not be written.
  bool Printed() const { return printed_; }

 private:
  struct Listing;

  void Read(const std::string& file, Listing& listing);
  void Add(const std::string& file, const ListedLink& link, Listing& listing) const;
  void Print(std::size_t item, const Listing& listing);

  const LinkListingOptions& options_;
  const InputList& inputs_;
  std::unique_ptr<PdfLibrary::Wrapper> library_;
  // Of files after the next one to be printed.
  std::map<std::size_t, std::string> waiting_;
  std::size_t next_ = 0;
  LinkCounts counts_;
  std::size_t failed_ = 0;
  bool printed_ = true;
};
