#pragma once

#include "nvh/Export.h"

#include <QObject>

#include <fstream>
#include <string>

// The trace file "/tmp/NVHLog.txt", truncated when the library is loaded, and its indentation: one tab per open scope.
// UI thread only. A file that cannot be opened, or a name at which something else than a plain file of this user lies,
// loses what is written, without a word.
NVH_EXPORT extern std::ofstream nvhLogFile;
NVH_EXPORT extern std::string nvhLogIndent;

// Shows the nesting of scopes in the trace file while it lives:
//
//     ScopeBracesPrinter scope(*this, "init");     // writes "NVHAppView.init:"
//
// A view is named by its view name; any other object's scope stands alone.
class NVH_EXPORT ScopeBracesPrinter {
public:
    // Writes the scope's name; the destructor closes the scope. The object outlives neither.
    ScopeBracesPrinter(QObject& object, const std::string& scopeName);
    ~ScopeBracesPrinter();
    Q_DISABLE_COPY(ScopeBracesPrinter)

private:
    std::string mScopeName;
};
