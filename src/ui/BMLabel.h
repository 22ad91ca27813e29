#pragma once

#include <QLabel>

// A label in the kit's face: whatever weight and size it is given at
// creation keep, only the family changes (Brightmere::View::setupFont). A
// font set later is the caller's; call baseInit() again to map it.
class BMLabel : public QLabel
{
    Q_OBJECT

public:
    explicit BMLabel(QWidget *parent = nullptr);
    explicit BMLabel(const QString &text, QWidget *parent = nullptr);

    void baseInit();
};
