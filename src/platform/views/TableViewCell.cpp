#include "TableViewCell.h"

namespace Brightmere {

TableViewCell::TableViewCell(QWidget *parent)
    : QWidget(parent)
{
}

void TableViewCell::setEditing(bool editing, bool animated)
{
    Q_UNUSED(animated)
    m_editing = editing;
    update();
}

} // namespace Brightmere
