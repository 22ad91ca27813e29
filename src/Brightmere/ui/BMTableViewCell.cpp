#include "BMTableViewCell.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/ui/BrightmereColor.h>

BMTableViewCell::BMTableViewCell(QWidget *parent)
    : Brightmere::TableViewCell(parent)
{
    setDeleteStripColor(Brightmere::Color::named(QStringLiteral("norva_red_1")));
}

QString BMTableViewCell::cellIdentifier() const
{
    return cellIdentifier(*metaObject());
}

QString BMTableViewCell::cellIdentifier(const QMetaObject &cls)
{
    return QString::fromLatin1(cls.className());
}

void BMTableViewCell::setSelected(bool selected, bool animated)
{
    Q_UNUSED(selected)
    m_selected = false;
    m_lastSelectionAnimated = animated;
    update();
}

BMTableViewCell *BMTableViewCell::cellFromNibNamed(const QString &name, QObject *owner, QWidget *parent)
{
    QWidget *widget = Brightmere::View::loadFromNib(name, parent);
    auto *row = qobject_cast<BMTableViewCell *>(widget);
    if (widget && !row) {
        BMLogger::sharedInstance().logFromModule(QStringLiteral("BMTableViewCell"), 3,
                                                 "the form '%@' is a %@, not a table row; it is dropped", name,
                                                 widget->metaObject()->className());
        delete widget;
    }
    adopt(row, owner);
    return row;
}

void BMTableViewCell::adopt(BMTableViewCell *row, QObject *owner)
{
    if (!row)
        return;
    row->setOwner(owner);
    row->setReuseIdentifier(row->cellIdentifier());
}
