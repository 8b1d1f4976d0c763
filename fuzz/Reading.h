// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Of a file with more pages, only so many are read.
constexpr std::size_t kMaxPagesRead = 60;

/// A page as one reader reads it.
struct PageReading {
  std::string text;     ///< the words, one blank between two; of libqpdf, the decoded content stream instead
  std::string content;  ///< the decoded content stream's tokens, which can be compared between readers
  std::size_t fonts;    ///< hash of all that the fonts of the page consist of; 0 of readers that are not asked
};

/// What one reader reads in a file.
struct Reading {
  bool opened = false;
  std::string baseUrl;        ///< empty for none, and of readers that cannot be asked
  std::uint64_t objects = 0;  ///< objects reached from the catalog; 0 of readers that are not asked
  std::uint64_t pageCount = 0;
  std::uint64_t notFound = 0;      ///< objects that the reader reported as missing; 0 of readers that are not asked
  bool doubtfulStrings = false;    ///< the reader reported that it may decrypt strings in a wrong way
  std::vector<PageReading> pages;  ///< the first kMaxPagesRead of them

  bool HasPages() const { return opened && pageCount > 0; }
  bool HasText() const;

  /// For the way through a pipe. FromBytes() throws std::runtime_error when bytes are missing.
  std::string ToBytes() const;
  static Reading FromBytes(const std::string& bytes);
};

bool operator==(const Reading& a, const Reading& b);

/// True when two readings show pages of the same contents in the same order.
bool SamePages(const Reading& a, const Reading& b);

/// True when `whole` shows the pages of `part` in the same order, and goes on where the contents of `part` are cut off.
bool HoldsPages(const Reading& whole, const Reading& part);

/// True when both show pages of the same letters, in any order on the page.
bool SameLetters(const Reading& a, const Reading& b);

/// What `before` holds and `after` does not, one line for each kind of loss; empty when nothing was lost. `more`
/// becomes true when a page shows other words or letters besides all those of before.
std::vector<std::string> Losses(const Reading& before, const Reading& after, bool& more);

/// True when `after` has as many pages as `before`, and each all the letters, in the same order or of the same content
/// stream: other spaces between them, other places, or more letters, as where a font was found.
bool KeepsLetters(const Reading& before, const Reading& after);

/// True when `after` has as many pages as `before`, and each the words that `before` and `undamaged` both have on it,
/// or those of `undamaged`; or when it reads like `undamaged` as a whole.
bool LosesOnlyMisread(const Reading& before, const Reading& after, const Reading& undamaged);

/// True when both show pages of the same contents, and the fonts of the pages whose texts differ are not those of the
/// undamaged file, neither before nor after: which letters a reader makes of damaged fonts is chance.
bool DiffersByDamagedFonts(const Reading& before, const Reading& after, const Reading& undamaged);

/// The words of a text, one blank between two.
std::string Words(const std::string& text);
