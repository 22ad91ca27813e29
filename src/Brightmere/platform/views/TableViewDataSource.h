#pragma once

#include <Brightmere/SDKUIExport.h>

#include "IndexPath.h"

namespace Brightmere {

class TableView;
class TableViewCell;

/// What a TableView asks of the screen that fills it: its rows, their
/// heights, and what happens when the user picks or edits one. Only the row
/// count and the row itself must be given.
class BRIGHTMERE_SDKUI_EXPORT TableViewDataSource
{
public:
    /// What an edit of a row does.
    enum class EditingStyle { None, Delete, Insert };

    virtual ~TableViewDataSource() = default;

    /// How many sections the table has; 1 unless given.
    virtual int numberOfSectionsInTableView(TableView *tableView);
    /// How many rows the section has.
    virtual int numberOfRowsInSection(TableView *tableView, int section) = 0;
    /// The row to show; usually one from dequeueReusableCellWithIdentifier,
    /// set up for this index. The table takes ownership.
    virtual TableViewCell *cellForRowAtIndexPath(TableView *tableView, const IndexPath &indexPath) = 0;
    /// The table's rowHeight unless given.
    virtual double heightForRowAtIndexPath(TableView *tableView, const IndexPath &indexPath);
    /// Whether a swipe may put the row into editing; false unless given.
    virtual bool canEditRowAtIndexPath(TableView *tableView, const IndexPath &indexPath);
    /// Carries out a confirmed edit of the row; nothing unless given.
    virtual void commitEditingStyle(TableView *tableView, EditingStyle style, const IndexPath &indexPath);
    /// The user picked the row; nothing unless given.
    virtual void didSelectRowAtIndexPath(TableView *tableView, const IndexPath &indexPath);
};

} // namespace Brightmere
