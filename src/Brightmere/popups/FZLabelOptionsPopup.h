#pragma once

#include "FZOptionsPopup.h"

#include <QLabel>

// A message with buttons: under the title a grey note of up to two lines
// (entry 1); the buttons are numbered from 2.
class FZLabelOptionsPopup : public FZOptionsPopup
{
    Q_OBJECT

public:
    explicit FZLabelOptionsPopup(QWidget *parent = nullptr);
    ~FZLabelOptionsPopup() override;

    static FZLabelOptionsPopup *popupWithOptions(const QStringList &options, int orientation = Vertical);

    QWidget *viewOnTopOfOptions() const { return m_viewOnTopOfOptions.data(); }

protected:
    QWidget *viewOnTopOfOptions(QWidget *parentView) const override;
    int firstOptionViewIndex() const override { return 2; }
    QWidget *addViewWithOption(const QString &option, int index, int count, QWidget *parentView,
                               QWidget *previousView, QWidget *previousOptionView) override;

private:
    QPointer<QLabel> m_viewOnTopOfOptions;
};
