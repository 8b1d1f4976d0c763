// SPDX-License-Identifier: Apache-2.0
#include "utils/KitResources.h"

#include <QImage>

#include <gtest/gtest.h>

namespace {

TEST(Resources, EveryImageHasItsSizeAndACopyOfTwiceTheDensity) {
  InitKitResources();
  const std::pair<QSize, const char*> images[] = {
      {{8, 8}, "DialogShadow-TopLeft DialogShadow-Top DialogShadow-TopRight DialogShadow-Left DialogShadow-Right"},
      {{8, 8}, "DialogShadow-BtmLeft DialogShadow-Btm DialogShadow-BtmRight"},
      {{400, 30}, "VorlaneHeader"},
      {{14, 14}, "WinClose WinClose_disabled"},
      {{20, 20}, "PaneActionList_extra PaneActionList_disabled Collection Collection_disabled"},
      {{41, 42}, "PaneActionList_selected"},
      {{256, 256}, "Icons/App_icon_256x256"},
      {{128, 128}, "Tools/Action_SetBaseURL Tools/Action_SetBaseURL_Selected Tools/Action_SetBaseURL_Disabled"}};
  for (const auto& [size, names] : images) {
    for (const QString& name : QString(names).split(' ')) {
      const QString file = ":/Vorlane/Resources/" + name;
      EXPECT_EQ(QImage(file + ".png").size(), size) << name.toStdString();
      EXPECT_EQ(QImage(file + "@2x.png").size(), size * 2) << name.toStdString();
    }
  }
}

}  // namespace
