#pragma once

#include <Brightmere/SDKExport.h>

#include <QObject>
#include <QString>
#include <QVariantMap>

#include <functional>

/// The base of every notification the kit posts: a name and a map of
/// properties, delivered through the foundation's notification centre.
///
/// Subscribers are identified by an address (the subscriber object itself,
/// cast to const void * the same way on subscribe and unsubscribe). A
/// registration may be restricted to one notification class: it then sees only
/// notifications of that class or a subclass, so two classes can share a name
/// without their subscribers hearing each other. Subclasses put typed
/// subscribe / unsubscribe / post class operations on top of
/// associateSelector() and removeSubscriber().
class BRIGHTMERE_SDK_EXPORT BMBaseNotification : public QObject
{
    Q_OBJECT

public:
    /// What a subscriber runs for each notification it hears.
    using Operation = std::function<void(BMBaseNotification *notification)>;

    /// A notification named name carrying properties; post() delivers it.
    BMBaseNotification(const QString &name, const QVariantMap &properties, QObject *parent = nullptr);
    ~BMBaseNotification() override;

    /// The notification's name ("kScreenChange").
    QString name() const { return m_name; }
    /// The notification's properties (its user info).
    QVariantMap properties() const { return m_properties; }

    /// Properties keyed by numbers keep the number's decimal text as key.
    static QString propertyKey(int key) { return QString::number(key); }

    /// Delivers the notification now, on this thread, to every registration
    /// for its name (and its class), with this object as sender and the
    /// properties as user info.
    void post();

    /// Calls operation with each notification named name (of class cls or a
    /// subclass; any class when cls is null). Registering the same subscriber,
    /// name and class again replaces the earlier operation, so a subscriber is
    /// never called twice for one post. A notification posted under that name
    /// straight through the centre (not by a notification object) reaches only
    /// registrations without a class, as a transient BMBaseNotification.
    static void associateSelector(Operation operation, const void *subscriber, const QString &name,
                                  const QMetaObject *cls);

    /// Removes the subscriber's registrations for name (every name when empty)
    /// and class cls (every class when null).
    static void removeSubscriber(const void *subscriber, const QString &name, const QMetaObject *cls);

    /// Registrations held, for diagnostics and tests.
    static int subscriptionCount(const void *subscriber);

private:
    QString m_name;
    QVariantMap m_properties;
};
