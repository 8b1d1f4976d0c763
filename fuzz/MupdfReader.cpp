// SPDX-License-Identifier: Apache-2.0
#include <mupdf/fitz.h>
#include <mupdf/pdf.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <set>
#include <string>

#include "fuzz/Readers.h"

namespace {

// Messages about objects that are not in the cross-references.
void NoteMissing(void* messages, const char* message) {
  const bool missing = std::strstr(message, "object out of range") != nullptr ||
                       std::strstr(message, "ignoring object with invalid object number") != nullptr;
  if (!missing) return;
  static_cast<std::set<std::string>*>(messages)->insert(message);
}

// The library's errors are long jumps: no object with a destructor may be made inside fz_try.
fz_buffer* TextOf(fz_context* context, fz_document* document, int number) {
  fz_page* page = nullptr;
  fz_stext_page* text = nullptr;
  fz_output* output = nullptr;
  fz_buffer* buffer = nullptr;
  fz_var(page);
  fz_var(text);
  fz_var(output);
  fz_var(buffer);
  fz_try(context) {
    buffer = fz_new_buffer(context, 1024);
    page = fz_load_page(context, document, number);
    text = fz_new_stext_page_from_page(context, page, nullptr);
    output = fz_new_output_with_buffer(context, buffer);
    fz_print_stext_page_as_text(context, output, text);
    fz_close_output(context, output);
  }
  fz_always(context) {
    fz_drop_output(context, output);
    fz_drop_stext_page(context, text);
    fz_drop_page(context, page);
  }
  fz_catch(context) {}
  return buffer;
}

void AppendStream(fz_context* context, fz_buffer* all, pdf_obj* stream) {
  fz_buffer* one = nullptr;
  fz_var(one);
  fz_try(context) {
    one = pdf_load_stream(context, stream);
    fz_append_buffer(context, all, one);
    fz_append_byte(context, all, '\n');
  }
  fz_always(context) fz_drop_buffer(context, one);
  fz_catch(context) {}
}

fz_buffer* ContentOf(fz_context* context, pdf_document* document, int number) {
  fz_buffer* all = nullptr;
  fz_var(all);
  fz_try(context) {
    all = fz_new_buffer(context, 1024);
    pdf_obj* const contents = pdf_dict_get(context, pdf_lookup_page_obj(context, document, number), PDF_NAME(Contents));
    if (pdf_is_array(context, contents)) {
      for (int i = 0; i < pdf_array_len(context, contents); ++i) {
        AppendStream(context, all, pdf_array_get(context, contents, i));
      }
    } else {
      AppendStream(context, all, contents);
    }
  }
  fz_catch(context) {}
  return all;
}

// All that a value consists of, streams decoded; what other objects lead to, once.
void AppendValue(fz_context* context, fz_buffer* all, pdf_obj* value, std::set<int>* seen) {
  const int number = pdf_to_num(context, value);
  if (number != 0 && !seen->insert(number).second) return;
  if (pdf_is_stream(context, value)) AppendStream(context, all, value);
  if (pdf_is_dict(context, value)) {
    for (int i = 0; i < pdf_dict_len(context, value); ++i) {
      pdf_obj* const key = pdf_dict_get_key(context, value, i);
      if (pdf_name_eq(context, key, PDF_NAME(Length))) continue;
      fz_append_string(context, all, pdf_to_name(context, key));
      AppendValue(context, all, pdf_dict_get_val(context, value, i), seen);
    }
  } else if (pdf_is_array(context, value)) {
    for (int i = 0; i < pdf_array_len(context, value); ++i) {
      AppendValue(context, all, pdf_array_get(context, value, i), seen);
    }
  } else if (pdf_is_number(context, value)) {
    fz_append_printf(context, all, "%g ", pdf_to_real(context, value));
  } else if (pdf_is_name(context, value)) {
    fz_append_string(context, all, pdf_to_name(context, value));
  } else if (pdf_is_string(context, value)) {
    fz_append_data(context, all, pdf_to_str_buf(context, value), pdf_to_str_len(context, value));
  }
}

fz_buffer* FontsOf(fz_context* context, pdf_document* document, int number) {
  fz_buffer* all = nullptr;
  std::set<int> seen;
  fz_var(all);
  fz_try(context) {
    all = fz_new_buffer(context, 1024);
    pdf_obj* const page = pdf_lookup_page_obj(context, document, number);
    pdf_obj* const resources = pdf_dict_get_inheritable(context, page, PDF_NAME(Resources));
    AppendValue(context, all, pdf_dict_get(context, resources, PDF_NAME(Font)), &seen);
  }
  fz_catch(context) {}
  return all;
}

std::string Taken(fz_context* context, fz_buffer* buffer) {
  if (buffer == nullptr) return {};
  unsigned char* bytes = nullptr;
  const std::size_t size = fz_buffer_storage(context, buffer, &bytes);
  std::string result(reinterpret_cast<const char*>(bytes), size);
  fz_drop_buffer(context, buffer);
  return result;
}

// Below 0 when the document cannot be opened.
int CountPages(fz_context* context, const char* file, fz_document** document) {
  int count = -1;
  fz_var(count);
  fz_try(context) {
    *document = fz_open_document(context, file);
    if (fz_needs_password(context, *document) == 0) count = fz_count_pages(context, *document);
  }
  fz_catch(context) {}
  return count;
}

// The library counts pages whose objects are missing, too.
bool IsThere(fz_context* context, pdf_document* document, int number) {
  int found = 0;
  fz_var(found);
  fz_try(context) {
    found = pdf_is_dict(context, pdf_lookup_page_obj(context, document, number));
  }
  fz_catch(context) {}
  return found != 0;
}

const char* BaseUrlOf(fz_context* context, pdf_document* document) {
  const char* url = "";
  fz_var(url);
  fz_try(context) {
    url = pdf_to_text_string(context, pdf_dict_getp(context, pdf_trailer(context, document), "Root/URI/Base"));
  }
  fz_catch(context) {}
  return url;
}

}  // namespace

Reading ReadWithMupdf(const std::string& file) {
  Reading reading;
  fz_context* const context = fz_new_context(nullptr, nullptr, FZ_STORE_DEFAULT);
  if (context == nullptr) return reading;
  std::set<std::string> missing;
  fz_set_warning_callback(context, NoteMissing, &missing);
  fz_set_error_callback(context, NoteMissing, &missing);
  fz_register_document_handlers(context);
  fz_document* document = nullptr;
  const int count = CountPages(context, file.c_str(), &document);
  reading.opened = count >= 0;
  pdf_document* const pdf = reading.opened ? pdf_document_from_fz_document(context, document) : nullptr;
  if (pdf != nullptr) {
    reading.pageCount = static_cast<std::uint64_t>(count);
    // Asked first: damage on a page may make the library read the whole file another way.
    reading.baseUrl = BaseUrlOf(context, pdf);
  }
  const auto read = static_cast<int>(std::min<std::uint64_t>(reading.pageCount, kMaxPagesRead));
  for (int page = 0; page < read; ++page) {
    if (!IsThere(context, pdf, page)) --reading.pageCount;
    std::string text = Words(Taken(context, TextOf(context, document, page)));
    std::string content = Words(Taken(context, ContentOf(context, pdf, page)));
    const std::string fonts = Taken(context, FontsOf(context, pdf, page));
    reading.pages.push_back({std::move(text), std::move(content), std::hash<std::string>()(fonts)});
  }
  fz_drop_document(context, document);
  fz_drop_context(context);
  reading.notFound = missing.size();
  return reading;
}
