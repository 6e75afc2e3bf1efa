// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/application_list.h"

#include "support/offscreen_test.h"

#include <QApplication>
#include <QColor>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QSize>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessarel::qt {
namespace {

using Names = std::vector<std::string>;

xdg::OfferedApplication application(const std::string& name) {
    return {.identifier = "org.example." + name, .name = name, .genericName = {}, .icon = name + "-icon"};
}

class ApplicationListTest : public OffscreenTest {
protected:
    /// Returns the names that are shown, in order.
    [[nodiscard]] Names shown() const {
        Names names;
        for (int row = 0; row < found.rowCount(); ++row)
            names.push_back(found.index(row, 0).data().toString().toStdString());
        return names;
    }

    [[nodiscard]] Names matching(const std::string& text) {
        found.search(QString::fromStdString(text));
        return shown();
    }

    Names loaded; ///< the icons, in the order in which they were loaded
    ApplicationList all{{"org.example.Viewer", "org.example.Painter"},
                        [this](const QString& icon, const QString&) {
                            loaded.push_back(icon.toStdString());
                            QPixmap pixmap(24, 24);
                            pixmap.fill(Qt::red);
                            return pixmap;
                        }};
    FoundApplications found{all};
};

TEST_F(ApplicationListTest, RunningApplicationsComeFirstAndEachPartIsSortedByName) {
    all.append({application("Terminal"), application("Viewer"), application("calculator")});
    all.append({application("Painter"), application("Browser")});

    EXPECT_EQ(shown(), (Names{"Painter", "Viewer", "Browser", "calculator", "Terminal"}));
}

TEST_F(ApplicationListTest, EveryWordOfASearchMustBeFound) {
    all.append({application("Text Editor"), application("Editor"), application("Text Viewer")});

    EXPECT_EQ(matching("edit"), (Names{"Editor", "Text Editor"}));
    EXPECT_EQ(matching("edit text"), Names{"Text Editor"});
    EXPECT_EQ(matching(" edit  "), (Names{"Editor", "Text Editor"}));
    EXPECT_EQ(matching("edit paint"), Names{});
    EXPECT_EQ(matching(""), (Names{"Editor", "Text Editor", "Text Viewer"}));
}

TEST_F(ApplicationListTest, ASearchIgnoresCaseAndAccents) {
    all.append({application("Éditeur"), application("Viewer")});

    EXPECT_EQ(matching("EDITEUR"), Names{"Éditeur"});
    EXPECT_EQ(matching("éd"), Names{"Éditeur"});
    EXPECT_EQ(matching("vìEWER"), Names{"Viewer"});
}

TEST_F(ApplicationListTest, AnApplicationIsAlsoFoundByItsKindAndItsIdentifier) {
    all.append(
        {{.identifier = "org.mozilla.firefox", .name = "Fox", .genericName = "Web Browser", .icon = {}},
         application("Editor")});

    EXPECT_EQ(matching("browser"), Names{"Fox"});
    EXPECT_EQ(matching("mozilla"), Names{"Fox"});
}

TEST_F(ApplicationListTest, ApplicationsThatAreAppendedDuringASearchAreSearched) {
    found.search("edit");
    all.append({application("Editor"), application("Viewer")});

    EXPECT_EQ(shown(), Names{"Editor"});
}

TEST_F(ApplicationListTest, ARowSaysWhetherItsApplicationIsRunning) {
    all.append({application("Viewer"), application("Editor")});

    EXPECT_EQ(found.index(0, 0).data(Qt::AccessibleDescriptionRole).toString(), "Running");
    EXPECT_EQ(found.index(1, 0).data(Qt::AccessibleDescriptionRole).toString(), "");
    EXPECT_EQ(found.index(1, 0).data(ApplicationList::Identifier).toString(), "org.example.Editor");
}

TEST_F(ApplicationListTest, AnIconIsLoadedAfterItHasBeenAskedFor) {
    all.append({application("Editor"), application("Viewer")});
    const QModelIndex viewer = found.index(0, 0);

    EXPECT_TRUE(viewer.data(Qt::DecorationRole).value<QIcon>().isNull());
    EXPECT_EQ(loaded, Names{});
    while (loaded.empty())
        QApplication::processEvents();

    EXPECT_EQ(loaded, Names{"Viewer-icon"});
    EXPECT_EQ(viewer.data(Qt::DecorationRole).value<QIcon>().pixmap(QSize(24, 24)).toImage().pixelColor(9, 9),
              QColor(Qt::red));
}

TEST_F(ApplicationListTest, ManyIconsAreLoadedOnePerRoundTheLastWantedFirst) {
    all.append({application("A"), application("B"), application("C")});
    for (int row = 0; row < 3; ++row)
        (void)found.index(row, 0).data(Qt::DecorationRole);

    Names previous;
    while (loaded.size() < 3) {
        previous = loaded;
        QApplication::processEvents();
        EXPECT_LE(loaded.size(), previous.size() + 1);
    }

    EXPECT_EQ(loaded, (Names{"C-icon", "B-icon", "A-icon"}));
}

TEST_F(ApplicationListTest, ALongNameIsCut) {
    all.append({application(std::string(10'000, 'x'))});

    EXPECT_EQ(shown(), Names{std::string(200, 'x')});
}

} // namespace
} // namespace tessarel::qt
