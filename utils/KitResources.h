// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

/// Makes the images and pages under ":/Vorlane/Resources/" available. They are linked in from a static library, so
/// nothing registers them by itself. Safe to repeat; called before each use of them.
void InitKitResources();
