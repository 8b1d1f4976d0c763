// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

/// Makes the images and help pages below ":/Vorlane/Resources/" reachable; call it before the first use of one.
///
/// The kit is a static library, and a linker leaves out an archive's resource data unless something names it: this call
/// does. Calling it again costs nothing to speak of. GUI thread.
inline void InitVorlaneResources() {
  Q_INIT_RESOURCE(vorlane);
}
