// SPDX-License-Identifier: Apache-2.0

#include "engine/api/Call.h"
#include "engine/api/Exports.h"

using engine::Call;
using engine::Guarded;

int HPLPageCount(int instance) {
  return Guarded<int>(instance, [](Call& call) { return call.Selected().PageCount(); });
}

int HPLSelectPage(int instance, int page) {
  return Guarded<int>(instance, [&](Call& call) {
    call.Selected().SelectPage(page);
    return 1;
  });
}

int HPLSelectedPage(int instance) {
  return Guarded<int>(instance, [](Call& call) { return call.Selected().SelectedPage(); });
}

double HPLPageWidth(int instance) {
  return Guarded<double>(instance, [](Call& call) { return call.Selected().PageGeometry().width; });
}

double HPLPageHeight(int instance) {
  return Guarded<double>(instance, [](Call& call) { return call.Selected().PageGeometry().height; });
}

int HPLPageRotation(int instance) {
  return Guarded<int>(instance, [](Call& call) { return call.Selected().PageGeometry().rotation; });
}
