#include "bench/factory/FrontPage.h"

#include "bench/factory/PackageStore.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

namespace {

const char kHead[] = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>Factory data server</title>
<style>
body { font: 16px/1.5 sans-serif; color: #222; background: #fff; max-width: 60em; margin: 2em auto; padding: 0 1em; }
h1 { font-size: 1.4em; font-weight: 600; }
table { border-collapse: collapse; width: 100%; }
th, td { text-align: left; vertical-align: top; padding: .5em 1em .5em 0; border-top: 1px solid #ddd; }
th { font-weight: 600; border-top: 0; }
td.size { text-align: right; white-space: nowrap; }
td.time { white-space: nowrap; }
td.name { word-break: break-all; }
pre { margin: 0; font: inherit; color: #555; white-space: pre-wrap; }
</style>
</head>
<body>
<h1>Factory data server</h1>
)";

const char kTableHead[] = R"(<table>
<tr><th>Received (UTC)</th><th>Archive</th><th>Size</th></tr>
)";

QString feedbackOf(const QByteArray& registration) {
    if (registration.isEmpty())
        return QStringLiteral("Not registered");
    return QJsonDocument::fromJson(registration).object().value(QStringLiteral("VDT Feedback")).toString();
}

}  // namespace

QByteArray frontPage(const PackageStore& store) {
    const std::vector<PackageStore::Entry> entries = store.entries();
    QString page = QString::fromLatin1(kHead);
    if (entries.empty()) {
        page += QStringLiteral("<p>Nothing has come in yet.</p>\n");
    } else {
        page += QString::fromLatin1(kTableHead);
        for (const PackageStore::Entry& entry : entries) {
            const QString name = entry.name.toHtmlEscaped();
            page += QStringLiteral(
                        "<tr><td class=\"time\">%1</td>"
                        "<td class=\"name\"><a href=\"/packages/%2\" download>%2</a><pre>%3</pre></td>"
                        "<td class=\"size\">%4 MB</td></tr>\n")
                        .arg(entry.received.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")), name,
                             feedbackOf(store.registration(entry.name)).toHtmlEscaped(),
                             QString::number(double(entry.size) / 1e6, 'f', 2));
        }
        page += QStringLiteral("</table>\n");
    }
    page += QStringLiteral("<p><a href=\"/vdt/static\">Static test list</a></p>\n</body>\n</html>\n");
    return page.toUtf8();
}
