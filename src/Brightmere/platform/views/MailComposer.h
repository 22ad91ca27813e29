#pragma once

#include <QObject>
#include <QStringList>
#include <QUrl>

#include <functional>

namespace Brightmere {

/// The mail composer: a plain-text mail handed to the system's mail program
/// as a mailto: URL. Addresses, subject and body are percent-encoded as
/// UTF-8; line breaks in the body travel as CRLF ("%0D%0A"), and a subject
/// is kept to one line.
class MailComposer : public QObject
{
    Q_OBJECT

public:
    enum class Result { Cancelled, Saved, Sent, Failed };
    Q_ENUM(Result)

    /// Opens a URL; true when something took it.
    using Opener = std::function<bool(const QUrl &)>;

    explicit MailComposer(QObject *parent = nullptr);

    /// True when this system has a program for mailto: URLs. Never fails
    /// loudly: anything that goes wrong while asking means false.
    static bool canSendMail();

    QStringList toRecipients() const { return m_recipients; }
    void setToRecipients(const QStringList &recipients);
    QString subject() const { return m_subject; }
    void setSubject(const QString &subject);
    QString messageBody() const { return m_body; }
    void setMessageBody(const QString &body);

    QUrl mailtoUrl() const;
    static QUrl mailtoUrl(const QStringList &recipients, const QString &subject, const QString &body);

    /// Hands the mail over; Sent when the mail program took it, else Failed.
    /// finished() follows with the same result.
    Result present();

    /// Replaces the opener (QDesktopServices::openUrl); an empty one restores it.
    static void setOpener(Opener opener);

Q_SIGNALS:
    void finished(Brightmere::MailComposer::Result result);

private:
    QStringList m_recipients;
    QString m_subject;
    QString m_body;
};

} // namespace Brightmere
