// SPDX-License-Identifier: MIT

#include "settings_ui/editor/zone_fields.h"

#include "settings_ui/kit/kit.h"

#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QRect>
#include <QRegularExpression>

#include <algorithm>
#include <cstddef>

namespace tessarel {

namespace {

constexpr double kSmallest = 1; // percent
constexpr std::array<double Zone::*, 4> kNumbers = {&Zone::x, &Zone::y, &Zone::w, &Zone::h};

} // namespace

ZoneFields::ZoneFields(QWidget& parent) {
    for (int i = 0; const char* const title : {"X", "Y", "W", "H"})
        add(parent, i++, QString::fromLatin1(title));
}

void ZoneFields::add(QWidget& parent, int index, const QString& title) {
    // Two rows: X and Y above W and H.
    const int left = index % 2 == 0 ? 540 : 658;
    const int top = 176 + 34 * (index / 2);
    auto* const label = makeLabel(parent, title, {left, top + 3, 16, 18});
    auto* const field = new QLineEdit(&parent);
    field->setFont(systemFont(13));
    field->setGeometry(left + 18, top, 76, 24);
    field->setAccessibleName(title);
    label->setBuddy(field);
    m_fields.at(static_cast<std::size_t>(index)) = field;
    QObject::connect(field, &QLineEdit::textEdited, field, [this, field] { type(*field); });
    QObject::connect(field, &QLineEdit::editingFinished, field, [this, field] { end(*field); });
}

/// Calls `onType`. Also calls `onEnd` for a field without the focus, into which text has been dropped: the
/// user may never enter and leave that field.
void ZoneFields::type(QLineEdit& field) {
    field.setModified(true); // Qt takes a field for unmodified once the user has undone all changes
    onType();
    if (!field.hasFocus())
        end(field);
}

/// Calls `onEnd` if the user has changed the field; Qt also reports the end of editing for unchanged fields.
void ZoneFields::end(QLineEdit& field) {
    if (!field.isModified())
        return;
    field.setModified(false);
    onEnd();
}

void ZoneFields::show(const Zone& zone) {
    for (std::size_t i = 0; i < m_fields.size(); ++i) {
        QLineEdit& field = *m_fields[i];
        const QString text = fmtNum(zone.*kNumbers[i]);
        // setText() would replace what the user is typing, or deselect what the next key is to replace.
        if (!field.isModified() && !(field.hasFocus() && field.text() == text))
            field.setText(text);
        field.setEnabled(zone.enabled);
    }
}

std::optional<double> ZoneFields::number(const QString& text) {
    static const QRegularExpression decimal(QRegularExpression::anchoredPattern(
        QStringLiteral("[+-]?([0-9]+\\.?[0-9]*|\\.[0-9]+)([eE][+-]?[0-9]+)?")));
    const QString digits = text.trimmed().replace(QLatin1Char(','), QLatin1Char('.'));
    if (!decimal.match(digits).hasMatch())
        return std::nullopt;
    // The C locale, because fmtNum() formats numbers in it, too. Qt reports a number out of range as an
    // error, but returns infinity or zero for it.
    return QLocale::c().toDouble(digits);
}

Zone ZoneFields::typed(const Zone& current) const {
    Zone zone = current;
    for (std::size_t i = 0; i < m_fields.size(); ++i)
        if (const auto value = number(m_fields[i]->text()))
            zone.*kNumbers[i] = std::clamp(*value, 0.0, 100.0) + 0.0; // turns -0 into 0
    zone.w = std::max(zone.w, kSmallest);
    zone.h = std::max(zone.h, kSmallest);
    // The position takes precedence: the zone becomes smaller where it would leave the screen.
    zone.w = std::min(zone.w, 100 - zone.x);
    zone.h = std::min(zone.h, 100 - zone.y);
    return zone;
}

} // namespace tessarel
