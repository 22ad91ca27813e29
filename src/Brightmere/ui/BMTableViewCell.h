#pragma once

#include "BrightmereView.h"
#include <Brightmere/platform/views/TableViewCell.h>

#include <QPointer>
#include <QString>

// The base of the kit's table rows. A row knows the controller that loaded
// it (owner) and its reuse identifier, the class name. Rows come from a
// plain constructor (cell<T>()) or from the form registered under the
// class's name (cellFromNib<T>(); Brightmere::View::registerNib). The
// table's own selection look never shows: subclasses draw selection
// themselves.
class BMTableViewCell : public Brightmere::TableViewCell
{
    Q_OBJECT

public:
    explicit BMTableViewCell(QWidget *parent = nullptr);

    QObject *owner() const { return m_owner.data(); }
    void setOwner(QObject *owner) { m_owner = owner; }

    // The class's name, as reuse identifier: of this row, or of a class.
    QString cellIdentifier() const;
    static QString cellIdentifier(const QMetaObject &cls);

    // The row height a class asks for; subclasses hide it with their own.
    static double height() { return 0.0; }

    // Passes "not selected" on to the table whatever is asked, with the
    // animation flag given.
    virtual void setSelected(bool selected, bool animated);
    bool isSelected() const { return m_selected; }
    bool lastSelectionAnimated() const { return m_lastSelectionAnimated; }

    template<typename T>
    static T *cell(QWidget *parent = nullptr)
    {
        auto *row = new T(parent);
        row->setReuseIdentifier(cellIdentifier(T::staticMetaObject));
        return row;
    }

    // Null (logged) when no form of the class is registered.
    template<typename T>
    static T *cellFromNib(QWidget *parent = nullptr)
    {
        return cellFromNibForOwner<T>(nullptr, parent);
    }

    template<typename T>
    static T *cellFromNibForOwner(QObject *owner, QWidget *parent = nullptr)
    {
        T *row = Brightmere::View::loadFromNib<T>(parent);
        adopt(row, owner);
        return row;
    }

    // The form registered under name; null (logged) when there is none or
    // it is not a row.
    static BMTableViewCell *cellFromNibNamed(const QString &name, QObject *owner, QWidget *parent = nullptr);

private:
    static void adopt(BMTableViewCell *row, QObject *owner);

    QPointer<QObject> m_owner;
    bool m_selected = false;
    bool m_lastSelectionAnimated = false;
};
