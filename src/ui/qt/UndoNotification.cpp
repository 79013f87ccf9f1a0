#include "ui/qt/UndoNotification.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QFile>
#include <QGuiApplication>
#include <QTimer>
#include <QVariantMap>

namespace kinsort {
namespace {

constexpr QLatin1String kService("org.freedesktop.Notifications");
constexpr QLatin1String kPath("/org/freedesktop/Notifications");
constexpr QLatin1String kUndoAction("undo");
constexpr int kAnswerMs = 2000;  // a service that takes longer to answer is none

QDBusMessage Call(const QString& method, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(kService, kPath, kService, method);
    message.setArguments(arguments);
    return message;
}

// Waits without holding up the program.
QDBusMessage Answer(const QDBusConnection& bus, const QDBusMessage& call) {
    QDBusPendingCallWatcher watcher(bus.asyncCall(call, kAnswerMs));
    QEventLoop loop;
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    if (!watcher.isFinished()) loop.exec();
    return watcher.reply();
}

}  // namespace

bool UndoNotification::HasSessionBus() {
    if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) return true;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtime.isEmpty() && QFile::exists(runtime + QStringLiteral("/bus"));
}

QStringList UndoNotification::Capabilities() {
    const QDBusReply<QStringList> reply = Answer(bus_, Call(QStringLiteral("GetCapabilities"), {}));
    return reply.isValid() ? reply.value() : QStringList();
}

bool UndoNotification::Show(const Texts& texts, bool hasMarkup, int limitMs) {
    QString label = texts.undo;
    const QVariantMap hints = {
        {QStringLiteral("desktop-entry"), QGuiApplication::desktopFileName()},
        {QStringLiteral("category"), QStringLiteral("transfer.complete")},
        {QStringLiteral("transient"), true},  // its button works only while this program waits for it
    };
    const QDBusReply<uint> reply =
        Answer(bus_, Call(QStringLiteral("Notify"),
                          {QGuiApplication::applicationDisplayName(), 0U, QGuiApplication::desktopFileName(),
                           texts.title, hasMarkup ? texts.text.toHtmlEscaped() : texts.text,
                           QStringList{kUndoAction, label.remove(QLatin1Char('&'))}, hints, limitMs}));
    if (!reply.isValid()) return false;
    id_ = reply.value();
    return true;
}

std::optional<bool> UndoNotification::Offer(const Texts& texts, int limitMs) {
    if (!bus_.isConnected()) return std::nullopt;
    const QStringList capabilities = Capabilities();
    if (!capabilities.contains(QStringLiteral("actions"))) return std::nullopt;
    bus_.connect(kService, kPath, kService, QStringLiteral("ActionInvoked"), this, SLOT(OnAction(uint, QString)));
    bus_.connect(kService, kPath, kService, QStringLiteral("NotificationClosed"), this, SLOT(OnClosed(uint, uint)));
    if (!Show(texts, capabilities.contains(QStringLiteral("body-markup")), limitMs)) return std::nullopt;
    if (!isWithdrawn_ && !chosen_.contains(id_) && !gone_.contains(id_)) {
        QTimer::singleShot(limitMs, &loop_, &QEventLoop::quit);
        loop_.exec();
    }
    if (!gone_.contains(id_)) bus_.send(Call(QStringLiteral("CloseNotification"), {id_}));
    return chosen_.contains(id_);
}

void UndoNotification::Withdraw() {
    isWithdrawn_ = true;
    loop_.quit();
}

// What happens to a notification can be heard of before the number that it was given.
void UndoNotification::OnAction(uint id, const QString& action) {
    if (action != kUndoAction) return;
    chosen_.insert(id);
    if (id == id_) loop_.quit();
}

void UndoNotification::OnClosed(uint id, uint) {
    gone_.insert(id);
    if (id == id_) loop_.quit();
}

}  // namespace kinsort
