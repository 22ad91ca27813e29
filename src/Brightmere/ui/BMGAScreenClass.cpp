#include "BMGAScreenClass.h"

BMGAScreenClass::BMGAScreenClass(const QString &screenName, const QMetaObject *screenClass)
    : m_screenName(screenName)
    , m_screenClass(screenClass)
{
}
