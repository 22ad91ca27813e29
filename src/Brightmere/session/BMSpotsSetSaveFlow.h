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

    void showHistoricalResultsOptions();
    void showSaveCurrentSpotSetScreen();
    /// The title typed, trimmed: refused when blank, a question when taken.
    void saveCurrentSpotSet();
    void saveCurrentSpotSetWithName(const QString &name);
    void showTitleCannotBeNil();
    void showSpotsSetAlreadyExistsDialogWithName(const QString &name);
    void showSavedSpots();

    /// The title prompt and its field while it is open; null otherwise.
    FZTextViewOptionsPopup *saveCurrentSpotAlert() const;
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
