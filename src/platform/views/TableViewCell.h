#pragma once

#include <QString>
#include <QWidget>

namespace Brightmere {

// A row of a TableView. Rows are handed out again by their reuse identifier
// (TableView::dequeueReusableCellWithIdentifier), so a subclass must show
// everything anew when it is set up for another item.
//
// Editing: a swipe to the left on a row, or TableView::setEditing, turns the
// row's editing on through setEditing(true, animated); subclasses that act on
// it override setEditing and call the base.
class TableViewCell : public QWidget
{
    Q_OBJECT

public:
    explicit TableViewCell(QWidget *parent = nullptr);

    QString reuseIdentifier() const { return m_reuseIdentifier; }
    void setReuseIdentifier(const QString &identifier) { m_reuseIdentifier = identifier; }

    bool isEditing() const { return m_editing; }
    virtual void setEditing(bool editing, bool animated);

private:
    QString m_reuseIdentifier;
    bool m_editing = false;
};

} // namespace Brightmere
