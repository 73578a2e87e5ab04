#pragma once

namespace quillon {

class Run;

/// Copies every sound file below `FromFilesPath` into the library, as artist folder, album folder
/// and title, and makes its rows. Files that the library has already are passed over. Failures are
/// logged and the next file follows.
void AddFilesToLibrary(Run& run);

}  // namespace quillon
