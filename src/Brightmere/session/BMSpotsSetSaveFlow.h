#pragma once

#include <QLineEdit>
#include <QObject>
#include <QPointer>
#include <QString>

class BMSDKUIBaseViewController;
class BMWifiTestSession;
class FZTextViewOptionsPopup;

/// Saving the run as a spots set, from the test screen's history control: a
/// menu (save, or the saved list; with no spots the saved list at once), a
/// prompt for the title (proposing the title of the set being edited), a
/// note when the title is blank, and a question before a set of that title
/// is replaced. Nothing here stops the test or changes the run; a failed
/// write keeps the run on screen and says so.
class BMSpotsSetSaveFlow : public QObject
{
    Q_OBJECT

public:
    /// The screen shows the alerts and opens the saved list.
    BMSpotsSetSaveFlow(BMWifiTestSession *session, BMSDKUIBaseViewController *screen, QObject *parent = nullptr);

    /// The saving menu: save, or the saved list; with no spots the saved list at once.
    void showHistoricalResultsOptions();
    /// The prompt for the title.
    void showSaveCurrentSpotSetScreen();
    /// The title typed, trimmed: refused when blank, a question when taken.
    void saveCurrentSpotSet();
    /// Saves the run under name (trimmed): refused when blank, a question when taken.
    void saveCurrentSpotSetWithName(const QString &name);
    /// The note that a title is needed.
    void showTitleCannotBeNil();
    /// The question before the set saved as name is replaced.
    void showSpotsSetAlreadyExistsDialogWithName(const QString &name);
    /// Opens the list of saved sets.
    void showSavedSpots();

    /// The title prompt and its field while it is open; null otherwise.
    FZTextViewOptionsPopup *saveCurrentSpotAlert() const;
    /// The title prompt's field while it is open; null otherwise.
    QLineEdit *spotNameTextField() const { return m_spotNameTextField.data(); }

    /// The list of saved sets, "showSavedSpotsSegue".
    static const char kShowSavedSpotsSegue[];

private:
    void log(int level, const QString &message) const;

    BMWifiTestSession *m_session = nullptr;
    QPointer<BMSDKUIBaseViewController> m_screen;
    QPointer<QLineEdit> m_spotNameTextField;
    QPointer<FZTextViewOptionsPopup> m_saveCurrentSpotAlert;
};
