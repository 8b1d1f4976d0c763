// SPDX-License-Identifier: Apache-2.0
#include "utils/KitResources.h"

#include <QFile>
#include <QImage>
#include <QTextCodec>
#include <QTextDocument>

#include <gtest/gtest.h>

namespace {

QImage ResourceImage(const QString& name) {
  return QImage(":/Vorlane/Resources/" + name + ".png");
}

class ResourcesTest : public testing::Test {
 protected:
  void SetUp() override { InitKitResources(); }
};

TEST_F(ResourcesTest, EveryImageHasItsSizeAndATwiceAsDenseTwin) {
  const struct {
    const char* name;
    QSize size;
  } images[] = {
      {"DialogShadow-TopLeft", {8, 8}},
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
      {"Tools/Action_SetBaseURL_Disabled", {128, 128}},
  };
  for (const auto& image : images) {
    EXPECT_EQ(ResourceImage(image.name).size(), image.size) << image.name;
    EXPECT_EQ(ResourceImage(QString(image.name) + "@2x").size(), image.size * 2) << image.name;
  }
}

// Neighbouring pixels across a joint of the shadow ring may differ as little as neighbours inside one piece do.
TEST_F(ResourcesTest, ShadowPiecesMeetWithoutAStep) {
  for (const QString density : {"", "@2x"}) {
    const auto piece = [&](const char* name) {
      return ResourceImage("DialogShadow-" + QString(name) + density).convertToFormat(QImage::Format_ARGB32);
    };
    const QImage top = piece("Top"), bottom = piece("Btm"), left = piece("Left"), right = piece("Right");
    const QImage topLeft = piece("TopLeft"), topRight = piece("TopRight");
    const QImage bottomLeft = piece("BtmLeft"), bottomRight = piece("BtmRight");
    const int last = top.width() - 1;
    const auto near = [](const QImage& a, int ax, int ay, const QImage& b, int bx, int by) {
      EXPECT_NEAR(qAlpha(a.pixel(ax, ay)), qAlpha(b.pixel(bx, by)), 6);
    };
    for (int i = 0; i <= last; ++i) {
      near(topLeft, last, i, top, 0, i);
      near(topRight, 0, i, top, last, i);
      near(bottomLeft, last, i, bottom, 0, i);
      near(bottomRight, 0, i, bottom, last, i);
      near(topLeft, i, last, left, i, 0);
      near(bottomLeft, i, 0, left, i, last);
      near(topRight, i, last, right, i, 0);
      near(bottomRight, i, 0, right, i, last);
      // Edge pieces are tiled, so each must not change along its edge.
      near(top, 0, i, top, last, i);
      near(left, i, 0, left, i, last);
    }
    EXPECT_GT(qAlpha(top.pixel(0, last)), qAlpha(top.pixel(0, 0))) << "the shadow fades outwards";
  }
}

TEST_F(ResourcesTest, HelpPageDeclaresItsCharsetAndRendersAsRichText) {
  QFile page(":/Vorlane/Resources/HelpFiles/Action_SetBaseUrl.html");
  ASSERT_TRUE(page.open(QIODevice::ReadOnly | QIODevice::Text));
  const QByteArray bytes = page.readAll();
  const QTextCodec* codec = QTextCodec::codecForHtml(bytes, nullptr);
  ASSERT_NE(codec, nullptr);
  QTextDocument document;
  document.setHtml(codec->toUnicode(bytes));
  const QString text = document.toPlainText();
  EXPECT_TRUE(text.contains("https://www.example.com/manuals/2026/intro.pdf"));
  EXPECT_TRUE(text.contains(QString::fromUtf8("document’s")));
  EXPECT_FALSE(text.contains('<'));
}

}  // namespace
