#include "MailComposer.h"

#include <Brightmere/core/BMLogger.h>

#include <QDesktopServices>
#include <QProcess>

namespace Brightmere {

namespace {

const QString kModule = QStringLiteral("MailComposer");

MailComposer::Opener &storedOpener()
{
    static MailComposer::Opener instance;
    return instance;
}

QString withCrlf(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    text.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    return text;
}

QString singleLine(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String(" "));
    text.replace(QLatin1Char('\r'), QLatin1Char(' '));
    text.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return text;
}

} // namespace

MailComposer::MailComposer(QObject *parent)
    : QObject(parent)
{
}

bool MailComposer::canSendMail()
{
#if defined(Q_OS_LINUX) && !defined(Q_OS_ANDROID)
    // The desktop's answer to "which program opens mailto:"; no answer, or
    // no way to ask, means nobody does.
    QProcess query;
    query.start(QStringLiteral("xdg-mime"),
                {QStringLiteral("query"), QStringLiteral("default"), QStringLiteral("x-scheme-handler/mailto")});
    if (!query.waitForStarted(2000)) {
        BMLogger::sharedInstance().logFromModule(kModule, 1, "cannot ask xdg-mime for a mail program: %@",
                                                 query.errorString());
        return false;
    }
    if (!query.waitForFinished(3000)) {
        query.kill();
        query.waitForFinished(1000);
        BMLogger::sharedInstance().logFromModule(kModule, 1, "xdg-mime did not answer in time");
        return false;
    }
    if (query.exitStatus() != QProcess::NormalExit || query.exitCode() != 0)
        return false;
    return !query.readAllStandardOutput().trimmed().isEmpty();
#else
    // Phones and the other desktops always have a way to open mailto:.
    return true;
#endif
}

void MailComposer::setToRecipients(const QStringList &recipients)
{
    m_recipients = recipients;
}

void MailComposer::setSubject(const QString &subject)
{
    m_subject = subject;
}

void MailComposer::setMessageBody(const QString &body)
{
    m_body = body;
}

QUrl MailComposer::mailtoUrl() const
{
    return mailtoUrl(m_recipients, m_subject, m_body);
}

QUrl MailComposer::mailtoUrl(const QStringList &recipients, const QString &subject, const QString &body)
{
    // Built as encoded bytes, so that nothing (a '+', an '&' in the body) is
    // left to a mail program's guesswork.
    QByteArrayList addresses;
    for (const QString &recipient : recipients) {
        const QString address = recipient.trimmed();
        if (!address.isEmpty())
            addresses.append(QUrl::toPercentEncoding(address, "@"));
    }
    QByteArrayList fields;
    if (!subject.isEmpty())
        fields.append("subject=" + QUrl::toPercentEncoding(singleLine(subject)));
    if (!body.isEmpty())
        fields.append("body=" + QUrl::toPercentEncoding(withCrlf(body)));

    QByteArray encoded = "mailto:" + addresses.join(',');
    if (!fields.isEmpty())
        encoded += '?' + fields.join('&');
    return QUrl::fromEncoded(encoded, QUrl::StrictMode);
}

MailComposer::Result MailComposer::present()
{
    const QUrl url = mailtoUrl();
    const Opener &open = storedOpener();
    const bool taken = open ? open(url) : QDesktopServices::openUrl(url);
    const Result result = taken ? Result::Sent : Result::Failed;
    if (!taken)
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no mail program took the mail");
    Q_EMIT finished(result);
    return result;
}

void MailComposer::setOpener(Opener opener)
{
    storedOpener() = std::move(opener);
}

} // namespace Brightmere
