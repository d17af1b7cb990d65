// Applications that cannot be used: each build of this file breaks in the way its definition names.

#include <QtGlobal>

#include <stdexcept>

class DisplayView;
struct AppInfo;

#if defined(GIVES_NO_VIEW)
extern "C" Q_DECL_EXPORT DisplayView* LoadPlugin(AppInfo*, DisplayView*) {
    return nullptr;
}
#elif defined(THROWS)
extern "C" Q_DECL_EXPORT DisplayView* LoadPlugin(AppInfo*, DisplayView*) {
    throw std::runtime_error("no such skin");
}
#endif
