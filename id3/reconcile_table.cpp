#include "id3/reconcile_table.h"

#include <memory>
#include <string>

#include "platform/database.h"
#include "platform/files.h"
#include "platform/host.h"
#include "run/fast_string.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

void CreateMissing(Files& files, const std::string& folder) {
    if (!files.FolderExists(folder)) files.CreateFolder(folder);
}

}  // namespace

void OutputReconcileTable(Run& run) {
    Steps steps(run, "OutputReconcileTable");
    steps.Try(0, [&run] {
        const std::string base = run.host.GetAppPath();
        CreateMissing(run.files, base + R"(\Data)");
        CreateMissing(run.files, base + R"(\Data\Quillon)");
        const std::unique_ptr<TextWriter> file =
            run.files.CreateOwnText(base + R"(\data\Quillon\QuillonReconcile.csv)");
        const std::unique_ptr<RecordSet> rows =
            run.connection->Query("SELECT * FROM SpinnerID3Differences");
        FastString line;
        for (; !rows->IsEof(); rows->MoveNext()) {
            line.Reset();
            for (std::size_t field = 0; field < rows->FieldCount(); ++field) {
                line.Add(rows->Text(field));
                line.Add(",");
            }
            file->WriteLine(line.value());
        }
        file->Close();
    });
}

}  // namespace quillon
