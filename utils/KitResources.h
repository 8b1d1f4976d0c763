// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

/// Makes the images and pages under ":/Vorlane/Resources/" available. They are linked in from a static library, so
/// nothing registers them by itself. Safe to repeat; called by whatever is about to use one of them.
void InitKitResources();
