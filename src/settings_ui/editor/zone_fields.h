// SPDX-License-Identifier: MIT

#pragma once

#include "model/zone.h"

#include <QPoint>
#include <QString>
#include <QWidget>

#include <array>
#include <functional>
#include <optional>

class QLineEdit;

namespace tessarel {

/// Four text fields for the numbers of a zone: X, Y, W and H in percent.
class ZoneFields {
public:
    /// Creates the fields on `parent`, which owns them.
    explicit ZoneFields(QWidget& parent);

    // Both callbacks must be set before the user can type.

    /// Called after each change by the user.
    std::function<void()> onType;
    /// Called when the user presses Return in a changed field or leaves it, and after text has been dropped
    /// into a field without the focus.
    std::function<void()> onEnd;

    /// Shows the numbers of `zone` and enables the fields if the zone is enabled. A field that the user is
    /// editing keeps its text.
    void show(const Zone& zone);

    /// Returns `current` with the typed numbers, limited to 0 to 100 and to the screen. Width and height are
    /// at least 1, unless the position leaves less room. Text that is not a number does not change anything.
    [[nodiscard]] Zone typed(const Zone& current) const;

    /// Parses a decimal number with a decimal point or a decimal comma, of any length. Returns infinity for a
    /// number that is too large for a double, and `std::nullopt` for other texts.
    [[nodiscard]] static std::optional<double> number(const QString& text);

private:
    void add(QWidget& parent, int index, const QString& title);
    void type(QLineEdit& field);
    void end(QLineEdit& field);

    std::array<QLineEdit*, 4> m_fields{};
};

} // namespace tessarel
