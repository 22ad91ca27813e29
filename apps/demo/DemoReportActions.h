#pragma once

#include <Brightmere/popups/FZOptionsPopup.h>
#include <Brightmere/screens/settings/FZShareController.h>

#include <QObject>
#include <QPointer>
#include <QString>

class DemoEventLog;
class FZCompareSpotsSetsViewController;
class FZSavedSpotsViewController;
class FZSpotsSetViewController;

namespace Brightmere {
class BarButtonItem;
class Storyboard;
class ViewController;
} // namespace Brightmere

// Reports where the data is: the spots set screen and the compare screen
// get a share button in their bar that offers a CSV, a PDF report or the
// text by mail, of the set or comparison on screen; the saved list's
// options offer a backup of every saved set and the restore of the newest
// backup. Files go into the host's folder (DemoReports). After each the
// person sees an alert with the file's name and folder ("Open folder"
// where the desktop opens folders), or why nothing was written; the event
// log gets the same line.
class DemoReportActions : public QObject
{
    Q_OBJECT

public:
    // The share button's popup, after its title.
    enum Option { ExportCsv = 1, ExportPdf, Share, Cancel };
    // The saved list's own options come first: its title, then "compare sets".
    static constexpr int kFirstSavedListOption = 2;
    enum SavedListOption { BackUp = kFirstSavedListOption, Restore };

    explicit DemoReportActions(DemoEventLog *log, QObject *parent = nullptr);
    ~DemoReportActions() override;

    QString folder() const { return m_folder; }
    void setFolder(const QString &folder) { m_folder = folder; }
    // Whether mail can be sent; MailComposer::canSendMail unless set.
    void setMailAvailability(FZShareController::MailAvailability availability) { m_mailAvailability = availability; }

    // Every set, compare and saved-list screen the storyboard makes from now
    // on comes with these reports. The kit's own screens are made first, so
    // the host adds to them without knowing how they are built.
    void registerOn(Brightmere::Storyboard *storyboard);
    void attach(Brightmere::ViewController *screen);

    // The popup of a share button while it is shown; null otherwise.
    FZOptionsPopup *popup() const { return m_popup.data(); }
    // The last share, while it may still show an alert.
    FZShareController *share() const { return m_share.data(); }
    // What each option does for the screen; false (logged) when it could not.
    bool choose(Brightmere::ViewController *screen, int option);
    bool chooseForSavedList(FZSavedSpotsViewController *list, int option);

Q_SIGNALS:
    // A file was written (or a share ended); path is empty when none was.
    void done(bool ok, const QString &path);

private:
    void showPopup(Brightmere::ViewController *screen);
    bool report(Brightmere::ViewController *screen, bool ok, const QString &path, const QString &message);
    static QString shareText(Brightmere::ViewController *screen, QString &title);

    QPointer<DemoEventLog> m_log;
    QPointer<Brightmere::Storyboard> m_storyboard;
    // The kit's own factories, which the host's wrap.
    Brightmere::Storyboard *m_kitScreens = nullptr;
    QString m_folder;
    FZShareController::MailAvailability m_mailAvailability;
    QPointer<FZOptionsPopup> m_popup;
    QPointer<FZShareController> m_share;
};
