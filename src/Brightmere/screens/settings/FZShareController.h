#pragma once

#include <Brightmere/platform/views/Alert.h>

#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <functional>

// Shares a text by mail and never fails silently: where no program takes
// mail it says so, in an alert over the window, and offers to copy the text
// or to save it as a .txt file in a folder (then tells where it went). The
// spot names screen shares through it; a host may too.
//
// One share a controller; it stays until its alerts have closed.
class FZShareController : public QObject
{
    Q_OBJECT

public:
    enum class Outcome { Mailed, Offered, Copied, Saved, Cancelled, Failed };
    Q_ENUM(Outcome)

    // Whether mail can be sent here; MailComposer::canSendMail unless set.
    using MailAvailability = std::function<bool()>;
    // Opens a folder's URL; true when something took it.
    using FolderOpener = std::function<bool(const QUrl &)>;

    explicit FZShareController(QObject *parent = nullptr);

    void setSubject(const QString &subject) { m_subject = subject; }
    void setBody(const QString &body) { m_body = body; }
    // Where "Save to file" writes, and the file's name without ".txt" (made
    // safe as a file name; " (2)"... added when taken). Documents unless set.
    void setSaveFolder(const QString &folder) { m_folder = folder; }
    void setFileName(const QString &name) { m_fileName = name; }
    void setMailAvailability(MailAvailability availability) { m_mailAvailability = std::move(availability); }

    // Hands the text to the mail program (Mailed, or Failed when it did not
    // take it), or shows the alternatives over the window (Offered; the
    // choice comes with finished()).
    Outcome share(QWidget *window);
    // What share() shows where there is no mail: copy, save to file, cancel.
    void offerAlternatives(QWidget *window);
    // The alert shown now by this controller; null when none is.
    Brightmere::Alert *alert() const { return m_alert.data(); }
    QString savedPath() const { return m_savedPath; }

    // "Saved": the file's name and its folder, with "Open folder" where the
    // desktop opens folders. The caller shows it (Alert::showOver).
    static Brightmere::Alert *fileSavedAlert(const QString &path);
    // Whether this desktop has a program that opens folders.
    static bool canOpenFolders();
    // Replaces how folders are checked and opened (tests); empty ones restore them.
    static void setFolderOpener(FolderOpener opener, std::function<bool()> canOpen = {});

Q_SIGNALS:
    // Once, when the share is over: what happened, and the file for Saved.
    void finished(FZShareController::Outcome outcome, const QString &path);

private:
    void copy(QWidget *window);
    void save(QWidget *window);
    void show(Brightmere::Alert *alert, QWidget *window);
    void done(Outcome outcome);

    QString m_subject;
    QString m_body;
    QString m_folder;
    QString m_fileName;
    QString m_savedPath;
    MailAvailability m_mailAvailability;
    QPointer<Brightmere::Alert> m_alert;
};
