#pragma once

#include "FZOptionsPopup.h"

class QLabel;

namespace Brightmere {
class Switch;
}

// Confirms the deletion, replacement or copy of a spot: under the title a
// note (entry 1) beside an "always" switch; the buttons are numbered from 2.
// The caller reads isAlwaysSwitchOn() inside its chosen-option block, which
// runs while the popup still exists.
class FZConfirmSpotModificationPopup : public FZOptionsPopup
{
    Q_OBJECT

public:
    explicit FZConfirmSpotModificationPopup(QWidget *parent = nullptr);

    static FZConfirmSpotModificationPopup *popupWithOptions(const QStringList &options, int orientation = Vertical);
    // Entry 1 as rich text (HTML), shown on as many lines as it takes.
    static FZConfirmSpotModificationPopup *popupWithOptions(const QStringList &options, int orientation,
                                                            Qt::TextFormat noteFormat);

    // The switch's state now; off unless the user turned it on.
    bool isAlwaysSwitchOn() const;

    QWidget *viewOnTopOfOptions() const { return m_viewOnTopOfOptions.data(); }
    Brightmere::Switch *optionSwitch() const { return m_optionSwitch; }
    QLabel *noteLabel() const { return m_note; }

protected:
    QWidget *viewOnTopOfOptions(QWidget *parentView) const override;
    int firstOptionViewIndex() const override { return 2; }
    QWidget *addViewWithOption(const QString &option, int index, int count, QWidget *parentView,
                               QWidget *previousView, QWidget *previousOptionView) override;

private:
    QPointer<QWidget> m_viewOnTopOfOptions;
    Brightmere::Switch *m_optionSwitch = nullptr;
    QLabel *m_note = nullptr;
    Qt::TextFormat m_noteFormat = Qt::PlainText;
};
