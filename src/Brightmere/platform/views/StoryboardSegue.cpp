#include "StoryboardSegue.h"

#include "NavigationController.h"
#include "ViewController.h"
#include <Brightmere/core/BMLogger.h>

namespace Brightmere {

namespace {
const QString kModule = QStringLiteral("StoryboardSegue");
}

StoryboardSegue::StoryboardSegue(const QString &identifier, ViewController *source, ViewController *destination)
    : m_identifier(identifier)
    , m_source(source)
    , m_destination(destination)
{
}

ViewController *StoryboardSegue::sourceViewController() const
{
    return m_source.data();
}

ViewController *StoryboardSegue::destinationViewController() const
{
    return m_destination.data();
}

void StoryboardSegue::perform()
{
    if (m_performed) {
        BMLogger::sharedInstance().logFromModule(kModule, 1, "segue '%@' was already performed", m_identifier);
        return;
    }
    m_performed = true;
    if (!m_destination) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "segue '%@' has no destination", m_identifier);
        return;
    }
    NavigationController *navigation = m_source ? m_source->navigationController() : nullptr;
    if (!navigation) {
        BMLogger::sharedInstance().logFromModule(kModule, 3,
                                                 "segue '%@': the source is in no navigation controller",
                                                 m_identifier);
        // Nobody else will ever own the destination.
        if (!m_destination->parent())
            m_destination->deleteLater();
        return;
    }
    navigation->pushViewController(m_destination.data(), true);
}

} // namespace Brightmere
