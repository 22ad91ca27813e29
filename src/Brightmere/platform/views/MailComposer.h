#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QObject>
#include <QStringList>
#include <QUrl>

#include <functional>

namespace Brightmere {

/// The mail composer: a plain-text mail handed to the system's mail program
/// as a mailto: URL. Addresses, subject and body are percent-encoded as
/// UTF-8; line breaks in the body travel as CRLF ("%0D%0A"), and a subject
/// is kept to one line.
class BRIGHTMERE_SDKUI_EXPORT MailComposer : public QObject
{
    Q_OBJECT

public:
    /// How the hand-over ended.
    enum class Result { Cancelled, Saved, Sent, Failed };
    Q_ENUM(Result)

    /// Opens a URL; true when something took it.
    using Opener = std::function<bool(const QUrl &)>;

    /// An empty mail.
    explicit MailComposer(QObject *parent = nullptr);

    /// True when this system has a program for mailto: URLs. Never fails
    /// loudly: anything that goes wrong while asking means false.
    static bool canSendMail();

    /// The addresses the mail goes to.
    QStringList toRecipients() const { return m_recipients; }
    /// Sets the addresses the mail goes to.
    void setToRecipients(const QStringList &recipients);
    /// The subject.
    QString subject() const { return m_subject; }
    /// Sets the subject; the URL keeps it to one line.
    void setSubject(const QString &subject);
    /// The plain-text body.
    QString messageBody() const { return m_body; }
    /// Sets the plain-text body.
    void setMessageBody(const QString &body);

    /// The mailto: URL of this mail.
    QUrl mailtoUrl() const;
    /// The mailto: URL of a mail to recipients with subject and body.
    static QUrl mailtoUrl(const QStringList &recipients, const QString &subject, const QString &body);

    /// Hands the mail over; Sent when the mail program took it, else Failed.
    /// finished() follows with the same result.
    Result present();

    /// Replaces the opener (QDesktopServices::openUrl); an empty one restores it.
    static void setOpener(Opener opener);

Q_SIGNALS:
    /// The mail was handed over, or handing it over failed.
    void finished(Brightmere::MailComposer::Result result);

private:
    QStringList m_recipients;
    QString m_subject;
    QString m_body;
};

} // namespace Brightmere
