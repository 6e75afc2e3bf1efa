#include "platform/qt_xdg/appearance.h"

#include <QDBusArgument>
#include <QVariant>

#include <optional>

namespace tessarel::qt {

namespace {

// Values of "color-scheme". Any other value means that the user has no preference.
constexpr uint kPrefersDark = 1;
constexpr uint kPrefersLight = 2;

/// Returns whether `value` is a valid component of a colour. False for NaN.
bool isPart(double value) {
    return value >= 0 && value <= 1;
}

/// Decodes "accent-color". Returns `std::nullopt` if it is missing or has another type, or if a component is
/// out of range, which is how a desktop says that it has no accent colour.
std::optional<QColor> accentColor(const QVariant& setting) {
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

} // namespace

Appearance appearance(const QVariantMap& settings, const QString& gtkTheme) {
    Appearance appearance;
    const uint scheme = settings.value(QStringLiteral("color-scheme")).toUInt();
    appearance.isDark =
        scheme == kPrefersDark || (scheme != kPrefersLight && gtkTheme.endsWith(QLatin1String(":dark")));
    if (const auto accent = accentColor(settings.value(QStringLiteral("accent-color"))))
        appearance.accent = *accent;
    return appearance;
}

} // namespace tessarel::qt
