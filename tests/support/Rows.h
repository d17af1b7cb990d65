#pragma once

#include <QTest>

#include <tuple>
#include <utility>
#include <vector>

// The names of the columns that were added last: Qt Test makes a test's table just before it runs the test.
inline std::vector<const char*> gColumnNames;

// The table of a test's data in one line each, where a cell becomes what its column holds; and the cells of the row
// that the test runs for, from the first column on, as many as are asked for:
//
//     const auto row = columns<QByteArray, int>("text", "number");
//     row("empty", "", 0);
//
//     const auto [text, number] = cells<QByteArray, int>();
template <typename... Types, typename... Names>
auto columns(Names... names) {
    static_assert(sizeof...(Types) == sizeof...(Names));
    gColumnNames = {names...};
    (QTest::addColumn<Types>(names), ...);
    return [](const char* name, const Types&... values) {
        QTestData& data = QTest::newRow(name);
        (data << ... << values);
    };
}

template <typename... Types>
std::tuple<Types...> cells() {
    return []<std::size_t... Index>(std::index_sequence<Index...>) {
        return std::tuple<Types...>(
            *static_cast<Types*>(QTest::qData(gColumnNames.at(Index), qMetaTypeId<Types>()))...);
    }
    (std::index_sequence_for<Types...>());
}
