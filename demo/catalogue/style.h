#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QString>

/// The look that all drawings share: near-black greens, one neon accent, rounded shapes.
namespace quillmar::demo::style
{

inline constexpr QColor kNeon{0x55, 0xff, 0x22};
inline constexpr QColor kMint{0xc8, 0xff, 0xb4};
inline constexpr QColor kTeal{0x18, 0xc8, 0xb0};
inline constexpr QColor kInk{0x06, 0x09, 0x07};
inline constexpr QColor kNight{0x0b, 0x10, 0x0d};
inline constexpr QColor kMoss{0x12, 0x20, 0x18};
inline constexpr QColor kFern{0x1d, 0x3b, 0x26};
inline constexpr QColor kText{0xf4, 0xff, 0xf1};
inline constexpr QColor kMuted{0x9c, 0xb8, 0xa2};

QColor withAlpha(QColor color, qreal alpha);

/// A picture of `size`, transparent all over.
QImage transparentCanvas(QSize size);

/// Prepares a painter for everything below: antialiasing and automatic text direction.
void prepare(QPainter &painter);

enum class Weight { Regular, Bold };

/// Text of `pixels` height inside `area`, shaped for Latin and Persian alike. Shrinks until it fits on its
/// lines.
struct TextStyle {
    qreal pixels = 32;
    Weight weight = Weight::Regular;
    QColor color = kText;
    int flags = Qt::AlignLeft | Qt::AlignVCenter;
    bool tracked = false; ///< wide letter spacing; ignored for joined scripts
};
void drawText(QPainter &painter, const QRectF &area, const QString &text, const TextStyle &style);

/// A line of light: a bright core of `width` with a halo of `glow` pixels on either side.
void drawGlow(QPainter &painter, const QPainterPath &path, QColor color, qreal width, qreal glow);

/// A dark glass plate with a fine bright rim.
void drawPlate(QPainter &painter, const QRectF &area, qreal radius, qreal opacity = 0.9);

/// A rounded box filled with the accent gradient.
void fillAccent(QPainter &painter, const QRectF &area, qreal radius);

/// The brand's feather, as large as fits into `area`.
void drawFeather(QPainter &painter, const QRectF &area, QColor color);

/// The brand's badge: the feather in a rounded square.
void drawBadge(QPainter &painter, const QRectF &area);

QPainterPath roundedPath(const QRectF &area, qreal radius);

} // namespace quillmar::demo::style
