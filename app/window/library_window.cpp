#include "app/window/library_window.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QCloseEvent>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "app/window/child.h"
#include "app/window/error_list.h"
#include "app/window/path_field.h"
#include "app/window/phase_board.h"
#include "app/window/shown_text.h"

namespace quillon {
namespace {

/// How wide the window opens, in average characters.
constexpr int UsualWidth = 108;

constexpr const char* AbortCaption = "&Abort";
constexpr const char* AbortingCaption = "Aborting";
constexpr const char* AbortingRemark = "Aborting; the run stops after the current step.";

QLabel* MakeLabel(QWidget* parent, const QString& name) {
    auto* const label = MakeChild<QLabel>(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    return label;
}

/// Shows a text in a field unless it is there already.
void ShowText(PathField& field, std::string& shown, const std::string& text) {
    if (text == shown) return;
    shown = text;
    field.setText(Shown(text));
    // The beginning of a text is what a person who goes into the field wants to see.
    field.setCursorPosition(0);
}

}  // namespace

LibraryWindow::LibraryWindow()
    : aLblReconcile_(MakeLabel(this, "aLblReconcile")),
      board_(MakeChild<PhaseBoard>(this)),
      aItem_(MakeChild<PathField>(this)),
      aError_(MakeChild<PathField>(this)),
      progress_(MakeChild<QProgressBar>(this)),
      errorsButton_(MakeChild<QToolButton>(this)),
      elapsed_(MakeLabel(this, "elapsed")),
      errors_(MakeChild<ErrorList>(this)),
      remark_(MakeLabel(this, "remark")),
      lblver_(MakeLabel(this, "lblver")),
      aAbort_(MakeChild<QPushButton>(AbortCaption, this)) {
    setWindowTitle(Shown(FormCaption));
    // The window itself has the focus at first: a key that was meant for another program, whose
    // place this one has taken on the screen, must not press Abort.
    setFocusPolicy(Qt::ClickFocus);
    setFocus();

    aLblReconcile_->setText(Shown(ReconcileCaption));
    QFont heading = aLblReconcile_->font();
    heading.setBold(true);
    aLblReconcile_->setFont(heading);
    aLblReconcile_->hide();
    progress_->setObjectName("progress");
    progress_->setAccessibleName("Progress of the phase");
    progress_->setFormat("%p %");

    auto* const rows = MakeChild<QVBoxLayout>(this);
    rows->addWidget(aLblReconcile_);
    rows->addWidget(board_);
    rows->addSpacing(rows->spacing());
    rows->addStretch();
    rows->addLayout(MakeFields());
    rows->addWidget(progress_);
    rows->addLayout(MakeErrorsLine());
    rows->addWidget(errors_, 1);
    rows->addLayout(MakeLastLine());
    errors_->hide();
    ShowProgress({});
}

QLayout* LibraryWindow::MakeFields() {
    auto* const grid = MakeChild<QGridLayout>();
    const auto addRow = [&](PathField& field, const QString& name, const QString& caption) {
        const int row = grid->rowCount();
        auto* const label = MakeChild<QLabel>(caption, this);
        label->setBuddy(&field);
        field.setObjectName(name);
        grid->addWidget(label, row, 0);
        grid->addWidget(&field, row, 1);
    };
    addRow(*aItem_, "aItem", "&Current");
    addRow(*aError_, "aError", "&Errors");
    return grid;
}

QLayout* LibraryWindow::MakeErrorsLine() {
    errorsButton_->setObjectName("errorsButton");
    errorsButton_->setCheckable(true);
    errorsButton_->setAutoRaise(true);
    errorsButton_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    errorsButton_->setArrowType(Qt::RightArrow);
    errorsButton_->setText("No errors");
    errorsButton_->setEnabled(false);
    connect(errorsButton_, &QToolButton::toggled, this, [this](bool open) { OpenErrors(open); });
    auto* const line = MakeChild<QHBoxLayout>();
    line->addWidget(errorsButton_);
    line->addStretch();
    line->addWidget(elapsed_);
    return line;
}

QLayout* LibraryWindow::MakeLastLine() {
    aAbort_->setObjectName("aAbort");
    // Wide enough for both of its captions.
    const int width = aAbort_->sizeHint().width();
    aAbort_->setText(AbortingCaption);
    aAbort_->setMinimumWidth(std::max(width, aAbort_->sizeHint().width()));
    aAbort_->setText(AbortCaption);
    connect(aAbort_, &QPushButton::clicked, this, [this] { PressAbort(); });
    auto* const line = MakeChild<QHBoxLayout>();
    line->addWidget(lblver_);
    line->addStretch();
    line->addWidget(remark_);
    line->addWidget(aAbort_);
    return line;
}

QSize LibraryWindow::sizeHint() const {
    return QWidget::sizeHint().expandedTo({UsualWidth * fontMetrics().averageCharWidth(), 0});
}

void LibraryWindow::Update(const FormState& state, std::chrono::seconds elapsed) {
    // What becomes visible does so at once, not control by control.
    layout()->setEnabled(false);
    const bool otherHeading = aLblReconcile_->isHidden() == state.aLblReconcile;
    aLblReconcile_->setVisible(state.aLblReconcile);
    const bool otherIndicators = board_->Update(state.aPhase);
    layout()->setEnabled(true);
    if (otherHeading || otherIndicators || !testAttribute(Qt::WA_Resized)) Grow();
    ShowText(*aItem_, shownItem_, state.aItem);
    ShowText(*aError_, shownError_, state.aError);
    lblver_->setText(Shown(state.lblver));
    elapsed_->setText("Elapsed " + Shown(ElapsedText(elapsed)));
    ShowProgress(state.progress);
    ShowErrorCount();
    errors_->Refresh();
    if (state.aborting) ShowAborting();
}

void LibraryWindow::ShowProgress(const PhaseProgress& progress) {
    constexpr int Fine = 1000;
    const double part = progress.Part();
    // A bar from 0 to 0 is one that only says that work is going on.
    const bool isKnown = progress.IsKnown() || part > 0;
    progress_->setTextVisible(isKnown);
    progress_->setRange(0, isKnown ? Fine : 0);
    progress_->setValue(static_cast<int>(part * Fine));
}

void LibraryWindow::AddError(std::string_view source, std::string_view message) {
    errors_->Add(source, message);
}

void LibraryWindow::ShowErrorCount() {
    const std::size_t count = errors_->Count();
    if (count == shownErrors_) return;
    shownErrors_ = count;
    errorsButton_->setEnabled(true);
    errorsButton_->setText(QString::number(count) + (count == 1 ? " error" : " errors"));
}

void LibraryWindow::OpenErrors(bool open) {
    errorsButton_->setArrowType(open ? Qt::DownArrow : Qt::RightArrow);
    if (open) sizeWithoutErrors_ = size();
    layout()->setEnabled(false);
    errors_->setVisible(open);
    errors_->Refresh();
    layout()->setEnabled(true);
    if (open) {
        Grow();
    } else {
        layout()->activate();
        resize(sizeWithoutErrors_.expandedTo(sizeHint()));
    }
}

/// Makes room for what has become visible, as far as the screen has any.
void LibraryWindow::Grow() {
    layout()->invalidate();
    const QSize before = testAttribute(Qt::WA_Resized) ? size() : QSize();
    resize(before.expandedTo(sizeHint()).boundedTo(screen()->availableSize()));
}

void LibraryWindow::PressAbort() {
    abortPressed_ = true;
    ShowAborting();
}

void LibraryWindow::ShowAborting() {
    if (showsAborting_) return;
    showsAborting_ = true;
    aAbort_->setText(AbortingCaption);
    // Otherwise it would pass the focus on to the next control.
    if (aAbort_->hasFocus()) setFocus();
    aAbort_->setEnabled(false);
    remark_->setText(AbortingRemark);
    QAccessibleEvent heard(remark_, QAccessible::Alert);
    QAccessible::updateAccessibility(&heard);
}

void LibraryWindow::closeEvent(QCloseEvent* event) {
    PressAbort();
    event->ignore();
}

void LibraryWindow::keyPressEvent(QKeyEvent* event) {
    // Escape leads to the button instead of pressing it: an abort cannot be taken back.
    if (event->key() == Qt::Key_Escape) {
        aAbort_->setFocus(Qt::ShortcutFocusReason);
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (auto* const button = qobject_cast<QAbstractButton*>(focusWidget())) button->click();
    } else {
        QWidget::keyPressEvent(event);
    }
}

}  // namespace quillon
