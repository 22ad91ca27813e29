#pragma once

#include <QMetaObject>
#include <QString>

/// A screen as the host's analytics see it: the name it reports and its class.
class BMGAScreenClass
{
public:
    BMGAScreenClass() = default;
    BMGAScreenClass(const QString &screenName, const QMetaObject *screenClass);

    QString screenName() const { return m_screenName; }
    void setScreenName(const QString &screenName) { m_screenName = screenName; }
    /// Null when no class was given.
    const QMetaObject *screenClass() const { return m_screenClass; }
    void setScreenClass(const QMetaObject *screenClass) { m_screenClass = screenClass; }

private:
    QString m_screenName;
    const QMetaObject *m_screenClass = nullptr;
};
