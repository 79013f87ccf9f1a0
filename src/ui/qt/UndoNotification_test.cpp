// The notification against a service of our own on a bus of our own.
#include "ui/qt/UndoNotification.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QProcess>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ui/qt/FakeNotifications_test.h"

namespace kinsort {
namespace {

constexpr int kLongMs = 60'000;
constexpr int kShortMs = 50;
const UndoNotification::Texts kTexts = {QStringLiteral("Sorted"), QStringLiteral("Moved <3> & more"),
                                        QStringLiteral("&Undo")};

// A message bus for this test alone.
class Bus {
  public:
    Bus() {
        daemon_.start(QStringLiteral("dbus-daemon"),
                      {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address")});
        while (!daemon_.canReadLine() && daemon_.waitForReadyRead()) {
        }
        address_ = QString::fromLatin1(daemon_.readLine().trimmed());
    }
    ~Bus() {
        daemon_.terminate();
        daemon_.waitForFinished();
    }
    QDBusConnection Connect(const QString& name) const {
        return QDBusConnection::connectToBus(address_, name + QString::number(daemon_.processId()));
    }

  private:
    QProcess daemon_;
    QString address_;
};

class UndoNotificationTest : public testing::Test {
  protected:
    UndoNotificationTest() {
        EXPECT_TRUE(desktop.registerObject(QStringLiteral("/org/freedesktop/Notifications"), &service,
                                           QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
    }
    ~UndoNotificationTest() override {
        QDBusConnection::disconnectFromBus(desktop.name());
        QDBusConnection::disconnectFromBus(program.name());
    }
    void StartService() { ASSERT_TRUE(desktop.registerService(QStringLiteral("org.freedesktop.Notifications"))); }
    // Everything that was sent to the desktop has arrived there.
    void Settle() {
        desktop.interface()->isServiceRegistered(QStringLiteral("org.freedesktop.Notifications"));
        QCoreApplication::processEvents();
    }

    const Bus bus;
    QDBusConnection desktop = bus.Connect(QStringLiteral("desktop"));
    QDBusConnection program = bus.Connect(QStringLiteral("program"));
    FakeNotifications service;
    UndoNotification notification{program};
};

TEST_F(UndoNotificationTest, TheButtonUndoes) {
    StartService();
    service.whenShown = [this](uint id) {
        emit service.ActionInvoked(id + 1, QStringLiteral("undo"));  // somebody else's
        emit service.ActionInvoked(id, QStringLiteral("undo"));
    };
    EXPECT_EQ(notification.Offer(kTexts, kLongMs), true);
    EXPECT_EQ(service.body, kTexts.text);
    EXPECT_EQ(service.actions, (QStringList{QStringLiteral("undo"), QStringLiteral("Undo")}));
}

TEST_F(UndoNotificationTest, GoneWithoutTheButtonUndoesNothing) {
    StartService();
    service.capabilities.append(QStringLiteral("body-markup"));
    service.whenShown = [this](uint id) {
        emit service.NotificationClosed(id + 1, 2);
        emit service.ActionInvoked(id, QStringLiteral("default"));
        emit service.NotificationClosed(id, 2);
    };
    EXPECT_EQ(notification.Offer(kTexts, kLongMs), false);
    EXPECT_EQ(service.body, QStringLiteral("Moved &lt;3&gt; &amp; more"));
}

TEST_F(UndoNotificationTest, WhenTheTimeIsOverOrTheProgramEndsItIsTakenAway) {
    StartService();
    EXPECT_EQ(notification.Offer(kTexts, kShortMs), false);
    while (service.closed == 0)
        Settle();
    UndoNotification second{program};
    service.whenShown = [&](uint) { second.Withdraw(); };
    EXPECT_EQ(second.Offer(kTexts, kLongMs), false);
    while (service.closed == 1)
        Settle();
    EXPECT_EQ(service.shown, 2);
}

TEST_F(UndoNotificationTest, WithoutServiceOrButtonsNothingIsShown) {
    EXPECT_EQ(notification.Offer(kTexts, kLongMs), std::nullopt) << "nobody there";
    service.capabilities = {QStringLiteral("body")};
    StartService();
    EXPECT_EQ(notification.Offer(kTexts, kLongMs), std::nullopt) << "no buttons";
    EXPECT_EQ(service.shown, 0);
    UndoNotification unconnected{QDBusConnection(QStringLiteral("none"))};
    EXPECT_EQ(unconnected.Offer(kTexts, kLongMs), std::nullopt);

    for (const char* name : {"DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"})
        qunsetenv(name);
    EXPECT_FALSE(UndoNotification::HasSessionBus());
    qputenv("XDG_RUNTIME_DIR", "/nowhere");
    EXPECT_FALSE(UndoNotification::HasSessionBus());
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/x");
    EXPECT_TRUE(UndoNotification::HasSessionBus());
}

}  // namespace
}  // namespace kinsort
