// SPDX-License-Identifier: Apache-2.0
#pragma once

// What an error code of the PDF library means to a user: one clause without a full stop, never null.
const char* LibraryReason(int errorCode);
