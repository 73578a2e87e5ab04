#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "app/views/screen_layout.h"

namespace quillon {

/// The terminal of this process as a screen of lines. The destructor gives the terminal back as it
/// was; so does a signal that ends the process at once.
class CursesScreen {
  public:
    /// nullptr where the terminal's kind is unknown or cannot position the cursor.
    static std::unique_ptr<CursesScreen> Open();
    ~CursesScreen();
    CursesScreen(const CursesScreen&) = delete;
    CursesScreen& operator=(const CursesScreen&) = delete;

    ScreenSize Size() const;

    /// Shows these lines and nothing else.
    void Draw(const std::vector<ScreenLine>& lines);

    /// The next key that waits; '\0' for one that is no ASCII character. Never waits itself.
    std::optional<char> ReadKey();

  private:
    class Implementation;
    explicit CursesScreen(std::unique_ptr<Implementation> implementation);
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace quillon
