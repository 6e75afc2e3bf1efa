#include "platform/qt_xdg/appearance.h"

#include "qt_values/color.h"

#include <QApplication>
#include <QDBusArgument>
#include <QStyle>
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

QPalette darkPalette() {
    const QColor text(0xf0, 0xf0, 0xf0);
    QPalette palette(text, QColor(0x2f, 0x2f, 0x2f), QColor(0x5a, 0x5a, 0x5a), QColor(0x18, 0x18, 0x18),
                     QColor(0x55, 0x55, 0x55), text, Qt::white, QColor(0x20, 0x20, 0x20),
                     QColor(0x2b, 0x2b, 0x2b));
    palette.setColor(QPalette::Midlight, QColor(0x48, 0x48, 0x48));
    palette.setColor(QPalette::AlternateBase, QColor(0x28, 0x28, 0x28));
    palette.setColor(QPalette::Shadow, QColor(0x10, 0x10, 0x10));
    palette.setColor(QPalette::Link, QColor(0x6c, 0xb2, 0xff));
    return palette;
}

/// Returns a colour for text that is readable on `background`: black on bright colours, otherwise white.
QColor readableOn(const QColor& background) {
    constexpr double kBright = 0.7;
    // The weights of red, green and blue in perceived brightness (ITU-R BT.601).
    const double brightness =
        0.299 * background.redF() + 0.587 * background.greenF() + 0.114 * background.blueF();
    return brightness > kBright ? Qt::black : Qt::white;
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

QPalette palette(const Appearance& appearance) {
    constexpr double kSecondary = 0.6;
    constexpr double kDisabled = 0.4;
    QPalette palette = appearance.isDark ? darkPalette() : QApplication::style()->standardPalette();
    const QColor text = palette.color(QPalette::WindowText);
    palette.setColor(QPalette::PlaceholderText, translucent(text, kSecondary));
    palette.setColor(QPalette::Highlight, appearance.accent);
    palette.setColor(QPalette::HighlightedText, readableOn(appearance.accent));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, translucent(text, kDisabled));
    return palette;
}

} // namespace tessarel::qt
