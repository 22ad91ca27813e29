#include "Storyboard.h"

#include "ViewController.h"
#include <Brightmere/core/BMLogger.h>

#include <algorithm>

namespace Brightmere {

namespace {
const QString kModule = QStringLiteral("Storyboard");
}

Storyboard::Storyboard(QObject *parent)
    : QObject(parent)
{
}

Storyboard *Storyboard::main()
{
    static Storyboard board;
    return &board;
}

void Storyboard::registerSegue(const QString &identifier, Factory factory)
{
    if (identifier.isEmpty() || !factory) {
        BMLogger::sharedInstance().logFromModule(kModule, 3,
                                                 "segue '%@' not registered: it needs an identifier and a factory",
                                                 identifier);
        return;
    }
    if (m_factories.contains(identifier))
        BMLogger::sharedInstance().logFromModule(kModule, 1, "segue '%@' registered again; the new factory wins",
                                                 identifier);
    m_factories.insert(identifier, std::move(factory));
}

void Storyboard::unregisterSegue(const QString &identifier)
{
    m_factories.remove(identifier);
}

bool Storyboard::hasSegue(const QString &identifier) const
{
    return m_factories.contains(identifier);
}

QStringList Storyboard::segueIdentifiers() const
{
    QStringList identifiers = m_factories.keys();
    std::sort(identifiers.begin(), identifiers.end());
    return identifiers;
}

ViewController *Storyboard::instantiateDestination(const QString &identifier) const
{
    const auto it = m_factories.constFind(identifier);
    if (it == m_factories.constEnd()) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no segue with identifier '%@'", identifier);
        return nullptr;
    }
    ViewController *destination = (*it)();
    if (!destination)
        BMLogger::sharedInstance().logFromModule(kModule, 3, "the factory of segue '%@' made no screen",
                                                 identifier);
    return destination;
}

} // namespace Brightmere
