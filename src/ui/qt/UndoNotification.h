// The desktop's notification with a button that takes a batch back (Desktop Notifications Specification 1.2).
#pragma once

#include <QDBusConnection>
#include <QEventLoop>
#include <QObject>
#include <QSet>
#include <QString>
#include <optional>

namespace kinsort {

// Good for one showing.
class UndoNotification final : public QObject {
    Q_OBJECT

  public:
    struct Texts {
        QString title;
        QString text;
        QString undo;  // label of the button, "&" marks an accelerator, which notifications do not have
    };

    explicit UndoNotification(const QDBusConnection& bus) : bus_(bus) {}

    // Whether the user's session has a message bus. Answers at once and starts none.
    static bool HasSessionBus();

    // Shows it and handles events until it is gone or `limitMs` have passed, which takes it away. True when the button
    // was pressed. Nothing at once where nobody shows notifications, or none with buttons.
    std::optional<bool> Offer(const Texts& texts, int limitMs);
    // Takes it away at once.
    void Withdraw();

  private slots:
    void OnAction(uint id, const QString& action);
    void OnClosed(uint id, uint reason);

  private:
    QStringList Capabilities();
    bool Show(const Texts& texts, bool hasMarkup, int limitMs);

    QDBusConnection bus_;
    QEventLoop loop_;
    bool isWithdrawn_ = false;
    uint id_ = 0;
    QSet<uint> chosen_;  // the button was pressed: of any program's notifications
    QSet<uint> gone_;    // closed
};

}  // namespace kinsort
