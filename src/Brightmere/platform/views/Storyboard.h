#pragma once

#include <Brightmere/SDKUIExport.h>

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace Brightmere {

class ViewController;

/// The registry of segues: an identifier and the factory that creates its
/// destination. Screens name identifiers only; the one place that knows every
/// screen registers them, so screens never include each other.
class BRIGHTMERE_SDKUI_EXPORT Storyboard : public QObject
{
    Q_OBJECT

public:
    /// Creates a new destination screen.
    using Factory = std::function<ViewController *()>;

    /// An empty registry; hosts use main().
    explicit Storyboard(QObject *parent = nullptr);

    /// The registry shared by the process.
    static Storyboard *main();

    /// Registering an identifier again replaces its factory.
    void registerSegue(const QString &identifier, Factory factory);
    /// Forgets an identifier.
    void unregisterSegue(const QString &identifier);
    /// Whether an identifier is registered.
    bool hasSegue(const QString &identifier) const;
    /// Every registered identifier.
    QStringList segueIdentifiers() const;

    /// A new destination for the identifier, or null (logged) when the
    /// identifier is unknown or its factory made nothing.
    ViewController *instantiateDestination(const QString &identifier) const;

private:
    QHash<QString, Factory> m_factories;
};

} // namespace Brightmere
