// SPDX-License-Identifier: Apache-2.0
#include "host/run/LinkListing.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

#include "host/base/Console.h"
#include "pdflib/LibraryErrorCodes.h"
#include "pdflib/LibraryInformationKeys.h"
#include "utils/LinkTarget.h"

namespace {

std::string Heading(const std::string& file, const std::optional<LinkBase>& base) {
  const std::string from = base && base->inViewers.bytes ? "base URL " + base->text.toStdString() : "no base URL";
  return (Console::OneLine(file) + ": " + Console::OneLine(from) + '\n').toStdString();
}

}  // namespace

LinkCounts& LinkCounts::operator+=(const LinkCounts& other) {
  files += other.files;
  incomplete += other.incomplete;
  links += other.links;
  relative += other.relative;
  disagreeing += other.disagreeing;
  withoutBase += other.withoutBase;
  checked += other.checked;
  missing += other.missing;
  return *this;
}

LinkListing::LinkListing(const InputList& inputs, const FileQuestion& question, const LinkListingOptions& options)
    : FileQuery(inputs, question_),
      question_(question),
      options_(options),
      covered_(options.checks.size()),
      totalCovered_(options.checks.size()) {
  using namespace std::placeholders;
  question_.answer = std::bind(&LinkListing::Answer, this, _1, _2, _3);
}

std::string LinkListing::TakeNotes() {
  std::string notes(sizeof counts_ + covered_.size() * sizeof covered_[0], '\0');
  std::memcpy(notes.data(), &counts_, sizeof counts_);
  if (!covered_.empty()) std::memcpy(&notes[sizeof counts_], covered_.data(), notes.size() - sizeof counts_);
  counts_ = LinkCounts();
  covered_.assign(covered_.size(), 0);
  return notes;
}

void LinkListing::AddNotes(std::string_view notes) {
  LinkCounts counts;
  std::memcpy(&counts, notes.data(), sizeof counts);
  total_ += counts;
  std::vector<std::size_t> covered(totalCovered_.size());
  if (!covered.empty()) std::memcpy(covered.data(), &notes[sizeof counts], notes.size() - sizeof counts);
  std::transform(covered.begin(), covered.end(), totalCovered_.begin(), totalCovered_.begin(), std::plus<>());
}

void LinkListing::Answer(PdfLibrary::Wrapper& library, const std::string& file, const FileQuestion::Print& print) {
  std::optional<LinkBase> base = options_.base;
  if (base && base->text.isEmpty()) {
    base.reset();
  } else if (!base && library.GetInformation(kInformationHasBaseUrl) != L"0") {
    base = LinkBase{QString::fromStdWString(library.GetBaseURL()), {BaseUrlBytes(library)}};
  }
  bool needsHeading = options_.format == LinkListingOptions::Format::kTable;
  const int error = VisitDocumentLinks(library, [&](const DocumentLink& found) {
    const ListedLink link(found, base);
    if (!Count(link)) return;
    if (std::exchange(needsHeading, false)) print(Heading(file, base));
    print(Formatted(file, link));
  });
  counts_.files = 1;
  // The links that were found are listed nevertheless.
  if (error != kErrorNone) {
    counts_.incomplete = 1;
    Console::ErrorAbout(file, std::string("some links could not be read: ") + PdfLibrary::ErrorMessage(error));
  }
}

std::string LinkListing::Formatted(const std::string& file, const ListedLink& link) const {
  switch (options_.format) {
    case LinkListingOptions::Format::kJson:
      return LinkFormat::Json(file, link);
    case LinkListingOptions::Format::kCsv:
      return LinkFormat::Csv(file, link);
    case LinkListingOptions::Format::kTable:
      break;
  }
  return options_.checks.empty() ? LinkFormat::Table(link) : LinkFormat::Missing(link);
}

std::vector<QString> LinkListing::UrlsWithoutLinks() const {
  std::vector<QString> urls;
  for (std::size_t i = 0; i < totalCovered_.size(); ++i) {
    if (totalCovered_[i] == 0) urls.push_back(options_.checks[i].Url());
  }
  return urls;
}

bool LinkListing::Count(const ListedLink& link) {
  ++counts_.links;
  if (link.relative) {
    ++counts_.relative;
    if (!link.agree) ++counts_.disagreeing;
    if (!link.target) ++counts_.withoutBase;
  }
  return options_.checks.empty() ? options_.all || link.relative : IsMissing(link);
}

bool LinkListing::IsMissing(const ListedLink& link) {
  if (!link.target) return false;
  const std::string target = NormalizedLink(*link.target).toStdString();
  std::size_t longest = 0;
  bool there = false;
  for (std::size_t i = 0; i < options_.checks.size(); ++i) {
    const std::size_t covered = options_.checks[i].Covers(target).value_or(0);
    if (covered == 0) continue;
    ++covered_[i];
    if (covered < longest) continue;
    there = (there && covered == longest) || options_.checks[i].Has(target);
    longest = covered;
  }
  if (longest == 0) return false;
  ++counts_.checked;
  if (!there) ++counts_.missing;
  return !there;
}
