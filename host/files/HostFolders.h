// SPDX-License-Identifier: Apache-2.0
#pragma once

// Makes the host's folder tree, with the locations it stands in, which a fresh account may lack. A folder that cannot
// be made is no error here: whoever writes into it finds out.
void SetupHostFolders();
