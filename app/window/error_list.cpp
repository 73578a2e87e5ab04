#include "app/window/error_list.h"

#include <QLabel>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include "app/window/child.h"
#include "app/window/shown_text.h"

namespace quillon {
namespace {

constexpr int LeastLines = 3, UsualLines = 7;

/// Text that can be selected, but not dragged away: a drag would hold the run for as long as it
/// lasts.
class Records : public QPlainTextEdit {
  public:
    explicit Records(QWidget* parent) : QPlainTextEdit(parent) {
        setMinimumHeight(LeastLines * fontMetrics().lineSpacing());
    }

    QSize sizeHint() const override {
        return {QPlainTextEdit::sizeHint().width(), UsualLines * fontMetrics().lineSpacing()};
    }

  protected:
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier)
            setTextCursor(cursorForPosition(event->pos()));
        QPlainTextEdit::mousePressEvent(event);
    }
};

}  // namespace

ErrorList::ErrorList(QWidget* parent)
    : QWidget(parent), olderOnes_(MakeChild<QLabel>(this)), text_(MakeChild<Records>(this)) {
    olderOnes_->setTextFormat(Qt::PlainText);
    olderOnes_->setText("Older errors are in the log.");
    olderOnes_->hide();
    text_->setObjectName("errorRecords");
    text_->setAccessibleName("Error records");
    text_->setReadOnly(true);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text_->setLineWrapMode(QPlainTextEdit::NoWrap);
    text_->setTabChangesFocus(true);
    text_->setMaximumBlockCount(static_cast<int>(MostKept));
    auto* const rows = MakeChild<QVBoxLayout>(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(olderOnes_);
    rows->addWidget(text_);
}

void ErrorList::Add(std::string_view source, std::string_view message) {
    ++count_;
    waiting_.push_back(Shown(source) + ": " + Shown(message));
    if (waiting_.size() > MostKept) waiting_.pop_front();
}

void ErrorList::Refresh() {
    if (isHidden()) return;
    for (const QString& record : waiting_)
        text_->appendPlainText(record);
    waiting_.clear();
    olderOnes_->setVisible(count_ > MostKept);
}

}  // namespace quillon
