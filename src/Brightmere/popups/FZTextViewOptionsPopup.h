#pragma once

#include "FZOptionsPopup.h"

class QLabel;
class QLineEdit;

namespace Brightmere {
struct Notification;
}

// Not read by the keyboard tracking; kept for hosts that refer to it.
inline constexpr double kKeyboardOffsetExtraSuggestions = 0.0;

// A popup that asks for a name: under the title a two-line note (entry 1)
// and a text field; the buttons are numbered from 2. While it is up, the
// card moves to the middle of what the keyboard leaves visible; when the
// keyboard hides, the card stays where it is until the popup goes.
class FZTextViewOptionsPopup : public FZOptionsPopup
{
    Q_OBJECT

public:
    using TextFieldConfigurationHandler = std::function<void(QLineEdit *textField)>;

    static constexpr double kKeyboardAnimationSeconds = 0.2;

    explicit FZTextViewOptionsPopup(QWidget *parent = nullptr);
    ~FZTextViewOptionsPopup() override;

    static FZTextViewOptionsPopup *popupWithOptions(const QStringList &options, int orientation = Vertical);
    // As above, then the handler (if any) gets the text field once, to set
    // its placeholder, text or input hints before the popup is shown.
    static FZTextViewOptionsPopup *popupWithOptions(const QStringList &options,
                                                    const TextFieldConfigurationHandler &textViewConfigurationHandler,
                                                    int orientation = Vertical);

    QWidget *viewOnTopOfOptions() const { return m_viewOnTopOfOptions.data(); }
    QLineEdit *textField() const { return m_textField; }
    QLabel *noteLabel() const { return m_note; }

protected:
    QWidget *viewOnTopOfOptions(QWidget *parentView) const override;
    int firstOptionViewIndex() const override { return 2; }
    // Enter in the field chooses the first button ("Save" in the title prompt).
    int confirmingOptionIndex() const override { return 2; }
    QWidget *addViewWithOption(const QString &option, int index, int count, QWidget *parentView,
                               QWidget *previousView, QWidget *previousOptionView) override;

private:
    void keyboardDidShow(const Brightmere::Notification &notification);

    QPointer<QWidget> m_viewOnTopOfOptions;
    QLineEdit *m_textField = nullptr;
    QLabel *m_note = nullptr;
};
