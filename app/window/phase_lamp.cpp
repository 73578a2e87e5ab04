#include "app/window/phase_lamp.h"

namespace quillon {

PhaseLamp::PhaseLamp(QWidget* parent) : QRadioButton(parent) {
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void PhaseLamp::SetSelected(bool selected) {
    selected_ = selected;
    setChecked(selected);
}

void PhaseLamp::checkStateSet() {
    // An assistive program's "toggle" sets the state directly.
    if (isChecked() != selected_) setChecked(selected_);
}

}  // namespace quillon
