#pragma once

#include "tests/support/keyring/bus_client.h"

#include <QMutex>
#include <QString>
#include <QStringList>

namespace quillmar::test
{

/// A Secret Service that does what a test wants instead of its work. It speaks without encryption and answers
/// from a thread of the bus library, so that it works while the test itself waits.
class StubKeyring
{
public:
    /// How it deals with the calls that it gets.
    struct Behaviour {
        QString silentAt{}; ///< method that gets no answer; "*" is every one
        bool promptsToCreate = false;
        QString collection = QStringLiteral("/org/freedesktop/secrets/collection/login");
        bool isLocked = false;
        bool hasLockedItem = false; ///< in another collection
    };

    StubKeyring(const QString &busAddress, const Behaviour &behaviour);
    ~StubKeyring();
    Q_DISABLE_COPY_MOVE(StubKeyring)

    /// It has the name of the Secret Service.
    bool isReady() const { return isReady_; }

    /// Methods that were called, in order.
    QStringList calls() const;

private:
    static GDBusMessage *filter(GDBusConnection *connection, GDBusMessage *message, gboolean isIncoming,
                                gpointer self);
    void answer(GDBusConnection *connection, GDBusMessage *message);
    GVariant *replyTo(const QString &method) const;

    Behaviour behaviour_;
    BusConnection connection_;
    guint filter_ = 0;
    bool isReady_ = false;
    mutable QMutex mutex_;
    QStringList calls_;
};

} // namespace quillmar::test
