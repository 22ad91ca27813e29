#include "TableViewDataSource.h"

#include "TableView.h"

namespace Brightmere {

int TableViewDataSource::numberOfSectionsInTableView(TableView *tableView)
{
    Q_UNUSED(tableView)
    return 1;
}

double TableViewDataSource::heightForRowAtIndexPath(TableView *tableView, const IndexPath &indexPath)
{
    Q_UNUSED(indexPath)
    return tableView->rowHeight();
}

bool TableViewDataSource::canEditRowAtIndexPath(TableView *tableView, const IndexPath &indexPath)
{
    Q_UNUSED(tableView)
    Q_UNUSED(indexPath)
    return false;
}

void TableViewDataSource::commitEditingStyle(TableView *tableView, EditingStyle style, const IndexPath &indexPath)
{
    Q_UNUSED(tableView)
    Q_UNUSED(style)
    Q_UNUSED(indexPath)
}

void TableViewDataSource::didSelectRowAtIndexPath(TableView *tableView, const IndexPath &indexPath)
{
    Q_UNUSED(tableView)
    Q_UNUSED(indexPath)
}

} // namespace Brightmere
