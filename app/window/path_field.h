#pragma once

#include <QLineEdit>

namespace quillon {

/// A field to read: what is too long for it is shortened in the middle, where paths can spare it.
/// The whole text is there for the pointer that rests on it, for whoever goes into the field with
/// the keyboard or the mouse, and for assistive programs.
class PathField : public QLineEdit {
  public:
    explicit PathField(QWidget* parent);

    /// What is shown while the field is not being read.
    QString ShortenedText() const;

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    QRect TextPlace() const;
};

}  // namespace quillon
