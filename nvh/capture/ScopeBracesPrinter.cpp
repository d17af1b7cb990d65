#include "nvh/capture/ScopeBracesPrinter.h"

#include "nvh/files/OwnFile.h"

#include <HelixDash/views/DisplayView.h>

#include <ext/stdio_filebuf.h>
#include <utility>

namespace {

// Nobody knows what lies at a name in /tmp when the library is loaded: a link there must not empty what it points to,
// and a FIFO must not hold up the program. So the file is opened with care, and the stream gets its descriptor.
std::ofstream openLogFile() {
    std::ofstream stream;
    const int descriptor = openOwnFile(QStringLiteral("/tmp/NVHLog.txt"));
    if (descriptor < 0) {
        stream.setstate(std::ios::failbit);
        return stream;
    }
    __gnu_cxx::stdio_filebuf<char> buffer(descriptor, std::ios::out);
    *stream.rdbuf() = std::move(static_cast<std::filebuf&>(buffer));
    return stream;
}

}  // namespace

std::ofstream nvhLogFile = openLogFile();
std::string nvhLogIndent;

ScopeBracesPrinter::ScopeBracesPrinter(QObject& object, const std::string& scopeName) : mScopeName(scopeName) {
    nvhLogFile << nvhLogIndent;
    if (const auto* view = qobject_cast<const DisplayView*>(&object))
        nvhLogFile << view->viewName().toLatin1().constData() << '.';
    nvhLogFile << mScopeName << ':' << std::endl;
    nvhLogIndent.push_back('\t');
}

ScopeBracesPrinter::~ScopeBracesPrinter() {
    nvhLogIndent.pop_back();
}
