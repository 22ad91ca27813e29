#pragma once

#include <QPointer>
#include <QString>

namespace Brightmere {

class ViewController;

// One transition from a source controller to a new destination, handed to
// the source's prepareForSegue before the destination's lifecycle begins.
class StoryboardSegue
{
public:
    StoryboardSegue(const QString &identifier, ViewController *source, ViewController *destination);

    QString identifier() const { return m_identifier; }
    ViewController *sourceViewController() const;
    ViewController *destinationViewController() const;

    // Pushes the destination on the source's navigation controller. Without
    // one (or once performed) it logs and the destination is released.
    void perform();

private:
    QString m_identifier;
    QPointer<ViewController> m_source;
    QPointer<ViewController> m_destination;
    bool m_performed = false;
};

} // namespace Brightmere
