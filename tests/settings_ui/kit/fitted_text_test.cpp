// SPDX-License-Identifier: MIT

#include "settings_ui/kit/fitted_text.h"

#include "settings_ui/kit/kit.h"
#include "settings_ui/settings_ui_test.h"

#include <QCheckBox>
#include <QFontMetrics>
#include <QLabel>
#include <QPushButton>
#include <gtest/gtest.h>

namespace tessarel {
namespace {

const QString kText = "Zones appear while you hold:";
const QChar kEllipsis(0x2026);

class FittedTextTest : public SettingsUiTest {
protected:
    static int widthOf(const QString& text, int size) {
        return QFontMetrics(systemFont(size)).horizontalAdvance(text);
    }

    /// Returns a label just wide enough for the text in a font of `size` pixels.
    QLabel& labelFor(int size) { return *makeLabel(view, kText, {0, 0, widthOf(kText, size) + 1, 20}); }

    FlippedView view;
};

TEST_F(FittedTextTest, ATextThatFitsKeepsItsSizeAndNeedsNoTooltip) {
    const QLabel& label = labelFor(13);

    EXPECT_EQ(label.font().pixelSize(), 13);
    EXPECT_EQ(label.text(), kText);
    EXPECT_EQ(label.toolTip(), "");
}

TEST_F(FittedTextTest, ATextExactlyAsLargeAsItsFrameKeepsItsSize) {
    const QSize size(widthOf(kText, 13), QFontMetrics(systemFont(13)).height());

    EXPECT_EQ(makeLabel(view, kText, {QPoint(), size})->font().pixelSize(), 13);
    EXPECT_EQ(makeLabel(view, kText, {QPoint(), size - QSize(1, 0)})->font().pixelSize(), 12);
    EXPECT_EQ(makeLabel(view, kText, {QPoint(), size - QSize(0, 1)})->font().pixelSize(), 12);
}

TEST_F(FittedTextTest, AWordWiderThanItsWrappedLabelIsSetSmaller) {
    const QString word = "Accessibility";
    const int width = widthOf(word, 12);

    EXPECT_EQ(makeWrap(view, word, {0, 0, width, 60})->font().pixelSize(), 12);
    EXPECT_EQ(makeWrap(view, word, {0, 0, width - 1, 60})->font().pixelSize(), 11);
}

TEST_F(FittedTextTest, ACheckBoxLeavesRoomForItsMark) {
    const QString title = "Also snap at screen edges and corners";
    const int width = widthOf(title, 13);

    const QCheckBox& box = *makeCheckBox(view, title, {0, 0, width + 5, 20}, nullptr);

    EXPECT_LT(box.font().pixelSize(), 13) << "the text alone would fit";
}

TEST_F(FittedTextTest, ATextThatIsTooWideIsSetAPixelSmaller) {
    const QLabel& label = labelFor(12);

    EXPECT_EQ(label.font().pixelSize(), 12);
    EXPECT_EQ(label.text(), kText);
    EXPECT_EQ(label.toolTip(), "");
}

TEST_F(FittedTextTest, ATextThatIsTooWideInElevenPixelsEndsInAnEllipsis) {
    const QLabel& label = labelFor(8);

    EXPECT_EQ(label.font().pixelSize(), 11);
    ASSERT_TRUE(label.text().endsWith(kEllipsis));
    EXPECT_TRUE(kText.startsWith(label.text().chopped(1)));
    EXPECT_LE(widthOf(label.text(), 11), label.width());
    EXPECT_EQ(label.toolTip(), kText);
    EXPECT_EQ(fullText(label), kText);
}

TEST_F(FittedTextTest, AsManyWholeWordsAsPossibleAreShown) {
    for (int width = widthOf("Zones\u2026", 11); width < widthOf(kText, 11); ++width) {
        const QString shown = makeLabel(view, kText, {0, 0, width, 20})->text();

        const auto end = shown.size() - 1;
        ASSERT_EQ(shown, kText.first(end) + kEllipsis);
        EXPECT_EQ(kText.at(end), ' ') << shown.toStdString();
        const auto nextEnd = kText.indexOf(' ', end + 1);
        if (nextEnd > 0) {
            EXPECT_GT(widthOf(kText.first(nextEnd) + kEllipsis, 11), width);
        }
    }
}

TEST_F(FittedTextTest, AFirstWordThatDoesNotFitIsCut) {
    const QLabel& label = *makeLabel(view, kText, {0, 0, widthOf("Zon\u2026", 11) + 1, 20});

    EXPECT_EQ(label.text(), QString("Zon") + kEllipsis);
}

TEST_F(FittedTextTest, ATextThatIsTooTallIsSetSmaller) {
    const int height = QFontMetrics(systemFont(24)).height();

    const QLabel& label = *makeLabel(view, "Tessarel", {0, 0, 400, height}, {.size = 26});

    EXPECT_GE(label.font().pixelSize(), 24);
    EXPECT_LT(label.font().pixelSize(), 26);
}

TEST_F(FittedTextTest, AShorterTextGetsItsSizeBack) {
    QLabel& label = labelFor(8);

    setFittedText(label, "8 px");

    EXPECT_EQ(label.font().pixelSize(), 13);
    EXPECT_EQ(label.text(), "8 px");
    EXPECT_EQ(label.toolTip(), "");
    EXPECT_EQ(fullText(label), "8 px");
}

TEST_F(FittedTextTest, AWrappedTextThatNeedsTooManyLinesEndsInAnEllipsis) {
    const QString words = QString("Edges give halves. ").repeated(20).trimmed();

    const QLabel& note = *makeWrap(view, words, {0, 0, 200, 34});

    EXPECT_EQ(note.font().pixelSize(), 11);
    EXPECT_TRUE(note.text().endsWith(kEllipsis));
    EXPECT_GT(note.text().size(), 20);
    EXPECT_LE(note.heightForWidth(note.width()), note.height());
    EXPECT_EQ(note.toolTip(), words);
}

TEST_F(FittedTextTest, AButtonsTitleStaysInsideItsFrame) {
    QPushButton& button = *makeButton(view, "Forget remembered apps (12)", {0, 0, 120, 28}, nullptr);

    EXPECT_EQ(button.font().pixelSize(), 11);
    EXPECT_TRUE(button.text().endsWith(kEllipsis));
    EXPECT_LT(widthOf(button.text(), 11), 120);
    EXPECT_EQ(button.toolTip(), "Forget remembered apps (12)");

    setFittedText(button, "Clear");
    EXPECT_EQ(button.font().pixelSize(), 13);
    EXPECT_EQ(button.text(), "Clear");
}

TEST_F(FittedTextTest, ATooltipShowsMarkupLiterally) {
    const QString title = "<b>" + kText + "</b>";

    const QLabel& label = *makeLabel(view, title, {0, 0, 40, 20});

    EXPECT_EQ(label.toolTip(), Qt::convertFromPlainText(title, Qt::WhiteSpaceNormal));
}

TEST_F(FittedTextTest, ASurrogatePairIsNotSplit) {
    const QString title = QString("\U0001F5D4").repeated(40);

    for (int width = 20; width < 60; ++width) {
        const QLabel& label = *makeLabel(view, title, {0, 0, width, 20});
        ASSERT_EQ(label.text().size() % 2, 1) << width;
    }
}

TEST_F(FittedTextTest, TheAccessibleNameIsTheWholeText) {
    EXPECT_EQ(labelFor(8).accessibleName(), kText);
}

TEST_F(FittedTextTest, AFrameWithoutRoomShowsAnEllipsis) {
    EXPECT_EQ(makeLabel(view, kText, {0, 0, 1, 1})->text(), QString(kEllipsis));
}

} // namespace
} // namespace tessarel
