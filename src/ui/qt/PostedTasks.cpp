#include "ui/qt/PostedTasks.h"

#include <QCoreApplication>
#include <QEvent>
#include <utility>

namespace kinsort {

void PostedTasks::Post(std::function<void()> task) {
    {
        const std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(task));
    }
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));  // the loop owns it
}

// One event, one task: other events get their turn in between.
void PostedTasks::customEvent(QEvent*) {
    std::unique_lock lock(mutex_);
    if (tasks_.empty()) return;
    const std::function<void()> task = std::move(tasks_.front());
    tasks_.pop_front();
    lock.unlock();
    task();
}

}  // namespace kinsort
