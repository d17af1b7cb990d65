#pragma once

#include <QByteArray>
#include <QString>

// What the data server has answered, as far as it is judged.
struct ServerAnswer {
    // The status that counts as success: that a package is stored, or that it is registered.
    enum class Wanted { Stored, Registered };

    bool hasStatus = false;   // the wanted status stands anywhere in it
    bool headersEnd = false;  // the headers of the last answer end, and it is no interim one
    QString statusLine;       // of the last answer; empty if there was none but interim ones
    QByteArray url;           // from the first URL of that kind to the end; empty if there is none
    QString feedback;         // of a registered package: what the factory says, at most what is shown of a program

    // Reads what curl prints with its option -i: the headers and body of every answer that it got. Time and memory grow
    // with its size alone. Any thread.
    static ServerAnswer read(const QByteArray& bytes, Wanted wanted);
};
