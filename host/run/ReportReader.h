// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <QByteArray>
#include <QJsonObject>
#include <string>

// Calls `each` with every record of a report and its JSON text, in their order. A report is a JSON array or lines; "-"
// means the standard input. A line that a crash cut off is passed over. A record that follows such a line without a
// line break, because another run wrote to the same report, is read. Returns the number of lines that were cut off.
// Throws CommandError(kExitUsage) when the file cannot be read or is not a report.
std::size_t ReadReport(const std::string& name,
                       const std::function<void(const QJsonObject& record, const QByteArray& json)>& each);
