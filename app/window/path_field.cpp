#include "app/window/path_field.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>

namespace quillon {
namespace {

/// A line edit's own distance between its frame and its text.
constexpr int TextMargin = 2;

}  // namespace

PathField::PathField(QWidget* parent) : QLineEdit(parent) {
    setReadOnly(true);
    // A drag would hold the run for as long as it lasts.
    setDragEnabled(false);
}

QRect PathField::TextPlace() const {
    QStyleOptionFrame option;
    initStyleOption(&option);
    return style()
        ->subElementRect(QStyle::SE_LineEditContents, &option, this)
        .adjusted(TextMargin, 0, -TextMargin, 0);
}

QString PathField::ShortenedText() const {
    return fontMetrics().elidedText(text(), Qt::ElideMiddle, TextPlace().width());
}

bool PathField::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        // Escaped, because a tool tip takes what looks like markup for markup.
        const bool shortened = ShortenedText() != text();
        setToolTip(shortened ? "<qt>" + text().toHtmlEscaped() + "</qt>" : QString());
    }
    return QLineEdit::event(event);
}

void PathField::paintEvent(QPaintEvent* event) {
    const QString shortened = ShortenedText();
    if (hasFocus() || shortened == text()) {
        QLineEdit::paintEvent(event);
        return;
    }
    QStyleOptionFrame option;
    initStyleOption(&option);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
    style()->drawItemText(&painter, TextPlace(), Qt::AlignVCenter | Qt::TextSingleLine, palette(),
                          isEnabled(), shortened, QPalette::Text);
}

}  // namespace quillon
