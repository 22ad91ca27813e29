#pragma once

#include <Brightmere/core/BMLocationCoordinate2D.h>

#include <QString>
#include <QVariant>

// A point to mark on a map: a title, a position and whatever the caller
// wants back when the mark is picked.
class BMAnnotation
{
public:
    BMAnnotation() = default;
    BMAnnotation(const QString &title, const BMLocationCoordinate2D &coordinate, const QVariant &data);

    QString title() const { return m_title; }
    void setTitle(const QString &title) { m_title = title; }
    BMLocationCoordinate2D coordinate() const { return m_coordinate; }
    void setCoordinate(const BMLocationCoordinate2D &coordinate) { m_coordinate = coordinate; }
    QVariant data() const { return m_data; }
    void setData(const QVariant &data) { m_data = data; }

private:
    QString m_title;
    BMLocationCoordinate2D m_coordinate;
    QVariant m_data;
};
