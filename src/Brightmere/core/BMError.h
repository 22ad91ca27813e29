#pragma once

#include <Brightmere/SDKExport.h>

#include <QMetaType>
#include <QString>

/// An error as the core library reports it: a domain, a code and a text for
/// people. Converts to QString (and so prints with "%@").
class BRIGHTMERE_SDK_EXPORT BMError
{
public:
    BMError() = default;
    /// An error of domain with code and a text for people.
    BMError(const QString &domain, int code, const QString &description);

    /// The area the error comes from (BMWiFiTester::kErrorDomain, kRestServiceErrorDomain).
    QString domain() const { return m_domain; }
    /// The error's code within its domain.
    int code() const { return m_code; }
    /// The text for people.
    QString localizedDescription() const { return m_description; }
    /// "<domain> <code>: <text>", for log lines.
    QString toString() const;

    friend bool operator==(const BMError &, const BMError &) = default;

private:
    QString m_domain;
    int m_code = 0;
    QString m_description;
};

Q_DECLARE_METATYPE(BMError)
