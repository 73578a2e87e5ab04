#pragma once

#include <QWidget>
#include <chrono>
#include <string>
#include <string_view>

#include "platform/window.h"

class QHBoxLayout;
class QLabel;
class QProgressBar;
class QPushButton;
class QToolButton;

namespace quillon {

class ErrorList;
class PathField;
class PhaseBoard;

/// The form on a desktop. It shows what `FormState` says, how long the run has taken and how far
/// the phase is, and has two things to press: Abort, and the list of errors. Its size follows what
/// is visible, never a text.
class LibraryWindow : public QWidget {
  public:
    LibraryWindow();

    void Update(const FormState& state, std::chrono::seconds elapsed);
    void AddError(std::string_view source, std::string_view message);

    /// Whether the person has pressed Abort or closed the window. Stays true once it is.
    bool AbortPressed() const { return abortPressed_; }

    QSize sizeHint() const override;

  protected:
    /// Closing is another way to say Abort; the window stays until the run has stopped.
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QLayout* MakeFields();
    QLayout* MakeErrorsLine();
    QLayout* MakeLastLine();
    void PressAbort();
    void ShowAborting();
    void ShowProgress(const PhaseProgress& progress);
    void ShowErrorCount();
    void OpenErrors(bool open);
    void Grow();

    // All are children of this widget.
    QLabel* aLblReconcile_;
    PhaseBoard* board_;
    PathField* aItem_;
    PathField* aError_;
    QProgressBar* progress_;
    QToolButton* errorsButton_;
    QLabel* elapsed_;
    ErrorList* errors_;
    QLabel* remark_;
    QLabel* lblver_;
    QPushButton* aAbort_;

    std::string shownItem_, shownError_;
    std::size_t shownErrors_ = 0;
    QSize sizeWithoutErrors_;
    bool abortPressed_ = false;
    bool showsAborting_ = false;
};

}  // namespace quillon
