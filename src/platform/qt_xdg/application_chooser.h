// SPDX-License-Identifier: MIT

#pragma once

#include "platform/qt_xdg/application_list.h"
#include "platform/xdg/applications/offered_applications.h"

#include <QDialog>
#include <QTimer>

#include <functional>
#include <optional>
#include <set>
#include <string>

class QKeyEvent;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;

namespace tessarel::qt {

/// A dialog in which the user chooses an installed application.
///
/// The list is filled while the dialog can be used already. What is typed goes to the search field, also
/// while the list has the focus; the arrow keys go to the list, also while the field has it. Return confirms
/// the selected application, Escape cancels.
class ApplicationChooser : public QDialog {
public:
    /// What the dialog shows beside the applications.
    struct Options {
        std::string prompt;            ///< title of the confirm button
        std::set<std::string> running; ///< identifiers of the applications that are running
        /// Lets the user choose an application that is not in the list, when the button "Other..." has been
        /// pressed. Returns its identifier, or `std::nullopt` to return to the dialog.
        std::function<std::optional<std::string>()> chooseOther;
    };

    ApplicationChooser(xdg::OfferedApplications applications, Options options);

    /// Runs a nested event loop until the dialog is closed. Returns the identifier of the chosen application,
    /// `std::nullopt` if the user cancels.
    [[nodiscard]] std::optional<std::string> run();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void build(const QString& prompt);
    void layOut(QPushButton* other, QPushButton* cancel);
    void readMore();
    void search(const QString& text);
    void selectFirst();
    void selectFoundFirst();
    void showState();
    bool keyInField(QKeyEvent& key);
    bool keyInList(QKeyEvent& key);
    void confirm();
    void chooseOther();
    [[nodiscard]] QModelIndex selected() const;

    xdg::OfferedApplications m_applications;
    Options m_options;
    ApplicationList m_all;
    FoundApplications m_found{m_all};
    QTimer m_reading;
    std::optional<std::string> m_chosen;
    // Owned by the dialog.
    QLabel* m_label;
    QLineEdit* m_field;
    QListView* m_list;
    QLabel* m_nothing;
    QPushButton* m_confirm;
};

} // namespace tessarel::qt
