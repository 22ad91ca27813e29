#include "BMAnnotation.h"

BMAnnotation::BMAnnotation(const QString &title, const BMLocationCoordinate2D &coordinate, const QVariant &data)
    : m_title(title)
    , m_coordinate(coordinate)
    , m_data(data)
{
}
