// SPDX-License-Identifier: Apache-2.0
#include "host/run/LinkListing.h"

#include <algorithm>
#include <cstring>
#include <exception>

#include "host/base/Console.h"
#include "host/run/MemoryLimit.h"
#include "host/run/RecordFraming.h"
#include "pdflib/LibraryErrorCodes.h"
#include "pdflib/LibraryInformationKeys.h"

// What one document has to show.
struct LinkListing::Listing {
  std::string problem;  // empty when all links were read
  std::string text;
  LinkCounts counts;

  std::string Pack() const {
    const std::string_view numbers(reinterpret_cast<const char*>(&counts), sizeof counts);
    std::string bytes;
    RecordFraming::Append(bytes, {problem, text, numbers});
    return bytes;
  }
  static Listing Unpack(std::string_view bytes) {
    const RecordFraming::Fields fields = RecordFraming::Parse(bytes);
    Listing listing{std::string(fields[0]), std::string(fields[1]), {}};
    std::memcpy(&listing.counts, fields[2].data(), sizeof listing.counts);
    return listing;
  }
};

void LinkListing::Begin() {
  library_ = PdfLibrary::Open(options_.libraryFile);
  MemoryLimit::Set(options_.memoryLimit);
}

std::string LinkListing::Work(std::size_t item) {
  Listing listing;
  const std::string file = inputs_.File(item);
  listing.problem = inputs_.Problem(item);
  try {
    if (listing.problem.empty()) Read(file, listing);
  } catch (const std::exception& exception) {
    listing.problem = exception.what();
  }
  return listing.Pack();
}

void LinkListing::Read(const std::string& file, Listing& listing) {
  listing.problem = PdfLibrary::LoadDocument(*library_, file, options_.password);
  if (!listing.problem.empty()) return;
  const int document = library_->SelectedDocument();
  std::optional<QString> base = options_.base;
  if (!base && library_->GetInformation(kInformationHasBaseUrl) != L"0") {
    base = QString::fromStdWString(library_->GetBaseURL());
  }
  const int error =
      VisitDocumentLinks(*library_, [&](const DocumentLink& link) { Add(file, ListedLink(link, base), listing); });
  if (error != kErrorNone) listing.problem = PdfLibrary::ErrorMessage(error);
  library_->RemoveDocument(document);
  listing.counts.files = 1;
  if (options_.format != LinkListingOptions::Format::kTable || listing.text.empty()) return;
  const std::string from = base ? "base URL " + base->toStdString() : "no base URL";
  listing.text.insert(0, file + ": " + from + '\n');
}

void LinkListing::Add(const std::string& file, const ListedLink& link, Listing& listing) const {
  LinkCounts& counts = listing.counts;
  ++counts.links;
  if (link.relative) {
    ++counts.relative;
    if (!link.agree) ++counts.disagreeing;
    if (!link.target) ++counts.withoutBase;
  }
  bool listed = options_.all || link.relative;
  if (!options_.checks.empty()) {
    std::optional<bool> there;
    for (const LinkCheck& check : options_.checks) {
      if (link.target && !there) there = check.Has(*link.target);
    }
    if (there) ++counts.checked;
    listed = there && !*there;
    if (listed) ++counts.missing;
  }
  if (!listed) return;
  switch (options_.format) {
    case LinkListingOptions::Format::kTable:
      listing.text += LinkFormat::Table(link);
      break;
    case LinkListingOptions::Format::kJson:
      listing.text += LinkFormat::Json(file, link);
      break;
    case LinkListingOptions::Format::kCsv:
      listing.text += LinkFormat::Csv(file, link);
      break;
  }
}

void LinkListing::Take(std::size_t item, std::string_view result) {
  waiting_.emplace(item, result);
  for (auto first = waiting_.begin(); first != waiting_.end() && first->first == next_; first = waiting_.begin()) {
    Print(next_++, Listing::Unpack(first->second));
    waiting_.erase(first);
  }
}

void LinkListing::Lose(std::size_t item, const std::string& reason) {
  Listing listing;
  listing.problem = reason;
  Take(item, listing.Pack());
}

void LinkListing::Print(std::size_t item, const Listing& listing) {
  printed_ = (listing.text.empty() || Console::Print(QByteArray::fromStdString(listing.text))) && printed_;
  if (!listing.problem.empty()) {
    ++failed_;
    Console::ErrorAbout(inputs_.File(item), listing.problem);
  }
  counts_.files += listing.counts.files;
  counts_.links += listing.counts.links;
  counts_.relative += listing.counts.relative;
  counts_.disagreeing += listing.counts.disagreeing;
  counts_.withoutBase += listing.counts.withoutBase;
  counts_.checked += listing.counts.checked;
  counts_.missing += listing.counts.missing;
}
