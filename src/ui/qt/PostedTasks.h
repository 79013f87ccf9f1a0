// Work that any thread hands over to the thread on which this object lives; the event loop there runs it, in order.
// The tasks are kept by us and not by the toolkit's event, so that the order between the threads is one that
// ThreadSanitizer can see.
#pragma once

#include <QObject>
#include <deque>
#include <functional>
#include <mutex>

namespace kinsort {

class PostedTasks final : public QObject {
  public:
    // What was not run when the object goes is never run.
    void Post(std::function<void()> task);

  protected:
    void customEvent(QEvent* event) override;

  private:
    std::mutex mutex_;
    std::deque<std::function<void()>> tasks_;
};

}  // namespace kinsort
