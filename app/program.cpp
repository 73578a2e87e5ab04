#include "app/program.h"

#include <exception>
#include <iostream>

#include "app/command_line.h"
#include "app/commands/backups_command.h"
#include "app/commands/changes_command.h"
#include "app/commands/check_command.h"
#include "app/commands/db_command.h"
#include "app/commands/init_command.h"
#include "app/commands/preview_command.h"
#include "app/commands/restore_command.h"
#include "app/commands/run_command.h"
#include "app/commands/serve_command.h"
#include "app/commands/undo_command.h"
#include "app/standard_descriptors.h"
#include "app/text/display_text.h"
#include "app/views/view_choice.h"
#include "app/views/window_module.h"
#include "platform/failure.h"

namespace quillon {
namespace {

/// Does one request; there is one operator for each kind.
struct Dispatcher {
    Console console;

    int operator()(const TextAnswer& answer) const {
        (answer.usageError ? console.err : console.out) << answer.text;
        return answer.usageError ? RefusedStatus : DoneStatus;
    }
    /// Who has started a run from a menu sees neither output nor errors.
    int operator()(const RunRequest& request) const {
        try {
            return RunLibrary(request);
        } catch (const std::exception& error) {
            const Surroundings surroundings = LookAround();
            const bool wantsWindow =
                ViewsToTry(request.view, surroundings).front() == ViewKind::Window;
            if (wantsWindow && IsLaunchersChild(surroundings))
                TellOnDesktop(OneLine(DescriptionOf(error)));
            throw;
        }
    }
    int operator()(const PreviewRequest& request) const { return PreviewRun(request, console); }
    int operator()(const InitRequest& request) const { return Init(request, console); }
    int operator()(const CheckRequest& request) const { return Check(request, console); }
    int operator()(const ChangesRequest& request) const { return Changes(request, console); }
    int operator()(const UndoRequest& request) const { return Undo(request, console); }
    int operator()(const ServeRequest& request) const { return Serve(request, console); }
    int operator()(const BackupsRequest& request) const { return ListBackups(request, console); }
    int operator()(const RestoreRequest& request) const { return Restore(request, console); }
    int operator()(const DbCreateRequest& request) const { return DbCreate(request, console); }
    int operator()(const DbTablesRequest& request) const { return DbTables(request, console); }
    int operator()(const DbSchemaRequest& request) const { return DbSchema(request, console); }
    int operator()(const DbImportRequest& request) const { return DbImport(request, console); }
    int operator()(const DbExportRequest& request) const { return DbExport(request, console); }
    int operator()(const DbCompactRequest& request) const { return DbCompact(request, console); }
    int operator()(const DbQueryRequest& request) const { return DbQuery(request, console); }
    int operator()(const DbExecRequest& request) const { return DbExec(request, console); }
    int operator()(const DbCheckRequest& request) const { return DbCheck(request, console); }
    int operator()(const DbRecoverRequest& request) const { return DbRecover(request, console); }
};

}  // namespace

int RunProgram(std::span<const char* const> arguments, Console console) {
    try {
        const int status = std::visit(Dispatcher{console}, ParseCommandLine(arguments));
        console.out.flush();
        if (!console.out) throw CommandError("the output cannot be written");
        return status;
    } catch (const std::exception& error) {
        console.out.flush();
        console.err << "quillon: " << OneLine(DescriptionOf(error)) << '\n';
        return RefusedStatus;
    }
}

int RunProgram(int argumentCount, const char* const* arguments) {
    PrepareStandardDescriptors();
    return RunProgram({arguments, static_cast<std::size_t>(argumentCount)},
                      Console{std::cout, std::cerr});
}

}  // namespace quillon
