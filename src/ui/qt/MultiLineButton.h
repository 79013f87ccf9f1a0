// A push button whose text is broken into as many lines as it needs.
#pragma once

#include <QPushButton>

namespace kinsort {

class MultiLineButton final : public QPushButton {
  public:
    explicit MultiLineButton(QWidget* parent = nullptr) : QPushButton(parent) {}

    // "\n" forces a break, "&" marks the accelerator. text() is what is shown: the same with more breaks.
    void SetFullText(const QString& text);
    const QString& FullText() const { return fullText_; }

    // The narrowest that breaks no word.
    int SmallestWidth() const;
    // With the text broken for that width.
    int HeightFor(int width) const;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    QString TextFor(int width) const;

    QString fullText_;
};

// The width that a push button needs for one line of text, without the style's taste for wide buttons.
int NeededButtonWidth(const QPushButton& button, const QString& text);

}  // namespace kinsort
