#include "ui/qt/PlainText.h"

#include <QTextBoundaryFinder>

namespace kinsort {
namespace {

constexpr qsizetype kToolTipUnits = 80;  // after so many a line of a tool tip may be broken anywhere
constexpr QChar kMayBreak(0x200B);

}  // namespace

QLabel* PlainLabel(const QString& text) {
    auto* const label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    return label;
}

int WidthOfLetters(const QFontMetrics& metrics, int letters) {
    return letters * metrics.horizontalAdvance(QLatin1Char('x'));
}

QString PlainToolTip(QString text) {
    for (qsizetype at = (text.size() - 1) / kToolTipUnits * kToolTipUnits; at > 0; at -= kToolTipUnits) {
        if (!text[at].isLowSurrogate()) text.insert(at, kMayBreak);
    }
    return text.isEmpty() ? text : QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(text.toHtmlEscaped());
}

QString FitIntoLines(const QString& text, const QFontMetrics& metrics, int width, int lines) {
    const QString whole = metrics.elidedText(text, Qt::ElideMiddle, width * lines);
    QTextBoundaryFinder breaks(QTextBoundaryFinder::Line, whole);
    QString fitting;
    for (qsizetype from = 0, to = breaks.toNextBoundary(); to >= 0; from = to, to = breaks.toNextBoundary()) {
        fitting += metrics.elidedText(whole.mid(from, to - from), Qt::ElideMiddle, width);
    }
    return fitting;
}

ElidedLabel::ElidedLabel() {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ElidedLabel::SetFullText(const QString& text) {
    fullText_ = text;
    setAccessibleName(text);
    ShowFitting();
}

void ElidedLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    ShowFitting();
}

void ElidedLabel::ShowFitting() {
    setText(fontMetrics().elidedText(fullText_, Qt::ElideMiddle, width()));
    setToolTip(text() == fullText_ ? QString() : PlainToolTip(fullText_));
}

}  // namespace kinsort
