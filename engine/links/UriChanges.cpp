// SPDX-License-Identifier: Apache-2.0
#include "engine/links/UriChanges.h"

#include <string_view>
#include <utility>

#include "engine/links/DictionaryView.h"
#include "engine/links/LocatedValue.h"
#include "engine/syntax/PdfName.h"

namespace engine {

namespace {

class UriChanger {
 public:
  UriChanger(std::string_view text, const std::map<std::string, std::string>& uris) : text_(text), uris_(uris) {}

  std::string Run() {
    Visit(text_, "");
    CopyTo(text_.size());
    return std::move(result_);
  }

 private:
  // Whether a value with this path may hold one that is changed.
  bool Leads(const std::string& path) const {
    const auto next = uris_.lower_bound(path);
    return next != uris_.end() && next->first.compare(0, path.size(), path) == 0;
  }

  void Visit(std::string_view value, const std::string& path) {
    if (!Leads(path)) return;
    if (IsArray(value)) {
      std::size_t index = 0;
      for (const std::string_view element : ArrayElements(value)) Visit(element, path + ElementStep(index++));
      return;
    }
    const DictionaryView dictionary(value);
    const auto uri = IsDictionary(value) ? uris_.find(path) : uris_.end();
    const std::string_view old = dictionary.Find("/URI");
    if (uri != uris_.end() && old.empty()) {
      CopyTo(PositionOf(value) + 2);
      result_ += "/URI " + uri->second;
    }
    for (const DictionaryView::Entry& entry : dictionary.Entries()) {
      if (uri != uris_.end() && entry.value.data() == old.data()) {
        Replace(old, uri->second);
      } else {
        Visit(entry.value, path + UnescapedName(entry.key));
      }
    }
  }

  void Replace(std::string_view old, const std::string& uri) {
    CopyTo(PositionOf(old));
    // "/URI(x)" has no space, which a reference in place of the string would need.
    if (result_.back() != ' ' && IsReference(uri)) result_ += ' ';
    result_ += uri;
    copied_ += old.size();
  }

  std::size_t PositionOf(std::string_view part) const { return static_cast<std::size_t>(part.data() - text_.data()); }
  void CopyTo(std::size_t position) {
    result_ += text_.substr(copied_, position - copied_);
    copied_ = position;
  }

  const std::string_view text_;
  const std::map<std::string, std::string>& uris_;
  std::string result_;
  std::size_t copied_ = 0;
};

}  // namespace

std::string WithUris(const std::string& text, const std::map<std::string, std::string>& uris) {
  return UriChanger(text, uris).Run();
}

}  // namespace engine
