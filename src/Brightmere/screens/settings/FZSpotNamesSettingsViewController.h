#pragma once

#include <Brightmere/SDKUIExport.h>

#include <Brightmere/platform/views/MailComposer.h>
#include <Brightmere/ui/BMSDKUIBaseViewController.h>

#include <QIcon>
#include <QMargins>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <optional>

class QPlainTextEdit;
class QToolButton;
class QVBoxLayout;

namespace Brightmere {
struct Notification;
}

/// The user's remembered spot names as one text, one name a line, to read,
/// edit and share by mail (where nothing takes mail, FZShareController says
/// so and offers the clipboard or a file).
///
/// Under the navigation bar, view mode shows Edit and Share, each with its
/// icon; Edit switches to edit mode, with Cancel and Save in their places and
/// the back button hidden. Cancel puts back the text as it was when Edit was
/// pressed. Save stores the lines as the names (empty ones dropped) only
/// when the text differs from the one the screen opened with, so an edit
/// that returns to the opening text stores nothing.
///
/// Return does not insert a bare line break: it drops the lines that are
/// blank or white space only, above and below the cursor, keeps every other
/// line as typed, and leaves the cursor at the start of a new empty line.
class BRIGHTMERE_SDKUI_EXPORT FZSpotNamesSettingsViewController : public BMSDKUIBaseViewController
{
    Q_OBJECT

public:
    /// Whether mail can be sent here; MailComposer::canSendMail unless set.
    using MailAvailability = std::function<bool()>;

    /// The text a Return leaves and where the cursor goes in it.
    struct ReturnResult
    {
        QString text; ///< the text after the Return
        int cursorPosition = 0; ///< where the cursor goes in it
    };

    /// The screen of the remembered spot names, one a line.
    explicit FZSpotNamesSettingsViewController(QWidget *parent = nullptr);
    ~FZSpotNamesSettingsViewController() override;

    BMGAScreenClass screenNameAndClassForEventTracker() const override;
    void refreshUITexts() override;

    /// The remembered names joined with "\n".
    static QString spotNamesAsString();
    /// The text view's text split at "\n", as it is (a trailing line break
    /// gives an empty last name).
    QStringList spotNamesAsArray() const;

    /// Whether the names are being edited.
    bool isEditing() const { return m_editing; }
    /// The text when editing began; std::nullopt when not editing.
    std::optional<QString> stringBeforeEdit() const { return m_stringBeforeEdit; }
    /// The names as stored when the screen loaded.
    QString originalString() const { return m_originalString; }

    /// Shows the names and the controls for the current state.
    void updateUI();
    /// Starts or ends editing.
    void toggleEditing();
    /// The left control: starts or ends editing.
    void leftButtonAction(QObject *sender);
    /// The right control: shares the names, or, while editing, stores the changed names and ends the edit.
    void rightButtonAction(QObject *sender);
    /// Shares the names by mail, or copies or saves them where there is no mail.
    void shareViaEmail();

    /// The keyboard comes: the text moves above it.
    void keyboardWillShow(const Brightmere::Notification &notification);
    /// The keyboard goes: the text gets its space back.
    void keyboardWillHide(const Brightmere::Notification &notification);

    /// False when the screen made the change itself (a Return); true to let
    /// the text view apply it.
    bool textViewShouldChangeTextInRange(QPlainTextEdit *textView, int location, int length,
                                         const QString &replacementText);
    /// The text after a Return typed at the position (clamped to the text).
    static ReturnResult textAfterReturn(const QString &text, int position);

    /// The mail composer ended.
    void mailComposeControllerDidFinishWithResult(Brightmere::MailComposer *controller,
                                                  Brightmere::MailComposer::Result result);

    /// Sets how the screen learns whether mail can be sent.
    void setMailAvailability(MailAvailability availability);

    /// The text of the names.
    QPlainTextEdit *spotNamesTextView() const { return m_spotNamesTextView; }
    /// The left control.
    QToolButton *leftButton() const { return m_leftButton; }
    /// The right control.
    QToolButton *rightButton() const { return m_rightButton; }
    /// Whether the left control shows the edit icon.
    bool isEditIconShown() const;
    /// Whether the right control shows the share icon.
    bool isShareIconShown() const;
    /// The text view's content and scroll-indicator inset.
    QMargins contentInset() const { return m_contentInset; }
    /// The composer being shown, until it finishes.
    Brightmere::MailComposer *presentedMailComposer() const { return m_mailComposer.data(); }

protected:
    void viewDidLoad() override;
    /// Handles keys and focus of the text view.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildView();
    void setTextViewBackground(const QColor &color);
    void setContentInset(const QMargins &inset);

    QVBoxLayout *m_textLayout = nullptr;
    QPlainTextEdit *m_spotNamesTextView = nullptr;
    QToolButton *m_leftButton = nullptr;
    QToolButton *m_rightButton = nullptr;
    QIcon m_editIcon;
    QIcon m_shareIcon;
    bool m_editing = false;
    std::optional<QString> m_stringBeforeEdit;
    QString m_originalString;
    QMargins m_contentInset;
    MailAvailability m_mailAvailability;
    QPointer<Brightmere::MailComposer> m_mailComposer;
};
