// SPDX-License-Identifier: Apache-2.0
#pragma once

// Makes the host's folder tree, and the folders above it, which a fresh account may lack. A folder that cannot
// be made is not an error here: writing into it will be one.
void SetupHostFolders();
