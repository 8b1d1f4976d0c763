// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <QMap>
#include <QString>
#include <QVariant>

class HalvexPDFLibraryCPDylibCPP1311;

/// What the host hands to an action for one call; the action only reads it. The layout is part of the contract with the
/// host, which may append fields of its own.
struct WorkProcInfoStruct {
  HalvexPDFLibraryCPDylibCPP1311* document;  ///< the open document; never null in WorkProc
  void* hostField2;                          ///< the host's, not read by actions
  void* hostField3;                          ///< the host's, not read by actions
  void* hostField4;                          ///< the host's, not read by actions
  QMap<QString, QVariant>* settings;         ///< the action's settings, owned by the host; never null in WorkProc
};

static_assert(offsetof(WorkProcInfoStruct, settings) == 4 * sizeof(void*), "settings is the record's fifth pointer");
