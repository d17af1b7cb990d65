#pragma once

#include <QTest>

// The table of a test's data in one line each:
//
//     columns<QString, int>("text", "number");
//     row("empty", "", 0);
template <typename... Types, typename... Names>
void columns(Names... names) {
    (QTest::addColumn<Types>(names), ...);
}

template <typename... Cells>
void row(const char* name, const Cells&... cells) {
    QTestData& data = QTest::newRow(name);
    (data << ... << cells);
}
