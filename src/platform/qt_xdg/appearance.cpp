// SPDX-License-Identifier: MIT

#include "platform/qt_xdg/appearance.h"

#include <QDBusArgument>
#include <QVariant>

namespace tessarel::qt {

namespace {

// Values of "color-scheme". Any other value means that the user has no preference.
constexpr uint kPrefersDark = 1;
constexpr uint kPrefersLight = 2;

/// Returns whether `value` is a valid component of a colour. False for NaN.
bool isPart(double value) {
    return value >= 0 && value <= 1;
}

} // namespace

bool prefersDark(const QVariantMap& settings, const QString& gtkTheme) {
    const uint scheme = settings.value(QStringLiteral("color-scheme")).toUInt();
    return scheme == kPrefersDark || (scheme != kPrefersLight && gtkTheme.endsWith(QLatin1String(":dark")));
}

std::optional<QColor> accentColor(const QVariantMap& settings) {
    const QVariant setting = settings.value(QStringLiteral("accent-color"));
    if (!setting.canConvert<QDBusArgument>())
        return std::nullopt;
    const auto argument = setting.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("(ddd)"))
        return std::nullopt;
    double red = 0;
    double green = 0;
    double blue = 0;
    argument.beginStructure();
    argument >> red >> green >> blue;
    argument.endStructure();
    if (!isPart(red) || !isPart(green) || !isPart(blue))
        return std::nullopt;
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue));
}

} // namespace tessarel::qt
