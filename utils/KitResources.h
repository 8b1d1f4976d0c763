// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

/// Makes the images and pages under ":/Vorlane/Resources/" available. Call it before each use of them: resources in a
/// static library are not registered automatically. Safe to repeat.
void InitKitResources();
