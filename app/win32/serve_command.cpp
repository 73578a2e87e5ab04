#include "app/commands/serve_command.h"

namespace quillon {

int Serve(const ServeRequest& /*request*/, Console /*console*/) {
    throw CommandError(
        "'quillon serve' is not in the program for Windows, where the host itself shows the pages; "
        "open them through its web server");
}

}  // namespace quillon
