#pragma once

#include <Brightmere/popups/FZOptionsPopup.h>

#include <QCoreApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>

// The kit's option popups as a person meets them: the one up in a window,
// its title, and a click on one of its options by number. Header only: for
// tests that link the UI kit.
namespace PopupInput {

// The shown popup of exactly that class (not a subclass), once posted events ran.
template<typename T = FZOptionsPopup>
T *shown(const QWidget *window)
{
    QCoreApplication::processEvents();
    for (T *popup : window->findChildren<T *>()) {
        if (popup->isVisible() && popup->metaObject() == &T::staticMetaObject)
            return popup;
    }
    return nullptr;
}

inline QString title(const FZOptionsPopup *popup)
{
    const auto *label = popup ? popup->popupContainerView()->findChild<QLabel *>("popupTitle") : nullptr;
    return label ? label->text() : QString();
}

// Clicks the option with that number; false if there is no such popup or option.
inline bool choose(const FZOptionsPopup *popup, int option)
{
    for (QPushButton *button : popup ? popup->optionButtons() : QList<QPushButton *>()) {
        if (FZOptionsPopup::tagOf(button) == option) {
            QTest::mouseClick(button, Qt::LeftButton);
            QCoreApplication::processEvents();
            return true;
        }
    }
    return false;
}

} // namespace PopupInput
