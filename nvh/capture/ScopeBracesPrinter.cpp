#include "nvh/capture/ScopeBracesPrinter.h"

#include <HelixDash/views/DisplayView.h>

std::ofstream nvhLogFile("/tmp/NVHLog.txt", std::ios::out | std::ios::trunc);
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
