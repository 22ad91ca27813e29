#include "BMMainButton.h"

#include "BrightmereColor.h"
#include "BrightmereView.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

namespace {

constexpr int kTitlePadding = 12;
constexpr int kMinimumHeight = 44;

QColor normalColorForStyle(uint style)
{
    switch (style) {
    case 0:
        return Brightmere::Color::named(QStringLiteral("dark_blue"));
    case 1:
    case 2:
        return Brightmere::Color::system(4);
    default:
        return Brightmere::Color::named(QStringLiteral("fixed_light_gray"));
    }
}

QColor highlightedColorForStyle(uint style)
{
    // The design's pressed fills under a white title; the 17-pixel title is
    // not large text, so high contrast darkens each fill to 4.5:1.
    QString name = QStringLiteral("medium_blue");
    if (style == 3)
        name = QStringLiteral("norva_red_1");
    else if (style == 5)
        name = QStringLiteral("fixed_action_bar_green");
    return Brightmere::Color::fixedColor(Brightmere::Color::named(name), Brightmere::Color::colorWithR(255, 255, 255));
}

} // namespace

BMMainButton::BMMainButton(QWidget *parent)
    : QPushButton(parent)
{
    build();
}

BMMainButton::BMMainButton(const QString &title, QWidget *parent)
    : QPushButton(title, parent)
{
    build();
}

void BMMainButton::build()
{
    setFlat(true);
    setAttribute(Qt::WA_TranslucentBackground);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setFont(Brightmere::View::fontOfSize(17, QFont::DemiBold));

    m_cornerRadius = 10.0;
    m_borderWidth = 1.0;
    m_borderColor = Brightmere::Color::named(QStringLiteral("fixed_dark_blue"));
    m_backgroundColor = Brightmere::Color::named(QStringLiteral("dark_blue"));

    connect(this, &QAbstractButton::pressed, this, [this] { setHighlighted(true); });
    connect(this, &QAbstractButton::released, this, [this] { setHighlighted(false); });
    connect(this, &QAbstractButton::toggled, this, [this](bool checked) { setSelected(checked); });
}

void BMMainButton::setStyle(uint style)
{
    m_style = style;
    switch (style) {
    case 0:
        m_borderWidth = 0.0;
        break;
    case 3:
    case 4:
    case 5:
        m_cornerRadius = 22.0;
        m_borderWidth = 2.0;
        // Style 4 keeps whatever border colour the button had before.
        if (style == 3)
            m_borderColor = Brightmere::Color::named(QStringLiteral("norva_red_1"));
        else if (style == 5)
            m_borderColor = Brightmere::Color::named(QStringLiteral("fixed_action_bar_green"));
        break;
    default:
        break;
    }
    setColorAccordingTo(false);
}

void BMMainButton::setColorAccordingTo(bool highlighted)
{
    setBackgroundColor(highlighted ? highlightedColorForStyle(m_style) : normalColorForStyle(m_style));
}

void BMMainButton::setHighlighted(bool highlighted)
{
    setColorAccordingTo(highlighted);
    m_highlighted = highlighted;
    update();
}

void BMMainButton::setSelected(bool selected)
{
    setColorAccordingTo(selected);
    m_selected = selected;
    update();
}

QImage BMMainButton::imageWithColor(const QColor &color)
{
    setBackgroundColor(color);
    const qreal scale = screen() ? screen()->devicePixelRatio() : qApp->devicePixelRatio();
    const QSize size = this->size().isEmpty() ? sizeHint() : this->size();
    QImage image(size * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setOpacity(windowOpacity());
    render(&painter, QPoint(), QRegion(QRect(QPoint(), size)), RenderFlag::DrawChildren);
    return image;
}

void BMMainButton::setBackgroundColor(const QColor &color)
{
    m_backgroundColor = color;
    update();
}

void BMMainButton::setCornerRadius(qreal radius)
{
    m_cornerRadius = radius;
    update();
}

void BMMainButton::setBorderWidth(qreal width)
{
    m_borderWidth = width;
    update();
}

void BMMainButton::setBorderColor(const QColor &color)
{
    m_borderColor = color;
    update();
}

QColor BMMainButton::titleColor() const
{
    // White on the dark fills, the kit's dark blue on the light ones.
    if (m_backgroundColor.isValid() && m_backgroundColor.lightnessF() < 0.75)
        return Brightmere::Color::colorWithR(255, 255, 255);
    return Brightmere::Color::named(QStringLiteral("fixed_dark_blue"));
}

QSize BMMainButton::sizeHint() const
{
    const QFontMetrics metrics(font());
    const int width = metrics.horizontalAdvance(text()) + 2 * kTitlePadding + 8;
    return {width, std::max(kMinimumHeight, metrics.height() + 2 * kTitlePadding)};
}

QSize BMMainButton::minimumSizeHint() const
{
    return {2 * kTitlePadding, kMinimumHeight};
}

int BMMainButton::heightForWidth(int width) const
{
    const QFontMetrics metrics(font());
    const QRect text = metrics.boundingRect(QRect(0, 0, std::max(1, width - 2 * kTitlePadding), 10000),
                                            Qt::AlignCenter | Qt::TextWordWrap, this->text());
    return std::max(kMinimumHeight, text.height() + 2 * kTitlePadding);
}

QRect BMMainButton::titleRect(const QRect &bounds) const
{
    return bounds.adjusted(kTitlePadding, 2, -kTitlePadding, -2);
}

void BMMainButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // The border is drawn inside the bounds, as a layer's border is.
    const qreal inset = m_borderWidth / 2.0;
    const QRectF box = QRectF(rect()).adjusted(inset, inset, -inset, -inset);
    const qreal radius = std::min(m_cornerRadius, std::min(box.width(), box.height()) / 2.0);
    QPainterPath path;
    path.addRoundedRect(box, radius, radius);
    painter.fillPath(path, m_backgroundColor);
    if (m_borderWidth > 0.0 && m_borderColor.isValid()) {
        painter.setPen(QPen(m_borderColor, m_borderWidth));
        painter.drawPath(path);
    }
    QColor title = titleColor();
    if (!isEnabled())
        title.setAlphaF(0.4f);
    painter.setPen(title);
    painter.setFont(font());
    painter.drawText(titleRect(rect()), Qt::AlignCenter | Qt::TextWordWrap, text());
}
