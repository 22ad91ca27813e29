#pragma once

#include <QMetaType>
#include <QString>

/// An error as the core library reports it: a domain, a code and a text for
/// people. Converts to QString (and so prints with "%@").
class BMError
{
public:
    BMError() = default;
    BMError(const QString &domain, int code, const QString &description);

    QString domain() const { return m_domain; }
    int code() const { return m_code; }
    QString localizedDescription() const { return m_description; }
    QString toString() const;

    friend bool operator==(const BMError &, const BMError &) = default;

private:
    QString m_domain;
    int m_code = 0;
    QString m_description;
};

Q_DECLARE_METATYPE(BMError)
