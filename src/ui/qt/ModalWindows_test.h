// The user in front of windows that a call waits for: answers them in their order, as soon as each stands there.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>

#include <gtest/gtest.h>

namespace kinsort {

class ModalWindows final : public QObject {
  public:
    using Answer = std::function<void(QDialog& window)>;

    ModalWindows() { qApp->installEventFilter(this); }
    ~ModalWindows() override { EXPECT_TRUE(answers_.empty()) << answers_.size() << " windows never came up"; }

    void Expect(Answer answer) { answers_.push_back(std::move(answer)); }
    void ExpectAndPress(const QString& label) {
        Expect([label](QDialog& window) { Press(window, label); });
    }

    // Presses the button with that text, "&" left out.
    static void Press(QWidget& window, const QString& label) {
        for (QAbstractButton* button : window.findChildren<QAbstractButton*>()) {
            if (button->text().remove(QLatin1Char('&')) != label) continue;
            QTest::mouseClick(button, Qt::LeftButton);
            return;
        }
        ADD_FAILURE() << "no button " << label.toStdString();
        window.close();
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* const window = qobject_cast<QDialog*>(watched);
        if (window == nullptr || event->type() != QEvent::Show || !window->isModal()) return false;
        QTimer::singleShot(0, window, [this, window] {
            if (answers_.empty()) {
                ADD_FAILURE() << "an unexpected window: " << window->windowTitle().toStdString();
                window->close();
                return;
            }
            const Answer answer = std::move(answers_.front());
            answers_.pop_front();
            answer(*window);
        });
        return false;
    }

  private:
    std::deque<Answer> answers_;
};

}  // namespace kinsort
