#include "FZShareController.h"

#include <Brightmere/core/BMLogger.h>
#include <Brightmere/i18n/BMI18NManager.h>
#include <Brightmere/platform/foundation/StringFormat.h>
#include <Brightmere/platform/views/Alert.h>
#include <Brightmere/platform/views/MailComposer.h>
#include <Brightmere/reports/FZReportFile.h>
#include <Brightmere/ui/BMSDKUIAlertView.h>

#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

using Brightmere::Alert;
using Brightmere::AlertAction;

namespace {

const QString kModule = QStringLiteral("FZShareController");
// A name the user typed stays readable but is never a path of its own.
constexpr qsizetype kMaxNameLength = 120;

QString text(const char *key)
{
    return BMI18NManager::stringForCode(QString::fromLatin1(key));
}

FZShareController::FolderOpener &folderOpener()
{
    static FZShareController::FolderOpener opener;
    return opener;
}

std::function<bool()> &folderCheck()
{
    static std::function<bool()> check;
    return check;
}

} // namespace

FZShareController::FZShareController(QObject *parent)
    : QObject(parent)
{
}

FZShareController::Outcome FZShareController::share(QWidget *window)
{
    const bool canSend = m_mailAvailability ? m_mailAvailability() : Brightmere::MailComposer::canSendMail();
    if (!canSend) {
        BMLogger::sharedInstance().logFromModule(kModule, 1, "no mail program: offering to copy or save the text");
        offerAlternatives(window);
        return Outcome::Offered;
    }
    Brightmere::MailComposer composer;
    composer.setSubject(m_subject);
    composer.setMessageBody(m_body);
    const Outcome outcome = composer.present() == Brightmere::MailComposer::Result::Sent ? Outcome::Mailed : Outcome::Failed;
    if (outcome == Outcome::Failed) {
        // The handler named by the desktop did not take it: the same way out as having none.
        offerAlternatives(window);
        return Outcome::Offered;
    }
    done(outcome);
    return outcome;
}

void FZShareController::offerAlternatives(QWidget *window)
{
    QPointer<QWidget> target(window);
    Alert *alert = BMSDKUIAlertView::alertControllerWithTitle(
        text("fairzones_share_no_mail_title"), text("fairzones_share_no_mail_message"),
        {AlertAction(text("fairzones_share_copy_text"), AlertAction::Style::Default, [this, target] { copy(target); }),
         AlertAction(text("fairzones_share_save_file"), AlertAction::Style::Default, [this, target] { save(target); }),
         AlertAction(text("cancel"), AlertAction::Style::Cancel, [this] { done(Outcome::Cancelled); })});
    show(alert, window);
}

void FZShareController::copy(QWidget *window)
{
    QGuiApplication::clipboard()->setText(m_body);
    show(BMSDKUIAlertView::alertControllerWithTitleOnOK(text("fairzones_share_copied"), QString(), {}), window);
    done(Outcome::Copied);
}

void FZShareController::save(QWidget *window)
{
    QString folder = m_folder;
    if (folder.isEmpty())
        folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    static const QRegularExpression unsafe(QStringLiteral("[/\\\\:*?\"<>|\\x00-\\x1f]"));
    QString name = m_fileName.left(kMaxNameLength).replace(unsafe, QStringLiteral("_")).trimmed();
    if (name.isEmpty() || name.startsWith(u'.'))
        name.prepend(QStringLiteral("shared"));
    const QDir dir(folder);
    QString path = dir.filePath(name + QStringLiteral(".txt"));
    for (int n = 2; QFileInfo::exists(path) && n < 100; ++n)
        path = dir.filePath(QStringLiteral("%1 (%2).txt").arg(name).arg(n));
    const bool made = dir.mkpath(QStringLiteral("."));
    const FZReportResult written = made ? FZReportFile::writeBytes(path, m_body.toUtf8(), kModule)
                                        : FZReportResult::failure(FZReportResult::Error::FileNotWritten,
                                                                  QStringLiteral("cannot create %1").arg(folder));
    if (!written.isOk()) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "text not saved: %@", written.message());
        show(BMSDKUIAlertView::alertControllerWithTitleOnOK(text("fairzones_file_not_saved_title"), written.message(), {}),
             window);
        done(Outcome::Failed);
        return;
    }
    m_savedPath = path;
    show(fileSavedAlert(path), window);
    done(Outcome::Saved);
}

void FZShareController::show(Alert *alert, QWidget *window)
{
    m_alert = alert;
    if (!window) {
        BMLogger::sharedInstance().logFromModule(kModule, 2, "no window to show the alert in");
        alert->deleteLater();
        return;
    }
    alert->showOver(window->window());
}

void FZShareController::done(Outcome outcome)
{
    Q_EMIT finished(outcome, outcome == Outcome::Saved ? m_savedPath : QString());
}

Alert *FZShareController::fileSavedAlert(const QString &path)
{
    const QFileInfo file(path);
    const QString folder = QDir::toNativeSeparators(file.absolutePath());
    QList<AlertAction> actions;
    if (canOpenFolders()) {
        const QUrl url = QUrl::fromLocalFile(file.absolutePath());
        actions << AlertAction(text("fairzones_open_folder"), AlertAction::Style::Default, [url] {
            const bool opened = folderOpener() ? folderOpener()(url) : QDesktopServices::openUrl(url);
            if (!opened)
                BMLogger::sharedInstance().logFromModule(kModule, 2, "the desktop did not open %@", url.toLocalFile());
        });
    }
    actions << AlertAction(text("ok"), AlertAction::Style::Default);
    return BMSDKUIAlertView::alertControllerWithTitle(
        text("fairzones_file_saved_title"),
        Brightmere::StringFormat::print(text("fairzones_file_saved_message"), file.fileName(), folder), actions);
}

bool FZShareController::canOpenFolders()
{
    if (folderCheck())
        return folderCheck()();
#if defined(Q_OS_LINUX) && !defined(Q_OS_ANDROID)
    // As for mail: the desktop's program for folders, if it names one.
    QProcess query;
    query.start(QStringLiteral("xdg-mime"), {QStringLiteral("query"), QStringLiteral("default"), QStringLiteral("inode/directory")});
    if (!query.waitForStarted(2000) || !query.waitForFinished(3000)) {
        query.kill();
        query.waitForFinished(1000);
        return false;
    }
    return query.exitStatus() == QProcess::NormalExit && query.exitCode() == 0
        && !query.readAllStandardOutput().trimmed().isEmpty();
#elif defined(Q_OS_ANDROID) || defined(Q_OS_IOS)
    return false;
#else
    return true;
#endif
}

void FZShareController::setFolderOpener(FolderOpener opener, std::function<bool()> canOpen)
{
    folderOpener() = std::move(opener);
    folderCheck() = std::move(canOpen);
}
