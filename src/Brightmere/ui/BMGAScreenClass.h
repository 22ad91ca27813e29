#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QMetaObject>
#include <QString>

/// A screen as the host's analytics see it: the name it reports and its class.
class BRIGHTMERE_SDKUI_EXPORT BMGAScreenClass
{
public:
    BMGAScreenClass() = default;
    /// The screen that reports screenName and is of class screenClass.
    BMGAScreenClass(const QString &screenName, const QMetaObject *screenClass);

    /// The name the analytics report.
    QString screenName() const { return m_screenName; }
    /// Changes the reported name.
    void setScreenName(const QString &screenName) { m_screenName = screenName; }
    /// Null when no class was given.
    const QMetaObject *screenClass() const { return m_screenClass; }
    /// Changes the screen's class.
    void setScreenClass(const QMetaObject *screenClass) { m_screenClass = screenClass; }

private:
    QString m_screenName;
    const QMetaObject *m_screenClass = nullptr;
};
