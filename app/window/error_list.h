#pragma once

#include <QWidget>
#include <deque>
#include <string_view>

class QLabel;
class QPlainTextEdit;

namespace quillon {

/// The newest error records of a run, to be read and copied. The log has them all.
class ErrorList : public QWidget {
  public:
    explicit ErrorList(QWidget* parent);

    void Add(std::string_view source, std::string_view message);

    /// Records added in all, those that are no longer kept included.
    std::size_t Count() const { return count_; }

    /// Brings what is seen up to date; costs nothing while the list is hidden.
    void Refresh();

    static constexpr std::size_t MostKept = 1000;

  private:
    QLabel* olderOnes_;
    QPlainTextEdit* text_;
    std::deque<QString> waiting_;  ///< kept, but not in `text_` yet
    std::size_t count_ = 0;
};

}  // namespace quillon
