#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/views/screen_layout.h"

namespace quillon {

/// The terminal of this process as a screen of lines. Nothing here waits for the terminal: a screen
/// that has not taken the picture before gets the next one later. The terminal is taken with the
/// first frame and restored by the destructor and by whatever suspends or ends the
/// process; while the process is in the background nothing is drawn.
class CursesScreen {
  public:
    /// nullptr where the terminal's kind is unknown or cannot position the cursor. Colours are used
    /// where the terminal has them and NO_COLOR is not set.
    static std::unique_ptr<CursesScreen> Open();
    ~CursesScreen();
    CursesScreen(const CursesScreen&) = delete;
    CursesScreen& operator=(const CursesScreen&) = delete;

    /// The terminal's size now.
    ScreenSize Size();

    /// Shows these lines and nothing else.
    void Draw(const std::vector<ScreenLine>& lines);

    /// What the terminal has sent since the last call.
    std::string ReadInput();

  private:
    class Implementation;
    explicit CursesScreen(std::unique_ptr<Implementation> implementation);
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace quillon
