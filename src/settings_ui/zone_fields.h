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

/// The four numbers of a zone to be typed: X, Y, W and H in percent.
class ZoneFields {
public:
    /// The fields stand on `parent`, which owns them.
    explicit ZoneFields(QWidget& parent);

    std::function<void()> onType; ///< after each change by the user
    std::function<void()> onEnd;  ///< when the user is done with a field that has been changed

    /// Shows the numbers of `zone`, which can be changed if it is enabled. A field that the user is changing
    /// keeps its text.
    void show(const Zone& zone);

    /// `current` with the numbers that have been typed, within 0 to 100 and within the screen, at least 1
    /// wide and high; a text that is no number leaves the number as it is.
    [[nodiscard]] Zone typed(const Zone& current) const;

    /// The number that a text stands for; a decimal comma is accepted.
    [[nodiscard]] static std::optional<double> number(const QString& text);

private:
    void add(QWidget& parent, int index, const QString& title);
    void end(QLineEdit& field);

    std::array<QLineEdit*, 4> m_fields{};
};

} // namespace tessarel
