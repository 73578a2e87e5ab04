#pragma once

#include <QRadioButton>

namespace quillon {

/// A phase indicator: a radio button that only the run selects. Neither the mouse nor the keyboard
/// nor the actions that assistive programs offer can change it.
class PhaseLamp : public QRadioButton {
  public:
    explicit PhaseLamp(QWidget* parent);

    void SetSelected(bool selected);

  protected:
    void nextCheckState() override {}
    void checkStateSet() override;

  private:
    bool selected_ = false;
};

}  // namespace quillon
