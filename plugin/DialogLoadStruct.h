// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <QMap>
#include <QString>
#include <QVariant>

class HalvexPDFLibraryCPDylibCPP1311;

/// What the host hands to an action to edit its settings. The layout is part of the contract with the host.
struct DialogLoadStruct {
  HalvexPDFLibraryCPDylibCPP1311* document;  ///< the document open in the host, or null
  void* hostField2;                          ///< the host's, not read by actions
  void* hostField3;                          ///< the host's, not read by actions
  void* hostField4;                          ///< the host's, not read by actions
  QMap<QString, QVariant>* settings;         ///< the action's settings, owned by the host, edited in place
  void* hostField6;                          ///< the host's, not read by actions
  bool hideAddToActionList;                  ///< hide the dialog's add-to-action-list button
  bool skipDocumentValue;                    ///< start from the settings, not from what the document holds
};

static_assert(sizeof(bool) == 1, "the record's booleans are one byte each");
static_assert(offsetof(DialogLoadStruct, settings) == 4 * sizeof(void*), "settings is the record's fifth pointer");
static_assert(offsetof(DialogLoadStruct, hideAddToActionList) == 6 * sizeof(void*),
              "hideAddToActionList follows the record's six pointers");
static_assert(offsetof(DialogLoadStruct, skipDocumentValue) == 6 * sizeof(void*) + 1,
              "skipDocumentValue is the byte after hideAddToActionList");
