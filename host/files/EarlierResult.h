// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

// Whether the output is what an earlier run made of the input: it begins with it, as incremental saves and copies do.
// Of large files the first and last bytes of that part are compared. False when one of them cannot be read, or the
// input is empty.
bool IsEarlierResult(const std::string& output, const std::string& input);
