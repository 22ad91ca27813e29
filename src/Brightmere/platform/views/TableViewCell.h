#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

class QToolButton;

namespace Brightmere {

// A row of a TableView. Rows are handed out again by their reuse identifier
// (TableView::dequeueReusableCellWithIdentifier), so a subclass must show
// everything anew when it is set up for another item.
//
// Editing: a swipe to the left on a row, or TableView::setEditing, turns the
// row's editing on through setEditing(true, animated); subclasses that act on
// it override setEditing and call the base. While editing, the row shows a
// delete strip on its right, in the caller's colour (the platform's
// destructive red unless set); a click on it emits deleteButtonClicked,
// which the table turns into its data source's commitEditingStyle.
// Subclasses that lay out in resizeEvent call the base too.
class TableViewCell : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kDeleteStripWidth = 72;

    explicit TableViewCell(QWidget *parent = nullptr);

    QString reuseIdentifier() const { return m_reuseIdentifier; }
    void setReuseIdentifier(const QString &identifier) { m_reuseIdentifier = identifier; }

    bool isEditing() const { return m_editing; }
    virtual void setEditing(bool editing, bool animated);

    // The strip shown while editing.
    QWidget *deleteStrip() const;
    // What assistive tools call the strip ("Delete Kitchen"); the caller's text.
    void setDeleteAccessibleName(const QString &name);
    QColor deleteStripColor() const { return m_deleteStripColor; }
    // An invalid colour is ignored.
    void setDeleteStripColor(const QColor &color);

    // Whether the row is picked, as assistive tools hear it (the look is the
    // subclass's); a change is announced.
    bool isAccessibleSelected() const { return m_selected; }
    void setAccessibleSelected(bool selected);

Q_SIGNALS:
    void deleteButtonClicked();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void placeDeleteStrip();
    void paintDeleteStrip();

    QString m_reuseIdentifier;
    bool m_editing = false;
    bool m_selected = false;
    QString m_deleteAccessibleName;
    QColor m_deleteStripColor{0xff, 0x3b, 0x30};
    QToolButton *m_deleteStrip = nullptr;
};

} // namespace Brightmere
