#include "BMError.h"

namespace {

// "%@" on an error prints its description line.
const bool kConverterRegistered = QMetaType::registerConverter<BMError, QString>(&BMError::toString);

} // namespace

BMError::BMError(const QString &domain, int code, const QString &description)
    : m_domain(domain)
    , m_code(code)
    , m_description(description)
{
    Q_UNUSED(kConverterRegistered);
}

QString BMError::toString() const
{
    return QStringLiteral("Error Domain=%1 Code=%2 \"%3\"").arg(m_domain).arg(m_code).arg(m_description);
}
