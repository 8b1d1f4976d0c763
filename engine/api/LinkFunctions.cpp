// SPDX-License-Identifier: Apache-2.0

// Links: annotations, outline items and form fields with their actions.

#include "engine/api/Call.h"
#include "engine/api/Exports.h"
#include "engine/base/EngineError.h"
#include "engine/base/Text.h"
#include "engine/syntax/TextString.h"
#include "pdflib/LibraryAnnotationTags.h"

using engine::Call;
using engine::Document;
using engine::DocumentLinks;
using engine::EngineError;
using engine::Guarded;
using engine::UrlFromWide;
using engine::Utf8FromWide;
using engine::WideFromUrlString;
using engine::WideFromUtf8;

namespace {

double Side(const DocumentLinks::Rectangle& rectangle, int tag) {
  switch (tag) {
    case kAnnotationLeft:
      return rectangle.left;
    case kAnnotationBottom:
      return rectangle.bottom;
    case kAnnotationRight:
      return rectangle.right;
    case kAnnotationTop:
      return rectangle.top;
    default:
      throw EngineError(kErrorBadArgument, "unknown annotation tag");
  }
}

}  // namespace

int HPLAnnotationCount(int instance) {
  return Guarded<int>(instance, [](Call& call) {
    Document& document = call.Selected();
    return document.Links().AnnotationCount(document.SelectedPage());
  });
}

int HPLGetAnnotActionID(int instance, int index) {
  return Guarded<int>(instance, [&](Call& call) {
    Document& document = call.Selected();
    return document.Links().AnnotationAction(document.SelectedPage(), index);
  });
}

double HPLGetAnnotDblProperty(int instance, int index, int tag) {
  return Guarded<double>(instance, [&](Call& call) {
    Document& document = call.Selected();
    return Side(document.Links().AnnotationRectangle(document.SelectedPage(), index), tag);
  });
}

wchar_t* HPLGetAnnotStrProperty(int instance, int index, int tag) {
  return Guarded<wchar_t*>(instance, [&](Call& call) {
    if (tag != kAnnotationSubtype) throw EngineError(kErrorBadArgument, "unknown annotation tag");
    Document& document = call.Selected();
    return WideFromUtf8(document.Links().AnnotationSubtype(document.SelectedPage(), index));
  });
}

wchar_t* HPLGetActionType(int instance, int actionID) {
  return Guarded<wchar_t*>(instance,
                           [&](Call& call) { return WideFromUtf8(call.Selected().Links().ActionType(actionID)); });
}

wchar_t* HPLGetActionURL(int instance, int actionID) {
  return Guarded<wchar_t*>(instance,
                           [&](Call& call) { return WideFromUrlString(call.Selected().Links().ActionUri(actionID)); });
}

int HPLSetActionURL(int instance, int actionID, void* url) {
  return Guarded<int>(instance, {url}, [&](Call& call) {
    call.Selected().Links().SetActionUri(actionID, UrlFromWide(call.Text(url)));
    return 1;
  });
}

int HPLOutlineCount(int instance) {
  return Guarded<int>(instance, [](Call& call) { return call.Selected().Links().OutlineCount(); });
}

// The IDs of outline items are their places.
int HPLGetOutlineID(int instance, int index) {
  return Guarded<int>(instance, [&](Call& call) {
    if (index < 1 || index > call.Selected().Links().OutlineCount()) {
      throw EngineError(kErrorBadArgument, "no outline item has this index");
    }
    return index;
  });
}

wchar_t* HPLOutlineTitle(int instance, int outlineID) {
  return Guarded<wchar_t*>(instance,
                           [&](Call& call) { return WideFromUtf8(call.Selected().Links().OutlineTitle(outlineID)); });
}

int HPLGetOutlineActionID(int instance, int outlineID) {
  return Guarded<int>(instance, [&](Call& call) { return call.Selected().Links().OutlineAction(outlineID); });
}

wchar_t* HPLGetOutlineWebLink(int instance, int outlineID) {
  return Guarded<wchar_t*>(
      instance, [&](Call& call) { return WideFromUrlString(call.Selected().Links().OutlineUri(outlineID)); });
}

int HPLSetOutlineWebLink(int instance, int outlineID, void* url) {
  return Guarded<int>(instance, {url}, [&](Call& call) {
    call.Selected().Links().SetOutlineUri(outlineID, UrlFromWide(call.Text(url)));
    return 1;
  });
}

int HPLFormFieldCount(int instance) {
  return Guarded<int>(instance, [](Call& call) { return call.Selected().Links().FieldCount(); });
}

int HPLGetFormFieldActionID(int instance, int index, void* trigger) {
  return Guarded<int>(instance, {trigger}, [&](Call& call) {
    return call.Selected().Links().FieldAction(index, Utf8FromWide(call.Text(trigger)));
  });
}
