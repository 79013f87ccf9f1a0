#include "ui/qt/MultiLineButton.h"

#include <QRegularExpression>
#include <QStyleOptionButton>
#include <QTextLayout>
#include <algorithm>

namespace kinsort {
namespace {

constexpr int kProbe = 1000;
constexpr int kAir = 6;  // pixels beside the text that a style may paint its focus mark in

int PaddingOf(const QPushButton& button) {
    QStyleOptionButton option;
    option.initFrom(&button);
    option.rect = QRect(0, 0, kProbe, kProbe);
    return kProbe - button.style()->subElementRect(QStyle::SE_PushButtonContents, &option, &button).width() + 2 * kAir;
}

int TextWidth(const QFontMetrics& metrics, const QString& text) {
    return metrics.size(Qt::TextShowMnemonic, text).width();
}

}  // namespace

int NeededButtonWidth(const QPushButton& button, const QString& text) {
    return TextWidth(button.fontMetrics(), text) + PaddingOf(button);
}

void MultiLineButton::SetFullText(const QString& text) {
    fullText_ = text;
    QString name = text;
    name.replace(QLatin1Char('\n'), QLatin1Char(' ')).remove(QLatin1Char('&'));
    setAccessibleName(name);
    setText(TextFor(width()));
    updateGeometry();
}

int MultiLineButton::SmallestWidth() const {
    int widest = 0;
    for (const QString& word : fullText_.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts)) {
        QTextLayout layout(word, font());
        layout.beginLayout();
        layout.createLine().setLineWidth(1);
        layout.endLayout();
        widest = std::max(widest, static_cast<int>(layout.minimumWidth()) + 1);
    }
    return widest + PaddingOf(*this);
}

QString MultiLineButton::TextFor(int width) const {
    QStringList lines;
    const int room = std::max(width - PaddingOf(*this), 1);
    for (const QString& paragraph : fullText_.split(QLatin1Char('\n'))) {
        QTextLayout layout(paragraph, font());
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(room);
            lines.append(paragraph.mid(line.textStart(), line.textLength()).trimmed());
        }
        layout.endLayout();
    }
    return lines.join(QLatin1Char('\n'));
}

int MultiLineButton::HeightFor(int width) const {
    const QFontMetrics metrics = fontMetrics();
    const int textHeight = metrics.size(Qt::TextShowMnemonic, TextFor(width)).height();
    QStyleOptionButton option;
    option.initFrom(this);
    option.text = fullText_;
    const QSize contents(width - PaddingOf(*this), textHeight);
    return style()->sizeFromContents(QStyle::CT_PushButton, &option, contents, this).height();
}

void MultiLineButton::resizeEvent(QResizeEvent* event) {
    QPushButton::resizeEvent(event);
    const QString shown = TextFor(width());
    if (shown != text()) setText(shown);
}

}  // namespace kinsort
