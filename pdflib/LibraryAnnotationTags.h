// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

/// The tags of GetAnnotDblProperty() and GetAnnotStrProperty() as the engine of this project reads them. Append-only: a
/// number keeps its meaning for good.
///
/// The sides are those of the annotation's rectangle (ISO 32000-2, 12.5.2) in units of the page's user space (points
/// unless the page says otherwise), with left <= right and bottom <= top. A rectangle that cannot be read has 0 for all
/// four.
enum LibraryAnnotationTag : int {
  kAnnotationSubtype = 1,   ///< GetAnnotStrProperty(): /Subtype without its slash: "Link", "Widget"
  kAnnotationLeft = 101,    ///< GetAnnotDblProperty()
  kAnnotationBottom = 102,  ///< GetAnnotDblProperty()
  kAnnotationRight = 103,   ///< GetAnnotDblProperty()
  kAnnotationTop = 104      ///< GetAnnotDblProperty()
};
