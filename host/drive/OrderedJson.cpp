#include "host/drive/OrderedJson.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

QJsonValue parsed(const QByteArray& source) {
    return QJsonDocument::fromJson('[' + source + ']').array().at(0);
}

// One past the end of the string or value that begins there, which is where a comma, a colon or a bracket ends it.
int endOf(const QByteArray& text, int begin) {
    int depth = 0;
    bool inString = false;
    for (int i = begin; i < text.size(); ++i) {
        const char c = text.at(i);
        if (inString) {
            if (c == '\\')
                ++i;
            inString = c != '"';
        } else if (c == '"') {
            inString = true;
        } else if (c == '{' || c == '[') {
            ++depth;
        } else if (depth == 0 && (c == ',' || c == ':' || c == '}')) {
            return i;
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
    return int(text.size());
}

}  // namespace

std::vector<OrderedMember> membersInOrder(const QByteArray& object) {
    std::vector<OrderedMember> members;
    int position = int(object.indexOf('{')) + 1;
    while (position < object.size()) {
        const int colon = endOf(object, position);
        if (colon >= object.size() || object.at(colon) != ':')
            break;
        const int end = endOf(object, colon + 1);
        OrderedMember member;
        member.name = parsed(object.mid(position, colon - position)).toString();
        member.source = object.mid(colon + 1, end - colon - 1).trimmed();
        member.value = parsed(member.source);
        members.push_back(member);
        position = end + 1;
    }
    return members;
}
