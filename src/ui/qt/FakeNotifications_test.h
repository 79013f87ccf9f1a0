// The desktop's service of notifications, as a test wants it.
#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QVariantMap>
#include <functional>

namespace kinsort {

// What the desktop does. What it was told is kept; how it answers is set by the test.
class FakeNotifications final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

  public:
    QStringList capabilities = {QStringLiteral("actions"), QStringLiteral("body")};
    std::function<void(uint id)> whenShown = [](uint) {};
    QString body;
    QStringList actions;
    int shown = 0;
    int closed = 0;

  public slots:
    QStringList GetCapabilities() { return capabilities; }
    uint Notify(const QString&, uint, const QString&, const QString&, const QString& text, const QStringList& labels,
                const QVariantMap&, int) {
        body = text;
        actions = labels;
        const uint id = 40 + static_cast<uint>(++shown);
        QTimer::singleShot(0, this, [this, id] { whenShown(id); });
        return id;
    }
    void CloseNotification(uint) { ++closed; }

  signals:
    void ActionInvoked(uint id, const QString& action);
    void NotificationClosed(uint id, uint reason);
};

}  // namespace kinsort
