#pragma once

#include <QByteArray>

// The list of static vehicle tests where the factory data server does not give one, in the server's format: a JSON
// object with a member for each row, named by the row's number, with the "Name" of the test.
QByteArray builtInVdtTests();
