#include <QApplication>
#include <QMessageBox>
#include <QtGlobal>
#include <cstddef>
#include <memory>
#include <string_view>

#include "app/version.h"
#include "app/window/desktop_window.h"
#include "app/window/window_maker.h"

extern "C" Q_DECL_EXPORT quillon::Window* QuillonMakeWindow(const char* version,
                                                            std::size_t stateSize) {
    if (version != quillon::ProgramVersion || stateSize != sizeof(quillon::FormState))
        return nullptr;
    return std::make_unique<quillon::DesktopWindow>().release();
}

extern "C" Q_DECL_EXPORT void QuillonTellMessage(const char* message) {
    int argumentCount = 1;
    char name[] = "quillon";
    char* arguments[] = {name, nullptr};
    const QApplication application(argumentCount, arguments);
    QMessageBox box(QMessageBox::Warning, "Quillon Shelfkeeper", QString::fromUtf8(message));
    // Names of files are no marked-up text.
    box.setTextFormat(Qt::PlainText);
    box.exec();
}
