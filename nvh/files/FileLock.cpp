#include "nvh/files/FileLock.h"

#include "nvh/files/SystemWords.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace {

// One name for one file, short enough for a socket's address. Empty where the directory does not exist: there is
// nothing that could be shared.
QByteArray lockName(const QString& file) {
    const QFileInfo info(file);
    struct stat directory {};
    if (::stat(QFile::encodeName(info.absolutePath()).constData(), &directory) != 0)
        return QByteArray();
    const QByteArray place = QByteArray::number(quint64(directory.st_dev)) + ':' +
                             QByteArray::number(quint64(directory.st_ino)) + ':' + info.fileName().toUtf8();
    return "nvh-recorder/" + QCryptographicHash::hash(place, QCryptographicHash::Sha1).toHex();
}

struct Address {
    sockaddr_un address{};
    socklen_t size;

    explicit Address(const QByteArray& name) {
        // A first zero makes it a name of its own kind, which is no file anywhere.
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path + 1, name.constData(), size_t(name.size()));
        size = socklen_t(offsetof(sockaddr_un, sun_path) + 1 + size_t(name.size()));
    }
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address); }
};

int newSocket() {
    return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

// The socket that holds the name; -1 with errno if it cannot be had.
int take(const QByteArray& name) {
    const int socket = newSocket();
    const Address address(name);
    if (socket < 0 || (::bind(socket, address.get(), address.size) == 0 && ::listen(socket, 1) == 0))
        return socket;
    const int reason = errno;
    ::close(socket);
    errno = reason;
    return -1;
}

// "process 4711 of driver", as the system knows the holder.
QString holderOf(const QByteArray& name) {
    const int socket = newSocket();
    const Address address(name);
    ucred holder{};
    socklen_t size = sizeof holder;
    const bool known = socket >= 0 && ::connect(socket, address.get(), address.size) == 0 &&
                       ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &holder, &size) == 0;
    ::close(socket);
    if (!known)
        return QStringLiteral("another recorder");
    return QStringLiteral("process %1 of %2").arg(holder.pid).arg(userName(holder.uid));
}

}  // namespace

bool FileLock::acquire(const QStringList& files, QString* reason) {
    std::vector<Held> taken;
    QByteArrayList wanted;
    for (const QString& file : files) {
        const QByteArray name = lockName(file);
        if (name.isEmpty() || wanted.contains(name))
            continue;
        wanted.append(name);
        if (holds(name))
            continue;
        const int socket = take(name);
        if (socket < 0) {
            const int error = errno == EADDRINUSE ? EBUSY : errno;
            if (reason)
                *reason = QStringLiteral("%1 (held by %2): %3").arg(file, holderOf(name), systemWord(error));
            for (const Held& held : taken)
                ::close(held.socket);
            return false;
        }
        taken.push_back({name, socket});
    }
    for (Held& held : mHeld) {
        if (wanted.contains(held.name))
            taken.push_back(held);
        else
            ::close(held.socket);
    }
    mHeld = std::move(taken);
    return true;
}

void FileLock::release() {
    for (const Held& held : mHeld)
        ::close(held.socket);
    mHeld.clear();
}

bool FileLock::holds(const QByteArray& name) const {
    return std::any_of(mHeld.begin(), mHeld.end(), [&name](const Held& held) { return held.name == name; });
}
