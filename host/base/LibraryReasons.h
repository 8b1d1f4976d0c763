// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

// What an error code of the PDF library means to a user: one clause without a full stop, never null.
const char* LibraryReason(int errorCode);

// The same for a file that could not be loaded; says what is wrong with something that is no file.
const char* LoadingReason(int errorCode, const std::string& file);
