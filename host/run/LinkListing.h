// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <QString>
#include <string>
#include <vector>

#include "host/links/LinkCheck.h"
#include "host/links/ListedLink.h"
#include "host/run/FileQuery.h"

struct LinkListingOptions {
  enum class Format { kTable, kJson, kCsv };

  Format format = Format::kTable;
  bool all = false;               // also links that are not relative
  std::optional<LinkBase> base;   // instead of the documents' own; an empty one: as if they had none
  std::vector<LinkCheck> checks;  // lists only the links whose files are missing in a folder
};

// What was counted over documents.
struct LinkCounts {
  std::size_t files = 0;
  std::size_t incomplete = 0;  // files of which some links could not be read
  std::size_t links = 0;
  std::size_t relative = 0;
  std::size_t disagreeing = 0;  // of the relative ones, where viewers lead
  std::size_t withoutBase = 0;  // of the relative ones
  std::size_t checked = 0;
  std::size_t missing = 0;

  LinkCounts& operator+=(const LinkCounts& other);
};

// Asks files for their links.
class LinkListing : public FileQuery {
 public:
  // Keeps a reference to the inputs. The question's answer is this class's own.
  LinkListing(const InputList& inputs, const FileQuestion& question, const LinkListingOptions& options);

  const LinkCounts& Counts() const { return total_; }
  // The URLs of `checks` that no link leads to, or below.
  std::vector<QString> UrlsWithoutLinks() const;

 protected:
  // The counts.
  std::string TakeNotes() override;
  void AddNotes(std::string_view notes) override;

 private:
  void Answer(PdfLibrary::Wrapper& library, const std::string& file, const FileQuestion::Print& print);
  std::string Formatted(const std::string& file, const ListedLink& link) const;
  // Counts the link; whether it is listed.
  bool Count(const ListedLink& link);
  bool IsMissing(const ListedLink& link);

  FileQuestion question_;
  LinkListingOptions options_;
  LinkCounts counts_;  // of the file in hand
  LinkCounts total_;
  std::vector<std::size_t> covered_;  // the links below the URL of each check, in the file in hand
  std::vector<std::size_t> totalCovered_;
};
