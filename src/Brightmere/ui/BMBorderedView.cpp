#include "BMBorderedView.h"

#include "BrightmereColor.h"
#include "BrightmereView.h"
#include <Brightmere/core/BMLogger.h>

#include <QPainter>
#include <QPainterPath>

BMBorderedView::BMBorderedView(QWidget *parent)
    : QWidget(parent)
{
    borderInit();
}

BMBorderedView *BMBorderedView::initFromNib(QWidget *parent)
{
    const QString className = QString::fromLatin1(staticMetaObject.className());
    if (!Brightmere::View::hasNib(className)) {
        BMLogger::sharedInstance().logFromModule(className, 1, "no form registered; a plain bordered view is made");
        return new BMBorderedView(parent);
    }
    if (auto *view = Brightmere::View::loadFromNib<BMBorderedView>(parent)) {
        view->borderInit();
        return view;
    }
    return new BMBorderedView(parent);
}

void BMBorderedView::borderInit()
{
    m_borderWidth = 1.0;
    m_borderColor = Brightmere::Color::colorWithHexString(QStringLiteral("3498db"));
    m_cornerRadius = 5.0;
    update();
}

void BMBorderedView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal inset = m_borderWidth / 2.0;
    QPainterPath path;
    path.addRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), m_cornerRadius, m_cornerRadius);
    painter.setPen(QPen(m_borderColor, m_borderWidth));
    painter.drawPath(path);
}
