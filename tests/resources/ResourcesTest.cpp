// SPDX-License-Identifier: Apache-2.0
#include "utils/KitResources.h"

#include <QImage>

#include <gtest/gtest.h>

namespace {

QImage ResourceImage(const QString& name) {
  return QImage(":/Vorlane/Resources/" + name + ".png");
}

TEST(Resources, EveryImageHasItsSizeAndATwiceAsDenseTwin) {
  InitKitResources();
  const struct {
    const char* name;
    QSize size;
  } images[] = {{"DialogShadow-TopLeft", {8, 8}},
                {"DialogShadow-Top", {8, 8}},
                {"DialogShadow-TopRight", {8, 8}},
                {"DialogShadow-Left", {8, 8}},
                {"DialogShadow-Right", {8, 8}},
                {"DialogShadow-BtmLeft", {8, 8}},
                {"DialogShadow-Btm", {8, 8}},
                {"DialogShadow-BtmRight", {8, 8}},
                {"VorlaneHeader", {400, 30}},
                {"WinClose", {14, 14}},
                {"WinClose_disabled", {14, 14}},
                {"PaneActionList_extra", {20, 20}},
                {"PaneActionList_disabled", {20, 20}},
                {"PaneActionList_selected", {41, 42}},
                {"Collection", {20, 20}},
                {"Collection_disabled", {20, 20}},
                {"Icons/App_icon_256x256", {256, 256}},
                {"Tools/Action_SetBaseURL", {128, 128}},
                {"Tools/Action_SetBaseURL_Selected", {128, 128}},
                {"Tools/Action_SetBaseURL_Disabled", {128, 128}}};
  for (const auto& image : images) {
    EXPECT_EQ(ResourceImage(image.name).size(), image.size) << image.name;
    EXPECT_EQ(ResourceImage(QString(image.name) + "@2x").size(), image.size * 2) << image.name;
  }
}

}  // namespace
