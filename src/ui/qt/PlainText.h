// Texts that hold names of files: never taken for mark-up, and never wider than their window, however long a name is.
#pragma once

#include <QFontMetrics>
#include <QLabel>
#include <QString>

namespace kinsort {

QLabel* PlainLabel(const QString& text = {});

// The width of a line of so many Latin letters. Wide characters take twice the room, and a font that has many of them
// counts those for its average.
int WidthOfLetters(const QFontMetrics& metrics, int letters);

// What shows that text as a tool tip, in several lines if it is long.
QString PlainToolTip(QString text);

// The text, shortened in its middle where it does not fit into `lines` lines of `width` pixels: as a whole, and in each
// part of it that no line can be broken in.
QString FitIntoLines(const QString& text, const QFontMetrics& metrics, int width, int lines);

// One line, shortened in its middle to the width that it is given, which its text has no say in.
class ElidedLabel final : public QLabel {
  public:
    ElidedLabel();

    // All of it is also the tool tip when it is shortened, and what a screen reader says.
    void SetFullText(const QString& text);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void ShowFitting();

    QString fullText_;
};

}  // namespace kinsort
